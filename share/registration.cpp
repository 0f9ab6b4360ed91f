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
// entries. The header is the one that was checked; that in the object may change at any time.
struct attachment {
    const char *map; // null: none
    para_share_map header;
    ino_t object;
};
static attachment attached[PARA_SHARE_MODULES];

// Whether the last registration was taken.
static bool registered[PARA_SHARE_MODULES];

static int share_socket_opened;

// Not through a mapping: an object that is cut short meanwhile gives no header, instead of a fault.
static bool read_header(int descriptor, para_share_map &header)
{
    return pread(descriptor, &header, sizeof header, 0) == sizeof header && header.registered == 1;
}

static bool holds_its_entries(const para_share_map &header, off_t object_size)
{
    return header.entry_count >= 0 && share_map_size(header) <= largest_share_map &&
           share_map_size(header) <= object_size;
}

// For reading alone; null when the system refuses.
static const char *map_entries(int descriptor, const para_share_map &header)
{
    void *const map = mmap(nullptr, static_cast<size_t>(share_map_size(header)), PROT_READ,
                           MAP_SHARED, descriptor, 0);
    return map != MAP_FAILED ? static_cast<const char *>(map) : nullptr;
}

// An object that is attached already keeps its mapping and its header, but must still hold the
// entries that the header tells of.
static bool attach_object(int descriptor, attachment &last)
{
    struct stat object = {};
    para_share_map header = {};
    if (fstat(descriptor, &object) != 0 || !read_header(descriptor, header))
        return false;
    if (last.map != nullptr && last.object == object.st_ino)
        return holds_its_entries(last.header, object.st_size);
    if (!holds_its_entries(header, object.st_size))
        return false;

    const char *const map = map_entries(descriptor, header);
    if (map != nullptr)
        last = {.map = map, .header = header, .object = object.st_ino};
    return map != nullptr;
}

// Maps the object that is published now. Returns null when there is none.
static const char *attach(int module)
{
    // Without waiting: another user may have put a FIFO in its place.
    const int descriptor = shm_open(share_map_name(module).text, O_RDONLY | O_NONBLOCK, 0);
    if (descriptor < 0)
        return nullptr;

    const bool published = attach_object(descriptor, attached[module]);
    close(descriptor);
    return published ? attached[module].map : nullptr;
}

int para_share_register(int module)
{
    if (module >= PARA_SHARE_MODULES) { // a negative number has no map, and fails below
        PARA_TRACE(PARA_INFO, "ERROR: This mod is not exist!");
        return -1;
    }
    const char *const map = is_share_module(module) ? attach(module) : nullptr;
    PARA_TRACE(PARA_INFO, "video ptr = %p", static_cast<const void *>(map));
    if (is_share_module(module))
        registered[module] = map != nullptr;
    if (map == nullptr) {
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
    if (module < 0 || !registered[module]) {
        PARA_TRACE(PARA_INFO, "ERROR: main program don't register this share module");
        return nullptr;
    }
    const attachment &found = attached[module];
    if (entry < 1 || entry > found.header.entry_count)
        PARA_TRACE(PARA_INFO,
                   "ERROR: This share map is not exist!"); // callers check entry numbers themselves
    const long long offset = (entry - 1LL) * found.header.entry_size;
    const char *const entries = found.map + sizeof(para_share_map);
    return const_cast<char *>(entries + static_cast<ptrdiff_t>(offset));
}
