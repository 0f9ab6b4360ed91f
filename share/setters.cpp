// Client processes: setting by datagram.
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstring>

#include "base/port.h"
#include "base/word.h"
#include "camparam/audio.h"
#include "camparam/isp.h"
#include "camparam/share.h"
#include "camparam/video.h"

// Before the socket is opened, setters send to the zeroed address, which fails silently.
// Send_Initial() publishes the destination after the socket.
static constexpr sockaddr_in nowhere = {};
static sockaddr_in store;
static const sockaddr_in *destination = &nowhere;
static int share_socket;

int Send_Initial()
{
    store_word(store.sin_family, static_cast<sa_family_t>(AF_INET));
    store_word(store.sin_port, htons(static_cast<uint16_t>(server_port())));
    store_word(store.sin_addr.s_addr, htonl(INADDR_LOOPBACK));
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    store_word(share_socket, descriptor);
    __atomic_store_n(&destination, &store, __ATOMIC_RELEASE);
    return descriptor;
}

static int send_datagram(para_share_datagram &datagram, int instance, const char *module,
                         const char *member)
{
    datagram.instance = static_cast<uint32_t>(instance);
    memcpy(datagram.module, module, strlen(module));
    memcpy(datagram.member, member, strlen(member));
    const sockaddr_in *const receiver = __atomic_load_n(&destination, __ATOMIC_ACQUIRE);
    sendto(load_word(share_socket), &datagram, sizeof datagram, 0,
           reinterpret_cast<const sockaddr *>(receiver), sizeof *receiver);
    return 0;
}

// Not inlined: there are 98 setters.
[[gnu::noinline]] static int send_number(const char *module, const char *member, int instance,
                                         int value)
{
    para_share_datagram datagram = {};
    datagram.number = value;
    return send_datagram(datagram, instance, module, member);
}

[[gnu::noinline]] static int send_string(const char *module, const char *member, int instance,
                                         const char *text)
{
    para_share_datagram datagram = {};
    datagram.type = PARA_SHARE_TEXT;
    if (text != nullptr)
        memcpy(datagram.text, text, strnlen(text, sizeof datagram.text));
    return send_datagram(datagram, instance, module, member);
}

// Every member must be in the list of its module.
#define SLOT_OF_video(member) PARA_VIDEO_##member
#define SLOT_OF_audio(member) PARA_AUDIO_##member
#define SLOT_OF_isp(member) PARA_ISP_##member

#define SHARE_MEMBER(module, member)                                                               \
    static_assert(SLOT_OF_##module(member) >= 0, "a member of the module");                        \
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
