// The server's socket, and the first look at a datagram: what kind of request is it?
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>

#include "base/file.h"
#include "base/server_port.h"
#include "base/text.h"
#include "base/trace.h"
#include "camparam/command.h"
#include "camparam/json_util.h"

int para_server_init()
{
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    // The thread that will wait on it cannot watch a descriptor beyond select's set.
    if (descriptor >= FD_SETSIZE) {
        PARA_TRACE(PARA_ERROR, "sock:%d is too large to wait on", descriptor);
        close(descriptor);
        return -1;
    }

    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(server_port);
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    const int bound =
        bind(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address);
    if (bound != 0) {
        PARA_TRACE(PARA_ERROR, "bind error ret = %d", bound);
        return -1;
    }

    PARA_TRACE(PARA_INFO, "para_server sock:%d", descriptor);
    param_base_register_init();
    return descriptor;
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

enum { GET = 0, SET = 1 };

int para_server_message_Process(para_message *message)
{
    json_ptr request(cJSON_Parse(message->text));
    if (!request) {
        PARA_TRACE(PARA_ERROR, "cJSON_Parse err,Rec buffer: %s", message->text);
        return 0;
    }

    const char *const type = json_object_get_string(cJSON_GetObjectItem(request.get(), "msg_type"));
    if (type == nullptr) {
        PARA_TRACE(PARA_ERROR, "get msg_type err");
        return 0;
    }

    // "get" and "set" may be cut short, down to nothing; longer types name commands. The order
    // decides for the types that several tests fit (Server.TellsRequestsByTheirType).
    if (begins_with("get", type))
        Recive_message_Process_gset(message, request.release(), GET);
    else if (begins_with("set", type))
        Recive_message_Process_gset(message, request.release(), SET);
    else if (strstr(type, "get") != nullptr)
        Recive_message_Process_api(message, request.release(), GET);
    else if (strstr(type, "set") != nullptr)
        Recive_message_Process_api(message, request.release(), SET);
    return 0;
}
