#include "fuzz/model/fixed.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "fuzz/support/json.h"

model_fixed::model_fixed(model_disk &written_to, const long long &clock, const fixed_rules &with,
                         std::vector<std::vector<fixed_traits>> of)
    : model_module(written_to, clock), rules(with), all_traits(std::move(of))
{
}

// --- Names of values ---

static bool begins_with(const std::string &text, const std::string &start)
{
    return text.compare(0, start.size(), start) == 0;
}

// Files: the last name that begins with the text.
static std::optional<int> value_in_file(const fixed_traits &traits, const cJSON *item)
{
    if (item == nullptr)
        return std::nullopt;
    if (!cJSON_IsString(item) || traits.names == nullptr)
        return cJSON_IsNumber(item) ? std::optional<int>(item->valueint) : std::nullopt;
    for (size_t i = traits.names->size(); i > 0; i--) {
        if (begins_with((*traits.names)[i - 1], item->valuestring))
            return static_cast<int>(i - 1);
    }
    return std::nullopt;
}

// Requests: the first name that begins with the text, or the number that it begins with.
static int value_in_request(const fixed_traits &traits, const std::string &text)
{
    for (size_t i = 0; i < traits.names->size(); i++) {
        if (begins_with((*traits.names)[i], text))
            return static_cast<int>(i);
    }
    if (text[0] < '0' || text[0] > '9')
        return -1000;
    return static_cast<int>(std::min<long long>(strtoll(text.c_str(), nullptr, 10), INT_MAX));
}

static const char *name_of(const fixed_traits &traits, int value)
{
    if (traits.names == nullptr || value < 0 || value >= static_cast<int>(traits.names->size()))
        return nullptr;
    return (*traits.names)[static_cast<size_t>(value)].c_str();
}

// --- Files ---

std::string model_fixed::file_of(void (*add_member)(cJSON *, const fixed_traits &)) const
{
    const tree_ptr root(cJSON_CreateObject());
    for (int i = 0; i < instances(); i++) {
        const std::string key = rules.name + std::to_string(i);
        cJSON *const object =
            rules.numbered ? cJSON_AddObjectToObject(root.get(), key.c_str()) : root.get();
        for (const fixed_traits &traits : all_traits[at(i)])
            add_member(object, traits);
    }
    return print_json(root.get());
}

std::string model_fixed::range_file() const
{
    return file_of([](cJSON *object, const fixed_traits &traits) {
        const int range[] = {traits.min, traits.max};
        cJSON_AddItemToObject(object, traits.name, cJSON_CreateIntArray(range, 2));
    });
}

std::string model_fixed::defaults_file() const
{
    return file_of([](cJSON *object, const fixed_traits &traits) {
        if (traits.def && traits.default_as_name)
            cJSON_AddStringToObject(object, traits.name, name_of(traits, *traits.def));
        else if (traits.def)
            cJSON_AddNumberToObject(object, traits.name, *traits.def);
    });
}

void model_fixed::load_instance(int instance, const cJSON *object)
{
    for (size_t i = 0; i < all_traits[at(instance)].size(); i++) {
        const fixed_traits &traits = all_traits[at(instance)][i];
        const cJSON *const item = cJSON_GetObjectItem(object, traits.name);
        if (item == nullptr)
            continue;
        // Of a lenient module whatever stands there is taken for a number.
        const std::optional<int> value =
            rules.lenient ? std::optional<int>(item->valueint) : value_in_file(traits, item);
        if (value)
            values[at(instance)][i].cur = *value;
    }
}

void model_fixed::load(const cJSON *root)
{
    for (int i = 0; i < instances(); i++) {
        const std::string key = rules.name + std::to_string(i);
        load_instance(i, rules.numbered ? cJSON_GetObjectItem(root, key.c_str()) : root);
    }
}

void model_fixed::start()
{
    forget();
    values.clear();
    for (const auto &members : all_traits) {
        values.emplace_back();
        for (const fixed_traits &traits : members) {
            const int def = traits.def.value_or(0);
            values.back().push_back({def, traits.min, traits.max, 0, def, traits.def.has_value(),
                                     traits.default_as_name});
        }
    }
    const auto text = disk.recover(std::string(rules.name) + "_cur.json", text_form::json, flags);
    const tree_ptr root = parse_json(text.value_or(""));
    if (root != nullptr)
        load(root.get());
    for (auto &members : values) {
        for (fixed_value &each : members)
            each.init = each.cur;
    }
}

bool model_fixed::save()
{
    tree_ptr root;
    if (rules.numbered) {
        root.reset(cJSON_CreateObject());
        for (int i = 0; i < instances(); i++)
            cJSON_AddItemToObject(root.get(), (rules.name + std::to_string(i)).c_str(),
                                  answer_all(i));
    } else {
        root.reset(answer_all(0));
    }
    return write(std::string(rules.name) + "_cur.json", print_json(root.get()) + '\0');
}

// --- Values ---

int model_fixed::answered(int instance, int member, int value) const
{
    return rules.lenient || values[at(instance)][at(member)].present ? value : -1;
}

bool model_fixed::set(int instance, int member, int value)
{
    fixed_value &slot = values[at(instance)][at(member)];
    if (!rules.lenient && !slot.present)
        return false;
    if (value < slot.min || value > slot.max || value == slot.cur)
        return false;
    slot.cur = value;
    accept_change();
    return true;
}

bool model_fixed::request(int instance, const std::string &key, const cJSON *value)
{
    const std::vector<fixed_traits> &all = all_traits[at(instance)];
    const auto found = std::find_if(all.begin(), all.end(), [&](const fixed_traits &traits) {
        return rules.keys_by_prefix ? begins_with(key, traits.name) : key == traits.name;
    });
    if (found == all.end())
        return false;
    const int member = static_cast<int>(found - all.begin());
    const fixed_value &slot = values[at(instance)][at(member)];
    // Named members are exchanged as names when their default is one, and not at all otherwise.
    if (!slot.present || (found->names != nullptr) != slot.as_name)
        return false;
    if (found->names == nullptr)
        return set(instance, member, value->valueint);
    return cJSON_IsString(value) != 0 &&
           set(instance, member, value_in_request(*found, value->valuestring));
}

// --- Answers ---

int model_fixed::index_of(const char *name) const
{
    const std::vector<fixed_traits> &all = all_traits[0];
    const auto found = std::find_if(all.begin(), all.end(), [&](const fixed_traits &traits) {
        return strcmp(traits.name, name) == 0;
    });
    return static_cast<int>(found - all.begin());
}

std::vector<int> model_fixed::file_order() const
{
    std::vector<int> order;
    for (int i = 0; i < static_cast<int>(all_traits[0].size()); i++)
        order.push_back(i);
    const std::pair<const char *, const char *> moves[] = {
        {rules.moved, rules.before}, {rules.second_moved, rules.second_before}};
    for (const auto &[moved, before] : moves) {
        if (moved == nullptr)
            continue;
        order.erase(std::find(order.begin(), order.end(), index_of(moved)));
        order.insert(std::find(order.begin(), order.end(), index_of(before)), index_of(moved));
    }
    return order;
}

bool model_fixed::is_written(int instance, int member) const
{
    const char *const name = all_traits[0][at(member)].name;
    const bool by_another = rules.second_moved != nullptr && strcmp(name, rules.second_moved) == 0;
    const int decides = by_another ? index_of(rules.second_if) : member;
    return values[at(instance)][at(decides)].present;
}

cJSON *model_fixed::answer_all(int instance) const
{
    cJSON *const object = cJSON_CreateObject();
    for (const int member : file_order()) {
        if (!is_written(instance, member))
            continue;
        const fixed_traits &traits = all_traits[at(instance)][at(member)];
        const int value = values[at(instance)][at(member)].cur;
        if (name_of(traits, value) != nullptr)
            cJSON_AddStringToObject(object, traits.name, name_of(traits, value));
        else
            cJSON_AddNumberToObject(object, traits.name, value);
    }
    return object;
}

cJSON *model_fixed::answer_listed(int instance, const std::vector<std::string> &names) const
{
    cJSON *const object = cJSON_CreateObject();
    for (const std::string &name : names) {
        const int member = index_of(name.c_str());
        if (member == static_cast<int>(all_traits[0].size()))
            continue;
        const fixed_traits &traits = all_traits[at(instance)][at(member)];
        const fixed_value &slot = values[at(instance)][at(member)];
        if (!slot.present)
            continue;
        if (!slot.as_name)
            cJSON_AddNumberToObject(object, traits.name, slot.cur);
        else if (name_of(traits, slot.cur) != nullptr) // a value without a name has no such form
            cJSON_AddStringToObject(object, traits.name, name_of(traits, slot.cur));
    }
    return object;
}
