// Web names: translating requests of the web pages, and the replies to them.
#include "camparam/www.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/file.h"
#include "base/number.h"
#include "base/trace.h"
#include "camparam/json_util.h"
#include "runtime/module_table.h"

int para_init_www()
{
    return 0;
}

void para_exit_www() {}

static const char *text_of(const cJSON *object, const char *key)
{
    return json_object_get_string(cJSON_GetObjectItem(object, key));
}

// The members of an object; nothing of any other node.
static const cJSON *if_object(const cJSON *node)
{
    return cJSON_IsObject(node) ? node : nullptr;
}

// --- Modifiers: the third text of a web-name entry ---

constexpr int piece_size = 64; // of one pair in a reply

static int whole_number(double number)
{
    if (!(number > INT_MIN))
        return number == number ? INT_MIN : 0;
    return number < INT_MAX ? static_cast<int>(number) : INT_MAX;
}

static int plain_to_json(const char *text)
{
    return leading_number(text);
}

static void plain_to_web(char (&text)[piece_size], const cJSON *number)
{
    snprintf(text, sizeof text, "%d", number->valueint);
}

// Thousands: 4096 on the page is 4096000 in the module.
static int thousands_to_json(const char *text)
{
    return whole_number(strtod(text, nullptr) * 1000.0);
}

static void thousands_to_web(char (&text)[piece_size], const cJSON *number)
{
    const int value = number->valueint;
    if (value % 1000 == 0)
        snprintf(text, sizeof text, "%d", value / 1000);
    else
        snprintf(text, sizeof text, "%.1f",
                 static_cast<double>(static_cast<float>(value) / 1000.0F));
}

// Counted from one on the page. The way back gives 0, whatever the text: pages only show these
// (WwwSet.ACountedNumberIsStoredAsZero).
static int counted_to_json(const char *)
{
    return 0;
}

static void counted_to_web(char (&text)[piece_size], const cJSON *number)
{
    snprintf(text, sizeof text, "%lld", number->valueint + 1LL);
}

static void fraction_to_web(char (&text)[piece_size], const cJSON *number)
{
    snprintf(text, sizeof text, "%.2f", number->valuedouble);
}

struct www_modifier {
    const char *name;
    bool always_joined; // by "&", also as the first pair of a reply
    bool greedy;        // a set goes to every module that has the web name
    int (*to_json)(const char *text);
    void (*to_web)(char (&text)[piece_size], const cJSON *number);
};

static const www_modifier modifiers[] = {
    {"K", true, false, thousands_to_json, thousands_to_web},
    {"P", true, false, counted_to_json, counted_to_web},
    {"F", true, false, plain_to_json, fraction_to_web},
    {"Greedy", false, true, plain_to_json, plain_to_web},
};
static const www_modifier no_modifier = {"", false, false, plain_to_json, plain_to_web};

static const www_modifier &modifier_named(const char *name)
{
    for (const www_modifier &modifier : modifiers) {
        if (name != nullptr && strcmp(modifier.name, name) == 0)
            return modifier;
    }
    return no_modifier;
}

// --- Looking names up ---

// Stores an entry's text at that place, if it has one.
static void take_text(const cJSON *entry, int place, const char **text)
{
    const cJSON *const item = cJSON_GetArrayItem(entry, place);
    if (item != nullptr && text != nullptr)
        *text = cJSON_IsString(item) ? item->valuestring : nullptr;
}

const char *get_http_name(const char *module, const char *member, const char **type,
                          const char **modifier)
{
    const cJSON *const object = if_object(cJSON_GetObjectItem(para_config, module));
    const cJSON *entry = nullptr;
    cJSON_ArrayForEach(entry, object)
    {
        if (!cJSON_IsArray(entry) || entry->child == nullptr || strcmp(entry->string, member) != 0)
            continue;
        const char *name = nullptr;
        take_text(entry, 0, &name);
        take_text(entry, 1, type);
        take_text(entry, 2, modifier);
        return name;
    }
    PARA_TRACE(PARA_INFO, "can not find %s.%s", module, member);
    return nullptr;
}

// Where the last search by web name ended: a module's object, or null.
static const cJSON *cursor;

static const cJSON *entry_with_web_name(const cJSON *module, const char *web_name)
{
    const cJSON *entry = nullptr;
    cJSON_ArrayForEach(entry, if_object(module))
    {
        const char *name = nullptr;
        if (cJSON_IsArray(entry))
            take_text(entry, 0, &name);
        if (name != nullptr && strcmp(name, web_name) == 0)
            return entry;
    }
    return nullptr;
}

void get_json_name(www_json_name *found, const char *web_name, const char **modifier, int next)
{
    *found = {nullptr, nullptr, nullptr};
    const cJSON *const first = para_config != nullptr ? para_config->child : nullptr;
    const cJSON *const following = cursor != nullptr ? cursor->next : nullptr;
    cursor = next == 0 ? first : following;
    if (cursor != nullptr && cursor->string != nullptr)
        PARA_TRACE(PARA_INFO, "search %s in %s", web_name, cursor->string);

    for (; cursor != nullptr; cursor = cursor->next) {
        const cJSON *const entry = entry_with_web_name(cursor, web_name);
        if (entry == nullptr ||
            cursor->string == nullptr) // a file that is a bare array has no keys
            continue;
        found->module = cursor->string;
        found->member = entry->string;
        take_text(entry, 1, &found->type);
        take_text(entry, 2, modifier);
        return;
    }
}

// --- Requests ---

// The beginning of every converted request, with a number of its own.
static json_ptr new_request(const char *type, const char *name)
{
    static unsigned msg_id = 0;
    json_ptr request(cJSON_CreateObject());
    cJSON_AddStringToObject(request.get(), "msg_from", "www");
    cJSON_AddStringToObject(request.get(), "msg_type", type);
    cJSON_AddStringToObject(request.get(), "msg_name", name);
    cJSON_AddNumberToObject(request.get(), "msg_id", ++msg_id);
    return request;
}

// Every member of a module, or all that it has when the file names none.
static cJSON *members_of(const cJSON *module)
{
    cJSON *const members = cJSON_CreateArray();
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, module)
    {
        cJSON_AddItemToArray(members, cJSON_CreateString(member->string));
    }
    if (module->child == nullptr)
        cJSON_AddItemToArray(members, cJSON_CreateString("all"));
    return members;
}

cJSON *get_http2json(const cJSON *web_request)
{
    const char *const page = text_of(web_request, "msg_name");
    if (page == nullptr)
        return nullptr;

    json_ptr request = new_request("get", page);
    const cJSON *const list = cJSON_GetObjectItem(para_config, page);
    if (!cJSON_IsArray(list)) {
        PARA_TRACE(PARA_INFO, "could not find %s in json", page);
        return nullptr;
    }
    const cJSON *name = nullptr;
    cJSON_ArrayForEach(name, list)
    {
        const cJSON *const module =
            cJSON_IsString(name) ? cJSON_GetObjectItem(para_config, name->valuestring) : nullptr;
        if (cJSON_IsObject(module))
            cJSON_AddItemToObject(request.get(), name->valuestring, members_of(module));
    }
    return request.release();
}

// A key or value of a pair, cut to fit.
struct pair_text {
    pair_text(const char *from, const char *end)
    {
        const auto length = static_cast<size_t>(end - from);
        const size_t kept = length < sizeof text ? length : sizeof text - 1;
        memcpy(text, from, kept);
    }
    char text[32] = "";
};

static void add_member(cJSON *request, const www_json_name &name, const www_modifier &modifier,
                       const char *value)
{
    cJSON *module = cJSON_GetObjectItem(request, name.module);
    if (module == nullptr)
        module = cJSON_AddObjectToObject(request, name.module);
    if (name.type != nullptr && strcmp(name.type, "S") == 0)
        cJSON_AddStringToObject(module, name.member, value);
    else
        cJSON_AddNumberToObject(module, name.member, modifier.to_json(value));
}

static void add_pair(cJSON *request, const char *key, const char *value)
{
    const char *modifier = nullptr;
    www_json_name name;
    get_json_name(&name, key, &modifier, 0);
    if (name.module == nullptr)
        return;
    add_member(request, name, modifier_named(modifier), value);
    if (!modifier_named(modifier).greedy)
        return;
    for (get_json_name(&name, key, &modifier, 1); name.module != nullptr;
         get_json_name(&name, key, &modifier, 1))
        add_member(request, name, modifier_named(modifier), value);
}

// Adds the pairs of a query. Returns whether it holds any; what follows the last "=" of them all
// and its value is ignored.
static bool add_pairs(cJSON *request, const char *query)
{
    const char *equals = strchr(query, '=');
    if (equals == nullptr)
        return false;
    while (equals != nullptr) {
        const char *const end = equals + 1 + strcspn(equals + 1, "&");
        add_pair(request, pair_text(query, equals).text, pair_text(equals + 1, end).text);
        query = *end == '&' ? end + 1 : end;
        equals = strchr(query, '=');
    }
    return true;
}

cJSON *set_http2json(const cJSON *web_request)
{
    const cJSON *const data = cJSON_GetObjectItem(web_request, "data");
    const char *const name = text_of(web_request, "msg_name");
    if (data == nullptr || name == nullptr)
        return nullptr;

    json_ptr request = new_request("set", name);
    if (cJSON_IsString(data) && !add_pairs(request.get(), data->valuestring))
        return nullptr;
    return request.release();
}

cJSON *para_convert_www_opt(const char *request, char *error, int size)
{
    const auto error_size = static_cast<size_t>(size);
    snprintf(error, error_size, "%s", "");
    if (para_config == nullptr) {
        snprintf(error, error_size, "para_config=null");
        return nullptr;
    }
    const json_ptr parsed(cJSON_Parse(request));
    if (!parsed) {
        snprintf(error, error_size, "cJSON_Parse=null");
        return nullptr;
    }

    const char *const type = text_of(parsed.get(), "msg_type");
    if (type != nullptr && strcmp(type, "set") == 0)
        return set_http2json(parsed.get());
    if (type == nullptr || strcmp(type, "get") != 0)
        return nullptr;

    cJSON *const converted = get_http2json(parsed.get());
    if (converted == nullptr) {
        const char *const page = text_of(parsed.get(), "msg_name");
        snprintf(error, error_size, "%s=null", page != nullptr ? page : "");
    }
    return converted;
}

// --- Replies ---

// Heap text that grows as pairs are appended; null once memory has run out.
class query_text {
public:
    query_text() : text(static_cast<char *>(calloc(1, size))) {}
    ~query_text() { free(text); }
    query_text(const query_text &) = delete;
    query_text &operator=(const query_text &) = delete;

    bool empty() const { return length == 0; }

    void append(const char *piece)
    {
        const size_t piece_length = strlen(piece);
        if (text != nullptr && length + piece_size > size - 1)
            grow(piece_length + increment);
        if (text == nullptr)
            return;
        memcpy(text + length, piece, piece_length + 1);
        length += piece_length;
    }

    char *release()
    {
        char *const released = text;
        text = nullptr;
        return released;
    }

private:
    static constexpr size_t increment = 512;

    void grow(size_t by)
    {
        size += by;
        auto *const larger = static_cast<char *>(realloc(text, size));
        if (larger == nullptr)
            free(text);
        text = larger;
    }

    size_t size = increment;
    size_t length = 0;
    char *text;
};

static void append_pair(query_text &query, bool joined, const char *name, const char *value)
{
    char piece[piece_size]; // a longer pair is cut
    snprintf(piece, sizeof piece, "%s%s=%s", joined ? "&" : "", name, value);
    query.append(piece);
}

static void append_member(query_text &query, const char *module, const cJSON *member)
{
    const char *type = nullptr;
    const char *modifier_name = nullptr;
    const char *const name = get_http_name(module, member->string, &type, &modifier_name);
    if (name == nullptr)
        return;
    if (cJSON_IsString(member)) {
        append_pair(query, !query.empty(), name, member->valuestring);
    } else if (cJSON_IsNumber(member)) {
        const www_modifier &modifier = modifier_named(modifier_name);
        char value[piece_size];
        modifier.to_web(value, member);
        append_pair(query, modifier.always_joined || !query.empty(), name, value);
    }
}

char *get_json2http(cJSON *reply)
{
    query_text query;
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, reply)
    {
        const cJSON *member = nullptr;
        cJSON_ArrayForEach(member, if_object(module)) append_member(query, module->string, member);
    }
    if (query.empty())
        append_pair(query, false, "result", "success");
    return query.release();
}

char *para_reverse_convert_www_opt(cJSON *reply)
{
    return get_json2http(reply);
}
