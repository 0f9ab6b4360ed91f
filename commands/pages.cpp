// The command "pages": the web pages of the device, and the names on one.
#include <cstring>

#include "camparam/control.h"
#include "command.h"
#include "home_file.h"

namespace {

// The lists of modules that have no names of their own there.
bool is_list_of_patterns(const char *name)
{
    return strcmp(name, "json_pattern_list") == 0 || strcmp(name, "conf_pattern_list") == 0;
}

void list_pages(const cJSON *file, json_builder &reply)
{
    cJSON *const pages = reply.array(reply.root(), "pages");
    const cJSON *page = nullptr;
    cJSON_ArrayForEach(page, file)
    {
        if (cJSON_IsArray(page) != 0 && !is_list_of_patterns(page->string))
            reply.append(pages, page->string);
    }
}

// The first three elements of an entry are its name, its type and its modifier.
void add_name(const char *module, const cJSON *entry, json_builder &reply, cJSON *names)
{
    static constexpr const char *keys[] = {"name", "type", "modifier"};
    json_builder name;
    const cJSON *text = entry->child;
    for (const char *key : keys) {
        if (text != nullptr && cJSON_IsString(text))
            name.text(name.root(), key, text->valuestring);
        text = text != nullptr ? text->next : nullptr;
    }
    name.text(name.root(), "module", module);
    name.text(name.root(), "member", entry->string);
    reply.append(names, name.take());
}

void list_names(const cJSON *file, const char *page, json_builder &reply)
{
    cJSON *const names = reply.array(reply.root(), "names");
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, cJSON_GetObjectItemCaseSensitive(file, page))
    {
        const char *const name = cJSON_GetStringValue(module);
        const cJSON *const entries =
            name != nullptr ? cJSON_GetObjectItemCaseSensitive(file, name) : nullptr;
        if (!cJSON_IsObject(entries))
            continue;
        const cJSON *entry = nullptr;
        cJSON_ArrayForEach(entry, entries)
        {
            if (cJSON_IsArray(entry) != 0 && cJSON_IsString(entry->child) != 0)
                add_name(name, entry, reply, names);
        }
    }
}

} // namespace

answered answer_pages(const request &request, json_builder &reply)
{
    const cJSON *const page = cJSON_GetObjectItemCaseSensitive(request.data, "page");
    if (page != nullptr && !cJSON_IsString(page))
        return answered::invalid;
    const char *const name = para_profile.www2json_name;
    const home_file names = read_home_file(name != nullptr ? name : "www2json.json");
    if (names.starved)
        reply.lack();
    if (page != nullptr)
        list_names(names.root.get(), page->valuestring, reply);
    else
        list_pages(names.root.get(), reply);
    return answered::compactly;
}
