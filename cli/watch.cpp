#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <thread>

#include "client/log.h"
#include "client/selection.h"
#include "commands.h"
#include "output.h"
#include "time_text.h"

namespace {

struct options {
    std::vector<std::string> patterns;
    std::string command; // to be run for each change
    double seconds = 0;  // 0: for ever
};

class watcher {
public:
    watcher(program &of, const options &with) : all(of), given(with), host(of.connect()) {}

    // Asks once; tells what has changed since the last time. A host that is away is waited for.
    void look()
    {
        try {
            look_at_host();
            is_away = false;
        } catch (const failure &error) {
            if (error.code != NO_ANSWER || !counts)
                throw;
            if (!is_away)
                print_message(error.what());
            is_away = true;
        }
    }

private:
    // The log is read only when the cheap counts say so.
    void look_at_host()
    {
        const json_ptr answer = host.call("api_get", "changes", nullptr);
        const cJSON *const changes = member_of(answer.get(), "changes");
        if (!cJSON_IsObject(changes))
            throw failure(OTHER, "the host does not count its changes");
        const std::string found =
            value_text(member_of(answer.get(), "started")) + value_text(changes);
        if (counts == found)
            return;
        const bool is_first = !counts;
        read_changes(is_first);
        counts = found; // told by then
    }

    void read_changes(bool is_first)
    {
        change_log log = read_log(host, last);
        if (!is_first && log.run != run) {
            print_message("the host has started anew");
            last = 0;
            log = read_log(host, 0);
        }
        run = log.run;
        for (const logged_change &change : log.changes) {
            if (!is_first)
                tell(change);
            last = change.number;
        }
    }

    void tell(const logged_change &change)
    {
        if (change.number > last + 1)
            print_message(std::to_string(change.number - last - 1) + " changes are not in the log");
        if (!is_meant(given.patterns, change.name))
            return;
        if (all.as_json)
            print_json_line(change.entry.get());
        else
            printf("%s=%s (was %s, by %s)\n", visible(change.name.text()).c_str(),
                   visible(change.value("new")).c_str(), visible(change.value("old")).c_str(),
                   visible(change.sender()).c_str());
        fflush(stdout);
        if (!given.command.empty())
            run_command(change);
    }

    void run_command(const logged_change &change) const
    {
        setenv("CAMPARAM_SETTING", change.name.text().c_str(), 1);
        setenv("CAMPARAM_OLD", change.value("old").c_str(), 1);
        setenv("CAMPARAM_NEW", change.value("new").c_str(), 1);
        setenv("CAMPARAM_BY", change.sender().c_str(), 1);
        const int status = system(given.command.c_str());
        if (status != 0)
            print_message("\"" + given.command + "\" has failed");
    }

    program &all;
    const options &given;
    client host;
    std::optional<std::string> counts; // as last told
    std::string run;
    unsigned last = 0;
    bool is_away = false;
};

exit_code run(program &all, options &given)
{
    client host = all.connect();
    check_patterns(host, given.patterns); // else it would wait in vain
    using clock = std::chrono::steady_clock;
    const auto end = clock::now() + std::chrono::duration_cast<clock::duration>(
                                        std::chrono::duration<double>(given.seconds));
    watcher watched(all, given);
    while (given.seconds == 0 || clock::now() < end) {
        watched.look();
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
    return DONE;
}

} // namespace

void add_watch(const arguments &words, program &all)
{
    const auto [watch, given] = add_command<options>(
        words, all, {"watch", "Print a line for each change, as it is made", run});
    watch.footer(R"(Examples:
  camparam watch
  camparam watch isp0 --for 60
  camparam watch netport --on 'logger "$CAMPARAM_SETTING is $CAMPARAM_NEW now"')");
    watch.texts(given.patterns, {"settings", "GLOB", "Only these modules or settings"});
    watch.text(given.command,
               {"--on", "SHELL-COMMAND",
                "Run for each, with CAMPARAM_SETTING, CAMPARAM_OLD, CAMPARAM_NEW, CAMPARAM_BY"});
    watch.number(given.seconds, {"--for", "SECONDS", "End after so long"}, 0, 999999);
}
