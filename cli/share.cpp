#include <cstring>

#include "camparam/share.h"
#include "commands.h"
#include "report.h"

namespace {

// Copies a text into a field of zeros, leaving at least one as terminator.
template <size_t size> void fill(char (&field)[size], const std::string &text)
{
    if (text.size() >= size)
        throw failure(USAGE, "\"" + text + "\" is too long, a share datagram holds " +
                                 std::to_string(size - 1) + " bytes of it");
    memcpy(field, text.data(), text.size());
}

std::string datagram_of(const std::string &module, int instance, const assignment &value)
{
    para_share_datagram datagram = {};
    const bool is_number = value.type == value_type::json;
    datagram.type = is_number ? PARA_SHARE_NUMBER : PARA_SHARE_TEXT;
    datagram.instance = static_cast<uint32_t>(instance);
    if (is_number)
        datagram.number = parse_int(value.value).value_or(0);
    else
        fill(datagram.text, value.value);
    fill(datagram.module, module);
    fill(datagram.member, value.member);
    return {reinterpret_cast<const char *>(&datagram), sizeof datagram};
}

// The name of an instance of a share module in requests.
std::string module_of(const std::string &shared, int instance)
{
    if (shared == "audio") {
        if (instance != 0)
            throw failure(USAGE, "audio has the instance 0 alone");
        return shared;
    }
    const std::string kind = shared.substr(0, shared.find_first_of("0123456789"));
    if (kind != shared && (kind == "video" || kind == "isp"))
        throw failure(USAGE, "\"" + shared + "\" takes no share datagrams; write " + kind +
                                 " and --instance " + shared.substr(kind.size()));
    if (shared != "video" && shared != "isp")
        throw failure(USAGE,
                      "\"" + shared + "\" takes no share datagrams; video, audio and isp do");
    return shared + std::to_string(instance);
}

struct options {
    std::string value;
    int instance = 0;
    form_options form;
};

exit_code run(program &all, options &chosen)
{
    client host = all.connect();
    const setting_value given = parse_setting_value(chosen.value);
    if (given.name.member.empty())
        throw failure(USAGE, "\"" + chosen.value + "\" is not of the form MODULE.MEMBER=VALUE");
    const std::string module = module_of(given.name.module, chosen.instance);
    const setting_value wanted = {{module, given.name.member}, given.value};
    const std::optional<description> described = describe(host, {module});
    const change planned = plan_change(host, wanted, described, {chosen.form.form(), false});

    host.send(datagram_of(given.name.module, chosen.instance, planned.value));
    const json_ptr values(cJSON_CreateObject());
    host.get(module, {planned.name.member}, values.get());
    outcome result;
    report_changes(host, {planned}, values.get(), all.as_json, result);
    return result.status();
}

} // namespace

void add_share(const arguments &words, program &all)
{
    const auto [share, given] = add_command<options>(
        words, all,
        {"share", "Change a setting by share datagram and read it back by request", run});
    share.footer(R"(Example:
  camparam share video.bitRate=4096 --instance 1)");
    share
        .text(given.value,
              {"value", "MODULE.MEMBER=VALUE", "Setting of video, audio or isp, and its new value"})
        .required();
    share.integer(given.instance, {"--instance", "N", "Stream, or image processor"}, 0, 255)
        .shows_default();
    add_form_options(share, given.form);
}
