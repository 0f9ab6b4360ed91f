#include "server/request_filter.h"

#include "camparam/guard.h"

using request_filter = int (*)(const sockaddr_in *, const char *, int);
static request_filter filter; // any thread

void register_request_filter(request_filter admit)
{
    __atomic_store_n(&filter, admit, __ATOMIC_RELEASE);
}

bool is_admitted(const sockaddr_in &sender, const char *bytes, ssize_t length)
{
    const request_filter admit = __atomic_load_n(&filter, __ATOMIC_ACQUIRE);
    return admit == nullptr || admit(&sender, bytes, static_cast<int>(length)) != 0;
}
