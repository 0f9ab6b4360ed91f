#include "share_maps.h"

#include <sys/mman.h>

#include <string>

#include "camparam/isp.h"
#include "camparam/share.h"
#include "named_table.h"

namespace {

constexpr int header_words = 3; // registered, entry count, entry size

struct shared_table {
    const int *values;
    int entries;
    int entry_words;
    int *map; // null: not published
};

// In the order of the share modules' numbers; main thread only.
shared_table tables[] = {
    {para_video_cur, video_stream_count, video_member_count, nullptr},
    {para_audio_cur, 1, sizeof para_audio_cur / sizeof(int), nullptr},
    {&para_isp_cur[0].size, 2, sizeof(isp_record) / sizeof(int), nullptr},
};

void refresh(const shared_table &table)
{
    for (int i = 0; i < table.entries * table.entry_words; i++) {
        const int value = __atomic_load_n(&table.values[i], __ATOMIC_RELAXED);
        __atomic_store_n(&table.map[header_words + i], value, __ATOMIC_RELAXED);
    }
}

} // namespace

bool publish_share_maps()
{
    int module = 0;
    for (shared_table &table : tables) {
        const int entry_size = table.entry_words * static_cast<int>(sizeof(int));
        table.map = static_cast<int *>(para_share_publish(module++, table.entries, entry_size));
        if (table.map == nullptr)
            return false;
        refresh(table);
    }
    return true;
}

void refresh_share_maps()
{
    for (const shared_table &table : tables) {
        if (table.map != nullptr)
            refresh(table);
    }
}

void withdraw_share_maps()
{
    int module = 0;
    for (shared_table &table : tables) {
        const std::string name = "/camparam_share_" + std::to_string(module++);
        if (table.map != nullptr)
            shm_unlink(name.c_str());
        table.map = nullptr;
    }
}
