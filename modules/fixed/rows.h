// What is known of the modules with fixed members, by row.
#pragma once

#include "camparam/guard.h"

para_module_status af_status(const char *row);
para_module_status audio_status(const char *row);
para_module_status video_status(const char *row);
para_module_status isp_status(const char *row);
