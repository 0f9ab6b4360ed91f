// Times as people write them.
#pragma once

#include <string>

// "2026-11-22 10:00:01.123", of this machine's time zone, of milliseconds since 1970.
std::string time_text(long long ms);

// "2 d 3 h", "5 min 1 s"
std::string span_text(long long seconds);
