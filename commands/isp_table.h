// The ISP members that have accessors, as a table.
#pragma once

#include "camparam/isp.h"

struct isp_member {
    const char *name;
    int isp_record::*value;
    int (*set)(int instance, int value);
};

inline constexpr isp_member isp_members[] = {
#define ISP_ROW_yes(member)                                                                        \
    {.name = #member, .value = &isp_record::member, .set = para_set_isp_##member##_cur},
#define ISP_ROW_no(member)
#define ISP_MEMBER(word, member, loaded, accessor, by_name, written) ISP_ROW_##accessor(member)
#include "camparam/isp_members.def"
#undef ISP_ROW_yes
#undef ISP_ROW_no
};
