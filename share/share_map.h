// The memory of a share module, as both sides see it.
#pragma once

#include <cstdint>

constexpr int share_modules = 4;

inline bool is_share_module(int module)
{
    return module >= 0 && module < share_modules;
}

// What stands in front of the entries.
struct share_map {
    uint32_t registered; // 1 once the main program has published it
    int32_t entry_count;
    uint32_t entry_size; // bytes
};
static_assert(sizeof(share_map) == 12, "clients compute addresses from it");

// The object's name: "/camparam_share_2".
struct share_map_name {
    explicit share_map_name(int module);
    char text[32];
};
