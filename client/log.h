// The host's log of changes.
#pragma once

#include <string>
#include <vector>

#include "client/setting.h"

struct logged_change {
    unsigned number = 0;
    long long time_ms = 0; // since 1970, of the camera's clock
    setting_name name;
    json_ptr entry; // as the host told it
    bool secret = false;

    // As a user writes it; "-" where there is none.
    std::string value(const char *which) const;
    std::string sender() const;
};

struct change_log {
    std::string run; // another one when the host has started anew
    std::vector<logged_change> changes;
};

// What came after a number. Throws a failure when the host keeps no log.
change_log read_log(client &host, unsigned after);
