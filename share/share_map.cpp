// Publishing the memory of a share module.
#include "share/share_map.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "base/port.h"
#include "base/trace.h"
#include "camparam/command.h"

share_map_name::share_map_name(int module)
{
    if (server_port() == PARA_SERVER_PORT)
        snprintf(text, sizeof text, PARA_SHARE_MAP_NAME, module);
    else
        snprintf(text, sizeof text, PARA_SHARE_MAP_NAME_WITH_PORT, module, server_port());
}

// The size comes last: until then clients refuse the object, as one that lacks its entries. By
// system calls, not through the map: another process may cut the object short at any moment.
static bool fill_object(int descriptor, const para_share_map &header)
{
    return pwrite(descriptor, &header, sizeof header, 0) == sizeof header &&
           ftruncate(descriptor, static_cast<off_t>(share_map_size(header))) == 0;
}

static void *create_map(const char *name, const para_share_map &header)
{
    shm_unlink(name); // clients already attached keep the old mapping
    const int descriptor = shm_open(name, O_CREAT | O_EXCL | O_RDWR, 0644);
    if (descriptor < 0)
        return nullptr;
    void *map = MAP_FAILED;
    if (fill_object(descriptor, header))
        map = mmap(nullptr, static_cast<size_t>(share_map_size(header)), PROT_READ | PROT_WRITE,
                   MAP_SHARED, descriptor, 0);
    close(descriptor);
    if (map == MAP_FAILED)
        shm_unlink(name);
    return map != MAP_FAILED ? map : nullptr;
}

void *para_share_publish(int module, int entry_count, int entry_size)
{
    const para_share_map header = {.registered = 1,
                                   .entry_count = entry_count,
                                   .entry_size = static_cast<uint32_t>(entry_size)};
    if (!is_share_module(module) || entry_count < 0 || entry_size < 0 ||
        share_map_size(header) > largest_share_map) {
        PARA_TRACE(PARA_ERROR, "ERROR: share module %d of %d x %d bytes", module, entry_count,
                   entry_size);
        return nullptr;
    }

    void *const map = create_map(share_map_name(module).text, header);
    if (map == nullptr)
        PARA_TRACE(PARA_ERROR, "ERROR: share module %d cannot be published", module);
    return map;
}
