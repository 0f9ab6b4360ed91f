// Modules with members from a range file, with defaults in conf text; of misc's legacy set in JSON.
#include <algorithm>

#include "camparam/misc.h"
#include "client/files/checks.h"
#include "client/files/conf_document.h"
#include "client/files/values.h"

namespace {

// --- Ranges ---

bool all_texts(const cJSON *range)
{
    const cJSON *text = nullptr;
    cJSON_ArrayForEach(text, range)
    {
        if (!cJSON_IsString(text))
            return false;
    }
    return true;
}

void read_texts(json_document &file, const cJSON *range, setting_in_files &into)
{
    into.range = range_state::broken;
    into.range_line = file.line_of(range);
    if (!all_texts(range))
        return file.fault(range, into.name, "holds texts and others; it may hold texts alone");
    const cJSON *item = nullptr;
    cJSON_ArrayForEach(item, range)
    {
        const std::string text = string_of(item);
        if (std::find(into.texts.begin(), into.texts.end(), text) != into.texts.end())
            file.fault(item, into.name, "has the text " + in_quotes(text) + " twice");
        if (text.size() > most_text_bytes)
            file.fault(item, into.name, "has a text of more than 255 bytes, which cannot be read");
        into.texts.push_back(text);
    }
    into.range = range_state::usable;
}

// The texts of misc's enum members, of which a legacy range names the first and the last.
struct text_table {
    const char *member;
    const char *const *texts;
    int count;
};

const text_table *legacy_table(const std::string &member)
{
    static const text_table tables[] = {
#define MISC_ENUM_MEMBER(name)                                                                     \
    {.member = #name, .texts = name, .count = sizeof name / sizeof name[0]},
#include "camparam/misc_members.def"
    };
    const auto found =
        std::find_if(std::begin(tables), std::end(tables),
                     [&](const text_table &table) { return member == table.member; });
    return found != std::end(tables) ? found : nullptr;
}

// The first text that begins so, or -1.
int place_in(const text_table &table, const std::string &start)
{
    for (int place = 0; place < table.count; place++) {
        if (std::string(table.texts[place]).compare(0, start.size(), start) == 0)
            return place;
    }
    return -1;
}

void read_legacy_texts(json_document &file, const cJSON *range, const text_table &table,
                       setting_in_files &into)
{
    into.range = range_state::broken;
    into.range_line = file.line_of(range);
    if (cJSON_GetArraySize(range) != 2 || !all_texts(range))
        return file.fault(range, into.name, "is no range: an array of the first and the last text");
    int ends[2];
    for (int end = 0; end < 2; end++) {
        const std::string text = string_of(cJSON_GetArrayItem(range, end));
        ends[end] = place_in(table, text);
        if (text.empty() || ends[end] < 0)
            return file.fault(range, into.name,
                              in_quotes(text) + " is none of its texts" +
                                  hint(text, {table.texts, table.texts + table.count}));
    }
    if (ends[0] > ends[1])
        return file.fault(range, into.name, "has the last text before the first");
    into.texts.assign(table.texts + ends[0], table.texts + ends[1] + 1);
    into.range = range_state::usable;
}

void read_pattern_range(json_document &file, const cJSON *item, module_in_files &module,
                        bool is_legacy)
{
    setting_in_files &into = module.find_or_add(item->string);
    const text_table *const table = is_legacy ? legacy_table(into.name) : nullptr;
    if (table != nullptr)
        read_legacy_texts(file, item, *table, into);
    else if (cJSON_IsArray(item) && cJSON_IsString(item->child))
        read_texts(file, item, into);
    else
        read_range(file, item, into.name, into, module.kind);
}

void read_pattern_ranges(json_document &file, module_in_files &module, bool is_legacy)
{
    for (const cJSON *item : file.members(file.root())) {
        if (in_small_letters(item->string) != "version")
            read_pattern_range(file, item, module, is_legacy);
        else if (!cJSON_IsNumber(item))
            file.fault(item, item->string, "is no number");
    }
}

// --- Defaults ---

void take_default(checked_file &file, const conf_line &line, module_in_files &module)
{
    setting_in_files &found = module.find_or_add(line.key);
    found.is_present = true;
    found.has_text = !found.texts.empty();
    found.default_line = line.line;
    check_text(file, line.line, line.key, line.value, found);
}

void check_legacy_default(json_document &file, const cJSON *item, module_in_files &module)
{
    if (!cJSON_IsString(item) && !cJSON_IsNumber(item))
        return file.fault(item, item->string, "is neither a number nor a text");
    take_default(file, {item->string, value_text(item), file.line_of(item)}, module);
}

void check_module(device_folder &home, device_model &device, const std::string &name,
                  json_document &ranges)
{
    conf_document defaults(home, name + ".conf");
    if (!has_files(ranges, defaults, name, device.has_json_list))
        return;
    module_in_files &module = device.add(name, module_kind::pattern);
    read_pattern_ranges(ranges, module, false);
    for (const conf_line &line : defaults.lines())
        take_default(defaults, line, module);
    module.is_known = ranges.root() != nullptr;
    if (module.is_known)
        warn_of_unpaired(ranges, "", defaults, "", module);
}

void check_legacy_misc(device_folder &home, device_model &device, json_document &ranges)
{
    json_document defaults(home, "misc_def.json");
    if (!has_files(ranges, defaults, "misc", device.has_json_list))
        return;
    module_in_files &module = device.add("misc", module_kind::pattern);
    read_pattern_ranges(ranges, module, true);
    for (const cJSON *item : defaults.members(defaults.root()))
        check_legacy_default(defaults, item, module);
    module.is_known = defaults.root() != nullptr;
    if (module.is_known)
        warn_of_unpaired(ranges, "", defaults, "", module);
}

bool is_legacy_set(const cJSON *ranges)
{
    const cJSON *const version = find_key(ranges, "version");
    return ranges != nullptr && (version == nullptr || version->valueint == 0);
}

} // namespace

// The version in misc's range file decides which set of files it has.
void check_pattern_modules(device_folder &home, device_model &device)
{
    for (const std::string &name : device.json_modules) {
        json_document ranges(home, name + "_range.json");
        device.has_legacy_misc |= name == "misc" && is_legacy_set(ranges.root());
        if (name == "misc" && device.has_legacy_misc)
            check_legacy_misc(home, device, ranges);
        else
            check_module(home, device, name, ranges);
    }
}

static void check_conf_module(device_folder &home, device_model &device, const std::string &name)
{
    conf_document file(home, name + ".conf");
    if (!file.exists())
        return device.has_conf_list
                   ? file.fault(0, "", "is missing, so that the module " + name + " does not start")
                   : file.warn(0, "", "is missing: the device has no " + name);
    module_in_files &module = device.add(name, module_kind::conf);
    for (const conf_line &line : file.lines()) {
        setting_in_files &setting = module.find_or_add(line.key);
        setting.is_present = true;
        setting.has_text = true;
    }
}

void check_conf_modules(device_folder &home, device_model &device)
{
    for (const std::string &name : device.conf_modules)
        check_conf_module(home, device, name);
}
