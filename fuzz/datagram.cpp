// Target: datagrams to a store on the sample device, with all commands of the kit.
//   input: byte 0: bit 0 guard, bit 1 trace level; then datagrams, separated by bytes 0xff
#include <cstring>
#include <string>

#include "camparam/camparam.h"
#include "camparam/commands.h"
#include "fuzz/support/device.h"
#include "fuzz/support/endpoint.h"
#include "fuzz/support/input.h"
#include "fuzz/support/json.h"
#include "fuzz/support/start_state.h"
#include "fuzz/support/target.h"
#include "host/share_datagram.h"

namespace {

endpoint *client;

// What one datagram does is that client's doing.
void check_sender(const char *row, const sockaddr_in *sender)
{
    para_module_status status = {};
    require(platformparam_get_status(row, &status) == 0, "a change of no row: %s", row);
    // The ODM store is changed by commands alone.
    require(sender != nullptr && memcmp(sender, &client->address(), sizeof *sender) == 0,
            "a change of %s by nobody", row);
}

void start()
{
    install_sample_home();
    require(para_commands_register() == 0, "the commands are not registered");
    register_share_datagram_handler(apply_share_datagram);
    start_store();
    keep_start_state();
    client = new endpoint;
    platformparam_set_change_observer(check_sender);
}

bool is_get_or_set(const std::string &datagram)
{
    const tree_ptr request = parse_json(datagram);
    const char *const type = cJSON_GetStringValue(cJSON_GetObjectItem(request.get(), "msg_type"));
    const char *const from = cJSON_GetStringValue(cJSON_GetObjectItem(request.get(), "msg_from"));
    const bool web = from != nullptr && strcmp(from, "www") == 0;
    return !web && type != nullptr &&
           (strncmp("get", type, strlen(type)) == 0 || strncmp("set", type, strlen(type)) == 0);
}

void check_reply(const std::string &reply)
{
    const tree_ptr tree = parse_json(reply);
    require(cJSON_IsObject(tree.get()), "a reply that is no object: %s", reply.c_str());
    require(reply == print_json(tree.get()), "a reply in another form: %s", reply.c_str());
}

void ask(const std::string &datagram, bool guard)
{
    const std::optional<std::string> reply = client->ask(datagram);
    if (reply && is_get_or_set(datagram))
        check_reply(*reply);
    // With the guard on, nothing may stand behind the document.
    const char *const text = datagram.c_str();
    const tree_ptr whole(cJSON_ParseWithOpts(text, nullptr, guard ? 1 : 0));
    require(!reply || whole != nullptr, "a reply to %s", text);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const bool started = (start(), true);
    if (!started || size == 0)
        return 0;
    input_reader input(data, size);
    const uint8_t settings = input.byte();
    platformparam_set_guard(settings & 1);
    dbgout_profile[1] = (settings & 2) != 0 ? 3 : 7;
    for (const std::string &datagram : parts_of(input.rest()))
        ask(datagram, (settings & 1) != 0);
    restore_start_state();
    return 0;
}
