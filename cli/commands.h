// The subcommands, one per file. Each prints its result and returns the exit status, or throws a
// failure.
#pragma once

#include <string>
#include <vector>

#include "client/client.h"
#include "client/failure.h"
#include "client/setting.h"

// Texts are as on the command line.
exit_code list_settings(client &host, const std::string &filter, bool as_json);
exit_code get_settings(client &host, const std::vector<std::string> &texts, bool as_json);
exit_code set_settings(client &host, const std::vector<std::string> &texts, value_form form,
                       bool as_json);
exit_code call_command(client &host, const std::string &command, const char *type,
                       const std::vector<std::string> &members, value_form form, bool as_json);
exit_code send_raw(client &host);

// Picture styles: lists them; applies one, and optionally makes it the default.
exit_code show_styles(client &host, bool as_json);
exit_code apply_style(client &host, const std::string &name, bool as_default, bool as_json);

// Pages of the web-name file, and queries such as "name=value&name=value".
exit_code get_page(client &host, const std::string &page, bool as_json);
exit_code set_page(client &host, const std::string &page, const std::string &query, bool as_json);

// Sets MODULE.MEMBER=VALUE of an instance by share datagram, as processes of the device do.
exit_code share_setting(client &host, const std::string &text, int instance, value_form form,
                        bool as_json);
