// The processes of a shell command.
#pragma once

#include <csignal>

#include <sys/types.h>

// Runs in the child of a fork, with all signals blocked: a shell with the command, in a process
// group that is killed when the host ends in whichever way. Ends as the shell does.
//
// @param mask  Signal mask of the shell.
[[noreturn]] void lead_command_group(const char *command, pid_t host, const sigset_t &mask);
