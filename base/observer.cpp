#include "base/observer.h"

// Any thread.
static void (*row_observer)(const char *row, const sockaddr_in *sender);
static void (*setting_observer)(const para_setting_change *change);

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

void platformparam_set_change_observer(void (*observer)(const char *row, const sockaddr_in *sender))
{
    __atomic_store_n(&row_observer, observer, __ATOMIC_RELEASE);
}

void platformparam_set_setting_observer(void (*observer)(const para_setting_change *change))
{
    __atomic_store_n(&setting_observer, observer, __ATOMIC_RELEASE);
}

bool has_observers()
{
    return __atomic_load_n(&row_observer, __ATOMIC_RELAXED) != nullptr ||
           __atomic_load_n(&setting_observer, __ATOMIC_RELAXED) != nullptr;
}

void tell_change_of_row(const char *row)
{
    const auto tell = __atomic_load_n(&row_observer, __ATOMIC_ACQUIRE);
    if (tell != nullptr)
        tell(row, client);
}

void tell_change_of_setting(const para_setting_change &change)
{
    const auto tell = __atomic_load_n(&setting_observer, __ATOMIC_ACQUIRE);
    if (tell == nullptr)
        return;
    para_setting_change told = change;
    told.sender = client;
    tell(&told);
}

void tell_change(const para_setting_change &change)
{
    tell_change_of_row(change.module);
    tell_change_of_setting(change);
}
