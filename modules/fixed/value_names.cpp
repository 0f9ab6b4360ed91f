#include "modules/fixed/value_names.h"

#include <cstring>

#include "base/number.h"
#include "base/text.h"

static const char *const null_name[] = {"null"};
const value_names null_names = names_of(null_name);

int name_in_file(const value_names &names, const char *text)
{
    for (int i = names.count - 1; i >= 0; i--) {
        if (begins_with(names.names[i], text))
            return i;
    }
    return -1;
}

int number_of_text(const value_names &names, const char *text)
{
    if (text == nullptr)
        return no_number;
    for (int i = 0; i < names.count; i++) {
        if (begins_with(names.names[i], text))
            return i;
    }
    return text[0] >= '0' && text[0] <= '9' ? leading_number(text) : no_number;
}

int exact_name(const value_names &names, const char *text)
{
    for (int i = 0; text != nullptr && i < names.count; i++) {
        if (strcmp(names.names[i], text) == 0)
            return i;
    }
    return -1;
}

const char *name_of_number(const value_names &names, int value)
{
    return value >= 0 && value < names.count ? names.names[value] : nullptr;
}
