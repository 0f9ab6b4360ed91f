#include "checked.h"

#include "descriptions.h"
#include "setting.h"

namespace {

// A module of the host's own may be a setting itself: that is the member without a name.
reason fault_of_bare(const module_settings &module, const cJSON *value)
{
    const cJSON *const itself = module.find("");
    return itself != nullptr ? fault_of(itself, value) : reason{"not an object of settings"};
}

class checker {
public:
    checker(outcome &into, bool tell_accepted) : result(into), tells_accepted(tell_accepted) {}

    void check(const cJSON *values)
    {
        const module_settings module(values->string, texts);
        if (!module.exists()) {
            add(values->string, "", {"no such module"});
        } else if (!module.is_complete()) {
            result.lack();
        } else if (!cJSON_IsObject(values)) {
            add(values->string, "", fault_of_bare(module, values));
        } else {
            const cJSON *value = nullptr;
            cJSON_ArrayForEach(value, values)
            {
                add(values->string, value->string, fault_of(module.find(value->string), value));
            }
        }
    }

    int refused = 0;

private:
    void add(const char *module, const char *member, const reason &why)
    {
        const bool is_refused = why.text[0] != '\0';
        if (is_refused || tells_accepted)
            result.add(setting_name(module, member).text, why);
        refused += is_refused ? 1 : 0;
    }

    const descriptions texts;
    outcome &result;
    const bool tells_accepted;
};

} // namespace

static int check_all(const cJSON *modules, outcome &result, bool tell_accepted)
{
    checker all(result, tell_accepted);
    const cJSON *values = nullptr;
    cJSON_ArrayForEach(values, modules)
    {
        all.check(values);
    }
    return all.refused;
}

void check_values(const cJSON *modules, outcome &result)
{
    check_all(modules, result, true);
}

int refuse_faulty_values(const cJSON *modules, outcome &result)
{
    return check_all(modules, result, false);
}

void refuse_values(const cJSON *modules, const reason &why, outcome &result)
{
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, modules)
    {
        const cJSON *member = nullptr;
        cJSON_ArrayForEach(member, module)
        {
            result.add(setting_name(module->string, member->string).text, why);
        }
    }
}

static bool names_each_once(const cJSON *object)
{
    if (!cJSON_IsObject(object))
        return false;
    const cJSON *item = nullptr;
    cJSON_ArrayForEach(item, object)
    {
        if (cJSON_GetObjectItemCaseSensitive(object, item->string) != item)
            return false;
    }
    return true;
}

bool are_values(const cJSON *modules)
{
    if (!names_each_once(modules))
        return false;
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, modules)
    {
        if (!names_each_once(module))
            return false;
    }
    return true;
}

bool names_a_member(const cJSON *modules)
{
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, modules)
    {
        if (module->child != nullptr)
            return true;
    }
    return false;
}
