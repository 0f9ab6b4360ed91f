#include "fuzz/model/device.h"

#include "fuzz/model/members.h"
#include "fuzz/support/json.h"

void model_isp::start()
{
    forget();
    flags = PARA_STATUS_LOAD_FAILED;
}

bool model_isp::save()
{
    return may_be_saved() && write("isp_cur.json", std::string("{\n}") + '\0');
}

model_device::model_device()
    : odm(disk, clock_ms), isp(disk, clock_ms), af(disk, clock_ms, af_rules, af_members),
      audio(disk, clock_ms, audio_rules, audio_members),
      video(disk, clock_ms, video_rules, video_members),
      misc(disk, clock_ms, "misc", misc_conf, misc_members),
      panel(disk, clock_ms, "panel", panel_conf, panel_members),
      netport(disk, clock_ms, "netport", netport_conf)
{
}

std::vector<std::pair<std::string, model_module *>> model_device::rows()
{
    return {{"odmInter", &odm}, {"isp0", &isp},       {"af", &af},        {"video0", &video},
            {"video1", &video}, {"audio", &audio},    {"video2", &video}, {"video3", &video},
            {"video4", &video}, {"video5", &video},   {"video6", &video}, {"misc", &misc},
            {"panel", &panel},  {"netport", &netport}};
}

std::vector<std::pair<std::string, std::string>> model_device::home_files() const
{
    return {{"www2json.json",
             R"({"json_pattern_list":["misc","panel"],"conf_pattern_list":["netport"]})"},
            {"af_range.json", af.range_file()},
            {"af_def.json", af.defaults_file()},
            {"audio_range.json", audio.range_file()},
            {"audio_def.json", audio.defaults_file()},
            {"video_range.json", video.range_file()},
            {"video_def.json", video.defaults_file()},
            {"misc_range.json", misc.range_file()},
            {"misc.conf", misc.home_file()},
            {"panel_range.json", panel.range_file()},
            {"panel.conf", panel.home_file()},
            {"netport.conf", netport.home_file()}};
}

void model_device::start(bool guard, bool writes_conf_files)
{
    disk.guard = guard;
    disk.limit.reset();
    syncs = 0;
    netport.writes_files = writes_conf_files;
    for (model_module *const module : modules())
        module->start();
}

void model_device::save_pass(bool forced)
{
    const unsigned opened_before = disk.opened;
    bool saved = false;
    for (const auto &[name, module] : rows()) {
        if (forced || module->is_due()) {
            module->save();
            saved = true;
        }
    }
    if (disk.guard ? disk.opened != opened_before : saved)
        syncs++;
}

// --- Requests ---

static bool begins_with(const std::string &text, const char *start)
{
    return text.rfind(start, 0) == 0;
}

static std::vector<std::string> names_in(const cJSON *list)
{
    std::vector<std::string> names;
    const cJSON *name = nullptr;
    cJSON_ArrayForEach(name, list) names.emplace_back(name->valuestring);
    return names;
}

// The stream of a key that names one exactly, or -1.
static int stream_of(const std::string &key)
{
    return key == "video0" ? 0 : key == "video1" ? 1 : -1;
}

cJSON *model_device::answer(const std::string &key, const cJSON *item) const
{
    const std::vector<std::string> names = names_in(item);
    const bool all = names.size() == 1 && begins_with(names[0], "all");
    const bool defaults = key.find("def") != std::string::npos;
    const int stream = stream_of(key);
    if (key == "af")
        return all ? af.answer_all(0) : af.answer_listed(0, names);
    if (begins_with(key, "audio"))
        return all ? audio.answer_all(0) : audio.answer_listed(0, names);
    if (stream >= 0)
        return all ? video.answer_all(stream) : video.answer_listed(stream, names);
    for (const model_pattern *const module : {&misc, &panel}) {
        if (begins_with(key, module->name()))
            return all ? module->answer_all(defaults) : module->answer_listed(defaults, names);
    }
    if (begins_with(key, "netport"))
        return all ? netport.answer_all(defaults) : netport.answer_listed(names);
    return nullptr;
}

std::string model_device::get(const cJSON *request) const
{
    const tree_ptr reply(cJSON_CreateObject());
    const cJSON *item = nullptr;
    cJSON_ArrayForEach(item, request)
    {
        const std::string key = item->string;
        if (key == "msg_name")
            cJSON_AddStringToObject(reply.get(), "msg_name", item->valuestring);
        else if (key == "msg_id")
            cJSON_AddNumberToObject(reply.get(), "msg_id", item->valueint);
        else if (cJSON *const found = answer(key, item))
            cJSON_AddItemToObject(reply.get(), item->string, found);
    }
    return print_json(reply.get());
}

void model_device::apply(const std::string &key, const cJSON *item)
{
    const cJSON *child = nullptr;
    cJSON_ArrayForEach(child, item)
    {
        if (begins_with(key, "audio"))
            audio.request(0, child->string, child);
        else if (stream_of(key) >= 0)
            video.request(stream_of(key), child->string, child);
        else if (begins_with(key, "misc"))
            misc.request(child->string, child);
        else if (begins_with(key, "panel"))
            panel.request(child->string, child);
        else if (begins_with(key, "netport"))
            netport.request(child->string, child);
    }
}

std::string model_device::set(const cJSON *request)
{
    const tree_ptr reply(cJSON_CreateObject());
    const cJSON *item = nullptr;
    cJSON_ArrayForEach(item, request)
    {
        apply(item->string, item);
        if (std::string("msg_name") == item->string && cJSON_IsString(item))
            cJSON_AddStringToObject(reply.get(), "msg_name", item->valuestring);
        if (std::string("msg_id") == item->string && cJSON_IsNumber(item))
            cJSON_AddNumberToObject(reply.get(), "msg_id", item->valueint);
    }
    return print_json(reply.get());
}
