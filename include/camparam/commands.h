/**
 * @file commands.h
 * The command kit, libcamparam_commands: api commands by which clients list, save and reload
 * settings, for any host. docs/message-protocol.md has their requests and replies.
 */
#ifndef CAMPARAM_COMMANDS_H
#define CAMPARAM_COMMANDS_H

#include "camparam/api.h"
#include "camparam/guard.h"

PARA_BEGIN_DECLS

/**
 * Offer the commands "changes", "check", "confirm", "describe", "lens", "log", "pages", "reload",
 * "reset", "save", "status" and "style". Once, before platformparam_init(), from the thread that
 * will call that.
 *
 * They are carried out on the thread "Para_Process", but for what waits: "reload" and "save" wait
 * for files, and what "confirm" has set for the time when it is taken back. These have a thread of
 * their own, "para_commands", that starts with the first of them, blocks all signals, and ends when
 * the process exits; hooks are called on it as well. Unlike those of register_param_command(), the
 * names of these commands cannot be abbreviated in requests.
 *
 * It sets the setting observer to para_commands_note(), which keeps what "log" answers with.
 *
 * @return 0, or -1 when out of memory.
 */
PARA_API int para_commands_register(void);

/**
 * Keep a change for the command "log", which tells the last 256. The setting observer; a host that
 * sets one of its own after para_commands_register() calls it from that. Any thread.
 *
 * @param change  Borrowed for the call.
 */
PARA_API void para_commands_note(const para_setting_change *change);

/** Why a module could not be reloaded: as text, for people. */
#define PARA_REASON_SIZE 256

/**
 * Read the files of a conf module anew, as the command "reload" does, and tell conf_update_hook.
 * Unlike para_conf_need_update() it loses nothing: changes that are still to be saved, or a file
 * that cannot be read, leave the values as they are. It may wait for another program's lock. Any
 * thread but "Para_Process".
 *
 * @param module       Name of a row, such as "netport".
 * @param[out] reason  At least PARA_REASON_SIZE bytes. Empty after success.
 * @return 0; 1 when changes are to be saved before; -1 when there is no such conf module, or a file
 *         cannot be read.
 */
PARA_API int para_commands_reload(const char *module, char *reason);

/**
 * Tell of each module whose settings are not in its file, in the order of the module table: its
 * last save failed, or it has changes that no save will write. As the command "save" does. Any
 * thread.
 *
 * @param tell  Called for each; NULL: only look. Its arguments are borrowed for the call.
 *              module: name of the row. reason: for people. loses: 1 when the module has changes
 *              that its file should hold; 0 when there are none, or that is on purpose, as for conf
 *              modules where writing is off.
 * @return How many of them lose changes.
 */
PARA_API int para_commands_unsaved(void (*tell)(void *context, const char *module,
                                                const char *reason, int loses),
                                   void *context);

PARA_END_DECLS

#endif
