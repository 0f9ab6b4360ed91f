// What the row of the ODM store does besides its exported functions.
#pragma once

#include "camparam/guard.h"

para_module_status odm_status(const char *row);
