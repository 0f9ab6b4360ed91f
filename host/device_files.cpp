#include "device_files.h"

// A list of module names in the web-name file; the usual ones when the file has no such list.
static std::vector<std::string> listed(const cJSON *web_names, const char *list,
                                       std::vector<std::string> usual)
{
    const cJSON *const found = cJSON_GetObjectItem(web_names, list);
    if (found == nullptr)
        return usual;
    std::vector<std::string> names;
    const cJSON *name = nullptr;
    cJSON_ArrayForEach(name, found)
    {
        if (cJSON_IsString(name))
            names.emplace_back(name->valuestring);
    }
    return names;
}

static void add_fixed_modules(device_files &files)
{
    for (const std::string name : {"af", "audio", "video", "isp"}) {
        files.json_files.push_back(name + "_range.json");
        files.json_files.push_back(name + "_def.json");
        files.saved.push_back(name + "_cur.json");
    }
    files.saved.emplace_back("/persist/odm.json"); // two slashes: as the store joins them
}

static void add_pattern_module(device_files &files, const std::string &name)
{
    files.json_files.push_back(name + "_range.json");
    files.conf_files.push_back(name + ".conf");
    files.saved.push_back(name + ".conf");
    if (name != "misc")
        return;
    files.json_files.emplace_back("misc_def.json"); // of the legacy set
    files.saved.emplace_back("misc_cur.json");
}

device_files files_of(const cJSON *web_names)
{
    device_files files;
    add_fixed_modules(files);
    for (const std::string &name : listed(web_names, "json_pattern_list", {"misc"}))
        add_pattern_module(files, name);
    for (const std::string &name :
         listed(web_names, "conf_pattern_list", {"netport", "overlay", "ndi_config"})) {
        files.conf_files.push_back(name + ".conf");
        files.saved.push_back(name + ".conf");
    }
    return files;
}
