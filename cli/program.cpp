#include "program.h"

void add_form_options(CLI::App *command, form_options &given)
{
    CLI::Option *const number =
        command->add_flag("--number", given.as_number, "Send every value as a number");
    command->add_flag("--text", given.as_text, "Send every value as a string")->excludes(number);
}
