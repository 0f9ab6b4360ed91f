// Whether changes are in the camera's files.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "client/client.h"

struct unsaved_module {
    std::string name;
    std::string reason;
};

// Waits for so long at the most, and calls the function now and then. Returns the modules that are
// not saved then, or that the host says it cannot save. Throws a failure when the host does not
// tell.
std::vector<unsaved_module> wait_until_saved(client &host, const std::vector<std::string> &modules,
                                             double seconds,
                                             const std::function<void()> &while_waiting);
