// Rereading of conf modules that other programs have changed the files of.
#pragma once

// Main thread only. Asks for all of them.
void request_conf_reload();

// Main thread only. Rereads the files that were asked for. A module with a change that is still to
// be saved is left for a later call: its values would be replaced with those of the file. Returns
// whether one is left.
bool reload_requested_conf();
