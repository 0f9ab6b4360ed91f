// Output of the commands.
#pragma once

#include <string>
#include <vector>

#include "client/json.h"

// Escapes control characters, so that a value stays on its line and cannot control the terminal.
std::string visible(const std::string &text);

// Prints rows with aligned columns, separated by two blanks.
void print_table(const std::vector<std::vector<std::string>> &rows);

// Prints NAME=VALUE.
void print_value(const std::string &name, const cJSON *value);

// Prints a message for the user on standard error.
void print_message(const std::string &text);
