// The names of the picture sizes.
#pragma once

#include "modules/fixed/value_names.h"

extern const value_names size_names;
