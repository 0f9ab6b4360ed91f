// What the commands of the program share.
#pragma once

#include <CLI/CLI.hpp>

#include <memory>

#include "client/client.h"
#include "client/failure.h"
#include "client/setting.h"

struct program {
    server_address server;
    bool as_json = false;
    exit_code status = DONE; // of the command that ran
};

// Has a command run with its options. Returns these; they last as long as the command.
template <typename options>
options &run_by(CLI::App *command, program &all, exit_code (*run)(program &all, options &given))
{
    const auto given = std::make_shared<options>();
    command->callback([given, &all, run] { all.status = run(all, *given); });
    return *given;
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

void add_form_options(CLI::App *command, form_options &given);
