#include "share_maps.h"

#include <sys/mman.h>

#include <cstdio>

#include "camparam/audio.h"
#include "camparam/isp.h"
#include "camparam/share.h"
#include "camparam/video.h"

namespace {

struct shared_table {
    share_module module;
    const int *values;
    int entries;
    int entry_words;
    para_share_map *map; // null: not published
};

// Main thread only.
shared_table tables[] = {
    {SHARE_VIDEO, para_video_cur, PARA_VIDEO_STREAMS, PARA_VIDEO_STREAM_SLOTS, nullptr},
    {SHARE_AUDIO, para_audio_cur, 1, PARA_AUDIO_SLOTS, nullptr},
    {SHARE_ISP, &para_isp_cur[0].size, PARA_ISP_INSTANCES, PARA_ISP_WORDS, nullptr},
};

void refresh(const shared_table &table)
{
    int *const words = reinterpret_cast<int *>(table.map + 1);
    for (int i = 0; i < table.entries * table.entry_words; i++) {
        const int value = __atomic_load_n(&table.values[i], __ATOMIC_RELAXED);
        __atomic_store_n(&words[i], value, __ATOMIC_RELAXED);
    }
}

} // namespace

bool publish_share_maps()
{
    for (shared_table &table : tables) {
        const int entry_size = table.entry_words * static_cast<int>(sizeof(int));
        table.map = static_cast<para_share_map *>(
            para_share_publish(table.module, table.entries, entry_size));
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
    for (shared_table &table : tables) {
        if (table.map == nullptr)
            continue;
        char name[64];
        snprintf(name, sizeof name, PARA_SHARE_MAP_NAME, table.module);
        shm_unlink(name);
        table.map = nullptr;
    }
}
