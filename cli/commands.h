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
