// Files that hold members from the lists of the interface.
#include "client/files/values.h"

namespace {

// The setting that a key of a file means; null, and a fault, for none.
setting_in_files *setting_of(json_document &file, const cJSON *item, const std::string &prefix,
                             module_in_files &module)
{
    setting_in_files *const found = module.find(item->string);
    if (found == nullptr)
        file.fault(item, prefix + item->string, unknown_member(module, item->string));
    return found;
}

} // namespace

void read_ranges(json_document &file, const cJSON *object, const std::string &prefix,
                 module_in_files &module)
{
    for (const cJSON *item : file.members(object, prefix)) {
        if (setting_in_files *const found = setting_of(file, item, prefix, module))
            read_range(file, item, prefix + found->name, *found, module.kind);
    }
}

void read_defaults(json_document &file, const cJSON *object, const std::string &prefix,
                   module_in_files &module)
{
    for (const cJSON *item : file.members(object, prefix)) {
        setting_in_files *const found = setting_of(file, item, prefix, module);
        if (found == nullptr)
            continue;
        found->is_present = true;
        found->has_text = cJSON_IsString(item);
        found->default_line = file.line_of(item);
        check_value(file, item, prefix + found->name, *found, module.kind);
        if (found->name_of != nullptr && cJSON_IsNumber(item))
            file.warn(item, prefix + found->name,
                      "is given as a number, so that requests cannot set it; give the name");
    }
}

void check_values(json_document &file, const cJSON *object, const std::string &prefix,
                  module_in_files &module)
{
    for (const cJSON *item : file.members(object, prefix)) {
        if (const setting_in_files *const found = setting_of(file, item, prefix, module))
            check_value(file, item, prefix + found->name, *found, module.kind);
    }
}

void warn_of_unpaired(checked_file &ranges, const std::string &range_prefix, checked_file &defaults,
                      const std::string &default_prefix, const module_in_files &module)
{
    const bool is_pattern = module.kind == module_kind::pattern;
    for (const setting_in_files &each : module.settings()) {
        const bool has_range = each.range != range_state::none;
        if (each.is_present && !has_range)
            defaults.warn(each.default_line, default_prefix + each.name,
                          is_pattern ? "has no range, and cannot be set"
                                     : "has no range, and takes 0 alone");
        if (!each.is_present && has_range)
            ranges.warn(each.range_line, range_prefix + each.name,
                        is_pattern ? "has no default, and cannot be set"
                                   : "has no default, and is neither reported nor saved");
    }
}

bool has_files(checked_file &ranges, checked_file &defaults, const std::string &module,
               bool is_listed)
{
    const std::string consequence = ", so that the module " + module + " does not start";
    if (!ranges.exists() && !defaults.exists() && !is_listed)
        ranges.warn(0, "", "is missing, as are its defaults: the device has no " + module);
    else if (!ranges.exists())
        ranges.fault(0, "", "is missing" + consequence);
    else if (!defaults.exists())
        defaults.fault(0, "", "is missing" + consequence);
    return ranges.exists() && defaults.exists();
}
