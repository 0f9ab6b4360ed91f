// What is known of the modules whose values are texts, by row.
#pragma once

#include "camparam/guard.h"

para_module_status pattern_status(const char *row);
para_module_status conf_status(const char *row);
