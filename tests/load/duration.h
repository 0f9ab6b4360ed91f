// How long a test of endurance lasts.
#pragma once

#include <chrono>
#include <cstdlib>

// 2 s, or as many as the environment variable CAMPARAM_PROOF_SECONDS says.
inline std::chrono::seconds proof_duration()
{
    const char *const chosen = getenv("CAMPARAM_PROOF_SECONDS");
    const int seconds = chosen != nullptr ? atoi(chosen) : 2;
    return std::chrono::seconds(seconds > 0 ? seconds : 2);
}
