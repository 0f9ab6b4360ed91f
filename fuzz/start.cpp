// Target: start-up from any files, in a process of its own; and again from the files that it saved.
//   input: byte 0: bit 0 guard, bit 1 conf files are written, bit 2 trace level; then files,
//   separated by bytes 0xff: one byte for the place, and the contents. Places that are not named
//   have the files of the sample device, or none.
#include <cstring>
#include <filesystem>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "camparam/camparam.h"
#include "fuzz/support/child.h"
#include "fuzz/support/device.h"
#include "fuzz/support/endpoint.h"
#include "fuzz/support/input.h"
#include "fuzz/support/json.h"
#include "fuzz/support/target.h"

namespace {

const char *const home_files[] = {
    "af_range.json", "af_def.json",      "audio_range.json", "audio_def.json",   "isp_range.json",
    "isp_def.json",  "video_range.json", "video_def.json",   "misc_range.json",  "misc_def.json",
    "misc.conf",     "netport.conf",     "www2json.json",    "panel_range.json", "panel.conf",
};
const char *const json_files[] = {"af_cur.json",    "audio_cur.json", "isp_cur.json",
                                  "video_cur.json", "misc_cur.json",  "persist/odm.json"};
const char *const other_files[] = {"misc.conf", "netport.conf", "panel.conf", "isp_odm.json"};

struct place {
    std::string name;
    bool in_data = false;
    bool is_json = false; // and has a backup
};

std::vector<place> make_places()
{
    std::vector<place> all;
    for (const char *name : home_files)
        all.push_back({std::string("/home/") + name});
    for (const char *name : json_files) {
        all.push_back({std::string("/data/") + name, true, true});
        all.push_back({std::string("/data/") + name + ".bak", true, false});
    }
    for (const char *name : other_files)
        all.push_back({std::string("/data/") + name, true, false});
    return all;
}

const std::vector<place> &places()
{
    static const auto *const all = new std::vector<place>(make_places());
    return *all;
}

// Contents with a meaning of their own.
constexpr char directory = '\xfe', link_to_itself = '\xfd', missing = '\xfc';

void put(const std::string &name, const std::string &contents)
{
    const std::string path = folders().root + name;
    std::filesystem::remove_all(path);
    const char first = contents.empty() ? '\0' : contents[0];
    if (first == directory)
        std::filesystem::create_directory(path);
    else if (first == link_to_itself)
        std::filesystem::create_symlink(path, path);
    else if (first != missing)
        write_file(path, contents);
}

// The files of one input, by the names of their places.
using file_set = std::map<std::string, std::string>;

file_set files_of(input_reader &input)
{
    file_set files;
    for (const std::string &part : parts_of(input.rest())) {
        if (!part.empty()) {
            const size_t index = static_cast<unsigned char>(part[0]) % places().size();
            files[places()[index].name] = part.substr(1);
        }
    }
    return files;
}

void lay_out(const file_set &files)
{
    empty_folder(folders().home);
    empty_folder(folders().data);
    install_sample_home();
    std::filesystem::create_directory(folders().data + "/persist");
    for (const auto &[name, contents] : files)
        put(name, contents);
}

// Every row, and a set through each that sets.
void ask_everything()
{
    endpoint client;
    std::vector<std::string> names;
    for (int i = 0; i < module_para_handle_num; i++)
        names.emplace_back(module_para_handle[i].name);
    for (const std::string &name : names) {
        const tree_ptr request(cJSON_CreateObject());
        cJSON_AddStringToObject(request.get(), "msg_type", "get");
        const char *const all = "all";
        cJSON_AddItemToObject(request.get(), name.c_str(), cJSON_CreateStringArray(&all, 1));
        client.ask(print_json(request.get()));
    }
    client.ask(R"({"msg_type":"get","msg_from":"www","msg_name":"image"})");
}

void run_store(uint8_t settings)
{
    static const para_entry_point writes_conf_files = [] {};
    platformparam_set_guard(settings & 1);
    para_profile.conf_save_hook = (settings & 2) != 0 ? writes_conf_files : nullptr;
    dbgout_profile[1] = (settings & 4) != 0 ? 3 : 7;
    start_store();
    ask_everything();
    platformparam_save();
}

file_set saved_files()
{
    file_set saved;
    for (const place &each : places()) {
        if (each.in_data)
            saved[each.name] = read_file(folders().root + each.name).value_or("");
    }
    return saved;
}

const char *const odm_file = "/data/persist/odm.json";
const char *const legacy_odm_file = "/data/isp_odm.json";

// "PIC_HD1" is read as "PIC_HD1080", whose name it begins.
bool has_short_size(const std::string &contents)
{
    return contents.find("\"PIC_HD1\"") != std::string::npos;
}

// Without the guard each start adds the version to an ODM file that holds something else than an
// object.
bool has_no_keys(const std::string &name, const std::string &contents)
{
    return name == odm_file && contents[0] != '{';
}

// A legacy ODM file is moved as soon as nothing is in its way: a folder of that name cannot take
// the place of a file, which the guard keeps as bad and so out of the way of the next start.
bool has_moved(const std::string &name, const std::string &again)
{
    return name == legacy_odm_file && again.empty();
}

void check_second_start(const file_set &first, const file_set &second, bool guarded)
{
    for (const auto &[name, contents] : first) {
        const std::string &again = second.at(name);
        const bool grows = !guarded && has_no_keys(name, contents);
        require(contents == again || has_short_size(contents) || grows || has_moved(name, again),
                "%s: saved as\n%s\nand then as\n%s", name.c_str(), contents.c_str(), again.c_str());
    }
}

bool is_torn(const std::string &contents, const std::string &backup)
{
    const size_t length = strlen(contents.c_str());
    return length < strlen(backup.c_str()) && backup.compare(0, length, contents.c_str()) == 0;
}

bool is_usable(const std::string &name, const std::string &contents)
{
    const tree_ptr root = parse_json(contents);
    return name == odm_file ? cJSON_IsObject(root.get()) != 0 : root != nullptr;
}

bool is_file(const std::string &contents)
{
    return contents.empty() || static_cast<unsigned char>(contents[0]) < 0xfc;
}

// With the guard on: a file that could not be loaded is still there, or is kept as bad.
void check_kept(const file_set &files, const file_set &saved)
{
    for (const place &each : places()) {
        const auto given = files.find(each.name);
        if (!each.is_json || given == files.end() || !is_file(given->second))
            continue;
        const auto backup = files.find(each.name + ".bak");
        const bool has_backup = backup != files.end() && is_file(backup->second);
        const bool usable = is_usable(each.name, given->second) ||
                            (has_backup && is_torn(given->second, backup->second));
        const auto bad = read_file(folders().root + each.name + ".bad");
        require(usable || saved.at(each.name) == given->second || bad == given->second,
                "%s is lost: %s", each.name.c_str(), given->second.c_str());
    }
}

void run_input(const uint8_t *data, size_t size)
{
    input_reader input(data, size);
    const uint8_t settings = input.byte();
    const file_set files = files_of(input);
    lay_out(files);

    in_child([=] { run_store(settings); });
    const file_set first = saved_files();
    const bool guarded = (settings & 1) != 0;
    const bool legacy_odm = files.count(legacy_odm_file) != 0; // was moved
    if (guarded && !legacy_odm)
        check_kept(files, first);
    in_child([=] { run_store(settings); });
    check_second_start(first, saved_files(), guarded);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    serve_input(run_input, data, size);
    return 0;
}
