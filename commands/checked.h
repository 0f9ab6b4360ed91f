// Values of several modules, as requests have them: {"isp0": {"contrast": 7}, ...}.
#pragma once

#include "outcome.h"

// Reports of each value whether it would be taken. Nothing is set.
void check_values(const cJSON *modules, outcome &result);

// Reports those that would not, and returns how many they are.
int refuse_faulty_values(const cJSON *modules, outcome &result);

// Reports all as refused.
void refuse_values(const cJSON *modules, const reason &why, outcome &result);

// Whether it has that form, and each name once: only one of two values of a member can be in force.
bool are_values(const cJSON *modules);

// Whether there is a value among them.
bool names_a_member(const cJSON *modules);
