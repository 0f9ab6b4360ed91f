// The names of the picture sizes.
#pragma once

#include "modules/fixed/param_names.h"

extern const param_names size_names;
