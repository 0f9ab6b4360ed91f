#include "program.h"

void add_form_options(const arguments &command, form_options &given)
{
    const argument number =
        command.flag(given.as_number, "--number", "Send every value as a number");
    command.flag(given.as_text, "--text", "Send every value as a string").excludes(number);
}
