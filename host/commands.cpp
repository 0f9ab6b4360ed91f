#include "commands.h"

#include <iterator>

// The store searches from the last row to the first, and a request may abbreviate a name.
static const param_command commands[] = {
    {"describe", describe_command, nullptr}, {"lens", lens_command, nullptr},
    {"reload", reload_command, nullptr},     {"save", save_command, nullptr},
    {"style", style_command, nullptr},
};

int register_commands()
{
    return register_param_command("camparamd", commands, static_cast<int>(std::size(commands)));
}
