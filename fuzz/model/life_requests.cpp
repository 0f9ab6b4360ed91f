// Operations by requests.
#include "fuzz/model/life.h"
#include "fuzz/support/endpoint.h"
#include "fuzz/support/target.h"

std::vector<std::string> life::members_of(const std::string &key)
{
    std::vector<std::string> names;
    const auto add = [&names](const auto &members) {
        for (const auto &member : members)
            names.emplace_back(member.name);
    };
    if (key == "af")
        add(device.af.members(0));
    else if (key == "audio")
        add(device.audio.members(0));
    else if (key.rfind("video", 0) == 0)
        add(device.video.members(0));
    else if (key.rfind("misc", 0) == 0)
        add(device.misc.members());
    else if (key.rfind("panel", 0) == 0)
        add(device.panel.members());
    else
        names = {"http_port", "dhcp", "name", "empty", "new"};
    names.emplace_back("unknown");
    return names;
}

static const std::vector<std::string> keys = {"af",      "audio",       "video0", "video1",
                                              "video2",  "misc",        "panel",  "misc_def",
                                              "netport", "netport_def", "other"};

// Seldom with identifiers of another type.
tree_ptr life::new_request(const char *type)
{
    tree_ptr request(cJSON_CreateObject());
    const int form = input.choice(8);
    if (form == 7)
        cJSON_AddNumberToObject(request.get(), "msg_name", 7);
    else
        cJSON_AddStringToObject(request.get(), "msg_name", chosen_text({"n", "name"}).c_str());
    cJSON_AddStringToObject(request.get(), "msg_type", type);
    if (form == 6)
        cJSON_AddStringToObject(request.get(), "msg_id", "6");
    else
        cJSON_AddNumberToObject(request.get(), "msg_id", chosen_value(0, 9, 5));
    return request;
}

void life::add_value(cJSON *object, const std::string &member)
{
    const int type = input.choice(8);
    if (type == 0)
        cJSON_AddBoolToObject(object, member.c_str(), 1);
    else if (type < 4)
        cJSON_AddNumberToObject(object, member.c_str(), chosen_value(0, 60, 1));
    else
        cJSON_AddStringToObject(object, member.c_str(),
                                chosen_text({"AAC", "G711A", "micin", "hdmi", "H265", "PIC_HD1",
                                             "PIC_D1", "VBR", "svc-t", "osd", "green", "1"})
                                    .c_str());
}

// The model has the request as the store reads it.
void life::ask(const tree_ptr &request, bool sets)
{
    const std::string text = print_json(request.get());
    const tree_ptr read = parse_json(text);
    const std::string expected = sets ? device.set(read.get()) : device.get(read.get());
    if (!live)
        return;
    const std::string reply = endpoint().ask(text).value_or("");
    require(reply == expected, "the reply is\n%s, not\n%s", reply.c_str(), expected.c_str());
}

void life::ask_set()
{
    const tree_ptr request = new_request("set");
    const std::string key = chosen_key(keys);
    cJSON *const object = cJSON_AddObjectToObject(request.get(), key.c_str());
    for (int left = input.choice(4); left >= 0; left--)
        add_value(object, chosen_key(members_of(key)));
    ask(request, true);
}

void life::ask_get()
{
    const tree_ptr request = new_request("get");
    for (int left = input.choice(3); left >= 0; left--) {
        const std::string key = chosen_key(keys);
        cJSON *const list = cJSON_AddArrayToObject(request.get(), key.c_str());
        const int count = input.choice(5);
        if (count == 0)
            cJSON_AddItemToArray(list, cJSON_CreateString("all"));
        for (int i = 0; i < count; i++)
            cJSON_AddItemToArray(list, cJSON_CreateString(chosen_key(members_of(key)).c_str()));
    }
    ask(request, false);
}
