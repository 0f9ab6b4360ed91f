#include "base/port.h"

#include <cstdint>

#include "camparam/command.h"
#include "camparam/guard.h"

static int port = PARA_SERVER_PORT;

int server_port()
{
    return port;
}

int platformparam_set_server_port(int new_port)
{
    if (new_port < 0 || new_port > UINT16_MAX)
        return -1;

    const int before = port;
    port = new_port;
    return before;
}
