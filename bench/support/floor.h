// What a server cannot do without, if it serves JSON by cJSON: parsing the request, and building,
// printing and freeing the reply, whose values it finds without looking for them.
#pragma once

#include <cjson/cJSON.h>

#include <string>
#include <utility>
#include <vector>

class json_floor {
public:
    explicit json_floor(const std::string &reply); // the store's, to the same request

    // The same text, to be freed with cJSON_free().
    char *answer(const char *request) const;

private:
    std::vector<std::pair<std::string, int>> members; // of "isp0"
    bool has_members = false;
};

// The same with a reply whose bytes are copied out instead of being built: the least work beside
// the parsing.
class parse_floor {
public:
    explicit parse_floor(std::string reply) : text(std::move(reply)) {}
    size_t answer(const char *request, char *reply) const;

private:
    std::string text;
};
