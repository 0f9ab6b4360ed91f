// Client processes: registering for share modules, and finding entries in their memory.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>

#include "base/trace.h"
#include "share/share_map.h"

void *g_shareMap;
int g_shareMapLen;

// The latest mapping of each share module. Mappings are never removed: hosts keep addresses of
// entries.
struct mapped_object {
    const para_share_map *map;
    ino_t object;
};
static mapped_object mapped[PARA_SHARE_MODULES];

// The map of the last registration; null when it was refused.
static const para_share_map *maps[PARA_SHARE_MODULES];

static int share_socket_opened;

static bool holds_its_entries(const para_share_map &map, off_t size)
{
    const auto entries = static_cast<unsigned long long>(map.entry_count) * map.entry_size;
    return map.entry_count >= 0 && static_cast<unsigned long long>(size) >= sizeof map + entries;
}

static const para_share_map *map_object(int descriptor, off_t size)
{
    if (size < static_cast<off_t>(sizeof(para_share_map)))
        return nullptr;
    void *const map =
        mmap(nullptr, static_cast<size_t>(size), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (map == MAP_FAILED)
        return nullptr;
    if (!holds_its_entries(*static_cast<const para_share_map *>(map), size)) {
        munmap(map, static_cast<size_t>(size));
        return nullptr;
    }
    return static_cast<const para_share_map *>(map);
}

// Maps the object that is published now. Returns null when there is none.
static const para_share_map *attach(int module)
{
    const int descriptor = shm_open(share_map_name(module).text, O_RDWR, 0);
    if (descriptor < 0)
        return nullptr;

    mapped_object &last = mapped[module];
    struct stat object = {};
    const bool known =
        fstat(descriptor, &object) == 0 && last.map != nullptr && last.object == object.st_ino;
    if (!known)
        last = {.map = map_object(descriptor, object.st_size), .object = object.st_ino};
    close(descriptor);
    return last.map;
}

static bool is_registered(const para_share_map *map)
{
    return map != nullptr && __atomic_load_n(&map->registered, __ATOMIC_ACQUIRE) == 1;
}

// Records the map, or null for one that is not registered. Returns whether it is.
static bool record_map(int module, const para_share_map *map)
{
    const bool registered = is_registered(map);
    if (is_share_module(module))
        maps[module] = registered ? map : nullptr;
    return registered;
}

int para_share_register(int module)
{
    if (module >= PARA_SHARE_MODULES) { // a negative number has no map, and fails below
        PARA_TRACE(PARA_INFO, "ERROR: This mod is not exist!");
        return -1;
    }
    const para_share_map *const map = is_share_module(module) ? attach(module) : nullptr;
    PARA_TRACE(PARA_INFO, "video ptr = %p", static_cast<const void *>(map));
    if (!record_map(module, map)) {
        PARA_TRACE(PARA_INFO, "ERROR: main program don't register this share module");
        return -1;
    }
    if (share_socket_opened == 0) {
        Send_Initial();
        share_socket_opened = 1;
    }
    return 0;
}

void *para_get_share_map(int module, int entry)
{
    if (module >= PARA_SHARE_MODULES) {
        PARA_TRACE(PARA_INFO, "ERROR: This mod is not exist!");
        return nullptr;
    }
    const para_share_map *const map = module >= 0 ? maps[module] : nullptr;
    if (map == nullptr) {
        PARA_TRACE(PARA_INFO, "ERROR: main program don't register this share module");
        return nullptr;
    }
    if (entry < 1 || entry > map->entry_count)
        PARA_TRACE(PARA_INFO,
                   "ERROR: This share map is not exist!"); // callers check entry numbers themselves
    const long long offset = (entry - 1LL) * map->entry_size;
    const auto *const entries = reinterpret_cast<const char *>(map + 1);
    return const_cast<char *>(entries + static_cast<ptrdiff_t>(offset));
}
