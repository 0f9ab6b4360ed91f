#include "repeated.h"

#include <cstdlib>
#include <cstring>
#include <utility>

#include "moment.h"

bool given_answers::given_answer::answers(const para_message &message) const
{
    return client.sin_addr.s_addr == message.sender.sin_addr.s_addr &&
           client.sin_port == message.sender.sin_port && strcmp(request, message.text) == 0;
}

void given_answers::forget(given_answer &answer)
{
    free(answer.request);
    cJSON_free(answer.reply);
    answer = {};
}

bool given_answers::give_again(const para_message &message, json_builder &reply)
{
    for (given_answer &answer : kept) {
        if (answer.request != nullptr && monotonic_ms() >= answer.until_ms)
            forget(answer);
        if (answer.request != nullptr && answer.answers(message)) {
            reply.become(json_ptr(cJSON_Parse(answer.reply)));
            return true;
        }
    }
    return false;
}

bool given_answers::keep(const para_message &message, json_builder &reply, long long until_ms)
{
    if (!reply.is_complete())
        return false;
    if (cJSON_GetObjectItemCaseSensitive(reply.root(), "msg_id") == nullptr)
        return true;
    text_ptr request(strdup(message.text));
    printed_ptr text(cJSON_PrintUnformatted(reply.root()));
    if (request == nullptr || text == nullptr) {
        reply.lack();
        return false;
    }
    given_answer &place = kept[last++ % (sizeof kept / sizeof kept[0])];
    forget(place);
    place = {request.release(), text.release(), message.sender, until_ms};
    return true;
}
