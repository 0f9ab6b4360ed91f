// The forms in which web pages show numbers: the third text of a web-name entry.
#pragma once

#include <cjson/cJSON.h>

constexpr int web_pair_size = 64; // bytes of one pair in a reply; a longer one is cut

struct web_modifier {
    const char *name;
    bool always_joined; // by "&", also as the first pair of a reply
    bool greedy;        // a set goes to every module that has the web name
    int (*to_json)(const char *text);
    void (*to_web)(char (&text)[web_pair_size], const cJSON *number);
};

// The modifier of that name; the plain form for null and for unknown names.
const web_modifier &modifier_named(const char *name);
