// Saved values, and what lies beside them.
#include <algorithm>
#include <filesystem>

#include "client/files/checks.h"
#include "client/files/conf_document.h"
#include "client/files/values.h"

namespace {

void check_module(device_folder &data, device_model &device, const std::string &name)
{
    json_document file(data, name + "_cur.json");
    if (module_in_files *const module = device.find(name))
        check_values(file, file.root(), "", *module);
}

// Files with an object for each instance.
void check_instances(device_folder &data, device_model &device, const std::string &name)
{
    json_document file(data, name + "_cur.json");
    for (const cJSON *item : file.members(file.root())) {
        module_in_files *const module = device.find(in_small_letters(item->string));
        const bool is_other = name == "isp" && in_small_letters(item->string) == "isp1";
        if (is_other)
            continue;
        if (module == nullptr || module->name.rfind(name, 0) != 0)
            file.fault(item, item->string, "is no module of the device");
        else if (!cJSON_IsObject(item))
            file.fault(item, item->string, "is no object of a module's values");
        else
            check_values(file, item, module->name + ".", *module);
    }
}

void check_saved_text(checked_file &file, const conf_line &line, module_in_files &module)
{
    const setting_in_files *const found = module.find(line.key);
    if (found != nullptr && found->range != range_state::none)
        check_text(file, line.line, line.key, line.value, *found);
    else if (module.kind == module_kind::pattern && module.is_known && found == nullptr)
        file.fault(line.line, line.key, unknown_member(module, line.key));
}

void check_conf(device_folder &data, device_model &device, const std::string &name)
{
    conf_document file(data, name + ".conf");
    module_in_files *const module = device.find(name);
    if (file.exists() && file.text().empty())
        file.fault(0, "", "is empty");
    if (module == nullptr)
        return;
    for (const conf_line &line : file.lines())
        check_saved_text(file, line, *module);
}

void check_legacy_misc(device_folder &data, module_in_files &misc)
{
    json_document file(data, "misc_cur.json");
    for (const cJSON *item : file.members(file.root())) {
        if (cJSON_IsString(item) || cJSON_IsNumber(item))
            check_saved_text(file, {item->string, value_text(item), file.line_of(item)}, misc);
        else
            file.fault(item, item->string, "is neither a number nor a text");
    }
}

void check_override(json_document &file, const cJSON *item, const device_model &device,
                    module_in_files *isp)
{
    const std::string key = in_small_letters(item->string);
    if (!cJSON_IsNumber(item) && !cJSON_IsString(item))
        return file.fault(item, item->string, "is neither a number nor a text");
    const setting_in_files *const antiflicker =
        isp != nullptr && key == "isp0_antiflicker_def" ? isp->find("antiflicker") : nullptr;
    if (antiflicker != nullptr)
        check_value(file, item, item->string, *antiflicker, isp->kind);
    const bool is_style = key == "isp0_style_def" && !device.styles.empty();
    if (is_style &&
        (item->valueint < 0 || static_cast<size_t>(item->valueint) >= device.styles.size()))
        file.fault(item, item->string, std::to_string(item->valueint) + " is no picture style");
}

void check_overrides(device_folder &data, device_model &device)
{
    json_document file(data, "persist/odm.json");
    for (const cJSON *item : file.members(file.root()))
        check_override(file, item, device, device.find("isp0"));
}

// The names of the files in a folder, in order; none when it cannot be read.
std::vector<std::string> names_in(const std::string &folder)
{
    std::vector<std::string> names;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error))
        names.push_back(entry->path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

bool ends_with(const std::string &name, const std::string &end)
{
    return name.size() > end.size() && name.compare(name.size() - end.size(), end.size(), end) == 0;
}

// "x.bad", and "x.bad.1" to "x.bad.9".
bool is_set_aside(const std::string &name)
{
    const size_t digits = name.size() - 2;
    const bool is_numbered =
        name.size() > 2 && name[digits] == '.' && name.back() >= '1' && name.back() <= '9';
    return ends_with(is_numbered ? name.substr(0, digits) : name, ".bad");
}

void check_beside(const device_folder &data, const std::string &folder)
{
    const std::string start = data.path + "/" + folder;
    for (const std::string &name : names_in(start)) {
        std::string path = start;
        path += name;
        if (is_set_aside(name))
            data.found.push_back(
                {path, 0, "", "was set aside at a start, as it could not be used", false});
        else if (ends_with(name, ".bak.tmp"))
            data.found.push_back({path, 0, "", "is what an interrupted save left", true});
    }
}

} // namespace

void check_saved(device_folder &data, device_model &device)
{
    check_module(data, device, "af");
    check_module(data, device, "audio");
    check_instances(data, device, "video");
    check_instances(data, device, "isp");
    for (const std::string &name : device.json_modules) {
        module_in_files *const module = device.find(name);
        if (name == "misc" && device.has_legacy_misc && module != nullptr)
            check_legacy_misc(data, *module);
        else
            check_conf(data, device, name);
    }
    for (const std::string &name : device.conf_modules)
        check_conf(data, device, name);
    check_overrides(data, device);
    check_beside(data, "");
    check_beside(data, "persist/");
}

void check_other_files(const device_folder &home)
{
    const std::vector<std::string> names = names_in(home.path);
    std::vector<std::string> missing;
    for (const std::string &name : home.asked_for) {
        if (!std::binary_search(names.begin(), names.end(), name))
            missing.push_back(name);
    }
    for (const std::string &name : names) {
        const bool is_meant = ends_with(name, ".json") || ends_with(name, ".conf");
        if (is_meant && home.asked_for.count(name) == 0)
            home.found.push_back({home.path + "/" + name, 0, "",
                                  "is read by no module" + hint(name, missing), true});
    }
}
