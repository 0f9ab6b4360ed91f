#include "secrets.h"

#include <vector>

#include "camparam/platform_trace.h"
#include "device_file.h"
#include "json.h"

namespace {

json_ptr load(const std::string &home, const std::string &name)
{
    const device_file file = read_device_file(home, name);
    return json_ptr(file.text ? cJSON_Parse(file.text.get()) : nullptr);
}

bool is_secret(const cJSON *member)
{
    return cJSON_IsTrue(cJSON_GetObjectItemCaseSensitive(member, "secret")) != 0;
}

// An entry of the web-name file is an array that begins with the web name.
void add_web_names(const cJSON *names, const char *member, std::vector<const char *> &hidden)
{
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, names)
    {
        const cJSON *const entry = cJSON_GetObjectItem(module, member);
        const char *const name = cJSON_GetStringValue(cJSON_GetArrayItem(entry, 0));
        if (name != nullptr)
            hidden.push_back(name);
    }
}

} // namespace

bool hide_secrets(const std::string &home, const std::string &web_names)
{
    const json_ptr texts = load(home, "descriptions.json"), names = load(home, web_names);
    std::vector<const char *> hidden;
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, texts.get())
    {
        const cJSON *member = nullptr;
        cJSON_ArrayForEach(member, module)
        {
            if (!is_secret(member) || member->string == nullptr)
                continue;
            hidden.push_back(member->string);
            add_web_names(names.get(), member->string, hidden);
        }
    }
    return hide_in_traces(hidden.data(), static_cast<int>(hidden.size())) == 0;
}
