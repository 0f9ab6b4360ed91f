#include "several.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <sstream>
#include <thread>
#include <utility>

#include "client/descriptor.h"
#include "output.h"
#include "progress.h"

namespace {

// --- A process for each host ---

// What a process prints goes into a file in memory, so that none waits until it is read.
class printed {
public:
    printed() : file(memfd_create("output", MFD_CLOEXEC))
    {
        if (file.get() < 0)
            throw failure(OTHER, std::string("no memory for output: ") + strerror(errno));
    }

    void replace(int stream) const { dup2(file.get(), stream); }

    std::string text() const
    {
        std::string all;
        char bytes[4096];
        ssize_t length = 0;
        for (off_t at = 0; (length = pread(file.get(), bytes, sizeof bytes, at)) > 0; at += length)
            all.append(bytes, static_cast<size_t>(length));
        return all;
    }

private:
    descriptor file;
};

struct host_process {
    std::string host;
    std::unique_ptr<printed> to_output, to_messages; // while it runs
    std::string output, messages;
    pid_t id = -1;
    int status = OTHER;
};

[[noreturn]] void run_as_process(const host_process &own, program &all,
                                 const std::function<exit_code()> &run)
{
    own.to_output->replace(STDOUT_FILENO);
    own.to_messages->replace(STDERR_FILENO);
    all.as_json = true;
    all.one_of_several = true;
    print_messages_as_json();
    exit(ended_well([&] {
        set_host(all.server, own.host);
        return run();
    }));
}

void start(host_process &started, program &all, const std::function<exit_code()> &run)
{
    started.to_output = std::make_unique<printed>();
    started.to_messages = std::make_unique<printed>();
    fflush(nullptr); // nothing is to be printed twice
    started.id = fork();
    if (started.id < 0)
        throw failure(OTHER, std::string("cannot start a process: ") + strerror(errno));
    if (started.id == 0)
        run_as_process(started, all, run);
}

// Of those that run, one. Tells the progress all the while.
void wait_for_one(std::vector<host_process> &all, progress &hosts)
{
    int status = 0;
    pid_t ended = 0;
    while ((ended = waitpid(-1, &status, WNOHANG)) == 0) {
        hosts.step(0);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    hosts.step();
    for (host_process &each : all) {
        if (each.id != ended || each.to_output == nullptr)
            continue;
        if (WIFEXITED(status))
            each.status = WEXITSTATUS(status);
        each.output = std::exchange(each.to_output, nullptr)->text();
        each.messages = std::exchange(each.to_messages, nullptr)->text();
    }
}

void print_messages_of(const host_process &process)
{
    std::istringstream lines(process.messages);
    for (std::string line; std::getline(lines, line);) {
        const json_ptr message = parse_json(line);
        const cJSON *const status = member_of(message.get(), "status");
        print_failure({cJSON_IsNumber(status) ? static_cast<exit_code>(status->valueint) : DONE,
                       process.host + ": " +
                           (message ? string_of(member_of(message.get(), "message")) : line)});
    }
}

void check_names(const program &all)
{
    for (const std::string &host : all.hosts) {
        server_address address = all.server;
        set_host(address, host);
        if (std::count(all.hosts.begin(), all.hosts.end(), host) > 1)
            throw failure(USAGE, "the host " + host + " is named twice");
    }
}

} // namespace

void read_hosts(const std::string &path, std::vector<std::string> &hosts)
{
    const size_t before = hosts.size();
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        line.erase(std::find(line.begin(), line.end(), '#'), line.end());
        std::istringstream words(line);
        for (std::string word; words >> word;)
            hosts.push_back(word);
    }
    if (!file.eof() || file.bad())
        throw failure(OTHER, "cannot read \"" + path + "\"");
    if (hosts.size() == before) // the usual host is not meant then
        throw failure(USAGE, "\"" + path + "\" names no host");
}

const char *usual_host()
{
    const char *const host = getenv("CAMPARAM_HOST");
    return host != nullptr && *host != '\0' ? host : nullptr;
}

host_results run_on_each(program &all, const std::function<exit_code()> &run)
{
    check_names(all);
    constexpr size_t most_at_once = 8;
    std::vector<host_process> processes(all.hosts.size());
    size_t running = 0;
    progress hosts("hosts", static_cast<double>(processes.size()));
    for (size_t i = 0; i < processes.size(); i++) {
        processes[i].host = all.hosts[i];
        if (running++ == most_at_once) {
            wait_for_one(processes, hosts);
            running--;
        }
        start(processes[i], all, run);
    }
    for (; running > 0; running--)
        wait_for_one(processes, hosts);

    host_results results;
    for (const host_process &each : processes) {
        print_messages_of(each);
        results.push_back(
            {each.host, static_cast<exit_code>(each.status), parse_json(each.output)});
    }
    return results;
}

exit_code status_of(const host_results &results)
{
    const exit_code first = results.front().status;
    const bool all_same = std::all_of(results.begin(), results.end(),
                                      [&](const host_result &one) { return one.status == first; });
    const bool all_done = std::all_of(results.begin(), results.end(), [](const host_result &one) {
        return one.status == DONE || one.status == DIFFERENT;
    });
    if (all_same)
        return first;
    return all_done ? DIFFERENT : PARTLY_DONE;
}

exit_code print_by_host(const host_results &results)
{
    const json_ptr tree(cJSON_CreateObject());
    for (const host_result &one : results)
        cJSON_AddItemToObject(tree.get(), one.host.c_str(),
                              one.found ? cJSON_Duplicate(one.found.get(), 1) : cJSON_CreateNull());
    print_json(tree.get());
    return status_of(results);
}
