#include <cstdio>
#include <cstring>

#include "camparam/platform.h"

char *lib_strdup(const char *text)
{
    return text != nullptr ? strdup(text) : nullptr;
}

char *lib_itoa(int value, char *text)
{
    snprintf(text, PARA_NUMBER_SIZE, "%d", value);
    return text;
}
