#include "support/thread_state.h"

#include <chrono>
#include <sstream>
#include <string>
#include <thread>

#include "support/folders.h"

namespace {

// The lines of its status that change when it wakes; empty when there is no such thread.
std::string state_of(pid_t thread)
{
    const std::string path = "/proc/self/task/" + std::to_string(thread) + "/status";
    std::istringstream status(read_file(path).value_or(""));
    std::string state;
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("State:", 0) == 0 || line.find("voluntary_ctxt_switches:") == 0)
            state += line + "\n";
    }
    return state;
}

} // namespace

bool stays_asleep(pid_t thread)
{
    const std::string state = state_of(thread);
    if (state.find("(sleeping)") == std::string::npos)
        return false;
    for (int look = 0; look < 20; look++) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (state_of(thread) != state)
            return false;
    }
    return true;
}
