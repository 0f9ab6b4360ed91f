#include "share_maps.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <string>

#include "camparam/audio.h"
#include "camparam/command.h"
#include "camparam/isp.h"
#include "camparam/share.h"
#include "camparam/video.h"
#include "log.h"
#include "word.h"

namespace {

struct shared_table {
    share_module module;
    const int *values;
    int entry_words;
    int entries = 1;
    std::atomic<para_share_map *> map = nullptr; // null: not published
    volatile sig_atomic_t cut_short = 0;         // by another process, since it was published

    size_t size() const
    {
        return sizeof(para_share_map) + sizeof(int) * static_cast<size_t>(entries * entry_words);
    }
};

// Main thread, and the handler of bus errors.
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
    int *const words = reinterpret_cast<int *>(table.map.load() + 1);
    for (int i = 0; i < table.entries * table.entry_words; i++) {
        __atomic_store_n(&words[i], load_word(table.values[i]), __ATOMIC_RELAXED);
    }
}

bool publish(shared_table &table)
{
    const int entry_size = table.entry_words * static_cast<int>(sizeof(int));
    table.cut_short = 0;
    table.map =
        static_cast<para_share_map *>(para_share_publish(table.module, table.entries, entry_size));
    if (table.map == nullptr)
        return false;
    refresh(table);
    return true;
}

// --- Maps that another process cuts short ---

// A process of the same user may do that at any moment. The store into the missing page raises a
// bus error, and would end the host.

size_t page_size;
struct sigaction previous_action;

// Puts an empty page of this process in the place of one that is missing. In a signal handler.
bool fill_page(void *address)
{
    const uintptr_t page = reinterpret_cast<uintptr_t>(address) & ~uintptr_t{page_size - 1};
    return mmap(reinterpret_cast<void *>(page), page_size, PROT_READ | PROT_WRITE,
                MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) != MAP_FAILED;
}

// The table in whose map a bus error tells of a missing page, or null. In a signal handler.
shared_table *table_of(const siginfo_t &error)
{
    if (error.si_code != BUS_ADRERR)
        return nullptr;
    const auto address = reinterpret_cast<uintptr_t>(error.si_addr);
    for (shared_table &table : tables) {
        const auto start = reinterpret_cast<uintptr_t>(table.map.load());
        if (start != 0 && address >= start && address - start < table.size())
            return &table;
    }
    return nullptr;
}

void handle_bus_error(int number, siginfo_t *error, void *)
{
    const int saved_errno = errno;
    shared_table *const table = table_of(*error);
    if (table != nullptr && fill_page(error->si_addr)) {
        table->cut_short = 1;
    } else {
        // Any other access is repeated, and a signal that was sent is raised again.
        sigaction(number, &previous_action, nullptr);
        if (error->si_code <= 0)
            raise(number);
    }
    errno = saved_errno;
}

bool handle_bus_errors()
{
    page_size = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    struct sigaction action = {};
    action.sa_sigaction = handle_bus_error;
    action.sa_flags = SA_SIGINFO;
    return sigaction(SIGBUS, &action, &previous_action) == 0;
}

// Clients that attach the map from now on find it whole.
void publish_anew(shared_table &table)
{
    log_line("the shared memory %d was cut short by another process", table.module);
    munmap(table.map, table.size());
    if (!publish(table))
        log_line("cannot publish the shared memory %d anew", table.module);
}

std::string map_name(int module, int port)
{
    char name[64];
    if (port == PARA_SERVER_PORT)
        snprintf(name, sizeof name, PARA_SHARE_MAP_NAME, module);
    else
        snprintf(name, sizeof name, PARA_SHARE_MAP_NAME_WITH_PORT, module, port);
    return name;
}

} // namespace

bool publish_share_maps()
{
    static const bool handled = handle_bus_errors();
    return handled && std::all_of(std::begin(tables), std::end(tables), publish);
}

void refresh_share_maps()
{
    for (shared_table &table : tables) {
        if (table.map != nullptr)
            refresh(table);
        if (table.cut_short != 0)
            publish_anew(table);
    }
}

void withdraw_share_maps(int port)
{
    for (shared_table &table : tables) {
        if (table.map == nullptr)
            continue;
        shm_unlink(map_name(table.module, port).c_str());
        table.map = nullptr;
    }
}
