// The values of pattern modules.
#include <cstring>

#include "base/answer_tree.h"
#include "base/number.h"
#include "base/observer.h"
#include "camparam/control.h"
#include "modules/text/pattern_module.h"

static int number_in(const text_module &module, configure *conf, const char *member)
{
    char text[value_size];
    if (!read_value(conf, member, text))
        return -1;
    return kind_of(module, member) == PARA_KIND_ENUM ? position_of(range_of(module, member), text)
                                                     : leading_number(text);
}

int para_get_json_def(const char *module, const char *member)
{
    const text_module *const found = find_module(patterns, module);
    return found != nullptr ? number_in(*found, found->def, member) : -1;
}

int para_get_json_cur(const char *module, const char *member)
{
    const text_module *const found = find_module(patterns, module);
    return found != nullptr ? number_in(*found, found->cur, member) : -1;
}

int para_get_json_string(const char *module, const char *member, char *buffer, int size)
{
    const text_module *const found = find_module(patterns, module);
    if (found == nullptr || found->cur == nullptr || member == nullptr)
        return -1;
    return found->cur->conf_get(found->cur, member, buffer, size);
}

static int store_value(text_module &module, const char *member, const char *text,
                       const para_value &before, const para_value &after)
{
    if (!store_text(module.cur, member, text))
        return 0;
    accept_change(stamp_of(module));
    tell_change({.module = module.name,
                 .instance = 0,
                 .member = member,
                 .old_value = before,
                 .new_value = after,
                 .sender = nullptr});
    return 1;
}

static para_value told(const char *text)
{
    return {.exists = 1, .text = text, .number = 0};
}

static para_value told(int number)
{
    return {.exists = 1, .text = nullptr, .number = number};
}

int para_set_json_cur_str(const char *module, const char *member, const char *text)
{
    text_module *const found = find_module(patterns, module);
    if (found == nullptr || enum_position(*found, member, text) < 0)
        return 0;
    char current[value_size];
    if (!read_value(found->cur, member, current) || strcmp(current, text) == 0)
        return 0;
    return store_value(*found, member, text, told(current), told(text));
}

// The range is not enforced (JsonSetter.StoresNumbersOutsideTheRange).
int para_set_json_cur_number(const char *module, const char *member, int value)
{
    text_module *const found = find_module(patterns, module);
    if (found == nullptr || kind_of(*found, member) != PARA_KIND_NUMBER)
        return 0;
    char current[value_size];
    if (!read_value(found->cur, member, current) || leading_number(current) == value)
        return 0;
    char text[PARA_NUMBER_SIZE];
    return store_value(*found, member, lib_itoa(value, text), told(leading_number(current)),
                       told(value));
}

int _para_set_json_cur(const char *module, const char *member, int value)
{
    const text_module *const found = find_module(patterns, module);
    if (found == nullptr)
        return -1;
    if (kind_of(*found, member) == PARA_KIND_ENUM)
        return para_set_json_cur_str(module, member, para_get_json_emum_str(module, member, value));
    return para_set_json_cur_number(module, member, value);
}

int para_set_json_cur(const char *module, const char *member, int value)
{
    const int result = _para_set_json_cur(module, member, value);
    if (result == 1 && para_profile.misc_set_notify_hook != nullptr) {
        const auto setter = reinterpret_cast<para_entry_point>(para_set_json_cur);
        para_profile.misc_set_notify_hook(module, setter, member, value);
    }
    return result;
}

int Create_Json_Misc_Object(const char *module, cJSON *object, int defaults)
{
    const text_module *const found = find_module(patterns, module);
    if (found == nullptr)
        return -1;
    answer_tree tree(object);
    return answer_all(*found, defaults != 0 ? found->def : found->cur, answer_form::by_range, tree);
}

int para_save_misc_conf_2_buf(const char *module, char *buffer, int size)
{
    const text_module *const found = find_module(patterns, module);
    if (found == nullptr || found->cur == nullptr)
        return -1;
    return write_conf_to_buffer(module, found->cur, buffer, size, PARA_HERE);
}
