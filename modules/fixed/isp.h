// What the ISP module and its styles share.
#pragma once

#include <cjson/cJSON.h>

#include "camparam/isp.h"

constexpr int isp_instances = 2; // that the tables hold

inline bool is_isp_instance(int instance)
{
    return instance >= 0 && instance < isp_instances;
}

// The values of a style or of a current file, into one record; what the object does not name stays.
void isp_read_values(isp_record &record, const cJSON *object);

// The values of a style, into the defaults and the presence of an instance.
void isp_read_defaults(int instance, const cJSON *object);
