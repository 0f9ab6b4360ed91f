// The image processor: ranges and picture styles.
#include <algorithm>

#include "client/files/checks.h"
#include "client/files/values.h"

namespace {

const char *const default_key = "isp0_style_def";
const char *const list_key = "isp0_style_list";
const char *const owner_key = "style_excute_by_arm";

void check_ranges(json_document &ranges, module_in_files &module)
{
    if (ranges.root() == nullptr)
        return;
    for (const cJSON *item : ranges.members(ranges.root())) {
        const std::string name = in_small_letters(item->string);
        if (name == module.name && !cJSON_IsObject(item))
            ranges.fault(item, item->string, "is no object of ranges");
        else if (name != module.name && name != "isp1")
            ranges.fault(item, item->string, "is no image processor: they are isp0 and isp1");
    }
    const cJSON *const own = find_key(ranges.root(), module.name.c_str());
    if (own == nullptr)
        ranges.fault(ranges.root(), module.name, "is missing");
    read_ranges(ranges, own, module.name + ".", module);
}

class style_file {
public:
    style_file(json_document &styles, device_model &model, module_in_files &isp)
        : file(styles), device(model), module(isp)
    {
    }

    void check()
    {
        read_list();
        check_keys();
        check_default();
    }

    const cJSON *default_style() const { return by_default; }

private:
    void read_list();
    void check_keys();
    void check_default();
    void check_listed(const cJSON *entry);
    void check_style(const cJSON *style, int number);
    void check_member(const cJSON *item, const std::string &path, int number);

    json_document &file;
    device_model &device;
    module_in_files &module;
    const cJSON *by_default = nullptr;
};

void style_file::read_list()
{
    const cJSON *const list = find_key(file.root(), list_key);
    if (!cJSON_IsArray(list))
        return file.fault(list != nullptr ? list : file.root(), list_key,
                          list != nullptr ? "is no array of names" : "is missing");
    const cJSON *entry = nullptr;
    cJSON_ArrayForEach(entry, list)
    {
        check_listed(entry);
        device.styles.push_back(string_of(entry)); // also to keep the numbers of the others
    }
}

void style_file::check_listed(const cJSON *entry)
{
    const std::string name = string_of(entry);
    const std::vector<std::string> &before = device.styles;
    if (!cJSON_IsString(entry))
        return file.fault(entry, list_key, "holds an entry that is no text");
    if (std::find(before.begin(), before.end(), name) != before.end())
        return file.fault(entry, list_key, "names the style " + in_quotes(name) + " twice");
    const cJSON *const style = find_key(file.root(), name.c_str());
    if (style == nullptr)
        return file.fault(entry, list_key,
                          "names the style " + in_quotes(name) + ", which is missing");
    if (!cJSON_IsObject(style))
        return file.fault(style, name, "is no object of a style's values");
    check_style(style, static_cast<int>(before.size()));
}

void style_file::check_style(const cJSON *style, int number)
{
    const std::string prefix = std::string(style->string) + ".";
    for (const cJSON *item : file.members(style, prefix))
        check_member(item, prefix + item->string, number);
    const setting_in_files *const own = module.find("style");
    if (find_key(style, "style") == nullptr)
        check_limits(file, style, prefix + "style", number, *own);
}

// A style's number is its place in the list, whatever it says.
void style_file::check_member(const cJSON *item, const std::string &path, int number)
{
    const setting_in_files *const found = module.find(item->string);
    if (found == nullptr)
        return file.fault(item, path, unknown_member(module, item->string));
    const std::optional<int> value = value_in(file, item, path, *found, module.kind);
    if (!value)
        return;
    const bool is_number = found->name == "style";
    if (is_number && *value != number)
        file.warn(item, path, "is read as " + std::to_string(number) + ", its place in the list");
    check_limits(file, item, path, is_number ? number : *value, *found);
}

void style_file::check_keys()
{
    for (const cJSON *item : file.members(file.root())) {
        const std::string name = in_small_letters(item->string);
        const bool is_listed =
            std::any_of(device.styles.begin(), device.styles.end(),
                        [&](const std::string &style) { return in_small_letters(style) == name; });
        if ((name == default_key || name == owner_key) && !cJSON_IsNumber(item))
            file.fault(item, item->string, "is no number");
        else if (!is_listed && name != default_key && name != owner_key && name != list_key)
            file.fault(item, item->string, std::string("is no style of ") + list_key);
    }
}

void style_file::check_default()
{
    const cJSON *const given = find_key(file.root(), default_key);
    const auto number = static_cast<size_t>(given != nullptr ? given->valueint : 0);
    if (device.styles.empty())
        return;
    if (number >= device.styles.size())
        return file.fault(given, default_key,
                          "is no place in the list, 0 to " +
                              std::to_string(device.styles.size() - 1));
    by_default = find_key(file.root(), device.styles[number].c_str());
}

// A member is present when the default style has it; the style's own number always is.
void take_defaults(json_document &styles, const cJSON *style, module_in_files &module)
{
    module.find("style")->is_present = true;
    module.find("style")->default_line = styles.line_of(style);
    for (const cJSON *item = style->child; item != nullptr; item = item->next) {
        setting_in_files *const found = module.find(item->string);
        if (found == nullptr)
            continue;
        found->is_present = true;
        found->default_line = styles.line_of(item);
    }
}

} // namespace

void check_image_processor(device_folder &home, device_model &device)
{
    json_document ranges(home, "isp_range.json"), styles(home, "isp_def.json");
    if (!has_files(ranges, styles, "isp0"))
        return;
    module_in_files &module = device.add("isp0", module_kind::numbers, isp_table);
    check_ranges(ranges, module);
    module.is_known = false;
    if (styles.root() == nullptr)
        return;
    style_file file(styles, device, module);
    file.check();
    if (!cJSON_IsObject(file.default_style()))
        return;
    module.is_known = true;
    take_defaults(styles, file.default_style(), module);
    if (find_key(ranges.root(), "isp0") != nullptr)
        warn_of_unpaired(ranges, "isp0.", styles, std::string(file.default_style()->string) + ".",
                         module);
}
