#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <deque>
#include <iterator>
#include <map>

#include "client/client.h"
#include "client/failure.h"
#include "client/recording.h"

namespace {

constexpr size_t longest_datagram = 65507;
constexpr double latest_ms = 1e14; // in some three thousand years

std::string read_text(const std::string &file)
{
    const bool is_input = file == "-";
    FILE *const stream = is_input ? stdin : fopen(file.c_str(), "re");
    std::string text;
    if (stream != nullptr) {
        char part[65536];
        while (const size_t length = fread(part, 1, sizeof part, stream))
            text.append(part, length);
    }
    const bool failed = stream == nullptr || ferror(stream) != 0;
    const int error = errno;
    if (stream != nullptr && !is_input)
        fclose(stream); // NOLINT(cert-err33-c): it was read alone
    if (failed)
        throw failure(OTHER, "cannot read " + file + ": " + strerror(error));
    return text;
}

std::optional<std::string> bytes_of_hex(const std::string &digits)
{
    const std::string all = "0123456789abcdef";
    std::string bytes;
    for (size_t i = 0; i < digits.size(); i += 2) {
        const size_t high = all.find(digits[i]);
        const size_t low = i + 1 < digits.size() ? all.find(digits[i + 1]) : std::string::npos;
        if (high == std::string::npos || low == std::string::npos)
            return std::nullopt;
        bytes += static_cast<char>(high << 4 | low);
    }
    return bytes;
}

// A request that has no answer so far.
struct open_request {
    size_t index;
    json_ptr tree; // null when it is no JSON
};

// Whether a store answers such a request at all.
bool is_answerable(const cJSON *request)
{
    return cJSON_IsString(member_of(request, "msg_type"));
}

// How well an answer fits a request, from 1; 0: not at all.
int rank_of(const cJSON *request, const cJSON *answer)
{
    if (member_of(answer, "msg_id") != nullptr && member_of(request, "msg_id") == nullptr)
        return 0;
    const bool is_web = string_of(member_of(request, "msg_from")) == "www";
    return is_answerable(request) && is_web != cJSON_IsObject(answer) ? 2 : 1;
}

// What an answer is to: the oldest of the requests that it fits best, but the newest of those that
// it hardly fits.
std::deque<open_request>::iterator asked(std::deque<open_request> &waiting,
                                         const std::string &answer)
{
    const json_ptr tree = parse_json(answer);
    auto best = waiting.end();
    int best_rank = 0;
    for (auto each = waiting.begin(); each != waiting.end(); ++each) {
        if (!may_answer(each->tree.get(), answer))
            continue;
        const int rank = rank_of(each->tree.get(), tree.get());
        if (rank > best_rank || (rank == 1 && best_rank == 1)) {
            best = each;
            best_rank = rank;
        }
    }
    return best;
}

// Closes a request that has its answer, and those before it that will have none, as a store answers
// in order: a second answer to the one is none to them.
void close_up_to(std::deque<open_request> &waiting, std::deque<open_request>::iterator answered)
{
    const auto last = std::remove_if(waiting.begin(), answered, [](const open_request &request) {
        return !is_answerable(request.tree.get());
    });
    waiting.erase(last, std::next(answered));
}

class reader {
public:
    explicit reader(const std::string &name) : file(name) {}

    void take_line(const std::string &text);
    std::vector<recorded_request> take_requests() { return std::move(requests); }

private:
    std::optional<std::string> bytes_of(const cJSON *object, const std::string &kind) const;
    void take_request(int client, double time_ms, const std::string &bytes);
    void take_answer(int client, const std::string &bytes);
    [[noreturn]] void fail(const std::string &reason) const;

    const std::string &file;
    int line = 0;
    std::vector<recorded_request> requests;
    std::map<int, std::deque<open_request>> waiting_of; // of each client
};

void reader::fail(const std::string &reason) const
{
    throw failure(USAGE, file + " is no recording: line " + std::to_string(line) + " " + reason);
}

std::optional<std::string> reader::bytes_of(const cJSON *object, const std::string &kind) const
{
    const cJSON *const text = member_of(object, kind.c_str());
    const cJSON *const hex = member_of(object, (kind + "_hex").c_str());
    if (text == nullptr && hex == nullptr)
        return std::nullopt;
    if ((text != nullptr && hex != nullptr) || !cJSON_IsString(text != nullptr ? text : hex))
        fail("holds no text as \"" + kind + "\"");
    std::optional<std::string> bytes =
        text != nullptr ? string_of(text) : bytes_of_hex(string_of(hex));
    if (!bytes)
        fail("holds no hexadecimal digits as \"" + kind + "_hex\"");
    if (bytes->size() > longest_datagram)
        fail("is longer than a datagram");
    return bytes;
}

void reader::take_line(const std::string &text)
{
    line++;
    const json_ptr object = parse_whole_json(text);
    if (!cJSON_IsObject(object.get()))
        fail("is no JSON object");
    const cJSON *const time = member_of(object.get(), "time");
    if (!cJSON_IsNumber(time) || !(time->valuedouble >= 0 && time->valuedouble <= latest_ms))
        fail("lacks \"time\", milliseconds since 1970");
    const cJSON *const client = member_of(object.get(), "client");
    if (!cJSON_IsNumber(client) || client->valueint < 1)
        fail("lacks \"client\", a number from 1");
    const std::optional<std::string> request = bytes_of(object.get(), "request");
    const std::optional<std::string> answer = bytes_of(object.get(), "answer");
    if (request.has_value() == answer.has_value())
        fail("holds not one request or answer");
    if (request)
        take_request(client->valueint, time->valuedouble, *request);
    else
        take_answer(client->valueint, *answer);
}

void reader::take_request(int client, double time_ms, const std::string &bytes)
{
    std::deque<open_request> &waiting = waiting_of[client];
    waiting.push_back({requests.size(), parse_json(bytes)});
    const size_t most_waiting = 64; // no client waits for older ones
    if (waiting.size() > most_waiting)
        waiting.pop_front();
    requests.push_back({line, time_ms, bytes, std::nullopt});
}

void reader::take_answer(int client, const std::string &bytes)
{
    const auto found = waiting_of.find(client);
    if (found == waiting_of.end())
        fail("answers a client that has sent no request before it");
    const auto request = asked(found->second, bytes);
    if (request == found->second.end())
        return; // the second to a request
    requests[request->index].answer = bytes;
    close_up_to(found->second, request);
}

} // namespace

std::vector<recorded_request> read_recording(const std::string &file)
{
    const std::string text = read_text(file);
    reader lines(file);
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = std::min(text.find('\n', begin), text.size());
        lines.take_line(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines.take_requests();
}
