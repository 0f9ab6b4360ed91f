// The commands that camparamd offers to clients, described in docs/message-protocol.md. Each is a
// param_command_handler and runs on the store's thread.
#pragma once

#include "camparam/command.h"

// Registers all of them; call it before the store starts. Returns 0 or -1.
int register_commands();

// Lists modules and their members with kind, limits, default and current value. Get only.
int describe_command(int mode, para_message *message, cJSON **reply);
// Sets AF members, which have no set request of their own. Set only.
int lens_command(int mode, para_message *message, cJSON **reply);
// Rereads the files of a conf module, "netport" by default. Set only. Answered by
// answer_waiting_reloads().
int reload_command(int mode, para_message *message, cJSON **reply);
// Saves every module, and tells which could not be saved. Get or set, as it changes no setting.
// Less than a second after the last save it is answered at once if nothing is left to write, else
// by answer_waiting_saves().
int save_command(int mode, para_message *message, cJSON **reply);
// Lists the picture styles, or applies one. Get or set.
int style_command(int mode, para_message *message, cJSON **reply);

// Saves and answers the requests to save that wait, if a second has passed since the last save.
// Main thread only, a few times a second.
void answer_waiting_saves();

// Rereads the files of one module that requests wait for, and answers them. Main thread only, a few
// times a second.
void answer_waiting_reloads();
