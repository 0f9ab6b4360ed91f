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
    int entry_words;
    int entries = 1;
    para_share_map *map = nullptr; // null: not published
};

// Main thread only.
shared_table tables[] = {
    {.module = SHARE_VIDEO,
     .values = para_video_cur,
     .entry_words = PARA_VIDEO_STREAM_SLOTS,
     .entries = PARA_VIDEO_STREAMS},
    {.module = SHARE_AUDIO, .values = para_audio_cur, .entry_words = PARA_AUDIO_SLOTS},
    {.module = SHARE_ISP,
     .values = &para_isp_cur[0].size,
     .entry_words = PARA_ISP_SLOTS,
     .entries = PARA_ISP_INSTANCES},
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
