// Comparing texts.
#pragma once

#include <cstring>

inline bool begins_with(const char *text, const char *start)
{
    return strncmp(text, start, strlen(start)) == 0;
}
