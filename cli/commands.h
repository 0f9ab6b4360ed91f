// The program's commands, one a file. Each prints its result, returns the exit status, and throws
// a failure when it cannot go on.
#pragma once

#include <string>
#include <vector>

#include "client.h"
#include "failure.h"
#include "setting.h"

// Texts are as on the command line. With as_json, results are printed as JSON.
exit_code list_settings(client &host, const std::string &filter, bool as_json);
exit_code get_settings(client &host, const std::vector<std::string> &texts, bool as_json);
exit_code set_settings(client &host, const std::vector<std::string> &texts, value_form form,
                       bool as_json);
exit_code call_command(client &host, const std::string &command, const char *type,
                       const std::vector<std::string> &members, value_form form, bool as_json);
exit_code send_raw(client &host);

// Picture styles: shows them all; applies one, and makes it the default if wanted.
exit_code show_styles(client &host, bool as_json);
exit_code apply_style(client &host, const std::string &name, bool as_default, bool as_json);

// Pages of the web-name file, and queries such as "name=value&name=value".
exit_code get_page(client &host, const std::string &page, bool as_json);
exit_code set_page(client &host, const std::string &page, const std::string &query, bool as_json);

// Sets MODULE.MEMBER=VALUE of an instance as client processes of the device do.
exit_code share_setting(client &host, const std::string &text, int instance, value_form form,
                        bool as_json);
