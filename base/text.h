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

// In ASCII one bit tells them apart; letters beyond it are the same in one case only.
inline bool differ_in_case(char letter, char other)
{
    constexpr int case_bit = 'a' ^ 'A';
    const int small = letter | case_bit;
    return (letter ^ other) == case_bit && small >= 'a' && small <= 'z';
}

inline bool is_same_but_for_case(const char *text, const char *other)
{
    for (; *text != '\0'; text++, other++) {
        if (*text != *other && !differ_in_case(*text, *other))
            return false;
    }
    return *other == '\0';
}

inline bool is_same(const char *text, const char *other)
{
    return *text == *other && strcmp(text, other) == 0;
}
