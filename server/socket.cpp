// The server's socket: opening it, receiving and replying.
#include "server/socket.h"

#include <sys/select.h>
#include <unistd.h>

#include <cstring>

#include "base/port.h"
#include "base/trace.h"

int para_server_init()
{
    if (server_port() == 0) {
        param_base_register_init();
        return -1;
    }

    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    // select() cannot watch a descriptor of FD_SETSIZE or more.
    if (descriptor >= FD_SETSIZE) {
        PARA_TRACE(PARA_ERROR, "sock:%d is too large to wait on", descriptor);
        close(descriptor);
        return -1;
    }

    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(server_port()));
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    const int bound =
        bind(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address);
    if (bound != 0) {
        PARA_TRACE(PARA_ERROR, "bind error ret = %d", bound);
        if (descriptor >= 0) // else none could be opened, so that none could be bound
            close(descriptor);
        return -1;
    }

    PARA_TRACE(PARA_INFO, "para_server sock:%d", descriptor);
    param_base_register_init();
    return descriptor;
}

ssize_t receive_datagram(int socket, para_message &message, socklen_t &sender_size)
{
    const ssize_t length = recvfrom(socket, message.text, PARA_MESSAGE_MAX, MSG_DONTWAIT,
                                    reinterpret_cast<sockaddr *>(&message.sender), &sender_size);
    if (length >= 0)
        message.text[length] = '\0';
    return length;
}

int SendBuf2Client(int socket, struct sockaddr_in client, const char *text, int length)
{
    if (length == 0)
        return 0;

    PARA_TRACE(PARA_DUMP, "send buf : %s,buflen:%d", text, length);
    sendto(socket, text, static_cast<size_t>(length), MSG_DONTWAIT,
           reinterpret_cast<const sockaddr *>(&client), sizeof client);
    return 0;
}

void reply_text(const para_message &message, const char *text)
{
    SendBuf2Client(message.socket, message.sender, text, static_cast<int>(strlen(text)));
}

void reply_tree(const para_message &message, const cJSON *tree)
{
    const printed_ptr text(cJSON_Print(tree));
    if (text)
        reply_text(message, text.get());
}
