// The web-name file: lists of modules, names of members, pages.
#include <algorithm>
#include <map>

#include "camparam/module.h"
#include "client/files/checks.h"
#include "client/files/values.h"

namespace {

const char *const json_list = "json_pattern_list";
const char *const conf_list = "conf_pattern_list";
constexpr size_t longest_web_name = 31;    // of a request; longer ones are cut
constexpr size_t longest_module_name = 63; // of a module with members from files

bool is_list_key(const std::string &key)
{
    const std::string name = in_small_letters(key);
    return name == json_list || name == conf_list;
}

// --- Lists ---

bool can_be_listed(json_document &file, const cJSON *entry, const char *list,
                   const device_model &device)
{
    const std::string name = string_of(entry);
    std::string reason;
    if (!cJSON_IsString(entry))
        reason = "holds an entry that is no text";
    else if (name.empty() || name.find('/') != std::string::npos)
        reason = in_quotes(name) + " is no name of a module";
    else if (name.size() > longest_module_name)
        reason = in_quotes(name) + " has more than 63 bytes";
    else if (const std::string row = device.row_of(name); row == name)
        reason = in_quotes(name) + " is the name of a module already";
    else if (!row.empty())
        reason = in_quotes(name) + " cannot be reached: requests for it go to " + in_quotes(row);
    if (!reason.empty())
        file.fault(entry, list, reason);
    return reason.empty();
}

// Returns whether the file has the list. The names are those of the device: each that is taken
// counts for the next ones.
bool read_list(json_document &file, const char *list, const device_model &device,
               std::vector<std::string> &names)
{
    const cJSON *const found = find_key(file.root(), list);
    if (found == nullptr)
        return false;
    names.clear();
    if (!cJSON_IsArray(found)) {
        file.fault(found, list, "is no array of texts");
        return true;
    }
    const cJSON *entry = nullptr;
    cJSON_ArrayForEach(entry, found)
    {
        if (can_be_listed(file, entry, list, device))
            names.push_back(string_of(entry));
    }
    return true;
}

void check_room(json_document &file, const device_model &device)
{
    size_t rows = device.json_modules.size() + device.conf_modules.size();
    for (const para_module &row : module_para_handle)
        rows += row.name != nullptr ? 1 : 0;
    if (rows > PARA_MODULES_MAX)
        file.fault(file.root(), "",
                   "lists " + std::to_string(rows - PARA_MODULES_MAX) +
                       " modules more than the module table has rows for");
}

// --- Names and pages ---

struct web_name {
    std::string module; // as the file has it
    std::string setting;
    bool is_greedy;
    const cJSON *entry;
};

class web_name_file {
public:
    web_name_file(json_document &web_names, device_model &model) : file(web_names), device(model) {}

    void check()
    {
        std::vector<const cJSON *> pages;
        for (const cJSON *item : file.members(file.root())) {
            if (is_list_key(item->string))
                continue;
            if (cJSON_IsObject(item))
                check_module(item);
            else if (cJSON_IsArray(item))
                pages.push_back(item);
            else
                file.fault(item, item->string, "is neither a page nor a module's names");
        }
        for (const cJSON *page : pages)
            check_page(page);
    }

private:
    void check_module(const cJSON *names);
    void check_member(const cJSON *entry, const std::string &path, module_in_files &module);
    void check_entry(const cJSON *entry, const std::string &path, module_in_files &module);
    void check_type(const cJSON *entry, const std::string &path, const module_in_files &module,
                    const setting_in_files *setting);
    void check_modifier(const cJSON *entry, const std::string &path);
    void check_other_use(const std::string &text, const std::string &path, const web_name &use);
    void check_page(const cJSON *page);

    json_document &file;
    device_model &device;
    std::map<std::string, std::vector<web_name>> uses;
};

void web_name_file::check_module(const cJSON *names)
{
    module_in_files *const module = device.find_for_request(names->string);
    if (module == nullptr)
        return file.fault(names, names->string,
                          "is no module of the device" + hint(names->string, device.names()));
    for (const cJSON *entry : file.members(names, std::string(names->string) + "."))
        check_entry(entry, std::string(names->string) + "." + entry->string, *module);
}

// The store compares a member's name with its letters as they are.
void web_name_file::check_member(const cJSON *entry, const std::string &path,
                                 module_in_files &module)
{
    const setting_in_files *const setting = module.find(entry->string);
    if (setting == nullptr || setting->name != entry->string)
        file.fault(entry, path, unknown_member(module, entry->string));
    else if (!setting->is_present)
        file.fault(entry, path, "is no setting of the device, as it has no default");
    else if (!setting->is_asked)
        file.fault(entry, path, "cannot be asked for by its name");
}

void web_name_file::check_entry(const cJSON *entry, const std::string &path,
                                module_in_files &module)
{
    if (module.is_known)
        check_member(entry, path, module);
    const std::string text = string_of(cJSON_IsArray(entry) ? entry->child : nullptr);
    if (text.empty())
        return file.fault(entry, path, "is no array of a web name, a type and a modifier");
    if (text.size() > longest_web_name)
        file.fault(entry, path, "has a web name of more than 31 bytes, which requests cut");
    check_type(entry, path, module, module.find(entry->string));
    check_modifier(entry, path);
    const bool is_greedy = string_of(cJSON_GetArrayItem(entry, 2)) == "Greedy";
    const std::string module_name = path.substr(0, path.find('.'));
    check_other_use(text, path, {module_name, module.name + "." + entry->string, is_greedy, entry});
}

bool is_text(const module_in_files &module, const setting_in_files &setting)
{
    return module.kind == module_kind::conf || setting.has_text;
}

void web_name_file::check_type(const cJSON *entry, const std::string &path,
                               const module_in_files &module, const setting_in_files *setting)
{
    const cJSON *const given = cJSON_GetArrayItem(entry, 1);
    const std::string type = string_of(given);
    if (given != nullptr && type != "S" && type != "N")
        return file.fault(entry, path, value_text(given) + " is no type: they are S and N");
    if (!module.is_known || setting == nullptr || !setting->is_present)
        return;
    if ((type == "S") != is_text(module, *setting))
        file.warn(entry, path,
                  is_text(module, *setting)
                      ? "is a text, which pages can set with the type S alone"
                      : "is a number, which pages cannot set with the type S");
}

void web_name_file::check_modifier(const cJSON *entry, const std::string &path)
{
    static const std::string known[] = {"K", "P", "F", "Greedy"};
    if (cJSON_GetArraySize(entry) > 3)
        file.fault(entry, path, "has more than a web name, a type and a modifier");
    const cJSON *const given = cJSON_GetArrayItem(entry, 2);
    if (given != nullptr && std::count(std::begin(known), std::end(known), string_of(given)) == 0)
        file.warn(entry, path, value_text(given) + " is no modifier, and changes nothing");
}

// A set looks for the web name in the whole file, and takes the first.
void web_name_file::check_other_use(const std::string &text, const std::string &path,
                                    const web_name &use)
{
    std::vector<web_name> &before = uses[text];
    const bool is_shadowed =
        !before.empty() && before.front().setting != use.setting && !before.front().is_greedy;
    if (is_shadowed && before.front().module != use.module)
        file.warn(use.entry, path,
                  in_quotes(text) + " means " + before.front().setting + " when a page sets it");
    before.push_back(use);
}

void web_name_file::check_page(const cJSON *page)
{
    std::vector<std::string> modules;
    const cJSON *item = nullptr;
    cJSON_ArrayForEach(item, page)
    {
        const std::string name = string_of(item);
        const cJSON *const names = find_key(file.root(), name.c_str());
        if (!cJSON_IsString(item))
            file.fault(item, page->string, "holds an entry that is no text");
        else if (!cJSON_IsObject(names))
            file.fault(item, page->string,
                       "lists " + in_quotes(name) + ", which has no web names here");
        else
            modules.emplace_back(names->string);
    }
    const auto is_shown = [&](const web_name &use) {
        return std::count(modules.begin(), modules.end(), use.module) > 0;
    };
    for (const auto &[text, its_uses] : uses) {
        const web_name *first = nullptr;
        for (const web_name &use : its_uses) {
            if (!is_shown(use))
                continue;
            if (first != nullptr && !(first->is_greedy && use.is_greedy))
                file.fault(use.entry, use.module + "." + use.entry->string,
                           in_quotes(text) + " is " + first->setting + " on the page " +
                               in_quotes(page->string) + ", too; only Greedy ones may be the same");
            first = first != nullptr ? first : &use;
        }
    }
}

} // namespace

void read_module_lists(json_document &web_names, device_model &device)
{
    device.json_modules = {"misc"};
    device.has_json_list = read_list(web_names, json_list, device, device.json_modules);
    device.conf_modules = {"netport", "overlay", "ndi_config"};
    device.has_conf_list = read_list(web_names, conf_list, device, device.conf_modules);
    check_room(web_names, device);
}

void check_web_names(json_document &web_names, device_model &device)
{
    web_name_file(web_names, device).check();
}
