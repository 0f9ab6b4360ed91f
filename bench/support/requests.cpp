#include "bench/support/requests.h"

namespace {

const std::vector<std::string> fifteen = {
    "shutter",    "iris", "bright",   "expcomp_level", "gain_limit", "wb_mode",   "rgain", "bgain",
    "saturation", "hue",  "contrast", "gamma",         "luminance",  "sharpness", "nr3d",
};

std::string get_request(const std::vector<std::string> &members)
{
    std::string list;
    for (const std::string &member : members)
        list += (list.empty() ? "\"" : ",\"") + member + "\"";
    return R"({"msg_type":"get","msg_name":"bench","msg_id":7,"isp0":[)" + list + "]}";
}

std::string set_request(int value)
{
    return R"({"msg_type":"set","msg_name":"bench","msg_id":7,"isp0":{"saturation":)" +
           std::to_string(value) + "}}";
}

} // namespace

const std::vector<request_kind> &request_kinds()
{
    static const std::vector<request_kind> kinds = {
        {"one member", {"saturation"}, {get_request({"saturation"})}},
        {"fifteen members", fifteen, {get_request(fifteen)}},
        {"all members", {}, {get_request({"all"})}},
        {"set one member", {"saturation"}, {set_request(40), set_request(60)}},
    };
    return kinds;
}
