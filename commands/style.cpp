// The command "style": lists the picture styles, or applies one.
#include <algorithm>

#include "base/word.h"
#include "command.h"
#include "isp_table.h"
#include "outcome.h"

namespace {

constexpr int instance = 0;      // only the first image processor has styles
constexpr int last_index = 1023; // guards against a bogus range

void add_style_name(json_builder &reply, const char *member, int index)
{
    const char *const style = para_get_isp_style_string(index);
    if (style != nullptr)
        reply.text(reply.root(), member, style);
}

void add_styles(json_builder &reply)
{
    cJSON *const styles = reply.array(reply.root(), "styles");
    // A listed style without values has no name, so a gap does not end the list before the range
    // does.
    const int last = std::min(para_get_isp_style_max(instance), last_index);
    for (int i = 0; i <= last || para_get_isp_style_string(i) != nullptr; i++) {
        const char *const name = para_get_isp_style_string(i);
        if (name != nullptr && para_get_isp_style_index(name) == i) // omits repeated names
            reply.append(styles, name);
    }
    add_style_name(reply, "default", para_get_isp_style_def_index(instance));
    add_style_name(reply, "current", para_get_isp_style_cur(instance));
}

// Sets one member. Returns the reason when it is refused.
reason set(const isp_member &member, int value)
{
    // The setter returns 0 either way; the current value shows whether it was accepted.
    member.set(instance, value);
    if (load_word(para_isp_cur[instance].*member.value) != value)
        return out_of_range(load_word(para_isp_min[instance].*member.value),
                            load_word(para_isp_max[instance].*member.value));
    return no_reason;
}

// The member "style" comes first: if it is refused, nothing else changes. Returns whether it was
// accepted.
bool apply_style(int index, outcome &result)
{
    const cJSON *const named = get_isp_style_json(index);
    const isp_record &values = *para_get_isp_style_param(instance, index);
    for (const isp_member &member : isp_members) {
        const bool is_style = member.value == &isp_record::style;
        if (!is_style && cJSON_GetObjectItem(named, member.name) == nullptr)
            continue;
        const reason why = set(member, is_style ? index : load_word(values.*member.value));
        result.add(member.name, why);
        if (is_style && why.text[0] != '\0')
            return false;
    }
    return true;
}

answered set_style(const cJSON *data, json_builder &reply)
{
    const cJSON *const name = cJSON_GetObjectItemCaseSensitive(data, "style");
    const cJSON *const as_default = cJSON_GetObjectItemCaseSensitive(data, "default");
    if (!cJSON_IsString(name) || !is_flag(as_default))
        return answered::invalid;

    outcome result(reply);
    constexpr reason unknown = {"no such style"};
    const int index = para_get_isp_style_index(name->valuestring);
    if (index < 0)
        result.add("style", unknown);
    else if (apply_style(index, result) && is_flag_set(as_default))
        result.add("default", para_set_isp_style_def(instance, index) == 0 ? no_reason : unknown);
    return answered::now;
}

} // namespace

answered answer_style(const request &request, json_builder &reply)
{
    if (request.mode == PARA_SET)
        return set_style(request.data, reply);
    add_styles(reply);
    return answered::now;
}
