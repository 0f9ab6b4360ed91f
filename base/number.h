// Numbers in texts.
#pragma once

#include <climits>
#include <cstdlib>

// What atoi reads, saturated to the int's limits; atoi itself leaves larger numbers undefined.
inline int leading_number(const char *text)
{
    const long long number = strtoll(text, nullptr, 10);
    if (number < INT_MIN)
        return INT_MIN;
    return number > INT_MAX ? INT_MAX : static_cast<int>(number);
}
