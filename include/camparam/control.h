/**
 * @file control.h
 * Start, save and stop the parameter store, and the profile that the host fills in first.
 *
 * A host sets the fields of para_profile, may offer modules (module.h) and commands (command.h),
 * and calls platformparam_init() once. When it ends it calls platformparam_stop(1).
 */
#ifndef CAMPARAM_CONTROL_H
#define CAMPARAM_CONTROL_H

#include <cjson/cJSON.h>

#include "camparam/api.h"

PARA_BEGIN_DECLS

/** Any function; cast it back to its own type before calling it. */
typedef void (*para_entry_point)(void);

/**
 * The start-up profile: twenty pointer-sized words. Set it before platformparam_init(), which
 * keeps no copy: texts and functions must stay alive.
 *
 * Every hook is optional (NULL). A hook runs on the thread that made the change: a host thread for
 * a change by a setter, the store's thread "Para_Process" for a request, the work queue's thread
 * for a reload that was posted there. It may call setters.
 *
 * The notify hooks are told of an accepted change by a public setter: they get that setter and its
 * arguments. The request hooks are told once of a set request that changed something; those of the
 * ISP and of the video streams are never called: platformparam_set_setting_observer() (guard.h)
 * tells of all changes, of these modules, too.
 */
typedef struct para_profile_t {
    const char *home_dir; /**< directory of the read-only files; "/home" */
    const char *data_dir; /**< directory of the files that the store writes; "/data" */
    int role; /**< 0: parameter server; else a client process without tables or thread */
    const char *www2json_name; /**< web-name file in home_dir; NULL: "www2json.json" */

    /** An inconsistency found at start-up, such as a store of another version. */
    void (*conflict_hook)(const char *name, int old_value, int new_value);

    /** Accepted changes by public setters. */
    void (*isp_set_notify_hook)(int (*setter)(int, int), int instance, int value);
    void (*video_set_notify_hook)(int (*setter)(int, int), int stream, int value);
    void (*audio_set_notify_hook)(int (*setter)(int), int value);
    void (*af_set_notify_hook)(int (*setter)(int), int value);
    void (*misc_set_notify_hook)(const char *module, para_entry_point setter, const char *member,
                                 int value);
    void (*odm_set_notify_hook)(const char *key);
    void (*conf_member_notify_hook)(const char *module, const char *key);

    /** Never called: platformparam_set_setting_observer() tells of these changes, too. */
    void (*isp_set_request_hook)(const cJSON *item);
    void (*video_set_request_hook)(const cJSON *item);

    /** Set requests that changed something, once each, with the value that the client sent. */
    void (*audio_set_request_hook)(const cJSON *item);
    void *reserved_16; /**< not used */
    void (*misc_set_request_hook)(const char *module, const cJSON *item);

    /** A conf-file module was reread, or changed by a request. The result is ignored. */
    int (*conf_update_hook)(const char *module);
    /** A switch: while it is NULL, conf-file modules are never written. It is never called. */
    para_entry_point conf_save_hook;
    void *reserved_20; /**< not used */
} para_profile_t;

/** The profile of this process. */
PARA_API extern para_profile_t para_profile;

/**
 * Start the store. Call it once, from one thread, before any other use of the settings.
 *
 * In the server role it reads the web-name file, appends the pattern modules and the host's own to
 * the module table, initialises every module, opens the server's port and starts the thread
 * "Para_Process". A file that is missing, a module that fails and a port that is taken are traced,
 * and start-up goes on. In the client role it does nothing.
 *
 * A signal that is handled on "Para_Process" interrupts its wait and so ends that thread for good.
 * The thread takes over the signal mask of the caller: block the signals that the host handles
 * around this call.
 *
 * @return 0, or the error number of a thread that could not be started. 0 in the client role.
 */
PARA_API int platformparam_init(void);

/** Start-up of a client process: does nothing. @return 0 */
PARA_API int para_client_init(void);

/**
 * Write every module that can be saved, changed or not, and then run "sync". Any thread, but never
 * from a module's need_save or save; waits for a save that is under way on another thread.
 * @return 0; a module that cannot be written is traced.
 */
PARA_API int platformparam_save(void);

/**
 * Stop the store.
 *
 * @param stop  Nonzero: end the thread "Para_Process" (which takes at most 100 ms, and the request
 *              and the save that are under way), then save as platformparam_save() does; without a
 *              running thread, as before start-up or after a stop, nothing is done, and nothing
 *              saved. 0: clear a stop that has not been carried out yet.
 * @return 0. Host threads only, one at a time: never from a hook, command or module that
 *         "Para_Process" calls.
 */
PARA_API int platformparam_stop(int stop);

/**
 * Set how long audio and video settings stay unsaved after their last change. Any thread; counts
 * from the next turn of the store's thread.
 *
 * @param audio_ms  Milliseconds, 2000 until set. Not tested: 0 or less saves at once.
 * @param video_ms  The same for the video streams.
 * @return 0
 */
PARA_API int platformparam_set_save_param_time(int audio_ms, int video_ms);

/** Trace a conflict and tell conflict_hook of it with the same arguments. Any thread. @return 0 */
PARA_API int para_conflict_callback(const char *name, int old_value, int new_value);

/** Body of the thread "Para_Process"; platformparam_init() starts it. @return NULL when it ends */
PARA_API void *platformparam_Process(void *unused);

PARA_END_DECLS

#endif
