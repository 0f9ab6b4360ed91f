// Target: the text of replies. The reply to a tree is what cJSON prints of it, and the reply to a
// get is what cJSON prints of the reply when it is parsed.
//   input: a JSON text
#include <string>

#include "camparam/camparam.h"
#include "fuzz/support/device.h"
#include "fuzz/support/endpoint.h"
#include "fuzz/support/json.h"
#include "fuzz/support/target.h"
#include "server/reply.h"

namespace {

constexpr size_t largest_datagram = 65507;

endpoint *client;

void start()
{
    install_sample_home();
    start_store();
    client = new endpoint;
}

void check_tree(const cJSON *tree)
{
    para_message message = {};
    message.socket = client->server();
    message.sender = client->address();
    send_tree(message, tree);
    const std::string expected = print_json(tree);
    const std::optional<std::string> reply = client->receive();
    const bool fits = !expected.empty() && expected.size() <= largest_datagram;
    require(reply.has_value() == fits, "a reply of %zu bytes", expected.size());
    require(!reply || *reply == expected, "another text than %s", expected.c_str());
}

// The tree as the name of a message, and as the members that are asked for.
void check_get(tree_ptr tree)
{
    const tree_ptr request(cJSON_CreateObject());
    cJSON_AddStringToObject(request.get(), "msg_type", "get");
    for (const char *key : {"msg_name", "msg_id", "af", "video0", "misc", "netport"})
        cJSON_AddItemToObject(request.get(), key, cJSON_Duplicate(tree.get(), 1));
    const std::string text = print_json(request.get());
    if (text.size() > PARA_MESSAGE_MAX)
        return;
    const std::optional<std::string> reply = client->ask(text);
    if (!reply)
        return; // nothing that could be parsed again
    const tree_ptr parsed = parse_json(*reply);
    require(parsed != nullptr && print_json(parsed.get()) == *reply, "another form: %s",
            reply->c_str());
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const bool started = (start(), true);
    const std::string text(reinterpret_cast<const char *>(data), size);
    tree_ptr tree = parse_json(text);
    if (!started || tree == nullptr)
        return 0;
    check_tree(tree.get());
    check_get(std::move(tree));
    return 0;
}
