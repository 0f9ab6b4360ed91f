#include "options.h"

#include <CLI/CLI.hpp>

#include <optional>
#include <string>

#include "camparam/control.h"

static std::string add_network(std::vector<network> &networks, const std::string &text)
{
    const std::optional<network> parsed = parse_network(text);
    if (!parsed)
        return "\"" + text + "\" is no network such as 192.168.1.0/24";
    networks.push_back(*parsed);
    return "";
}

static void add_filter_options(CLI::App &app, options &chosen)
{
    const int most = 1000000000;
    app.add_option_function<std::vector<std::string>>(
           "--allow",
           [&chosen](const std::vector<std::string> &networks) {
               for (const std::string &text : networks) {
                   const std::string mistake = add_network(chosen.allowed, text);
                   if (!mistake.empty())
                       throw CLI::ValidationError("--allow", mistake);
               }
           },
           "Serve these networks, such as 192.168.1.0/24; by default those of the machine's\n"
           "interfaces. 0.0.0.0/0: everybody. 127.0.0.0/8 and the addresses of the interfaces\n"
           "are always served")
        ->type_name("NETWORK");
    app.add_option(
           "--requests-per-second", chosen.per_source.requests_per_second,
           "Requests that are served of each address outside 127.0.0.0/8, after a burst of\n"
           "as many")
        ->type_name("N")
        ->check(CLI::Range(1, most))
        ->capture_default_str();
    app.add_option(
           "--reply-bytes-per-second", chosen.per_source.reply_bytes_per_second,
           "Bytes that each address outside 127.0.0.0/8 is answered, after a burst of as many")
        ->type_name("N")
        ->check(CLI::Range(1, most))
        ->capture_default_str();
}

// An inverted flag of the parser would show as "--no-guard{false}".
static void add_switch_off(CLI::App &app, const char *name, bool &value, const char *help)
{
    app.add_flag_callback(
        name, [&value] { value = false; }, help);
}

static void add_switches(CLI::App &app, options &chosen)
{
    app.add_flag("--client", chosen.client, "Run in the client role: no settings, no server");
    add_switch_off(app, "--no-guard", chosen.guard,
                   "Keep no backups of the saved files, and do not try again what cannot be saved");
    add_switch_off(
        app, "--no-write-conf", chosen.write_conf,
        "Do not write changed conf modules, such as netport, into the data folder: for\n"
        "devices where other programs own these files. Their changes are lost at the end,\n"
        "with exit status 0");
    app.add_flag("--read-only-data", chosen.read_only_data,
                 "Start although the data folder cannot be written; changes will be lost, and the\n"
                 "exit status is 0 all the same");
    add_switch_off(app, "--no-share", chosen.share,
                   "Publish no shared memory, and drop the datagrams of client processes");
}

bool read_options(int argc, char **argv, options &chosen, int &exit_status)
{
    const int usage_error = 2;

    chosen.home = para_profile.home_dir;
    chosen.data = para_profile.data_dir;

    CLI::App app(
        "The camera's parameter store: serves settings by UDP and saves them.\n"
        "SIGTERM, SIGINT and SIGQUIT save every setting and end it, with exit status 1 when\n"
        "changes could not be saved.",
        "camparamd");
    app.set_version_flag("--version", "camparamd " CAMPARAM_VERSION);
    app.add_option("--home", chosen.home, "Folder of the read-only files: ranges, defaults")
        ->type_name("DIR")
        ->capture_default_str();
    app.add_option("--data", chosen.data, "Folder of the saved settings; made when missing")
        ->type_name("DIR")
        ->capture_default_str();
    app.add_option("--trace", chosen.trace_level,
                   "0 silent, 3 errors, 6 progress, 7 request dumps; on standard error")
        ->type_name("LEVEL")
        ->check(CLI::Range(0, 7))
        ->capture_default_str();
    app.add_option("--www2json", chosen.www2json, "Web-name file inside the home folder")
        ->type_name("NAME")
        ->capture_default_str();
    app.add_option("--port", chosen.port, "UDP port to serve")
        ->type_name("PORT")
        ->check(CLI::Range(1, 65535))
        ->capture_default_str();
    add_filter_options(app, chosen);
    add_switches(app, chosen);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        exit_status = app.exit(error) == 0 ? 0 : usage_error;
        return false;
    }
    return true;
}
