// What the rows of the modules whose values are texts do besides their exported functions.
#pragma once

#include "base/answer.h"
#include "camparam/guard.h"

int answer_misc(const char *key, const cJSON *item, const char *name, answer_sink &sink);
int answer_conf(const char *key, const cJSON *item, const char *name, answer_sink &sink);

para_module_status pattern_status(const char *row);
para_module_status conf_status(const char *row);
