// Shared by the source files of the ISP module.
#pragma once

#include "camparam/isp.h"
#include "modules/fixed/fixed_module.h"

extern const fixed_module isp;

// Keys of the ODM store, for all instances.
constexpr char odm_style_def[] = "isp0_style_def";
constexpr char odm_antiflicker_def[] = "isp0_antiflicker_def";

inline bool is_isp_instance(int instance)
{
    return __builtin_expect(instance >= 0 && instance < PARA_ISP_INSTANCES, true);
}
