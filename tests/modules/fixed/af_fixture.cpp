#include "modules/fixed/af_fixture.h"

const std::vector<Af::accessors> Af::all_members = {
#define AF_MEMBER(slot, name)                                                                      \
    {slot,                                                                                         \
     #name,                                                                                        \
     para_get_af_##name##_def,                                                                     \
     para_get_af_##name##_min,                                                                     \
     para_get_af_##name##_max,                                                                     \
     para_get_af_##name##_init,                                                                    \
     para_get_af_##name##_cur,                                                                     \
     para_set_af_##name##_cur},
#include "camparam/af_members.def"
};
