#include "base/observer.h"

#include "camparam/guard.h"

static change_observer observer; // any thread

// In the static part of a thread's memory, which needs no help of the run-time linker.
static __thread const sockaddr_in *client __attribute__((tls_model("initial-exec")));

request_scope::request_scope(const sockaddr_in *sender) : outer(client)
{
    client = sender;
}

request_scope::~request_scope()
{
    client = outer;
}

void platformparam_set_change_observer(change_observer new_observer)
{
    __atomic_store_n(&observer, new_observer, __ATOMIC_RELEASE);
}

change_observer current_observer()
{
    return __atomic_load_n(&observer, __ATOMIC_ACQUIRE);
}

void tell_observer(const char *row)
{
    const change_observer tell = current_observer();
    if (tell != nullptr)
        tell(row, client);
}
