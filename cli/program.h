// What the commands of the program share.
#pragma once

#include <memory>

#include "arguments.h"
#include "client/client.h"
#include "client/failure.h"
#include "client/setting.h"

struct program {
    std::string host = "127.0.0.1"; // as given, perhaps with a port
    server_address server;
    bool as_json = false;
    bool show_secrets = false;
    exit_code status = DONE; // of the command that ran
};

// A command and where its arguments go.
template <typename options> struct command_with {
    arguments words;
    options &given;
};

struct command_text {
    const char *name;
    const char *help;
};

// Adds a command that runs with its options; these last as long as the command.
template <typename options>
command_with<options> add_command(const arguments &words, program &all, const command_text &about,
                                  exit_code (*run)(program &all, options &given))
{
    const auto given = std::make_shared<options>();
    return {words.command(about.name, about.help,
                          [given, &all, run] { all.status = run(all, *given); }),
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
