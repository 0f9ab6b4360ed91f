// Rereading conf files when the host is told to.
#pragma once

#include <string>

// Whether the module is one of conf files.
bool is_conf_module(const char *name);

// Main thread only. Asks for the files of each conf module to be reread.
void request_conf_reload();

// Rereads the files of a conf module. Returns an empty text, or the reason why its values are what
// they were: a change of them is still to be saved, or a file cannot be read. Main thread only.
std::string reread_conf(const char *module);

// Main thread only. Rereads the files that were asked for. A module with a change that is still to
// be saved is left for a later call: its values would be replaced with those of the file. Returns
// whether one is left.
bool reload_requested_conf();
