#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <thread>

#include "commands.h"
#include "output.h"
#include "progress.h"

namespace {

using std::chrono::steady_clock;
using seconds = std::chrono::duration<double>;

constexpr double poll_s = 0.25;
constexpr double most_polls = 40; // of one socket

struct options {
    double longest_s = 60;
};

// Asks until an answer comes. One socket asks several times, so that a host that takes longer than
// a poll is heard; a refusal is waited out.
bool wait_for_host(const server_address &address, steady_clock::time_point until)
{
    progress waited("seconds", seconds(until - steady_clock::now()).count());
    while (true) {
        waited.tell_time();
        const double left_s = seconds(until - steady_clock::now()).count();
        const auto next = steady_clock::now() + seconds(std::min(poll_s, left_s));
        if (left_s <= 0)
            return false;
        server_address patient = address;
        const double polls = std::min(most_polls, std::ceil(left_s / poll_s));
        patient.timeout_s = std::min(poll_s, left_s / polls);
        patient.retries = static_cast<int>(polls) - 1;
        try {
            client(patient).ping();
            return true;
        } catch (const failure &error) {
            if (error.code != NO_ANSWER)
                throw;
        }
        std::this_thread::sleep_until(next);
    }
}

void print_outcome(bool answered, double took_s)
{
    const json_ptr object(cJSON_CreateObject());
    cJSON_AddBoolToObject(object.get(), "answered", answered);
    cJSON_AddNumberToObject(object.get(), "seconds", std::round(took_s * 10) / 10);
    print_json_line(object.get());
}

exit_code run(program &all, options &given)
{
    const double most_s = 86400;
    if (!(given.longest_s > 0 && given.longest_s <= most_s)) // false for NaN, too
        throw failure(USAGE, "--for takes seconds, more than 0 and at most 86400");

    const auto begin = steady_clock::now();
    const auto longest =
        std::chrono::duration_cast<steady_clock::duration>(seconds(given.longest_s));
    const bool answered = wait_for_host(all.server, begin + longest);
    if (all.as_json)
        print_outcome(answered, seconds(steady_clock::now() - begin).count());
    if (!answered)
        throw failure(NO_ANSWER,
                      name_of(all.server) + " has not answered in time; --for waits longer");
    return DONE;
}

} // namespace

void add_wait(const arguments &words, program &all)
{
    const auto [wait, given] =
        add_command<options>(words, all, {"wait", "Wait until the host answers", run});
    wait.footer(R"(Example:
  camparam wait --for 30 && camparam load camera.json)");
    wait.number(given.longest_s, {"--for", "SECONDS", "Seconds to wait at most"}).shows_default();
}
