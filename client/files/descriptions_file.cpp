// descriptions.json: what people and pages are told of settings.
#include <algorithm>

#include "client/files/checks.h"
#include "client/files/values.h"

namespace {

constexpr size_t most_bytes = 1 << 20;

class descriptions_file {
public:
    descriptions_file(json_document &descriptions, device_model &model)
        : file(descriptions), device(model)
    {
    }

    void check()
    {
        for (const cJSON *module : file.members(file.root()))
            check_module(module);
    }

private:
    std::vector<module_in_files *> modules_of(const std::string &pattern);
    void check_module(const cJSON *module);
    void check_member(const cJSON *member, const std::string &path,
                      const std::vector<module_in_files *> &modules);
    void check_item(const cJSON *item, const std::string &path);
    void check_names(const cJSON *names, const std::string &path);

    json_document &file;
    device_model &device;
};

// "video*" stands for all modules that begin so.
std::vector<module_in_files *> descriptions_file::modules_of(const std::string &pattern)
{
    const bool is_prefix = !pattern.empty() && pattern.back() == '*';
    const std::string start = pattern.substr(0, pattern.size() - (is_prefix ? 1 : 0));
    std::vector<module_in_files *> found;
    for (module_in_files &module : device.modules) {
        if (module.name == start || (is_prefix && module.name.rfind(start, 0) == 0))
            found.push_back(&module);
    }
    return found;
}

void descriptions_file::check_module(const cJSON *module)
{
    const std::vector<module_in_files *> modules = modules_of(module->string);
    if (modules.empty())
        return file.fault(module, module->string,
                          "is no module of the device" + hint(module->string, device.names()));
    if (!cJSON_IsObject(module))
        return file.fault(module, module->string, "is no object of a module's members");
    for (const cJSON *member : file.members(module, std::string(module->string) + "."))
        check_member(member, std::string(module->string) + "." + member->string, modules);
}

void descriptions_file::check_member(const cJSON *member, const std::string &path,
                                     const std::vector<module_in_files *> &modules)
{
    const auto has_member = [&](module_in_files *module) {
        const setting_in_files *const found = module->find(member->string);
        return !module->is_known || (found != nullptr && found->name == member->string);
    };
    const auto has_setting = [&](module_in_files *module) {
        return !module->is_known ||
               (has_member(module) && module->find(member->string)->is_present);
    };
    if (std::none_of(modules.begin(), modules.end(), has_member))
        file.fault(member, path, unknown_member(*modules.front(), member->string));
    else if (std::none_of(modules.begin(), modules.end(), has_setting))
        file.fault(member, path, "is no setting of the device, as it has no default");
    if (!cJSON_IsObject(member))
        return file.fault(member, path, "is no object of label, unit, help, names and secret");
    for (const cJSON *item : file.members(member, path + "."))
        check_item(item, path + "." + item->string);
}

void descriptions_file::check_item(const cJSON *item, const std::string &path)
{
    static const std::vector<std::string> texts = {"label", "unit", "help"};
    const std::string key = item->string;
    if (std::find(texts.begin(), texts.end(), key) != texts.end()) {
        if (!cJSON_IsString(item))
            file.fault(item, path, "is no text");
    } else if (key == "secret") {
        if (!cJSON_IsBool(item))
            file.fault(item, path, "is neither true nor false");
    } else if (key == "names") {
        check_names(item, path);
    } else {
        file.warn(item, path,
                  "is not read" + hint(key, {"label", "unit", "help", "names", "secret"}));
    }
}

void descriptions_file::check_names(const cJSON *names, const std::string &path)
{
    if (!cJSON_IsObject(names))
        return file.fault(names, path, "is no object of names for numbers");
    for (const cJSON *name : file.members(names, path + ".")) {
        if (!parse_int(name->string))
            file.fault(name, path + "." + name->string, "is no number");
        else if (!cJSON_IsString(name))
            file.fault(name, path + "." + name->string, "is no text");
    }
}

} // namespace

void check_descriptions(device_folder &home, device_model &device)
{
    json_document file(home, "descriptions.json");
    if (file.text().size() > most_bytes)
        file.fault(0, "", "has more than 1 MiB");
    descriptions_file(file, device).check();
}
