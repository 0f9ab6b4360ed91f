// What the commands of the program share.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "arguments.h"
#include "client/client.h"
#include "client/failure.h"
#include "client/local_store.h"
#include "client/setting.h"

struct program {
    std::vector<std::string> hosts;         // as given, perhaps with ports
    std::string hosts_file;                 // with more of them
    server_address server;                  // the host; of several, the one whose turn it is
    bool one_of_several = false;            // it is
    std::optional<int> retries;             // as given
    std::string root;                       // folders of a device, instead
    file_access access = file_access::none; // to them
    bool as_json = false;
    bool show_secrets = false;
    exit_code status = DONE; // of the command that ran

    // To the host, or to a store on the device's files.
    client connect() const;
};

// What became of a command on one of several hosts.
struct host_result {
    std::string host;
    exit_code status;
    json_ptr found; // what the command prints as JSON; null when it has failed
};
using host_results = std::vector<host_result>;

// A command whose options are read. What is empty, it does without.
struct command_steps {
    std::string name;
    std::function<exit_code()> run; // on one host
    // Reads what else it is given, such as standard input: once, whatever the number of hosts.
    std::function<void()> prepare;
    // Prints what it has found on several hosts; empty: it takes one host.
    std::function<exit_code(const host_results &results)> compare;
    file_access files = file_access::none; // what it does on files, without a host
};
void carry_out(program &all, const command_steps &command);

// Runs something to its end, with all of its output. Prints the message of a failure, and returns
// its status.
exit_code ended_well(const std::function<exit_code()> &run);

// A command and where its arguments go.
template <typename options> struct command_with {
    arguments words;
    options &given;
};

// The same steps as functions of the options.
template <typename options> struct command_text {
    const char *name;
    const char *help;
    exit_code (*run)(program &all, options &given);
    void (*prepare)(options &given) = nullptr;
    exit_code (*compare)(const program &all, const host_results &results,
                         const options &given) = nullptr;
    file_access files = file_access::none;
};

// Adds a command that runs with its options; these last as long as the command.
template <typename options>
command_with<options> add_command(const arguments &words, program &all,
                                  const command_text<options> &about)
{
    const auto given = std::make_shared<options>();
    const auto steps = [given, &all, about] {
        command_steps command = {
            about.name, [=, &all] { return about.run(all, *given); }, {}, {}, about.files};
        if (about.prepare != nullptr)
            command.prepare = [=] { about.prepare(*given); };
        if (about.compare != nullptr)
            command.compare = [=, &all](const host_results &results) {
                return about.compare(all, results, *given);
            };
        return command;
    };
    return {words.command(about.name, about.help, [steps, &all] { carry_out(all, steps()); }),
            *given};
}

// How values are sent, of commands that set some.
struct form_options {
    bool as_number = false, as_text = false;

    value_form form() const
    {
        if (as_number)
            return value_form::number;
        return as_text ? value_form::text : value_form::automatic;
    }
};

void add_form_options(const arguments &command, form_options &given);
