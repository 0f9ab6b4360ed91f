#include "client/files/device_model.h"

#include <algorithm>

#include "camparam/module.h"
#include "client/files/checked_file.h"

std::string setting_in_files::shown(int value) const
{
    const char *const its_name = name_of != nullptr ? name_of(value) : nullptr;
    return its_name != nullptr ? its_name : std::to_string(value);
}

std::string setting_in_files::limits() const
{
    return shown(min) + " to " + shown(max);
}

setting_in_files &module_in_files::add(const setting_in_files &setting)
{
    setting_in_files &added = all.emplace_back(setting);
    by_key.emplace(in_small_letters(added.name), &added);
    return added;
}

setting_in_files *module_in_files::find(const std::string &setting)
{
    const auto found = by_key.find(in_small_letters(setting));
    return found != by_key.end() ? found->second : nullptr;
}

setting_in_files &module_in_files::find_or_add(const std::string &setting)
{
    setting_in_files *const found = find(setting);
    return found != nullptr ? *found : add({.name = setting});
}

std::vector<std::string> module_in_files::names() const
{
    std::vector<std::string> found;
    for (const setting_in_files &each : all)
        found.push_back(each.name);
    return found;
}

module_in_files &device_model::add(const std::string &name, module_kind kind)
{
    return modules.emplace_back(name, kind);
}

module_in_files *device_model::find(const std::string &module)
{
    const auto found =
        std::find_if(modules.begin(), modules.end(),
                     [&](const module_in_files &each) { return each.name == module; });
    return found != modules.end() ? &*found : nullptr;
}

std::vector<std::string> device_model::names() const
{
    std::vector<std::string> all;
    for (const module_in_files &each : modules)
        all.push_back(each.name);
    return all;
}

static bool begins_with(const std::string &text, const std::string &start)
{
    return text.compare(0, start.size(), start) == 0;
}

// The store's own rows come first, in the table's order, then those of the lists.
std::string device_model::row_of(const std::string &key) const
{
    for (const para_module &row : module_para_handle) {
        if (row.name == nullptr)
            break;
        if (begins_with(key, row.name))
            return row.name;
    }
    for (const std::vector<std::string> *list : {&json_modules, &conf_modules}) {
        for (const std::string &name : *list) {
            if (begins_with(key, name))
                return name;
        }
    }
    return "";
}
