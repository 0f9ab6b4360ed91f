#include "tests/platform/folder.h"

#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

Folder::Folder()
{
    char name[] = "/tmp/camparam-platform-XXXXXX";
    folder = mkdtemp(name);
}

Folder::~Folder()
{
    std::filesystem::remove_all(folder);
}

std::string Folder::write(const std::string &name, const std::string &bytes) const
{
    std::ofstream file(path(name), std::ios::binary);
    file << bytes;
    file.close();
    EXPECT_TRUE(file) << path(name);
    return path(name);
}

std::string Folder::read(const std::string &name) const
{
    std::ifstream file(path(name), std::ios::binary);
    EXPECT_TRUE(file) << path(name);
    return {std::istreambuf_iterator<char>(file), {}};
}

int Conf::set(const std::string &key, const std::string &value)
{
    return object->conf_set(object, key.c_str(), value.c_str());
}

std::string Conf::get(const std::string &key)
{
    std::vector<char> buffer(size_t{1} << 21);
    const int size = static_cast<int>(buffer.size());
    return object->conf_get(object, key.c_str(), buffer.data(), size) == 0 ? buffer.data()
                                                                           : "absent";
}

std::vector<std::pair<std::string, std::string>> Conf::entries()
{
    std::vector<std::pair<std::string, std::string>> all;
    const auto collect = [](void *argument, const char *key, const char *value) {
        static_cast<decltype(all) *>(argument)->emplace_back(key, value);
        return 0;
    };
    EXPECT_EQ(object->conf_loop(object, collect, &all), 0);
    return all;
}

const char *Conf::found(const std::string &key)
{
    void *const entry = object->conf_find(object, key.c_str());
    return entry != nullptr ? static_cast<const char *>(entry) + 256 : nullptr;
}

int Conf::save(const std::string &file)
{
    FILE *const stream = fopen(file.c_str(), "wb");
    object->conf_loop(object, loop_2_conf, stream);
    return fclose(stream);
}

int Conf::changed(const std::vector<const char *> &keys)
{
    const heap_block set(config_keys_format(keys.data(), static_cast<int>(keys.size())));
    return configure_key_IsChanged(object, set.get());
}

bool thread_sleeps(pid_t id)
{
    std::ifstream status("/proc/self/task/" + std::to_string(id) + "/stat");
    std::string number, name, state;
    status >> number >> name >> state;
    return state == "S";
}

bool eventually(const std::function<bool()> &condition)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

void in_time(const std::function<void()> &action)
{
    std::atomic<bool> done{false};
    std::thread thread([&] {
        action();
        done = true;
    });
    if (!eventually([&] { return done.load(); })) {
        ADD_FAILURE() << "still waiting after 20 seconds";
        fflush(stdout);
        _exit(1);
    }
    thread.join();
}
