// camparam: reads and changes the camera's settings from the command line.
#include <CLI/CLI.hpp>

#include <cstdio>

#include "commands.h"
#include "output.h"

namespace {

const char *const examples = R"(Examples:
  camparam list                           every setting with its range
  camparam list af.zoom_value             one setting
  camparam get af                         every value of a module
  camparam get af.zoom_value af.focus_mode
  camparam set af.zoom_value=1200         set, and read back
  camparam set misc.hdmivideoformat=1080P50 netport.http_port=8080
  camparam style vivid --default          picture style, now and after each start
  camparam www get image                  a web page's values in web names
  camparam www set image 'hue=5&gamma=2'
  camparam share video.bitRate=4096 --instance 1
  camparam call save                      run a command of the host
  echo '{"msg_type":"get","msg_id":1,"af":["all"]}' | camparam raw

Exit status: 0 done, 1 other failure, 2 wrong usage, 3 no answer, 4 refused,
5 no such setting, 6 partly done.)";

struct arguments {
    server_address server;
    bool as_json = false;
    bool as_number = false, as_text = false;
    bool api_get = false, api_set = false;
    std::string filter;              // of list
    std::vector<std::string> names;  // of get
    std::vector<std::string> values; // of set
    std::string command;             // of call
    std::vector<std::string> members;
    std::string style;
    bool as_default = false;
    std::string page, query; // of www
    std::string shared;      // of share
    int instance = 0;

    value_form form() const
    {
        if (as_number)
            return value_form::number;
        return as_text ? value_form::text : value_form::automatic;
    }

    // A command that is given members most likely changes something.
    const char *api_type() const
    {
        return api_set || (!api_get && !members.empty()) ? "api_set" : "api_get";
    }
};

void add_options(CLI::App &app, arguments &given)
{
    app.add_option("--host", given.server.host, "Name or address of the camera")
        ->type_name("HOST")
        ->capture_default_str();
    app.add_option("--port", given.server.port, "UDP port of its message server")
        ->type_name("PORT")
        ->check(CLI::Range(1, 65535))
        ->capture_default_str();
    app.add_option("--timeout", given.server.timeout_s, "Seconds to wait for each answer")
        ->type_name("SECONDS")
        ->capture_default_str();
    app.add_option("--retries", given.server.retries, "Repeats of a request without an answer")
        ->type_name("COUNT")
        ->check(CLI::Range(0, 1000))
        ->capture_default_str();
    app.add_flag("--json", given.as_json, "Print results as JSON");
    app.set_version_flag("--version", "camparam " CAMPARAM_VERSION);
}

void add_form_options(CLI::App *command, arguments &given)
{
    CLI::Option *const number =
        command->add_flag("--number", given.as_number, "Send every value as a number");
    command->add_flag("--text", given.as_text, "Send every value as a string")->excludes(number);
}

void add_list(CLI::App &app, arguments &given)
{
    CLI::App *const list = app.add_subcommand(
        "list", "Show settings: kind, range, default and value; * marks a changed one");
    list->add_option("setting", given.filter, "Only this module or setting")
        ->type_name("MODULE[.MEMBER]");
}

void add_get(CLI::App &app, arguments &given)
{
    CLI::App *const get = app.add_subcommand("get", "Print values, one per line");
    get->add_option("settings", given.names, "Modules or settings")
        ->type_name("MODULE[.MEMBER]")
        ->required();
}

void add_set(CLI::App &app, arguments &given)
{
    CLI::App *const set = app.add_subcommand("set", "Change settings and read them back");
    set->add_option("values", given.values, "Settings and their new values")
        ->type_name("MODULE.MEMBER=VALUE")
        ->required();
    add_form_options(set, given);
}

void add_call(CLI::App &app, arguments &given)
{
    CLI::App *const call = app.add_subcommand("call", "Run a command that the host offers");
    call->add_option("command", given.command, "Name of the command")
        ->type_name("COMMAND")
        ->required();
    call->add_option("members", given.members, "Parameters; integers are sent as numbers")
        ->type_name("MEMBER=VALUE");
    CLI::Option *const set =
        call->add_flag("--set", given.api_set, "Send it as api_set [default with parameters]");
    call->add_flag("--get", given.api_get, "Send it as api_get [default without]")->excludes(set);
    add_form_options(call, given);
}

void add_style(CLI::App &app, arguments &given)
{
    CLI::App *const style =
        app.add_subcommand("style", "Show the picture styles, or apply one with all its values");
    CLI::Option *const name =
        style->add_option("style", given.style, "The style to apply")->type_name("NAME");
    style->add_flag("--default", given.as_default, "Make it the default style, too")->needs(name);
}

void add_www(CLI::App &app, arguments &given)
{
    CLI::App *const www =
        app.add_subcommand("www", "Read or change settings in the names of the web pages");
    www->require_subcommand(1);
    CLI::App *const get = www->add_subcommand("get", "Print the values of a page, one per line");
    get->add_option("page", given.page, "Name of the page")->type_name("PAGE")->required();
    CLI::App *const set = www->add_subcommand("set", "Change values of a page and read them back");
    set->add_option("page", given.page, "Name of the page")->type_name("PAGE")->required();
    set->add_option("query", given.query, "New values, sent without escaping")
        ->type_name("NAME=VALUE&...")
        ->required();
}

void add_share(CLI::App &app, arguments &given)
{
    CLI::App *const share = app.add_subcommand(
        "share", "Change a setting by share datagram and read it back by request");
    share->add_option("value", given.shared, "Setting of video, audio or isp, and its new value")
        ->type_name("MODULE.MEMBER=VALUE")
        ->required();
    share->add_option("--instance", given.instance, "Stream, or image processor")
        ->type_name("N")
        ->check(CLI::Range(0, 255))
        ->capture_default_str();
    add_form_options(share, given);
}

exit_code run_www(const CLI::App &www, client &host, const arguments &given)
{
    if (www.got_subcommand("get"))
        return get_page(host, given.page, given.as_json);
    return set_page(host, given.page, given.query, given.as_json);
}

exit_code run_style(client &host, const arguments &given)
{
    if (given.style.empty())
        return show_styles(host, given.as_json);
    return apply_style(host, given.style, given.as_default, given.as_json);
}

exit_code run(const CLI::App &app, const arguments &given)
{
    const double longest_s = 3600;
    if (!(given.server.timeout_s > 0 && given.server.timeout_s <= longest_s)) // false for NaN, too
        throw failure(USAGE, "--timeout takes seconds, more than 0 and at most 3600");

    client host(given.server);
    if (app.got_subcommand("list"))
        return list_settings(host, given.filter, given.as_json);
    if (app.got_subcommand("get"))
        return get_settings(host, given.names, given.as_json);
    if (app.got_subcommand("set"))
        return set_settings(host, given.values, given.form(), given.as_json);
    if (app.got_subcommand("call"))
        return call_command(host, given.command, given.api_type(), given.members, given.form(),
                            given.as_json);
    if (app.got_subcommand("style"))
        return run_style(host, given);
    if (app.got_subcommand("www"))
        return run_www(*app.get_subcommand("www"), host, given);
    if (app.got_subcommand("share"))
        return share_setting(host, given.shared, given.instance, given.form(), given.as_json);
    return send_raw(host);
}

} // namespace

int main(int argc, char **argv)
{
    arguments given;
    CLI::App app("Reads and changes the settings of a camera.", "camparam");
    app.footer(examples);
    app.require_subcommand(1);
    app.fallthrough(); // options of the program are accepted after the subcommand too
    add_options(app, given);
    add_list(app, given);
    add_get(app, given);
    add_set(app, given);
    add_call(app, given);
    add_style(app, given);
    add_www(app, given);
    add_share(app, given);
    app.add_subcommand("raw", "Send the JSON request on standard input and print the answer");

    try {
        app.parse(argc, argv);
        const exit_code status = run(app, given);
        if (fflush(stdout) != 0 || ferror(stdout))
            throw failure(OTHER, "cannot write the result");
        return status;
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? DONE : USAGE;
    } catch (const failure &error) {
        print_message(error.what());
        return error.code;
    } catch (const std::exception &error) {
        print_message(error.what());
        return OTHER;
    }
}
