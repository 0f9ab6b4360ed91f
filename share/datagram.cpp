#include "share/datagram.h"

#include <cstring>

#include "base/trace.h"
#include "camparam/share.h"

static_assert(sizeof(para_share_datagram) == 76, "the form is fixed, byte by byte");

using datagram_handler = int (*)(const para_share_datagram *);
static datagram_handler handler; // any thread

void register_share_datagram_handler(datagram_handler new_handler)
{
    __atomic_store_n(&handler, new_handler, __ATOMIC_RELEASE);
}

bool take_share_datagram(const char *bytes, ssize_t length)
{
    const datagram_handler apply = __atomic_load_n(&handler, __ATOMIC_ACQUIRE);
    para_share_datagram datagram;
    if (apply == nullptr || length != static_cast<ssize_t>(sizeof datagram))
        return false;

    memcpy(&datagram, bytes, sizeof datagram);
    if (datagram.type > PARA_SHARE_TEXT)
        return false;
    if (apply(&datagram) != 0)
        PARA_TRACE(PARA_ERROR, "share datagram refused: %.16s.%.16s", datagram.module,
                   datagram.member);
    return true;
}
