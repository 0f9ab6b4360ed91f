// The web-name file: which web name stands for which member.
#pragma once

#include <cjson/cJSON.h>

#include "camparam/www.h"

// The parsed web-name file, or null. Fixed after start-up.
extern cJSON *para_config;

// The node if it is an object, else null. Iterating over null visits nothing.
const cJSON *if_object(const cJSON *node);
