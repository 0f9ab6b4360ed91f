#include "fuzz/model/text.h"

#include <strings.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <utility>

#include "fuzz/support/json.h"

static int leading_number(const std::string &text)
{
    const long long number = strtoll(text.c_str(), nullptr, 10);
    return static_cast<int>(std::clamp<long long>(number, INT_MIN, INT_MAX));
}

model_text::model_text(model_disk &written_to, const long long &clock, const char *of,
                       const char *defaults)
    : model_module(written_to, clock), module(of), home(defaults)
{
}

void model_text::start()
{
    forget();
    def = cur = conf_values();
    read_files();
}

void model_text::read_files()
{
    def.read(home);
    cur.read(home);
    cur.read(disk.recover(std::string(module) + ".conf", text_form::conf, flags).value_or(""));
}

// --- Modules of a pattern ---

model_pattern::model_pattern(model_disk &written_to, const long long &clock, const char *of,
                             const char *defaults, std::vector<pattern_traits> members)
    : model_text(written_to, clock, of, defaults), range(std::move(members))
{
}

bool model_pattern::save()
{
    return write(std::string(module) + ".conf", cur.text());
}

std::string model_pattern::range_file() const
{
    const tree_ptr root(cJSON_CreateObject());
    cJSON_AddNumberToObject(root.get(), "version", 1); // of misc; it is no member
    for (const pattern_traits &traits : range) {
        cJSON *const list = cJSON_AddArrayToObject(root.get(), traits.name);
        for (const std::string &text : traits.texts)
            cJSON_AddItemToArray(list, cJSON_CreateString(text.c_str()));
        for (const int bound : {traits.min, traits.max}) {
            if (!traits.is_enum())
                cJSON_AddItemToArray(list, cJSON_CreateNumber(bound));
        }
    }
    return print_json(root.get());
}

const pattern_traits *model_pattern::find(const std::string &member) const
{
    for (const pattern_traits &traits : range) {
        if (strcasecmp(member.c_str(), traits.name) == 0) // as the JSON library compares keys
            return &traits;
    }
    return nullptr;
}

static int position_of(const pattern_traits &traits, const std::string &text)
{
    const auto found = std::find(traits.texts.begin(), traits.texts.end(), text);
    return found != traits.texts.end() ? static_cast<int>(found - traits.texts.begin()) : -1;
}

int model_pattern::number_in(const conf_values &values, const std::string &member) const
{
    const auto text = values.get_short(member);
    const pattern_traits *const traits = find(member);
    if (!text)
        return -1;
    return traits != nullptr && traits->is_enum() ? position_of(*traits, *text)
                                                  : leading_number(*text);
}

int model_pattern::lowest(const std::string &member) const
{
    const pattern_traits *const traits = find(member);
    if (traits == nullptr)
        return -1;
    return traits->is_enum() ? 0 : traits->min;
}

int model_pattern::highest(const std::string &member) const
{
    const pattern_traits *const traits = find(member);
    if (traits == nullptr)
        return -1;
    return traits->is_enum() ? static_cast<int>(traits->texts.size()) - 1 : traits->max;
}

int model_pattern::store(const std::string &member, const std::string &text)
{
    cur.set(member, text);
    accept_change();
    return 1;
}

int model_pattern::set_text(const std::string &member, const std::string &text)
{
    const pattern_traits *const traits = find(member);
    const auto before = cur.get_short(member);
    if (traits == nullptr || position_of(*traits, text) < 0 || !before || *before == text)
        return 0;
    return store(member, text);
}

int model_pattern::set_number(const std::string &member, int value)
{
    const pattern_traits *const traits = find(member);
    const auto before = cur.get_short(member);
    if (traits == nullptr || traits->is_enum() || !before || leading_number(*before) == value)
        return 0;
    return store(member, std::to_string(value)); // the range is only told
}

int model_pattern::set(const std::string &member, int value)
{
    const pattern_traits *const traits = find(member);
    if (traits == nullptr || !traits->is_enum())
        return set_number(member, value);
    const bool has_text = value >= 0 && value < static_cast<int>(traits->texts.size());
    return has_text ? set_text(member, traits->texts[static_cast<size_t>(value)]) : 0;
}

bool model_pattern::request(const std::string &member, const cJSON *value)
{
    const pattern_traits *const traits = find(member);
    if (traits != nullptr && traits->is_enum())
        return cJSON_IsString(value) != 0 && set_text(member, value->valuestring) == 1;
    return cJSON_IsNumber(value) != 0 && set_number(member, value->valueint) == 1;
}

void model_pattern::add(cJSON *object, const std::string &member, const std::string &text) const
{
    const pattern_traits *const traits = find(member);
    if (traits != nullptr && traits->is_enum())
        cJSON_AddStringToObject(object, member.c_str(), text.c_str());
    else
        cJSON_AddNumberToObject(object, member.c_str(), leading_number(text));
}

cJSON *model_pattern::answer_all(bool defaults) const
{
    cJSON *const object = cJSON_CreateObject();
    for (const auto &[member, text] : (defaults ? def : cur).entries())
        add(object, member, text);
    return object;
}

cJSON *model_pattern::answer_listed(bool defaults, const std::vector<std::string> &names) const
{
    cJSON *const object = cJSON_CreateObject();
    for (const std::string &member : names) {
        const auto text = (defaults ? def : cur).get_short(member);
        if (text && find(member) != nullptr)
            add(object, member, *text);
    }
    return object;
}

// --- Modules of conf files ---

bool model_conf::save()
{
    return !writes_files || write(std::string(module) + ".conf", cur.text());
}

// With the guard on not over changes that are to be saved.
void model_conf::reload()
{
    const bool has_changes = changes != saved && writes_files && may_be_saved();
    if (!disk.guard || !has_changes)
        read_files();
}

// Without the guard a change that cannot be written is due for ever.
bool model_conf::is_due() const
{
    return model_module::is_due() && (writes_files || !disk.guard);
}

para_module_status model_conf::status() const
{
    para_module_status known = model_module::status();
    known.flags |= writes_files ? 0U : unsigned{PARA_STATUS_NOT_SAVED};
    return known;
}

int model_conf::set(const std::string &key, const std::string &value)
{
    if (!cur.set(key, value))
        return 0;
    accept_change();
    return 1;
}

// With the guard on, requests add no key.
bool model_conf::request(const std::string &key, const cJSON *value)
{
    if (!cJSON_IsString(value) || (disk.guard && !cur.get(key)))
        return false;
    return set(key, value->valuestring) == 1;
}

cJSON *model_conf::answer_all(bool defaults) const
{
    cJSON *const object = cJSON_CreateObject();
    for (const auto &[key, value] : (defaults ? def : cur).entries())
        cJSON_AddStringToObject(object, key.c_str(), value.c_str());
    return object;
}

cJSON *model_conf::answer_listed(const std::vector<std::string> &names) const
{
    cJSON *const object = cJSON_CreateObject();
    for (const std::string &key : names) {
        const auto value = cur.get_short(key);
        if (value)
            cJSON_AddStringToObject(object, key.c_str(), value->c_str());
    }
    return object;
}
