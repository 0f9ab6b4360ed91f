/**
 * @file guard.h
 * What protects settings and service beyond the store's usual behaviour.
 */
#ifndef CAMPARAM_GUARD_H
#define CAMPARAM_GUARD_H

#include <netinet/in.h>

#include "camparam/api.h"

PARA_BEGIN_DECLS

/**
 * Switch the guard on or off. Before platformparam_init(), from the thread that will call that.
 *
 * With the guard on, for the current files of all modules:
 *
 * - A save first brings the new text to disk as "<file>.bak", and then writes the file as always.
 *   At start-up a file that is empty or only the beginning of its backup is restored from it. A
 *   missing file stays missing, and one that was edited is used as it is. A file in a
 *   folder that came after it was looked for, as one that is mounted late, is not overwritten: the
 *   save fails with EEXIST until the file is gone, or read by the next start or reload.
 * - A file that cannot be read, or is no JSON where it must be, is kept as "<file>.bad", and its
 *   backup used. Where a rename cannot replace what has that name, as a directory and a regular
 *   file each other, a free one of "<file>.bad.1" to "<file>.bad.9" is taken.
 * - A module whose range or defaults could not be loaded is not saved.
 * - Where such a file has a backup that is there but cannot be read, both stay as they are, and the
 *   module is not saved. That holds for an empty file, too, which may be torn.
 * - A ".conf" file that the platform alone refuses stays, and the module is not saved; its
 *   backup is used if the platform takes that.
 * - Of a file that another program keeps locked, or that cannot be written, the backup is used as
 *   well, but the file stays. The module is saved later only if the file is torn, and nobody was
 *   writing it.
 * - A save that fails is traced with file and errno, and tried again after 2, 4, 8 ... 60 s.
 * - Another program's lock on a file is waited for 2 s at most. The thread "Para_Process" answers
 *   no request while one of its saves waits.
 * - "sync" runs only after a pass that wrote a file. When it fails, its error is that of all that
 *   was saved since the last good one, and it is tried again as saves are.
 *
 * The thread "Para_Process" goes on when the system fails to wait for datagrams; that turn lasts
 * its 100 ms.
 *
 * And for what the server receives: datagrams that were sent to a broadcast or multicast address
 * are dropped, and a request is one JSON document, behind which only white space may stand, and
 * behind a zero only zeros; so one of more than PARA_MESSAGE_MAX bytes, whose end is lost, is none.
 *
 * @param on  Nonzero: on. It is off until set.
 * @return What it was before, 1 or 0.
 */
PARA_API int platformparam_set_guard(int on);

/** Flags of a module's status. */
enum {
    PARA_STATUS_LOAD_FAILED = 1, /**< its range, defaults or file could not be loaded */
    PARA_STATUS_RESTORED = 2,    /**< its file was lost or torn, and its backup used */
    PARA_STATUS_KEPT_BAD = 4,    /**< its file could not be used and was renamed "<file>.bad" ... */
    PARA_STATUS_NOT_SAVED = 8    /**< its values cannot be saved */
};

/** What is known of a module's changes and saves. Counted with the guard on or off. */
typedef struct {
    unsigned changes; /**< accepted since start; wraps */
    unsigned saved;   /**< what changes was when the values that were last written were read. Equal
                           to changes, with error 0: everything is written */
    int error;        /**< errno of the last save if it failed, else 0 */
    unsigned flags;   /**< PARA_STATUS_... */
    long long saved_at; /**< time of the last good save, milliseconds of CLOCK_REALTIME; 0: none */
} para_module_status;

/**
 * Tell what is known of a module. Any thread. Modules that share a file ("video0" ...) share a
 * status; a row that holds no values of the store's ("msg_id", the host's own) has no changes and
 * PARA_STATUS_NOT_SAVED.
 *
 * @param module       Name of a row of the module table; that of the ODM store is PARA_ODM_ROW.
 * @param[out] status  Untouched on failure.
 * @return 0; -1 for an unknown module or a null argument.
 */
PARA_API int platformparam_get_status(const char *module, para_module_status *status);

/** What the store has counted since its start; counts wrap. */
typedef struct {
    unsigned received;     /**< datagrams that arrived */
    unsigned dropped;      /**< of these, by the request filter or the guard */
    unsigned replies;      /**< sent, those by SendBuf2Client() among them */
    unsigned saves;        /**< of modules, each a file */
    unsigned failed_saves; /**< tries that failed, flushing the file systems among them */
} para_counters;

/**
 * Tell the counts. Any thread.
 * @param[out] counters  NULL: nothing is done.
 */
PARA_API void platformparam_get_counters(para_counters *counters);

/**
 * Set the function that is told of each accepted change, by setters and requests alike; NULL: none,
 * as in the beginning. Any thread.
 *
 * It is called after the change is in force, on the thread that made it, holding no lock. It may
 * read values and status, and set values, which calls it again.
 *
 * @param observer  module: name of the row that holds the value, PARA_ODM_ROW for the ODM store;
 *                  borrowed for the call. sender: the client whose request changed it, borrowed
 *                  for the call; NULL: the host did.
 */
PARA_API void platformparam_set_change_observer(void (*observer)(const char *module,
                                                                 const struct sockaddr_in *sender));

/** A value of a setting. */
typedef struct {
    int exists;       /**< 0: there is none, as of a key before it is set, or it is not known */
    const char *text; /**< as in requests; NULL: a number */
    int number;       /**< of a number, or of a name with a number; else 0 */
} para_value;

/** An accepted change of a setting. */
typedef struct {
    const char *module; /**< name of the row that holds the value, PARA_ODM_ROW for the ODM store */
    int instance;       /**< of "isp0", whose row holds all instances: 0 to 2; else 0 */
    const char *member; /**< or key */
    para_value old_value; /**< before the change */
    para_value new_value; /**< since the change */
    const struct sockaddr_in
        *sender; /**< the client whose request changed it; NULL: the host did */
} para_setting_change;

/**
 * Set the function that is told of each accepted change with its values; NULL: none, as in the
 * beginning. Any thread. All that holds for the change observer holds for it; it is called after
 * that. It is told of each member that para_isp_cur_restore_isp_def() changes, and not of a
 * reload. Where threads change one setting at the same moment, an old value may be told twice.
 *
 * @param observer  Its argument, with all texts and the sender in it, is borrowed for the call.
 */
PARA_API void
platformparam_set_setting_observer(void (*observer)(const para_setting_change *change));

/**
 * Set the server's UDP port, so that several stores can run on one machine. Before
 * platformparam_init(), from the thread that will call that; in a client process before
 * para_share_register() and Send_Initial(), to the port of its main program.
 *
 * With another port than PARA_SERVER_PORT the share maps are named
 * PARA_SHARE_MAP_NAME_WITH_PORT, and the share setters send to that port.
 *
 * @param port  1 to 65535, or 0 for a store without a server: no socket is opened, the thread
 *              "Para_Process" saves alone. PARA_SERVER_PORT until set.
 * @return The port before; -1 for a number that is none, and then nothing has changed.
 */
PARA_API int platformparam_set_server_port(int port);

/**
 * Set the function that is asked about each received datagram before anything else is done with it;
 * NULL: none, all are served, as in the beginning. Any thread, at any time; a datagram that is
 * being received may still be asked about at the old one. It works with the guard off, too.
 *
 * The function runs on the thread "Para_Process" and holds up every request and every save while it
 * does. It is asked about requests, share datagrams, empty datagrams and rubbish alike.
 *
 * @param admit  Returns 0 to have the datagram dropped without a trace. Its arguments are borrowed
 *               for the call:
 *               sender    where the datagram says that it comes from.
 *               datagram  its bytes, any bytes; a zero that is none of them follows.
 *               length    0 to PARA_MESSAGE_MAX; what a longer datagram has beyond that is lost.
 */
PARA_API void register_request_filter(int (*admit)(const struct sockaddr_in *sender,
                                                   const char *datagram, int length));

/**
 * Set the function that is told of each reply once it is sent, so that a filter can take account of
 * how much a client is sent; NULL: none, as in the beginning. Any thread, at any time. It works
 * with the guard off, too.
 *
 * It runs on the thread that replies: "Para_Process", or a thread of the host's that calls
 * SendBuf2Client(). A reply that the system did not take is not told of.
 *
 * @param observer  to: the client, borrowed for the call. length: the reply's bytes, 1 to 65507.
 */
PARA_API void register_reply_observer(void (*observer)(const struct sockaddr_in *to, int length));

PARA_END_DECLS

#endif
