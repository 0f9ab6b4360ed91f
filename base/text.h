// Comparing texts.
#pragma once

#include <cstring>

// These look at the texts themselves: most comparisons end at the first character.

inline bool begins_with(const char *text, const char *start)
{
    for (; *start != '\0'; text++, start++) {
        if (*text != *start)
            return false;
    }
    return true;
}

// Other letters than those of ASCII are the same in one case only.
inline bool is_same_but_for_case(const char *text, const char *in_small_letters)
{
    for (; *in_small_letters != '\0'; text++, in_small_letters++) {
        if (*text == *in_small_letters)
            continue;
        const bool is_capital = *text >= 'A' && *text <= 'Z';
        if (!is_capital || *text - 'A' + 'a' != *in_small_letters)
            return false;
    }
    return *text == '\0';
}

inline bool is_same(const char *text, const char *other)
{
    return *text == *other && strcmp(text, other) == 0;
}
