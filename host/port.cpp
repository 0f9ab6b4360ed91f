#include "port.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

int probe_server_port(int port)
{
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        return errno;

    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<in_port_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    const int result =
        bind(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address);
    const int error = result == 0 ? 0 : errno;
    close(descriptor);
    return error;
}
