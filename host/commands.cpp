#include "commands.h"

#include <iterator>

// Order matters: the store searches from the last row, and requests may abbreviate a name.
static const param_command commands[] = {
    {.name = "describe", .handler = describe_command}, {.name = "lens", .handler = lens_command},
    {.name = "reload", .handler = reload_command},     {.name = "save", .handler = save_command},
    {.name = "style", .handler = style_command},
};

int register_commands()
{
    return register_param_command("camparamd", commands, static_cast<int>(std::size(commands)));
}
