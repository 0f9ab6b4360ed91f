#include "arguments.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <utility>

argument argument::required() const
{
    option->required();
    return *this;
}

argument argument::shows_default() const
{
    option->capture_default_str();
    return *this;
}

argument argument::excludes(const argument &other) const
{
    option->excludes(other.option);
    return *this;
}

argument argument::needs(const argument &other) const
{
    option->needs(other.option);
    return *this;
}

argument argument::is_usually(const std::string &value) const
{
    option->expected(0, 1)->default_str(value);
    return *this;
}

argument argument::not_empty() const
{
    option->check([](const std::string &text) { return text.empty() ? "is empty" : ""; });
    return *this;
}

namespace {

const CLI::App *subcommand(const CLI::App &of, const std::string &name)
{
    for (const CLI::App *const each : of.get_subcommands({})) {
        if (each->get_name() == name)
            return each;
    }
    return nullptr;
}

// Options of the program may stand behind a command, too.
const CLI::Option *option_named(const CLI::App *command, const std::string &name)
{
    for (; command != nullptr; command = command->get_parent()) {
        if (const CLI::Option *const option = command->get_option_no_throw(name))
            return option;
    }
    return nullptr;
}

std::vector<std::string> option_names(const CLI::App *command)
{
    std::vector<std::string> names;
    for (; command != nullptr; command = command->get_parent()) {
        for (const CLI::Option *const option : command->get_options()) {
            for (const std::string &name : option->get_lnames()) {
                if (std::find(names.begin(), names.end(), "--" + name) == names.end())
                    names.push_back("--" + name);
            }
        }
    }
    return names;
}

// Notes the value of --OPTION=VALUE. Returns the option if its value is the next word, or null.
const CLI::Option *take_option(const CLI::App *command, const std::string &word,
                               argument_place &place)
{
    const size_t equals = word.find('=');
    const CLI::Option *const option = option_named(command, word.substr(0, equals));
    if (option == nullptr || option->get_items_expected_min() == 0)
        return nullptr;
    if (equals == std::string::npos)
        return option;
    place.options["--" + option->get_lnames().front()] = word.substr(equals + 1);
    return nullptr;
}

// The type of a positional argument, the last of which may be repeated; empty: there is none.
std::string positional_type(const CLI::App &command, size_t number)
{
    const CLI::Option *last = nullptr;
    size_t count = 0;
    for (const CLI::Option *const option : command.get_options()) {
        if (!option->get_positional())
            continue;
        last = option;
        if (count++ == number)
            return option->get_type_name();
    }
    return last != nullptr && last->get_items_expected_max() > 1 ? last->get_type_name() : "";
}

} // namespace

argument_place arguments::place_of(const std::vector<std::string> &before,
                                   const std::string &word) const
{
    argument_place place;
    const CLI::App *command = app;
    const CLI::Option *waiting = nullptr; // for its value
    for (const std::string &each : before) {
        const CLI::App *const chosen = subcommand(*command, each);
        if (waiting != nullptr) {
            place.options["--" + waiting->get_lnames().front()] = each;
            waiting = nullptr;
        } else if (each.compare(0, 1, "-") == 0) {
            waiting = take_option(command, each, place);
        } else if (chosen != nullptr) {
            command = chosen;
            place.commands.push_back(each);
        } else {
            place.values.push_back(each);
        }
    }
    if (waiting != nullptr)
        place.type = waiting->get_type_name();
    else if (word.compare(0, 1, "-") == 0)
        place.names = option_names(command);
    else if (!command->get_subcommands({}).empty() && place.values.empty())
        place.names = arguments(const_cast<CLI::App *>(command)).commands();
    else
        place.type = positional_type(*command, place.values.size());
    return place;
}

std::vector<std::string> arguments::commands() const
{
    std::vector<std::string> names;
    for (const CLI::App *const each : app->get_subcommands({}))
        names.push_back(each->get_name());
    return names;
}

namespace {

const char *const see_program =
    "\"camparam --help\" lists the options of all commands, such as --host and --json, and the "
    "exit statuses.";

} // namespace

arguments arguments::command(const char *name, const char *help, std::function<void()> run) const
{
    CLI::App *const added = app->add_subcommand(name, help);
    added->footer(see_program);
    added->callback(std::move(run));
    return arguments(added);
}

arguments arguments::group(const char *name, const char *help) const
{
    CLI::App *const added = app->add_subcommand(name, help);
    added->footer(see_program);
    added->require_subcommand(1);
    return arguments(added);
}

void arguments::footer(const char *text) const
{
    app->footer(std::string(text) + "\n\n" + see_program);
}

argument arguments::flag(bool &into, const char *name, const char *help) const
{
    return argument(app->add_flag(name, into, help));
}

argument arguments::text(std::string &into, const argument_text &about) const
{
    return argument(app->add_option(about.name, into, about.help)->type_name(about.type));
}

argument arguments::texts(std::vector<std::string> &into, const argument_text &about) const
{
    return argument(app->add_option(about.name, into, about.help)->type_name(about.type));
}

argument arguments::several(std::vector<std::string> &into, const argument_text &about) const
{
    return argument(app->add_option(about.name, into, about.help)
                        ->type_name(about.type)
                        ->allow_extra_args(false));
}

namespace {

template <typename number> CLI::Validator in_range(number min, number max)
{
    const std::string range = CLI::detail::to_string(min) + " to " + CLI::detail::to_string(max);
    return CLI::Validator(
        [=](const std::string &text) {
            number value = {};
            const bool is_number = CLI::detail::lexical_cast(text, value);
            return is_number && value >= min && value <= max
                       ? std::string()
                       : "takes a number from " + range + ", not \"" + text + "\"";
        },
        range);
}

} // namespace

argument arguments::integer(int &into, const argument_text &about, int min, int max) const
{
    return argument(app->add_option(about.name, into, about.help)
                        ->type_name(about.type)
                        ->check(in_range(min, max)));
}

argument arguments::integer(std::optional<int> &into, const argument_text &about, int min,
                            int max) const
{
    return argument(app->add_option(about.name, into, about.help)
                        ->type_name(about.type)
                        ->check(in_range(min, max)));
}

argument arguments::number(double &into, const argument_text &about) const
{
    return argument(app->add_option(about.name, into, about.help)->type_name(about.type));
}

argument arguments::number(double &into, const argument_text &about, double min, double max) const
{
    return argument(app->add_option(about.name, into, about.help)
                        ->type_name(about.type)
                        ->check(in_range(min, max))); // and not NaN
}

argument arguments::number(std::optional<double> &into, const argument_text &about) const
{
    return argument(app->add_option(about.name, into, about.help)->type_name(about.type));
}
