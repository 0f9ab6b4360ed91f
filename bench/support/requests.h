// The four kinds of request that are measured, all to "isp0".
#pragma once

#include <string>
#include <vector>

struct request_kind {
    const char *name;
    std::vector<std::string> members;  // asked for, or set; empty for "all"
    std::vector<std::string> requests; // sent in turn
};

const std::vector<request_kind> &request_kinds();
