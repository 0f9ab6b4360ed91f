// The command "describe": lists modules and their members, page by page.
#include <climits>
#include <cstdio>
#include <cstdlib>

#include "command.h"
#include "description_page.h"
#include "revision.h"

// The names of modules that are asked for; null: all. Returns false for another type of list.
static bool read_list(const cJSON *data, const cJSON *&list)
{
    list = cJSON_GetObjectItemCaseSensitive(data, "modules");
    return list == nullptr || cJSON_IsArray(list);
}

// Reads digits, and goes on behind them. Returns false where there are none, or for a larger number
// than an int's.
static bool read_number(const char *&text, int &number)
{
    if (*text < '0' || *text > '9')
        return false;
    char *end = nullptr;
    const long long read = strtoll(text, &end, 10);
    if (read > INT_MAX)
        return false;
    text = end;
    number = static_cast<int>(read);
    return true;
}

// "ROW.MEMBER". Returns false for another text.
static bool read_cursor(const cJSON *data, page_cursor &cursor)
{
    const cJSON *const item = cJSON_GetObjectItemCaseSensitive(data, "cursor");
    if (item == nullptr)
        return true;
    const char *text = cJSON_GetStringValue(item);
    return text != nullptr && read_number(text, cursor.row) && *text++ == '.' &&
           read_number(text, cursor.member) && *text == '\0';
}

answered answer_describe(const request &request, json_builder &reply)
{
    const cJSON *list = nullptr;
    page_cursor from = {};
    if (!read_list(request.data, list) || !read_cursor(request.data, from))
        return answered::invalid;

    description_page page(reply, list, cJSON_GetObjectItemCaseSensitive(request.data, "member"),
                          from);
    revision of_settings(page);
    const descriptions texts;
    const cJSON *const secrets = cJSON_GetObjectItemCaseSensitive(request.data, "secrets");
    describe_all({texts, is_flag_set(secrets)}, of_settings);
    reply.number(reply.root(), "revision", of_settings.number());
    if (page.is_full()) {
        char next[32];
        snprintf(next, sizeof next, "%d.%d", page.next().row, page.next().member);
        reply.text(reply.root(), "next", next);
    }
    return answered::compactly;
}
