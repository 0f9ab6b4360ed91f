#include <cstdlib>
#include <cstring>

#include "camparam/platform.h"
#include "platform/file_sync.h"

int lib_system(const char *command)
{
    if (command == nullptr || strcmp(command, "sync") != 0)
        return system(command); // NOLINT(cert-env33-c): a shell is what the caller asks for
    sync_soon();
    return 0;
}
