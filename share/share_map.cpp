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

constexpr long long largest_map = 1LL << 30; // a mistaken size must not exhaust the memory

static para_share_map *create_map(const char *name, size_t size)
{
    shm_unlink(name); // clients already attached keep the old mapping
    const int descriptor = shm_open(name, O_CREAT | O_EXCL | O_RDWR, 0666);
    if (descriptor < 0)
        return nullptr;
    fchmod(descriptor, 0666); // clients run as other users; the umask must not apply
    void *map = MAP_FAILED;
    if (ftruncate(descriptor, static_cast<off_t>(size)) == 0)
        map = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    close(descriptor);
    if (map == MAP_FAILED)
        shm_unlink(name);
    return map != MAP_FAILED ? static_cast<para_share_map *>(map) : nullptr;
}

void *para_share_publish(int module, int entry_count, int entry_size)
{
    const long long size = static_cast<long long>(sizeof(para_share_map)) +
                           static_cast<long long>(entry_count) * entry_size;
    if (!is_share_module(module) || entry_count < 0 || entry_size < 0 || size > largest_map) {
        PARA_TRACE(PARA_ERROR, "ERROR: share module %d of %d x %d bytes", module, entry_count,
                   entry_size);
        return nullptr;
    }

    para_share_map *const map = create_map(share_map_name(module).text, static_cast<size_t>(size));
    if (map == nullptr) {
        PARA_TRACE(PARA_ERROR, "ERROR: share module %d cannot be published", module);
        return nullptr;
    }
    map->entry_count = entry_count;
    map->entry_size = static_cast<uint32_t>(entry_size);
    __atomic_store_n(&map->registered, 1U, __ATOMIC_RELEASE); // last: clients may read from now on
    return map;
}
