// The AF members as a table.
#pragma once

#include "base/word.h"
#include "camparam/af.h"

struct af_member {
    const char *name;
    int slot;
    int (*set)(int value);
};

inline constexpr af_member af_members[] = {
#define AF_MEMBER(number, member)                                                                  \
    {.name = #member, .slot = PARA_AF_##member, .set = para_set_af_##member##_cur},
#include "camparam/af_members.def"
};

// Whether the device has the member, that is, whether its defaults file names it.
inline bool is_present(const af_member &member)
{
    return load_word(para_af_exist[member.slot]) != 0;
}
