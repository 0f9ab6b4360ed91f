// Target: the web-name conversion, both ways.
//   input: byte 0: size of the error area; then the web-name file, a request, and a reply,
//   separated by bytes 0xff
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "camparam/www.h"
#include "fuzz/support/input.h"
#include "fuzz/support/json.h"
#include "fuzz/support/target.h"
#include "server/web_names.h"

namespace {

// A reply is never empty, and its pairs are cut.
void check_query(cJSON *reply)
{
    const std::unique_ptr<char, decltype(&free)> query(get_json2http(reply), free);
    require(query != nullptr && query.get()[0] != '\0', "an empty reply");
}

bool same(const char *one, const char *other)
{
    return one != nullptr && other != nullptr && strcmp(one, other) == 0;
}

// Whether the query has the name, which is cut there if it is as long as names may be.
bool names(const std::string &query, const std::string &name)
{
    return query.find(name.size() < 31 ? name + "=" : name) != std::string::npos;
}

bool has_entry(const cJSON *module, const char *member, const std::string &query)
{
    const cJSON *entry = nullptr;
    cJSON_ArrayForEach(entry, module)
    {
        const char *const name = cJSON_GetStringValue(cJSON_GetArrayItem(entry, 0));
        if (same(entry->string, member) && name != nullptr && names(query, name))
            return true;
    }
    return false;
}

// Whether a module of that name in the file has the member, and the query its web name.
bool is_meant(const char *module, const char *member, const std::string &query)
{
    const cJSON *object = nullptr;
    cJSON_ArrayForEach(object, para_config)
    {
        if (same(object->string, module) && has_entry(object, member, query))
            return true;
    }
    return false;
}

void check_members(const cJSON *module, const std::string &query)
{
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, module)
    {
        require(is_meant(module->string, member->string, query), "%s.%s is not in the query",
                module->string, member->string);
    }
}

// A get asks for the members of modules that the file names, a set has their values.
void check_request(const cJSON *request, bool get, const std::string &query)
{
    int modules = 0;
    const cJSON *item = nullptr;
    cJSON_ArrayForEach(item, request)
    {
        if (cJSON_IsArray(item) || cJSON_IsObject(item)) {
            require(get == (cJSON_IsArray(item) != 0), "%s in the wrong form", item->string);
            require(cJSON_GetArraySize(item) > 0, "%s is empty", item->string);
            if (!get)
                check_members(item, query);
            modules++;
        }
    }
    require(cJSON_GetArraySize(request) == modules + 4, "identifiers are missing");
    const char *const type = cJSON_GetStringValue(cJSON_GetObjectItem(request, "msg_type"));
    require(type != nullptr && strcmp(type, get ? "get" : "set") == 0, "another type");
}

// A text of the request, or an empty one.
std::string text_in(const std::string &request, const char *key)
{
    const tree_ptr tree = parse_json(request);
    const char *const text = cJSON_GetStringValue(cJSON_GetObjectItem(tree.get(), key));
    return text != nullptr ? text : "";
}

void convert(const std::string &request, size_t error_size)
{
    const std::unique_ptr<char[]> error(new char[error_size]); // no byte more
    memset(error.get(), 'x', error_size);
    const tree_ptr converted(
        para_convert_www_opt(request.c_str(), error.get(), static_cast<int>(error_size)));
    require(memchr(error.get(), '\0', error_size) != nullptr, "the error text has no end");
    require(converted == nullptr || error.get()[0] == '\0', "a request and an error");
    if (converted != nullptr) {
        check_request(converted.get(), text_in(request, "msg_type") == "get",
                      text_in(request, "data"));
        check_query(converted.get());
    }
}

void convert_directly(const std::string &request)
{
    const tree_ptr tree = parse_json(request);
    if (tree == nullptr)
        return;
    const tree_ptr get(get_http2json(tree.get()));
    const tree_ptr set(set_http2json(tree.get()));
}

// The search for web names keeps its place in the file, which stays in a device.
void use_names(cJSON *names)
{
    para_config = names;
    const char *modifier = nullptr;
    www_json_name found;
    get_json_name(&found, "", &modifier, 0);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    input_reader input(data, size);
    const size_t error_size = input.byte() + size_t{1};
    std::vector<std::string> parts = parts_of(input.rest());
    parts.resize(3);

    const tree_ptr names = parse_json(parts[0]);
    use_names(names.get());
    convert(parts[1], error_size);
    convert_directly(parts[1]);
    const tree_ptr reply = parse_json(parts[2]);
    check_query(reply.get());
    use_names(nullptr);
    return 0;
}
