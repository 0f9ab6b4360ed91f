// The presence of members that a defaults file names.
#pragma once

#include "camparam/presence.h"

constexpr int present_as_number = PARA_PRESENT | PARA_PRESENT_AS_NUMBER;
constexpr int present_as_name = PARA_PRESENT | PARA_PRESENT_AS_NAME;
