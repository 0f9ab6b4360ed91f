// The server's socket: opening it, receiving and replying.
#include "server/socket.h"

#include <sys/select.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "base/counters.h"
#include "base/guard.h"
#include "base/port.h"
#include "base/trace.h"
#include "server/reply_observer.h"

// Has each datagram received with the address that it was sent to.
static bool tell_destinations(int descriptor)
{
    const int on = 1;
    return setsockopt(descriptor, IPPROTO_IP, IP_PKTINFO, &on, sizeof on) == 0;
}

static sockaddr_in server_address(in_addr_t host)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(server_port()));
    address.sin_addr.s_addr = htonl(host);
    return address;
}

static int bind_to(int descriptor, in_addr_t host)
{
    const sockaddr_in address = server_address(host);
    return bind(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address);
}

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

    if (descriptor >= 0 && guard_is_on() && !tell_destinations(descriptor))
        PARA_TRACE(PARA_ERROR, "cannot tell broadcasts, errno %d", errno);

    const int bound = bind_to(descriptor, INADDR_ANY);
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

static void share_port(int descriptor, int shared)
{
    setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &shared, sizeof shared);
}

// Both sockets share the port only while the second is bound: other processes find it taken.
int open_loopback_socket(int server)
{
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        return -1;
    share_port(server, 1);
    share_port(descriptor, 1);
    const bool bound = descriptor < FD_SETSIZE && bind_to(descriptor, INADDR_LOOPBACK) == 0;
    share_port(server, 0);
    share_port(descriptor, 0);
    if (bound)
        return descriptor;
    PARA_TRACE(PARA_ERROR, "no socket of its own for this machine, errno:%d", errno);
    close(descriptor);
    return -1;
}

// Where the system does not tell the address, false.
static bool was_sent_to_many(msghdr &header)
{
    const cmsghdr *const option = CMSG_FIRSTHDR(&header);
    if (option == nullptr || option->cmsg_level != IPPROTO_IP || option->cmsg_type != IP_PKTINFO)
        return false;
    in_pktinfo addresses = {};
    memcpy(&addresses, CMSG_DATA(option), sizeof addresses);
    // The second is always an address of the machine's own.
    return addresses.ipi_addr.s_addr != addresses.ipi_spec_dst.s_addr;
}

// Receives as recvfrom() does, and sees where the datagram was sent to.
static reception receive_with_destination(int socket, para_message &message, socklen_t &sender_size)
{
    iovec text = {message.text, PARA_MESSAGE_MAX};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(in_pktinfo))] = {};
    msghdr header = {};
    header.msg_name = &message.sender;
    header.msg_namelen = sender_size;
    header.msg_iov = &text;
    header.msg_iovlen = 1;
    header.msg_control = control;
    header.msg_controllen = sizeof control;
    const ssize_t length = recvmsg(socket, &header, MSG_DONTWAIT);
    const bool received = length >= 0;
    return {.length = length,
            .to_many = received && was_sent_to_many(header),
            .cut = received && (header.msg_flags & MSG_TRUNC) != 0};
}

static reception receive(int socket, para_message &message, socklen_t &sender_size)
{
    if (guard_is_on())
        return receive_with_destination(socket, message, sender_size);
    return {.length = recvfrom(socket, message.text, PARA_MESSAGE_MAX, MSG_DONTWAIT,
                               reinterpret_cast<sockaddr *>(&message.sender), &sender_size),
            .to_many = false,
            .cut = false};
}

reception receive_datagram(int socket, para_message &message, socklen_t &sender_size)
{
    const reception received = receive(socket, message, sender_size);
    if (received.length >= 0)
        message.text[received.length] = '\0';
    return received;
}

int SendBuf2Client(int socket, struct sockaddr_in client, const char *text, int length)
{
    if (length == 0)
        return 0;

    PARA_TRACE(PARA_DUMP, "send buf : %s,buflen:%d", text, length);
    const ssize_t sent = sendto(socket, text, static_cast<size_t>(length), MSG_DONTWAIT,
                                reinterpret_cast<const sockaddr *>(&client), sizeof client);
    if (sent >= 0) {
        count_one(counter::replies);
        tell_reply_observer(client, length);
    }
    return 0;
}
