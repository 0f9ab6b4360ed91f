#include "arguments.h"

#include <CLI/CLI.hpp>

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

std::vector<std::string> arguments::commands() const
{
    std::vector<std::string> names;
    for (const CLI::App *const each : app->get_subcommands({}))
        names.push_back(each->get_name());
    return names;
}

arguments arguments::command(const char *name, const char *help, std::function<void()> run) const
{
    CLI::App *const added = app->add_subcommand(name, help);
    added->callback(std::move(run));
    return arguments(added);
}

arguments arguments::group(const char *name, const char *help) const
{
    CLI::App *const added = app->add_subcommand(name, help);
    added->require_subcommand(1);
    return arguments(added);
}

void arguments::footer(const char *text) const
{
    app->footer(text);
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

argument arguments::integer(int &into, const argument_text &about, int min, int max) const
{
    return argument(app->add_option(about.name, into, about.help)
                        ->type_name(about.type)
                        ->check(CLI::Range(min, max)));
}

argument arguments::integer(std::optional<int> &into, const argument_text &about, int min,
                            int max) const
{
    return argument(app->add_option(about.name, into, about.help)
                        ->type_name(about.type)
                        ->check(CLI::Range(min, max)));
}

argument arguments::number(double &into, const argument_text &about) const
{
    return argument(app->add_option(about.name, into, about.help)->type_name(about.type));
}

argument arguments::number(double &into, const argument_text &about, double min, double max) const
{
    return argument(app->add_option(about.name, into, about.help)
                        ->type_name(about.type)
                        ->check(CLI::Range(min, max)));
}

argument arguments::number(std::optional<double> &into, const argument_text &about) const
{
    return argument(app->add_option(about.name, into, about.help)->type_name(about.type));
}
