#include "late_answer.h"

#include <cstring>
#include <utility>

late_answer answer_later(const para_message &message, json_ptr reply)
{
    return {message.socket, message.sender, std::move(reply)};
}

void send(const late_answer &answer)
{
    char *const text = cJSON_Print(answer.reply.get());
    if (text != nullptr)
        SendBuf2Client(answer.socket, answer.sender, text, static_cast<int>(strlen(text)));
    cJSON_free(text);
}
