#include "server/web_modifier.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/number.h"

static int whole_number(double number)
{
    if (!(number > INT_MIN))
        return number == number ? INT_MIN : 0;
    return number < INT_MAX ? static_cast<int>(number) : INT_MAX;
}

static int plain_to_json(const char *text)
{
    return leading_number(text);
}

static void plain_to_web(char (&text)[web_pair_size], const cJSON *number)
{
    snprintf(text, sizeof text, "%d", number->valueint);
}

// Thousands: 4096 on the page is 4096000 in the module.
static int thousands_to_json(const char *text)
{
    return whole_number(strtod(text, nullptr) * 1000.0);
}

static void thousands_to_web(char (&text)[web_pair_size], const cJSON *number)
{
    const int value = number->valueint;
    if (value % 1000 == 0)
        snprintf(text, sizeof text, "%d", value / 1000);
    else
        snprintf(text, sizeof text, "%.1f",
                 static_cast<double>(static_cast<float>(value) / 1000.0F));
}

// Counted from 1 on the page. A set always stores 0: pages only show these values
// (WwwSet.ACountedNumberIsStoredAsZero).
static int counted_to_json(const char *)
{
    return 0;
}

static void counted_to_web(char (&text)[web_pair_size], const cJSON *number)
{
    snprintf(text, sizeof text, "%lld", number->valueint + 1LL);
}

static void fraction_to_web(char (&text)[web_pair_size], const cJSON *number)
{
    snprintf(text, sizeof text, "%.2f", number->valuedouble);
}

static const web_modifier modifiers[] = {
    {.name = "K", .always_joined = true, .to_json = thousands_to_json, .to_web = thousands_to_web},
    {.name = "P", .always_joined = true, .to_json = counted_to_json, .to_web = counted_to_web},
    {.name = "F", .always_joined = true, .to_json = plain_to_json, .to_web = fraction_to_web},
    {.name = "Greedy", .greedy = true, .to_json = plain_to_json, .to_web = plain_to_web},
};
static const web_modifier no_modifier = {.to_json = plain_to_json, .to_web = plain_to_web};

const web_modifier &modifier_named(const char *name)
{
    for (const web_modifier &modifier : modifiers) {
        if (name != nullptr && strcmp(modifier.name, name) == 0)
            return modifier;
    }
    return no_modifier;
}
