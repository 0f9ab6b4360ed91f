// The memory of a share module, as both sides see it.
#pragma once

#include "camparam/share.h"

static_assert(sizeof(para_share_map) == 12, "clients compute addresses from it");

// The largest map, header included: a mistaken size must not exhaust the memory.
constexpr long long largest_share_map = 1LL << 30;

// Header and entries; for sizes that are not negative.
inline long long share_map_size(const para_share_map &header)
{
    return static_cast<long long>(sizeof header) +
           static_cast<long long>(header.entry_count) * header.entry_size;
}

inline bool is_share_module(int module)
{
    return module >= 0 && module < PARA_SHARE_MODULES;
}

// The object's name: "/camparam_share_2", with another port than the usual
// "/camparam_share_2_6801".
struct share_map_name {
    explicit share_map_name(int module);
    char text[32];
};
