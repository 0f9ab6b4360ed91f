// Target: the files of one module, loaded and saved again in one process.
//   input: byte 0: kind of module; then its files, in the order of the table below, and perhaps a
//   set request, separated by bytes 0xff. Files that are not there are missing.
#include <cstring>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "camparam/camparam.h"
#include "fuzz/support/device.h"
#include "fuzz/support/input.h"
#include "fuzz/support/json.h"
#include "fuzz/support/target.h"
#include "modules/text/conf_module.h"
#include "modules/text/pattern_module.h"

namespace {

struct kind {
    const char *name;
    std::vector<const char *> files; // the last one is the current file
    void (*forget)();                // what the module knows of earlier inputs
    int (*start)(const char *);
    int (*save)(const char *);
    int (*get)(const char *, const cJSON *, cJSON **, const char *) = nullptr;
    int (*set)(const char *, const cJSON *, const char *) = nullptr;
};

template <typename... tables> void clear(tables &...all)
{
    (memset(&all, 0, sizeof all), ...);
}

void forget_video()
{
    clear(para_video_def, para_video_min, para_video_max, para_video_cur, para_video_exist);
    video_init_done = 0;
}

int set_odm(const char *, const cJSON *item, const char *)
{
    const cJSON *child = nullptr;
    cJSON_ArrayForEach(child, item)
    {
        if (cJSON_IsString(child))
            para_set_odm_string(child->string, child->valuestring);
        else if (child->string != nullptr)
            para_set_odm_int(child->string, child->valueint);
    }
    return 0;
}

int start_odm(const char *name)
{
    const int result = para_init_odm(name);
    para_init_stage2_odm(name);
    return result;
}

// An earlier input's document stays while there is none to read.
void forget_odm()
{
    const std::string path = folders().data + "/persist/odm.json";
    const std::optional<std::string> kept = read_file(path);
    write_file(path, "{}");
    para_init_odm("odmInter");
    std::filesystem::remove(path);
    if (kept)
        write_file(path, *kept);
}

const kind kinds[] = {
    {"af",
     {"home/af_range.json", "home/af_def.json", "data/af_cur.json"},
     [] { clear(para_af_def, para_af_min, para_af_max, para_af_cur, para_af_exist); },
     para_init_af,
     para_save_af,
     para_get_af_opt},
    {"audio",
     {"home/audio_range.json", "home/audio_def.json", "data/audio_cur.json"},
     [] {
         clear(para_audio_def, para_audio_min, para_audio_max, para_audio_cur, para_audio_exist);
     },
     para_init_audio,
     para_save_audio,
     para_get_audio_opt,
     para_set_audio_opt},
    {"video0",
     {"home/video_range.json", "home/video_def.json", "data/video_cur.json"},
     forget_video,
     para_init_video,
     para_save_video,
     para_get_video_opt,
     para_set_video_opt},
    {"panel",
     {"home/panel_range.json", "home/panel.conf", "data/panel.conf"},
     [] { patterns.next = 1; }, // the same record again
     para_init_misc,
     para_save_misc,
     para_get_misc_opt,
     para_set_misc_opt},
    {"netport",
     {"home/netport.conf", "data/netport.conf"},
     [] { conf_modules.next = 1; },
     para_init_conf,
     para_save_conf,
     para_get_conf_opt,
     para_set_conf_opt},
    {"odmInter", {"data/persist/odm.json"}, forget_odm, start_odm, para_save_odm, nullptr, set_odm},
};

void start()
{
    std::filesystem::create_directory(folders().data + "/persist");
    static const para_entry_point writes_conf_files = [] {};
    para_profile.conf_save_hook = writes_conf_files;
    para_init_misc("json");
    para_init_conf("conf");
}

std::string path_of(const char *file)
{
    return folders().root + "/" + file;
}

void write_files(const kind &module, const std::vector<std::string> &parts)
{
    for (size_t i = 0; i < module.files.size(); i++) {
        if (i < parts.size())
            write_file(path_of(module.files[i]), parts[i]);
        else
            std::filesystem::remove(path_of(module.files[i]));
    }
}

// The answer to a query for every member, as text.
std::string ask_for_all(const kind &module)
{
    const tree_ptr request(cJSON_CreateObject());
    const char *const all = "all";
    cJSON_AddItemToObject(request.get(), module.name, cJSON_CreateStringArray(&all, 1));
    cJSON *answer = nullptr;
    module.get(module.name, request->child, &answer, module.name);
    const tree_ptr owned(answer);
    return print_json(owned.get());
}

// Text of the current file, which is there when the module could be loaded.
std::string saved(const kind &module)
{
    module.save(module.name);
    return read_file(path_of(module.files.back())).value_or("");
}

void check_answer(const kind &module, const std::string &file)
{
    if (module.get == nullptr)
        return;
    const std::string answer = ask_for_all(module);
    const bool whole = module.start == para_init_af || module.start == para_init_audio;
    require(!whole || answer + '\0' == file, "%s: the answer is not the file: %s", module.name,
            answer.c_str());
}

int start_again(const kind &module)
{
    module.forget();
    return module.start(module.name);
}

// An ODM file that holds something else than an object has no keys, so each start without the guard
// adds the version to it again.
bool has_no_keys(const kind &module, const std::string &file)
{
    return module.start == start_odm && file[0] != '{';
}

// Once a file was written by the store, the store reads and writes it unchanged. A size whose name
// begins another one takes one more round.
void check_round_trip(const kind &module)
{
    saved(module);
    start_again(module);
    const std::string first = saved(module);
    check_answer(module, first);
    start_again(module);
    const std::string second = saved(module);
    require(first == second || has_no_keys(module, first), "%s: saved as %s, and then as %s",
            module.name, first.c_str(), second.c_str());
}

void set_members(const kind &module, const std::string &members)
{
    const tree_ptr item = parse_json(members);
    const tree_ptr request(cJSON_CreateObject());
    if (item == nullptr || module.set == nullptr)
        return;
    cJSON_AddItemToObject(request.get(), module.name, cJSON_Duplicate(item.get(), 1));
    module.set(module.name, request->child, module.name);
}

// The widening of the legacy range file, which another target loads.
void widen(const std::string &text)
{
    const tree_ptr old = parse_json(text);
    const tree_ptr widened(fix_old_misc_range_conf(old.get()));
    const cJSON *const version = cJSON_GetArrayItem(widened.get(), 0);
    require(version != nullptr && strcmp(version->string, "version") == 0 && version->valueint == 0,
            "the version is not the first member");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const bool started = (start(), true);
    if (!started)
        return 0;
    input_reader input(data, size);
    const kind &module = kinds[input.choice(std::size(kinds))];
    const std::vector<std::string> parts = parts_of(input.rest());
    write_files(module, parts);
    widen(parts[0]);

    if (start_again(module) != 0)
        return 0;
    if (parts.size() > module.files.size())
        set_members(module, parts[module.files.size()]);
    check_round_trip(module);
    return 0;
}
