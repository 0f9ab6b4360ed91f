// Shared by the source files of the ISP module.
#pragma once

#include "camparam/isp.h"
#include "modules/fixed/fixed_module.h"

extern const fixed_module isp;

inline bool is_isp_instance(int instance)
{
    return instance >= 0 && instance < PARA_ISP_INSTANCES;
}
