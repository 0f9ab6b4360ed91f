// Client processes: registering for share modules, and setting by datagram.
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>

#include "base/server_port.h"
#include "base/trace.h"
#include "base/word.h"
#include "camparam/share.h"
#include "share/share_map.h"

void *g_shareMap;
int g_shareMapLen;

// A share module's memory as this process has attached it; null until then, and never detached, as
// hosts keep addresses of entries.
struct attached_map {
    const share_map *map;
    ino_t object;
};
static attached_map maps[share_modules];

// Zero until the socket is opened, so that setters send nowhere. The destination is complete before
// the socket is there.
static int share_socket;
static sockaddr_in destination;
static int share_socket_opened;

static bool holds_its_entries(const share_map &map, off_t size)
{
    const auto entries = static_cast<unsigned long long>(map.entry_count) * map.entry_size;
    return map.entry_count >= 0 && static_cast<unsigned long long>(size) >= sizeof map + entries;
}

static const share_map *map_object(int descriptor, off_t size)
{
    if (size < static_cast<off_t>(sizeof(share_map)))
        return nullptr;
    void *const map =
        mmap(nullptr, static_cast<size_t>(size), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (map == MAP_FAILED)
        return nullptr;
    if (!holds_its_entries(*static_cast<const share_map *>(map), size)) {
        munmap(map, static_cast<size_t>(size));
        return nullptr;
    }
    return static_cast<const share_map *>(map);
}

// The memory that is published now, or null.
static const share_map *attach(int module)
{
    if (!is_share_module(module))
        return nullptr;
    const int descriptor = shm_open(share_map_name(module).text, O_RDWR, 0);
    if (descriptor < 0)
        return nullptr;

    attached_map &attached = maps[module];
    struct stat object = {};
    const bool known = fstat(descriptor, &object) == 0 && attached.map != nullptr &&
                       attached.object == object.st_ino;
    if (!known)
        attached = {map_object(descriptor, object.st_size), object.st_ino};
    close(descriptor);
    return attached.map;
}

static bool is_registered(const share_map *map)
{
    return map != nullptr && __atomic_load_n(&map->registered, __ATOMIC_ACQUIRE) == 1;
}

int para_share_register(int module)
{
    if (module >= share_modules) { // a negative number has no map, and fails below
        PARA_TRACE(PARA_INFO, "ERROR: This mod is not exist!");
        return -1;
    }
    const share_map *const map = attach(module);
    PARA_TRACE(PARA_INFO, "video ptr = %p", static_cast<const void *>(map));
    if (!is_registered(map)) {
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
    if (module >= share_modules) {
        PARA_TRACE(PARA_INFO, "ERROR: This mod is not exist!");
        return nullptr;
    }
    const share_map *const map = module >= 0 ? maps[module].map : nullptr;
    if (map == nullptr) {
        PARA_TRACE(PARA_INFO, "ERROR: main program don't register this share module");
        return nullptr;
    }
    if (entry < 1 || entry > map->entry_count)
        PARA_TRACE(PARA_INFO, "ERROR: This share map is not exist!"); // the caller's business
    const long long offset = (entry - 1LL) * map->entry_size;
    const auto *const entries = reinterpret_cast<const char *>(map + 1);
    return const_cast<char *>(entries + static_cast<ptrdiff_t>(offset));
}

int Send_Initial()
{
    destination.sin_family = AF_INET;
    destination.sin_port = htons(server_port);
    inet_pton(AF_INET, "127.0.0.1", &destination.sin_addr);
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    __atomic_store_n(&share_socket, descriptor, __ATOMIC_RELEASE);
    return descriptor;
}

static int send_datagram(para_share_datagram &datagram, int instance, const char *module,
                         const char *member)
{
    datagram.instance = static_cast<uint32_t>(instance);
    memcpy(datagram.module, module, strlen(module));
    memcpy(datagram.member, member, strlen(member));
    static constexpr sockaddr_in nowhere = {};
    const int descriptor = __atomic_load_n(&share_socket, __ATOMIC_ACQUIRE);
    const sockaddr_in &receiver = descriptor != 0 ? destination : nowhere;
    sendto(descriptor, &datagram, sizeof datagram, 0, reinterpret_cast<const sockaddr *>(&receiver),
           sizeof receiver);
    return 0;
}

static int send_number(const char *module, const char *member, int instance, int value)
{
    para_share_datagram datagram = {};
    datagram.number = value;
    return send_datagram(datagram, instance, module, member);
}

static int send_string(const char *module, const char *member, int instance, const char *text)
{
    para_share_datagram datagram = {};
    datagram.type = 1;
    if (text != nullptr)
        memcpy(datagram.text, text, strnlen(text, sizeof datagram.text));
    return send_datagram(datagram, instance, module, member);
}

#define SHARE_MEMBER(module, member)                                                               \
    static_assert(sizeof #module <= 16 && sizeof #member <= 16, "names end with a zero");          \
    int para_set_share_##module##_##member##_number(int instance, int value)                       \
    {                                                                                              \
        return send_number(#module, #member, instance, value);                                     \
    }                                                                                              \
    int para_set_share_##module##_##member##_string(int instance, const char *text)                \
    {                                                                                              \
        return send_string(#module, #member, instance, text);                                      \
    }
#include "camparam/share_members.def"
