#include "late_reply.h"

#include <cstring>

static bool add_failed(cJSON *reply, const cJSON *failed)
{
    if (failed == nullptr)
        return false;
    if (failed->child == nullptr)
        return true;
    return add_to_object(reply, "failed", json_ptr(cJSON_Duplicate(failed, 1)));
}

void send_late(int socket, const sockaddr_in &client, json_ptr reply, const cJSON *failed)
{
    if (!add_failed(reply.get(), failed))
        return;
    const printed_ptr text(cJSON_Print(reply.get()));
    if (text != nullptr)
        SendBuf2Client(socket, client, text.get(), static_cast<int>(strlen(text.get())));
}
