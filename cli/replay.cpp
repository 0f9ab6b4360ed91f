#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>
#include <string>
#include <thread>

#include "client/alike.h"
#include "client/recording.h"
#include "commands.h"
#include "output.h"
#include "progress.h"

namespace {

using std::chrono::steady_clock;
using seconds = std::chrono::duration<double>;

struct options {
    std::string file;
    std::optional<double> speed; // none: as fast as answers come
};

// When requests are due. A clock that was set back while they were recorded makes no pause.
class pace {
public:
    explicit pace(std::optional<double> factor) : speed(factor) {}

    void wait_for(double time_ms)
    {
        if (!speed)
            return;
        if (last_ms >= 0)
            due_s += std::max(0.0, time_ms - last_ms) / 1000 / *speed;
        last_ms = time_ms;
        const double longest_s = 3600; // that clocks can count
        for (double left_s; (left_s = due_s - passed_s()) > 0;)
            std::this_thread::sleep_for(seconds(std::min(left_s, longest_s)));
    }

private:
    double passed_s() const { return seconds(steady_clock::now() - begin).count(); }

    const std::optional<double> speed;
    const steady_clock::time_point begin = steady_clock::now();
    double due_s = 0;
    double last_ms = -1; // none yet
};

std::string shown(const std::string &bytes)
{
    return is_text(bytes) ? visible(bytes) : "hex " + hex_of(bytes);
}

class replayer {
public:
    replayer(const server_address &address, bool as_json) : server(address), quiet(as_json) {}

    void replay(const recorded_request &request);
    exit_code finish();

private:
    void send_alone(const std::string &bytes);
    std::optional<std::string> ask(const std::string &bytes);
    void await_host();
    void expect_host();
    void tell_difference(const recorded_request &request, const std::string &got);

    const server_address &server;
    const bool quiet; // one JSON object at the end
    bool heard = false;
    int in_a_row = 0; // requests that nothing is awaited for
    int requests = 0, unanswered = 0;
    json_ptr different{cJSON_CreateArray()};
};

void replayer::replay(const recorded_request &request)
{
    requests++;
    if (!request.answer) {
        send_alone(request.bytes);
        return;
    }
    const std::optional<std::string> got = ask(request.bytes);
    if (!got) {
        expect_host();
        unanswered++;
        if (!quiet)
            printf("%d: %s: recorded %s, no answer\n", request.line, shown(request.bytes).c_str(),
                   shown(*request.answer).c_str());
    } else if (!are_alike(*request.answer, *got)) {
        tell_difference(request, *got);
    }
}

// Sends a request that nothing is awaited for.
void replayer::send_alone(const std::string &bytes)
{
    const int most_in_a_row = 32; // the host's queue drops what is too much for it
    if (in_a_row++ == most_in_a_row) {
        in_a_row = 1;
        await_host();
    }
    try {
        send_datagram(server, bytes);
    } catch (const failure &error) {
        if (error.code != NO_ANSWER)
            throw;
    }
}

// The answer to a request, if one comes.
std::optional<std::string> replayer::ask(const std::string &bytes)
{
    in_a_row = 0;
    const json_ptr tree = parse_json(bytes);
    try {
        std::string got = exchange_datagrams(server, bytes, [&](const std::string &answer) {
            return may_answer(tree.get(), answer);
        });
        heard = true;
        return got;
    } catch (const failure &error) {
        if (error.code != NO_ANSWER)
            throw;
        return std::nullopt;
    }
}

// Waits until the host has done what was sent. Throws a failure when nothing ever came from it.
void replayer::await_host()
{
    try {
        client(server).ping();
        heard = true;
    } catch (const failure &) {
        if (!heard)
            throw;
    }
}

void replayer::expect_host()
{
    if (!heard)
        await_host();
}

void replayer::tell_difference(const recorded_request &request, const std::string &got)
{
    cJSON *const object = cJSON_CreateObject();
    cJSON_AddItemToArray(different.get(), object);
    cJSON_AddNumberToObject(object, "line", request.line);
    add_bytes(object, "request", request.bytes);
    add_bytes(object, "recorded", *request.answer);
    add_bytes(object, "got", got);
    if (!quiet)
        printf("%d: %s: recorded %s, got %s\n", request.line, shown(request.bytes).c_str(),
               shown(*request.answer).c_str(), shown(got).c_str());
}

exit_code replayer::finish()
{
    expect_host();
    const int differ = cJSON_GetArraySize(different.get());
    if (quiet) {
        const json_ptr object(cJSON_CreateObject());
        cJSON_AddNumberToObject(object.get(), "requests", requests);
        cJSON_AddItemToObject(object.get(), "different", different.release());
        cJSON_AddNumberToObject(object.get(), "unanswered", unanswered);
        print_json_line(object.get());
    } else {
        printf("%d requests, %d answers differ, %d without an answer\n", requests, differ,
               unanswered);
    }
    return differ + unanswered > 0 ? DIFFERENT : DONE;
}

exit_code run(program &all, options &given)
{
    const double slowest = 1e-3, fastest = 1e6;
    if (given.speed && !(*given.speed >= slowest && *given.speed <= fastest)) // false for NaN, too
        throw failure(USAGE, "--speed takes a factor from 0.001 to 1000000");

    const std::vector<recorded_request> recorded = read_recording(given.file);
    pace due(given.speed);
    replayer host(all.server, all.as_json);
    progress done("requests", static_cast<double>(recorded.size()));
    for (const recorded_request &request : recorded) {
        done.step();
        due.wait_for(request.time_ms);
        host.replay(request);
    }
    return host.finish();
}

} // namespace

void add_replay(const arguments &words, program &all)
{
    const auto [replay, given] = add_command<options>(
        words, all, {"replay", "Send recorded requests again and compare the answers", run});
    replay.footer("Members msg_id, time, started, uptime and saved_at of JSON answers are not "
                  "compared.\n\nExample:\n  camparam --host cam2 replay day.jsonl");
    replay.text(given.file, {"file", "FILE", "Recording; \"-\" is standard input"}).required();
    replay.number(given.speed, {"--speed", "FACTOR",
                                "Keep the recorded pauses, divided by this [default: as fast as "
                                "answers come]"});
}
