// The command "pages": of which web pages the device has names.
#include <cstring>

#include "base/memory.h"
#include "camparam/control.h"
#include "camparam/platform.h"
#include "command.h"

namespace {

// The web-name file, as the store has read it.
json_ptr read_web_names(bool &starved)
{
    const memory_watch memory;
    const char *const name = para_profile.www2json_name;
    char path[PARA_PATH_SIZE];
    cat_file_name(path, para_profile.home_dir, name != nullptr ? name : "www2json.json");
    const text_ptr text(read_file_to_buf(path));
    json_ptr names(text != nullptr ? cJSON_Parse(text.get()) : nullptr);
    starved = names == nullptr && memory.ran_out();
    return names;
}

// The lists of modules that have no names of their own there.
bool is_list_of_patterns(const char *name)
{
    return strcmp(name, "json_pattern_list") == 0 || strcmp(name, "conf_pattern_list") == 0;
}

} // namespace

answered answer_pages(const request &, json_builder &reply)
{
    bool starved = false;
    const json_ptr names = read_web_names(starved);
    if (starved)
        reply.lack();
    cJSON *const pages = reply.array(reply.root(), "pages");
    const cJSON *page = nullptr;
    cJSON_ArrayForEach(page, names.get())
    {
        if (cJSON_IsArray(page) != 0 && !is_list_of_patterns(page->string))
            reply.append(pages, page->string);
    }
    return answered::compactly;
}
