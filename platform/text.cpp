#include <cstdio>
#include <cstring>

#include "camparam/platform.h"

char *lib_strdup(const char *text)
{
    return text != nullptr ? strdup(text) : nullptr;
}

char *lib_itoa(int value, char *text)
{
    const size_t text_size = 32;
    snprintf(text, text_size, "%d", value);
    return text;
}
