// What is known of the ODM store.
#pragma once

#include "camparam/guard.h"

para_module_status odm_status(const char *row);
