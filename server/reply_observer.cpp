#include "server/reply_observer.h"

#include "camparam/guard.h"

using reply_observer = void (*)(const sockaddr_in *, int);
static reply_observer observer; // any thread

void register_reply_observer(reply_observer new_observer)
{
    __atomic_store_n(&observer, new_observer, __ATOMIC_RELEASE);
}

void tell_reply_observer(const sockaddr_in &client, int length)
{
    const reply_observer tell = __atomic_load_n(&observer, __ATOMIC_ACQUIRE);
    if (tell != nullptr)
        tell(&client, length);
}
