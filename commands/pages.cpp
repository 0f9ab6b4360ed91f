// The command "pages": of which web pages the device has names.
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

} // namespace

answered answer_pages(const request &, json_builder &reply)
{
    const char *const name = para_profile.www2json_name;
    const home_file names = read_home_file(name != nullptr ? name : "www2json.json");
    if (names.starved)
        reply.lack();
    cJSON *const pages = reply.array(reply.root(), "pages");
    const cJSON *page = nullptr;
    cJSON_ArrayForEach(page, names.root.get())
    {
        if (cJSON_IsArray(page) != 0 && !is_list_of_patterns(page->string))
            reply.append(pages, page->string);
    }
    return answered::compactly;
}
