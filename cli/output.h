// Output of the commands.
#pragma once

#include <string>
#include <vector>

#include "client/failure.h"
#include "client/json.h"

// Escapes control characters and what is no UTF-8, so that a value stays on its line and cannot
// control the terminal.
std::string visible(const std::string &text);

// Prints rows with aligned columns, separated by two blanks.
void print_table(const std::vector<std::vector<std::string>> &rows);

// A value as tables show it; "-" for none.
std::string value_cell(const cJSON *value);

// The table with its rows as columns.
std::vector<std::vector<std::string>> transposed(const std::vector<std::vector<std::string>> &rows);

// Prints NAME=VALUE, and a mark behind it.
void print_value(const std::string &name, const cJSON *value, const char *mark = "");

// Prints JSON with line breaks and tabs, or as one line. It is UTF-8 whatever the values hold.
void print_json(const cJSON *node);
void print_json_line(const cJSON *node);

// Prints a message for the user on standard error.
void print_message(const std::string &text);
void print_failure(const failure &what);

// From now on messages are lines of JSON: {"message": "..."}, and {"message": "...", "status": 4}
// of a failure.
void print_messages_as_json();
