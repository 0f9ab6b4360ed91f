#include "setting.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "camparam/camparam.h"
#include "lens.h"

namespace {

// Keeps the descriptions of a module's members in an object.
class member_list : public member_sink {
public:
    void take(const char *name, json_ptr member) override
    {
        list.value(list.root(), name, std::move(member));
    }

    json_builder list;
};

int row_of(const char *name)
{
    for (int i = 0; i < module_para_handle_num; i++) {
        if (is_described(module_para_handle[i]) && strcmp(module_para_handle[i].name, name) == 0)
            return i;
    }
    return -1;
}

constexpr size_t longest_text = 255;

// Numbers of the host's own modules may be any.
reason fault_of_number(const cJSON *member, const cJSON *value)
{
    const cJSON *const min = cJSON_GetObjectItemCaseSensitive(member, "min");
    const cJSON *const max = cJSON_GetObjectItemCaseSensitive(member, "max");
    if (min == nullptr || max == nullptr)
        return cJSON_IsNumber(value) ? no_reason : reason{"not a number"};
    if (!is_int(value))
        return {"not a 32-bit integer"};
    if (value->valueint < min->valueint || value->valueint > max->valueint)
        return out_of_range(min->valueint, max->valueint);
    return no_reason;
}

reason fault_of_name(const cJSON *member, const cJSON *value)
{
    const cJSON *name = nullptr;
    cJSON_ArrayForEach(name, cJSON_GetObjectItemCaseSensitive(member, "names"))
    {
        if (cJSON_IsString(value) && strcmp(name->valuestring, value->valuestring) == 0)
            return no_reason;
    }
    return {"none of its names"};
}

reason fault_of_text(const cJSON *value)
{
    if (!cJSON_IsString(value))
        return {"not a text"};
    if (strlen(value->valuestring) > longest_text)
        return {"longer than 255 bytes"};
    return no_reason;
}

} // namespace

module_settings::module_settings(const char *name, const descriptions &texts) : row(row_of(name))
{
    if (row < 0)
        return;
    member_list found;
    describe_row(row, {texts, true}, found);
    members = found.list.take();
}

const cJSON *module_settings::find(const char *member) const
{
    return cJSON_GetObjectItemCaseSensitive(members.get(), member);
}

const cJSON *module_settings::current(const char *member) const
{
    return cJSON_GetObjectItemCaseSensitive(find(member), "current");
}

bool module_settings::is_in_force(const cJSON *value) const
{
    return cJSON_Compare(current(value->string), value, 1) != 0;
}

const cJSON *module_settings::first() const
{
    return members != nullptr ? members->child : nullptr;
}

bool module_settings::is_of_store() const
{
    return module().save != nullptr;
}

reason fault_of(const cJSON *member, const cJSON *value)
{
    if (member == nullptr)
        return {"no such member"};
    if (is_read_only(member))
        return {"read-only"};
    if (is_kind(member, "number"))
        return fault_of_number(member, value);
    if (is_kind(member, "enum"))
        return fault_of_name(member, value);
    return is_kind(member, "text") ? fault_of_text(value) : no_reason;
}

bool set_members(const para_module &row, const cJSON *values)
{
    if (row.get_opt == para_get_af_opt) {
        const cJSON *item = nullptr;
        cJSON_ArrayForEach(item, values)
        {
            set_lens(item);
        }
        return true;
    }
    // The item's key tells the stream or instance.
    const json_ptr request(cJSON_CreateObject());
    // Not by cJSON_AddItemReferenceToObject(), which leaks the item where it cannot add it.
    if (!add_to_object(request.get(), row.name,
                       json_ptr(cJSON_CreateObjectReference(values->child))))
        return false;
    return row.set_opt == nullptr || row.set_opt(row.name, request->child, row.name) != -ENOMEM;
}

// Of UTF-8.
static bool is_inside_character(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xc0U) == 0x80U;
}

setting_name::setting_name(const char *module, const char *member)
{
    constexpr size_t size = sizeof text;
    const int length = snprintf(text, size, "%s%s%s", module, *member != '\0' ? "." : "", member);
    if (length < static_cast<int>(size))
        return;
    size_t end = size - 2;
    while (end > 0 && is_inside_character(text[end]))
        end--;
    text[end] = '\0';
}
