// usage: protocol PAGE [PORT UNSAVABLE_PORT]
// Sends the requests of a page to the host on PORT and compares its answers with those that the
// page shows; what cannot be saved is asked of the host on the other port. Values that no two runs
// have in common are compared by their types.
// Without ports only tells whether the page's JSON is JSON.
#include <arpa/inet.h>
#include <cjson/cJSON.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

struct json_delete {
    void operator()(cJSON *node) const { cJSON_Delete(node); }
};
using json_ptr = std::unique_ptr<cJSON, json_delete>;

[[noreturn]] void fail(const std::string &reason)
{
    printf("%s\n", reason.c_str());
    exit(1);
}

json_ptr parse(const std::string &text)
{
    json_ptr root(cJSON_Parse(text.c_str()));
    if (!root)
        fail("no JSON: " + text);
    return root;
}

std::string text_of(const cJSON *node)
{
    char *const printed = cJSON_PrintUnformatted(node);
    const std::string text = printed != nullptr ? printed : "";
    cJSON_free(printed);
    return text;
}

std::string member(const cJSON *object, const char *name)
{
    const char *const text = cJSON_GetStringValue(cJSON_GetObjectItem(object, name));
    return text != nullptr ? text : "";
}

// --- The page ---

// A block of JSON, or the query that answers a web request.
struct block {
    int line;
    json_ptr json; // null: a query
    std::string query;

    bool is_request() const { return cJSON_HasObjectItem(json.get(), "msg_type"); }
    bool is_web() const { return member(json.get(), "msg_from") == "www"; }
    bool is_error() const { return cJSON_HasObjectItem(json.get(), "err"); }
};

std::vector<block> read_page(const char *path)
{
    std::ifstream page(path);
    std::vector<block> blocks;
    std::string text;
    bool inside = false;
    int number = 0;
    for (std::string line; std::getline(page, line);) {
        number++;
        if (line == "```json") {
            inside = true;
            text.clear();
        } else if (inside && line == "```") {
            inside = false;
            blocks.push_back({number, parse(text), ""});
        } else if (inside) {
            text += line + "\n";
        } else if (line.compare(0, 4, "    ") == 0 && !blocks.empty() && blocks.back().json &&
                   blocks.back().is_web()) {
            blocks.push_back({number, nullptr, line.substr(4)});
        }
    }
    return blocks;
}

// --- The host ---

class host {
public:
    explicit host(const char *port) : descriptor(socket(AF_INET, SOCK_DGRAM, 0))
    {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<uint16_t>(atoi(port)));
        const timeval longest = {20, 0};
        setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &longest, sizeof longest);
        if (connect(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
            fail("no socket");
    }
    ~host() { close(descriptor); }
    host(const host &) = delete;
    host &operator=(const host &) = delete;

    std::string ask(const std::string &request) const
    {
        send(request);
        std::string answer(65536, '\0');
        const ssize_t length = recv(descriptor, answer.data(), answer.size(), 0);
        if (length < 0)
            fail("no answer to " + request);
        answer.resize(static_cast<size_t>(length));
        return answer;
    }

    void send(const std::string &text) const
    {
        if (::send(descriptor, text.data(), text.size(), 0) < 0)
            fail("cannot send " + text);
    }

private:
    const int descriptor;
};

// --- Comparing ---

bool is_one_of(const std::vector<std::string> &names, const char *name)
{
    return name != nullptr && std::count(names.begin(), names.end(), name) > 0;
}

// Times, counts, the changes of a log, and where its next page begins.
const std::vector<std::string> undetermined = {
    "started", "uptime",   "time",    "saved_at", "seconds",     "version", "revision",
    "number",  "module",   "member",  "old",      "new",         "by",      "next",
    "dropped", "received", "replies", "saves",    "failed_saves"};
// Objects and arrays of which the page shows a part.
const std::vector<std::string> partly_shown = {"modules", "members", "changes"};

bool is_like(const cJSON *shown, const cJSON *found, const char *name, bool by_type);

bool has_members_of(const cJSON *shown, const cJSON *found, bool by_type)
{
    const cJSON *each = nullptr;
    cJSON_ArrayForEach(each, shown)
    {
        const cJSON *const same = cJSON_GetObjectItemCaseSensitive(found, each->string);
        if (!is_like(each, same, each->string, by_type))
            return false;
    }
    return true;
}

// The changes of a log: of each kind that is shown there is one.
bool has_kinds_of(const cJSON *shown, const cJSON *found)
{
    const cJSON *each = nullptr;
    cJSON_ArrayForEach(each, shown)
    {
        const cJSON *candidate = nullptr;
        bool is_there = false;
        cJSON_ArrayForEach(candidate, found)
        {
            is_there = is_there || is_like(each, candidate, nullptr, false);
        }
        if (!is_there)
            return false;
    }
    return true;
}

bool has_elements_of(const cJSON *shown, const cJSON *found)
{
    if (cJSON_GetArraySize(shown) != cJSON_GetArraySize(found))
        return false;
    for (int i = 0; i < cJSON_GetArraySize(shown); i++) {
        if (!is_like(cJSON_GetArrayItem(shown, i), cJSON_GetArrayItem(found, i), nullptr, false))
            return false;
    }
    return true;
}

bool is_like(const cJSON *shown, const cJSON *found, const char *name, bool by_type)
{
    if (found == nullptr || (shown->type & 0xff) != (found->type & 0xff))
        return false;
    const bool is_part = is_one_of(partly_shown, name);
    if (cJSON_IsObject(shown)) {
        const bool has_more = cJSON_GetArraySize(found) != cJSON_GetArraySize(shown);
        // An object of changes counts them.
        by_type = name != nullptr && strcmp(name, "changes") == 0;
        return (is_part || !has_more) && has_members_of(shown, found, by_type);
    }
    if (cJSON_IsArray(shown))
        return is_part ? has_kinds_of(shown, found) : has_elements_of(shown, found);
    return by_type || is_one_of(undetermined, name) || cJSON_Compare(shown, found, 1) != 0;
}

// --- What stands behind the examples ---

// The second answer of a command is "save 2", and so on.
struct scene {
    std::vector<std::string> before; // requests
    const char *request = nullptr;   // null: the last one of that name on the page
    bool on_unsavable = false;
    int repeats = 1; // of what comes before
};

const char *const zoom_1200 =
    R"({"msg_type":"api_set","msg_name":"lens","data":{"zoom_value":1200,"focus_mode":0}})";
const char *const zoom_1 = R"({"msg_type":"api_set","msg_name":"lens","data":{"zoom_value":1}})";
const char *const port_8080 = R"({"msg_type":"set","msg_name":"","netport":{"http_port":"8080"}})";
const char *const port_8081 = R"({"msg_type":"set","msg_name":"","netport":{"http_port":"8081"}})";
const char *const contrast_9 = R"({"msg_type":"set","msg_name":"","isp0":{"contrast":9}})";
const char *const contrast_8 = R"({"msg_type":"set","msg_name":"","isp0":{"contrast":8}})";
const char *const contrast_7 = R"({"msg_type":"set","msg_name":"","isp0":{"contrast":7}})";
const char *const save = R"({"msg_type":"api_set","msg_name":"save"})";
const char *const dhcp_off = R"({"msg_type":"api_set","msg_name":"confirm","msg_id":120,
    "data":{"seconds":60,"set":{"netport":{"ip":"10.0.0.8","dhcp":"0"}}}})";
const char *const confirm_all = R"({"msg_type":"api_set","msg_name":"confirm","msg_id":121})";
const char *const reset_all =
    R"({"msg_type":"api_set","msg_name":"reset","data":{"isp0":["all"],"netport":["all"]}})";

const std::map<std::string, scene> scenes = {
    {"panel 1", {{zoom_1200}}},
    {"changes 1", {{save, port_8081}}},
    {"confirm 3", {{dhcp_off}, R"({"msg_type":"api_get","msg_name":"confirm","msg_id":22})"}},
    {"describe 1", {{confirm_all, zoom_1200, port_8080}}},
    // More than a page, behind the 41st.
    {"log 1", {{contrast_9, contrast_7, port_8080, port_8081}, nullptr, false, 50}},
    {"pages 2",
     {{}, R"({"msg_type":"api_get","msg_name":"pages","msg_id":18,"data":{"page":"image"}})"}},
    {"reload 2", {{R"({"msg_type":"set","msg_name":"","overlay":{"title":"new"}})"}}},
    {"reset 1", {{reset_all, contrast_9, port_8080}}},
    {"save 2", {{zoom_1, port_8080}, nullptr, true}},
    {"status 1", {{contrast_9, contrast_8, contrast_7, save}, nullptr, true}},
    {"style 1",
     {{reset_all, R"({"msg_type":"api_set","msg_name":"style","data":{"style":"vivid"}})"}}},
    {"network 1", {{reset_all}}},
};

class player {
public:
    player(const host &on, const host &unsavable) : usual(on), other(unsavable) {}

    void play(const block &next)
    {
        if (next.json && next.is_request())
            request(next);
        else if (next.json && next.is_error())
            compare(next, usual.ask(R"({"msg_type":"api_get","msg_name":"no such command"})"));
        else
            answer(next);
    }

    // Every request has been answered, some have another answer as well.
    void finish()
    {
        send_waiting();
        for (const auto &[name, scene] : scenes) {
            if (std::count(played.begin(), played.end(), name) != 1)
                fail("the page shows no answer " + name);
        }
        printf("%d requests, %d answers\n", requests, answers);
        if (requests < 19 || answers < 23)
            fail("the page shows too little");
    }

private:
    void request(const block &next)
    {
        send_waiting();
        last_name = member(next.json.get(), "msg_name");
        waiting = last_of[last_name] = text_of(next.json.get());
        requests++;
    }

    // A request whose answer the page does not show.
    void send_waiting()
    {
        if (!waiting.empty() && member(parse(usual.ask(waiting)).get(), "msg_name") != last_name)
            fail("another answer to " + waiting);
        waiting.clear();
    }

    void answer(const block &shown)
    {
        const std::string name = shown.json ? member(shown.json.get(), "msg_name") : last_name;
        const std::string number = std::to_string(++answers_of[name]);
        played.push_back(name + " " + number);
        const auto found = scenes.find(played.back());
        const scene behind = found != scenes.end() ? found->second : scene{};
        waiting.clear();
        const host &asked = behind.on_unsavable ? other : usual;
        for (int i = 0; i < behind.repeats; i++) {
            for (const std::string &text : behind.before)
                asked.ask(text);
        }
        compare(shown, asked.ask(behind.request != nullptr ? behind.request : last_of[name]));
    }

    void compare(const block &shown, const std::string &found)
    {
        answers++;
        const bool same = shown.json ? is_like(shown.json.get(), parse(found).get(), nullptr, false)
                                     : shown.query == found;
        if (!same)
            fail(at(shown) + "the page shows\n" +
                 (shown.json ? text_of(shown.json.get()) : shown.query) + "\nthe host answers\n" +
                 found);
    }

    static std::string at(const block &place)
    {
        return "line " + std::to_string(place.line) + ": ";
    }

    const host &usual, &other;
    std::vector<std::string> played;
    std::map<std::string, std::string> last_of;
    std::map<std::string, int> answers_of;
    std::string last_name, waiting;
    int requests = 0, answers = 0;
};

// What comes behind it is answered, and nothing before.
void expect_no_answer_to_rubbish(const host &asked)
{
    for (const char *const text : {"no JSON", "[1]", "{\"msg_type\":\"get\"", "7", "{}"})
        asked.send(text);
    const std::string answer = asked.ask(R"({"msg_type":"get","msg_name":"after","msg_id":1})");
    if (member(parse(answer).get(), "msg_name") != "after")
        fail("text that is no request is answered: " + answer);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 2)
        return read_page(argv[1]).empty() ? 1 : 0;
    if (argc != 4)
        return 2;
    const host usual(argv[2]), unsavable(argv[3]);
    player page(usual, unsavable);
    for (const block &next : read_page(argv[1]))
        page.play(next);
    page.finish();
    expect_no_answer_to_rubbish(usual);
    return 0;
}
