// Target: configure objects of the reference platform, and their text.
//   input: the text of a file, and then keys and values in turn, separated by bytes 0xff
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "camparam/platform.h"
#include "fuzz/support/device.h"
#include "fuzz/support/input.h"
#include "fuzz/support/target.h"

namespace {

using entries = std::vector<std::pair<std::string, std::string>>;
using configure_ptr = std::unique_ptr<configure, decltype(&configure_free)>;

std::string path()
{
    return folders().data + "/text.conf";
}

configure_ptr read_text(const std::string &text)
{
    configure_ptr conf(configure_init(), configure_free);
    require(conf != nullptr, "no object");
    write_file(path(), text);
    require(configure_parse(conf.get(), 0, path().c_str()) == 0, "the file is not read");
    return conf;
}

int add_entry(void *list, const char *key, const char *value)
{
    static_cast<entries *>(list)->emplace_back(key, value);
    return 0;
}

entries entries_of(configure *conf)
{
    entries all;
    conf->conf_loop(conf, add_entry, &all);
    return all;
}

// As loop_2_conf writes it.
std::string written(configure *conf)
{
    char *text = nullptr;
    size_t size = 0;
    FILE *const file = open_memstream(&text, &size);
    conf->conf_loop(conf, loop_2_conf, file);
    fclose(file);
    std::string result(text, size);
    free(text);
    return result;
}

// loop_2_buf writes the same, and says when there is one byte too few for the final zero.
void check_buffer(configure *conf, const std::string &text)
{
    for (const int missing : {0, 1}) {
        const int size = static_cast<int>(text.size()) + 1 - missing;
        const std::unique_ptr<char[]> buffer(new char[static_cast<size_t>(size)]);
        conf_buffer_state state = {buffer.get(), size, 0, 0};
        conf->conf_loop(conf, loop_2_buf, &state);
        if (text.empty())
            continue; // nothing was written, so nothing can be missing
        require(state.overflow == missing, "overflow %d of %d bytes", state.overflow, size);
        require(missing != 0 || text == buffer.get(), "another text: %s", buffer.get());
    }
}

// What is written is read back, in the same order.
void check_text(configure *conf)
{
    const std::string text = written(conf);
    check_buffer(conf, text);
    const configure_ptr again = read_text(text);
    require(entries_of(again.get()) == entries_of(conf), "another object comes back from: %s",
            text.c_str());
}

void check_value(configure *conf, const std::string &key, const std::string &value)
{
    const std::unique_ptr<char[]> buffer(new char[value.size() + 1]);
    const int size = static_cast<int>(value.size()) + 1;
    require(conf->conf_get(conf, key.c_str(), buffer.get(), size) == 0 && value == buffer.get(),
            "%s is not \"%s\"", key.c_str(), value.c_str());
    require(conf->conf_get(conf, key.c_str(), buffer.get(), size - 1) == -1, "a value that is cut");
    const void *const entry = conf->conf_find(conf, key.c_str());
    require(entry != nullptr && value == static_cast<const char *>(entry) + PARA_CONF_VALUE_OFFSET,
            "another value of %s is found", key.c_str());
}

int changed_key(configure *conf, const std::string &key)
{
    const char *const keys[] = {"another key", key.c_str()};
    void *const set = config_keys_format(keys, 2);
    const int position = configure_key_IsChanged(conf, set);
    free(set);
    return position;
}

void check_set(configure *conf, const std::string &key, const std::string &value)
{
    changed_key(conf, key); // what was before counts no more
    const entries before = entries_of(conf);
    const int result = conf->conf_set(conf, key.c_str(), value.c_str());
    const int position = changed_key(conf, key);
    if (result == 0) {
        require(entries_of(conf) == before && position < 0, "a change of %s that is not told",
                key.c_str());
        return;
    }
    check_value(conf, key, value);
    require(position == 1, "the change of %s is not seen", key.c_str());
    require(changed_key(conf, key) < 0, "the change of %s is seen twice", key.c_str());
    require(conf->conf_set(conf, key.c_str(), value.c_str()) == 0, "%s changes twice", key.c_str());
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    input_reader input(data, size);
    const std::vector<std::string> parts = parts_of(input.rest());
    const configure_ptr conf = read_text(parts[0]);
    for (const auto &[key, value] : entries_of(conf.get()))
        check_value(conf.get(), key, value);
    check_text(conf.get());

    for (size_t i = 1; i + 1 < parts.size(); i += 2)
        check_set(conf.get(), parts[i].c_str(), parts[i + 1].c_str());
    check_text(conf.get());
    return 0;
}
