// The module "misc": the texts of its enum members, and its typed accessors.
#include "camparam/misc.h"

#include "camparam/control.h"

const char *const hdmivideoformat[] = {
#define MISC_HDMIVIDEOFORMAT(text) text,
#include "camparam/misc_texts.def"
};
const char *const ViStrategy[] = {
#define MISC_VISTRATEGY(text) text,
#include "camparam/misc_texts.def"
};
const char *const ndi_mode[] = {
#define MISC_NDI_MODE(text) text,
#include "camparam/misc_texts.def"
};

static int set_and_tell(const char *member, int value, int (*setter)(int))
{
    const int result = _para_set_json_cur("misc", member, value);
    if (result == 1 && para_profile.misc_set_notify_hook != nullptr)
        para_profile.misc_set_notify_hook("misc", reinterpret_cast<para_entry_point>(setter),
                                          member, value);
    return result;
}

#define MISC_MEMBER(name)                                                                          \
    int para_get_misc_##name##_min()                                                               \
    {                                                                                              \
        return para_get_json_min("misc", #name);                                                   \
    }                                                                                              \
    int para_get_misc_##name##_max()                                                               \
    {                                                                                              \
        return para_get_json_max("misc", #name);                                                   \
    }                                                                                              \
    int para_get_misc_##name##_def()                                                               \
    {                                                                                              \
        return para_get_json_def("misc", #name);                                                   \
    }                                                                                              \
    int para_get_misc_##name##_cur()                                                               \
    {                                                                                              \
        return para_get_json_cur("misc", #name);                                                   \
    }                                                                                              \
    int para_set_misc_##name##_cur(int value)                                                      \
    {                                                                                              \
        return set_and_tell(#name, value, para_set_misc_##name##_cur);                             \
    }
#include "camparam/misc_members.def"

#define MISC_ENUM_MEMBER(name)                                                                     \
    const char *para_get_misc_##name##_str(int position)                                           \
    {                                                                                              \
        return para_get_json_emum_str("misc", #name, position);                                    \
    }                                                                                              \
    int para_get_misc_##name##_num(const char *text)                                               \
    {                                                                                              \
        return para_get_json_enum_index("misc", #name, text);                                      \
    }                                                                                              \
    int para_set_misc_##name##_cur_bystr(const char *text)                                         \
    {                                                                                              \
        return para_set_json_cur_str("misc", #name, text);                                         \
    }
#include "camparam/misc_members.def"
