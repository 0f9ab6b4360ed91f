// camparam: reads and changes the camera's settings from the command line.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "client/suggest.h"
#include "commands.h"
#include "complete.h"
#include "output.h"
#include "several.h"

namespace {

const char *const examples = R"(Examples:
  camparam list                           every setting with its range
  camparam list --find noise              some of them, by a word
  camparam get af.zoom_value af.focus_mode
  camparam set af.zoom_value=1200         set, and read back
  camparam set misc.mirror=on netport.http_port=8080 --wait-saved
  camparam reset misc.mirror              back to its default
  camparam diff                           what differs from its default
  camparam dump >camera.json              keep all values, and bring them back,
  camparam load camera.json               perhaps on another camera
  camparam watch 'isp0.*'                 a line for each change
  camparam log netport                    who changed what
  camparam style vivid --default          picture style, now and after each start
  camparam --host cam1 --host cam2 diff   what differs between cameras
  camparam --hosts cameras.txt status     a row for each of them
  camparam --root home:data list          the files of a device, without a host
  camparam check home --data data         faults in them
  camparam COMMAND --help                 options and examples of a command

Exit status: 0 done, 1 other failure, 2 wrong usage, 3 no answer, 4 refused,
5 no such setting, 6 partly done, 7 something differs, 8 not saved in time.)";

void add_options(const arguments &words, program &all)
{
    const argument host =
        words.several(all.hosts, {"--host", "HOST[:PORT]",
                                  "Name or address of the camera, or of several; usually "
                                  "$CAMPARAM_HOST or 127.0.0.1"});
    const argument file =
        words.text(all.hosts_file, {"--hosts", "FILE", "Hosts as well, one a line"}).not_empty();
    words
        .text(all.root,
              {"--root", "HOME[:DATA]", "Work on a device's files instead, without a host"})
        .not_empty()
        .excludes(host)
        .excludes(file);
    words.integer(all.server.port, {"--port", "PORT", "UDP port of its message server"}, 1, 65535)
        .shows_default();
    words.number(all.server.timeout_s, {"--timeout", "SECONDS", "Seconds to wait for each answer"})
        .shows_default();
    words.integer(all.retries,
                  {"--retries", "COUNT",
                   "Repeats of a request without an answer, usually 2; given, they also wait for a "
                   "port that is closed"},
                  0, 1000);
    words.flag(all.as_json, "--json", "Print results as JSON");
    words.flag(all.show_secrets, "--show-secrets", "Show the values of secrets, too");
}

void check_options(program &all)
{
    if (!all.hosts_file.empty())
        read_hosts(all.hosts_file, all.hosts);
    if (all.hosts.empty() && usual_host() != nullptr)
        all.hosts = {usual_host()};
    if (all.hosts.size() == 1)
        set_host(all.server, all.hosts.front());
    if (all.retries) {
        all.server.retries = *all.retries;
        all.server.waits_for_port = true;
    }
    const double longest_s = 3600;
    if (!(all.server.timeout_s > 0 && all.server.timeout_s <= longest_s)) // false for NaN, too
        throw failure(USAGE, "--timeout takes seconds, more than 0 and at most 3600");
}

// Whether the next argument is the option's value.
bool takes_next(const CLI::App &app, const std::string &word)
{
    const CLI::Option *const option = app.get_option_no_throw(word);
    return option != nullptr && option->get_items_expected_min() > 0;
}

// The first argument that is neither an option nor its value, if it is none of the commands.
std::string unknown_command(const CLI::App &app, int argc, char **argv,
                            const std::vector<std::string> &known)
{
    for (int i = 1; i < argc; i++) {
        const std::string word = argv[i];
        if (word.substr(0, 1) == "-")
            i += takes_next(app, word) ? 1 : 0;
        else
            return std::find(known.begin(), known.end(), word) == known.end() ? word : "";
    }
    return "";
}

exit_code wrong_usage(const CLI::App &app, const CLI::ParseError &error, const std::string &unknown,
                      const std::vector<std::string> &known)
{
    if (error.get_exit_code() == 0) { // help that was asked for
        app.exit(error);
        return DONE;
    }
    if (unknown.empty())
        throw failure(USAGE, std::string(error.what()) + "; --help tells more");
    const std::string similar = most_similar(unknown, known);
    throw failure(USAGE, "no command \"" + unknown + "\"" +
                             (similar.empty() ? "; --help lists them"
                                              : "; did you mean \"" + similar + "\"?"));
}

bool is_given(int argc, char **argv, const std::string &option)
{
    return std::find(argv + 1, argv + argc, option) != argv + argc;
}

} // namespace

int main(int argc, char **argv)
{
    if (is_given(argc, argv, "--json"))
        print_messages_as_json();
    program all;
    CLI::App app("Reads and changes the settings of a camera.", "camparam");
    app.footer(examples);
    app.require_subcommand(1);
    app.fallthrough(); // options of the program are accepted after the subcommand too
    app.set_version_flag("--version", "camparam " CAMPARAM_VERSION);
    const arguments words(&app);
    add_options(words, all);
    app.parse_complete_callback([&all] { check_options(all); }); // before the command runs
    for (const command_adder add : commands)
        add(words, all);

    if (argc > 1 && strcmp(argv[1], "--complete-args") == 0) {
        print_completions(words, all, {argv + 2, argv + argc});
        return DONE;
    }
    return ended_well([&] {
        try {
            app.parse(argc, argv);
            return all.status;
        } catch (const CLI::ParseError &error) {
            const std::vector<std::string> known = words.commands();
            return wrong_usage(app, error, unknown_command(app, argc, argv, known), known);
        }
    });
}
