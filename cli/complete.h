// Completion for shells.
#pragma once

#include <string>
#include <vector>

#include "program.h"

// Prints how the last of the words may go on, a word a line; the program's name is none of them.
// What the host has to tell is left out when it does not answer soon.
void print_completions(const arguments &words, program &all, std::vector<std::string> given);
