// The command "reset": sets members to their defaults.
#include <cstring>
#include <utility>

#include "command.h"
#include "moment.h"
#include "repeated.h"
#include "setting.h"

namespace {

given_answers answers; // the store's thread only

const cJSON *default_of(const cJSON *member)
{
    return cJSON_GetObjectItemCaseSensitive(member, "default");
}

bool has_default(const cJSON *member)
{
    return cJSON_Compare(default_of(member), cJSON_GetObjectItemCaseSensitive(member, "current"),
                         1) != 0;
}

reason obstacle_to(const cJSON *member)
{
    if (member == nullptr)
        return {"no such member"};
    if (default_of(member) == nullptr)
        return {"has no default"};
    // A request for it might change another.
    return is_read_only(member) && !has_default(member) ? reason{"read-only"} : no_reason;
}

// Of one module.
class resetting {
public:
    resetting(const char *name, const descriptions &with, outcome &into)
        : texts(with), result(into), before(name, with)
    {
    }

    // All that can be reset, or those that are named.
    void reset(const cJSON *names)
    {
        if (!before.exists()) {
            result.add(names->string, {"no such module"});
            return;
        }
        if (!before.is_complete()) {
            result.lack();
            return;
        }
        if (is_all(names))
            choose_all();
        else
            choose(names);
        carry_out(names->string);
    }

private:
    // As in get requests.
    static bool is_all(const cJSON *names)
    {
        const char *const only = cJSON_GetArraySize(names) == 1
                                     ? cJSON_GetStringValue(cJSON_GetArrayItem(names, 0))
                                     : nullptr;
        return only != nullptr && strcmp(only, "all") == 0;
    }

    void choose_all()
    {
        for (const cJSON *member = before.first(); member != nullptr; member = member->next) {
            if (!has_default(member) && obstacle_to(member).text[0] == '\0')
                add(member);
        }
    }

    void choose(const cJSON *names)
    {
        const cJSON *name = nullptr;
        cJSON_ArrayForEach(name, names)
        {
            const char *const text = cJSON_IsString(name) ? name->valuestring : "";
            const cJSON *const member = before.find(text);
            const reason why = obstacle_to(member);
            if (why.text[0] == '\0' && !has_default(member))
                add(member);
            else
                result.add(setting_name(names->string, text).text, why);
        }
    }

    void add(const cJSON *member)
    {
        defaults.value(defaults.root(), member->string,
                       json_ptr(cJSON_Duplicate(default_of(member), 1)));
    }

    void carry_out(const char *name)
    {
        const json_ptr values = defaults.take();
        if (values == nullptr) {
            result.lack();
            return;
        }
        if (values->child == nullptr)
            return;
        const bool had_memory = set_members(before.module(), values.get());
        const module_settings after(name, texts);
        if (!had_memory || !after.is_complete())
            result.lack();
        const cJSON *value = nullptr;
        cJSON_ArrayForEach(value, values.get())
        {
            result.add(setting_name(name, value->string).text,
                       after.is_in_force(value) ? no_reason : reason{"not taken"});
        }
    }

    const descriptions &texts;
    outcome &result;
    const module_settings before;
    json_builder defaults;
};

} // namespace

answered answer_reset(const request &request, json_builder &reply)
{
    if (request.data == nullptr)
        return answered::invalid;
    if (answers.give_again(request.message, reply))
        return answered::now;
    const cJSON *names = nullptr;
    cJSON_ArrayForEach(names, request.data)
    {
        if (!cJSON_IsArray(names))
            return answered::invalid;
    }
    const descriptions texts;
    outcome result(reply);
    cJSON_ArrayForEach(names, request.data)
    {
        resetting(names->string, texts, result).reset(names);
    }
    answers.keep(request.message, reply, monotonic_ms() + repeats_ms);
    return answered::now;
}
