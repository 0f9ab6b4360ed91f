#include "client/client.h"

#include <algorithm>
#include <random>

#include "client/failure.h"

namespace {

int random_id()
{
    std::random_device source;
    return std::uniform_int_distribution<int>(1, 1000000000)(source);
}

// Whether the answer repeats an identifier of the request, or one of the two lacks it.
bool agrees(const cJSON *answer, const cJSON *request, const char *identifier)
{
    const cJSON *const found = member_of(answer, identifier);
    const cJSON *const sent = member_of(request, identifier);
    if (found == nullptr || sent == nullptr)
        return true;
    if (cJSON_IsNumber(sent)) // echoed as an integer
        return cJSON_IsNumber(found) && found->valueint == sent->valueint;
    return !cJSON_IsString(sent) || string_of(found) == string_of(sent);
}

bool is_answer_to(const cJSON *request, const cJSON *answer)
{
    return cJSON_IsObject(answer) && agrees(answer, request, "msg_id") &&
           agrees(answer, request, "msg_name");
}

// Sends items as one request, or splits them in halves while it exceeds a datagram. build(first,
// count) makes the request, send(request) sends it.
template <typename item, typename builder, typename sender>
void send_in_parts(const item *first, size_t count, const builder &build, const sender &send)
{
    const json_ptr request = build(first, count);
    if (count > 1 && print_line(request.get()).size() > PARA_MESSAGE_MAX) {
        send_in_parts(first, count / 2, build, send);
        send_in_parts(first + count / 2, count - count / 2, build, send);
        return;
    }
    send(request.get());
}

void copy_members(const cJSON *from, cJSON *to)
{
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, from)
    {
        cJSON_DeleteItemFromObjectCaseSensitive(to, member->string);
        cJSON_AddItemToObject(to, member->string, cJSON_Duplicate(member, 1));
    }
}

} // namespace

bool may_answer(const cJSON *request, const std::string &answer)
{
    const json_ptr tree = parse_json(answer);
    const bool is_other = cJSON_IsObject(tree.get()) && !is_answer_to(request, tree.get());
    return !answer.empty() && !is_other;
}

json_ptr assignment::as_node() const
{
    return type == value_type::json ? parse_json(value)
                                    : json_ptr(cJSON_CreateString(value.c_str()));
}

json_ptr client::start_request(const char *type, const std::string &name)
{
    last_id = last_id == 0 ? random_id() : last_id + 1;
    json_ptr request(cJSON_CreateObject());
    cJSON_AddStringToObject(request.get(), "msg_type", type);
    cJSON_AddStringToObject(request.get(), "msg_name", name.c_str());
    cJSON_AddNumberToObject(request.get(), "msg_id", last_id);
    return request;
}

json_ptr client::request_answer(const cJSON *request, bool id_may_lack)
{
    json_ptr answer;
    store->exchange(print_line(request), [&](const std::string &text) {
        answer = parse_json(text);
        return is_answer_to(request, answer.get()) &&
               (id_may_lack || member_of(answer.get(), "msg_id") != nullptr);
    });
    return answer;
}

bool client::get(const std::string &module, const std::vector<std::string> &members, cJSON *modules)
{
    const auto build = [&](const std::string *first, size_t count) {
        json_ptr request = start_request("get", "camparam");
        cJSON *const names = cJSON_AddArrayToObject(request.get(), module.c_str());
        std::for_each(first, first + count, [&](const std::string &name) {
            cJSON_AddItemToArray(names, cJSON_CreateString(name.c_str()));
        });
        return request;
    };

    bool answered = false;
    const auto send = [&](const cJSON *request) {
        const json_ptr answer = request_answer(request, false);
        const cJSON *const values = member_of(answer.get(), module.c_str());
        if (values == nullptr)
            return;
        const bool is_itself = !cJSON_IsObject(values);
        if (is_itself && members != std::vector<std::string>{"all"})
            throw failure(OTHER, "the host's answer for \"" + module + "\" is not understood");
        if (is_itself)
            cJSON_AddItemToObject(modules, module.c_str(), cJSON_Duplicate(values, 1));
        else
            copy_members(values, object_in(modules, module));
        answered = true;
    };
    send_in_parts(members.data(), members.size(), build, send);
    return answered;
}

void client::set(const std::string &module, const std::string &command,
                 const std::vector<assignment> &values)
{
    const bool plain = command.empty();
    const auto build = [&](const assignment *first, size_t count) {
        json_ptr request =
            plain ? start_request("set", "camparam") : start_request("api_set", command);
        if (first->member.empty()) {
            cJSON_AddItemToObject(request.get(), module.c_str(), first->as_node().release());
            return request;
        }
        cJSON *const object =
            cJSON_AddObjectToObject(request.get(), plain ? module.c_str() : "data");
        std::for_each(first, first + count, [&](const assignment &value) {
            cJSON_AddItemToObject(object, value.member.c_str(), value.as_node().release());
        });
        return request;
    };
    send_in_parts(values.data(), values.size(), build,
                  [&](const cJSON *request) { request_answer(request, !plain); });
}

json_ptr client::call(const char *type, const std::string &command, json_ptr data)
{
    const json_ptr request = start_request(type, command);
    if (data)
        cJSON_AddItemToObject(request.get(), "data", data.release());
    json_ptr answer = request_answer(request.get(), true);
    if (member_of(answer.get(), "err") != nullptr)
        return nullptr;
    cJSON_DeleteItemFromObjectCaseSensitive(answer.get(), "msg_name");
    cJSON_DeleteItemFromObjectCaseSensitive(answer.get(), "msg_id");
    return answer;
}

std::string client::raw(const std::string &request)
{
    const json_ptr tree = parse_json(request);
    return store->exchange(request,
                           [&](const std::string &text) { return may_answer(tree.get(), text); });
}

std::string client::web(const char *type, const std::string &page, const std::string &query)
{
    const json_ptr request = start_request(type, page);
    cJSON_AddStringToObject(request.get(), "msg_from", "www");
    if (!query.empty())
        cJSON_AddStringToObject(request.get(), "data", query.c_str());
    // Answers carry no identifier. JSON is no answer: a host without web names sends it. An error
    // text with a very long page name may be cut before its "=".
    return store->exchange(print_line(request.get()), [&](const std::string &text) {
        const bool is_cut = !text.empty() && page.compare(0, text.size(), text) == 0;
        return is_cut || text.find('=') != std::string::npos;
    });
}

void client::ping()
{
    request_answer(start_request("get", "camparam").get(), false);
}

void client::send(const std::string &datagram)
{
    store->send(datagram);
}
