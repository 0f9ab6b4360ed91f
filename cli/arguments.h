// The arguments of the program and of its commands, without the library that reads them, which
// takes long to compile.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace CLI { // NOLINT(readability-identifier-naming): the library has named it
class App;
class Option;
} // namespace CLI

// One option, flag or positional argument.
class argument {
public:
    explicit argument(CLI::Option *of) : option(of) {}

    argument required() const;
    argument shows_default() const;
    argument excludes(const argument &other) const;
    argument needs(const argument &other) const;
    // The value may be left out, and is this then.
    argument is_usually(const std::string &value) const;
    // An empty value, such as of an unset variable of a shell, is wrong usage.
    argument not_empty() const;

private:
    CLI::Option *option;
};

// What a name, a value's type in the help, and the help are.
struct argument_text {
    const char *name;
    const char *type;
    const char *help;
};

// Where a word stands that is to be completed.
struct argument_place {
    std::vector<std::string> commands;          // chosen, such as "www" and "get"
    std::map<std::string, std::string> options; // given before, with their values
    std::vector<std::string> values;            // of the command, given before
    std::vector<std::string> names;             // of the commands or options that may stand here
    std::string type;                           // of the value that is expected; empty: none
};

class arguments {
public:
    // The place of a word behind others.
    argument_place place_of(const std::vector<std::string> &before, const std::string &word) const;

    std::vector<std::string> commands() const; // names

    explicit arguments(CLI::App *of) : app(of) {}

    // A command of the program, or of a command. Runs when all arguments are read.
    arguments command(const char *name, const char *help, std::function<void()> run) const;
    arguments group(const char *name, const char *help) const; // of commands

    // Of the help of a command; where the options of the program are listed stands behind it.
    void footer(const char *text) const;

    argument flag(bool &into, const char *name, const char *help) const;
    argument text(std::string &into, const argument_text &about) const;
    argument texts(std::vector<std::string> &into, const argument_text &about) const;
    // An option that takes one text, and may be given several times.
    argument several(std::vector<std::string> &into, const argument_text &about) const;
    argument integer(int &into, const argument_text &about, int min, int max) const;
    argument integer(std::optional<int> &into, const argument_text &about, int min, int max) const;
    argument number(double &into, const argument_text &about) const;
    argument number(double &into, const argument_text &about, double min, double max) const;
    argument number(std::optional<double> &into, const argument_text &about) const;

private:
    CLI::App *app;
};
