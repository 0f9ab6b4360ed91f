/**
 * @file module.h
 * The module table, and how a host adds modules that answer requests.
 */
#ifndef CAMPARAM_MODULE_H
#define CAMPARAM_MODULE_H

#include <cjson/cJSON.h>

#include "camparam/api.h"

PARA_BEGIN_DECLS

/**
 * One module: its name and up to six functions; a NULL function is skipped. Seven pointer-sized
 * words. Every function gets the row's own name last.
 */
typedef struct {
    /** Name, and the prefix that the keys of requests are matched against. */
    const char *name;
    /** Start-up. Nonzero: failed; traced, and start-up goes on. */
    int (*init)(const char *name);
    /** Second stage, after the first stage of every module. The result is ignored. */
    int (*init_stage2)(const char *name);
    /**
     * Apply one member of a set request. Runs on "Para_Process".
     * @param key   The request's key: the row name, or longer.
     * @param item  The value that the client sent, of any type. Borrowed for the call.
     * @return -ENOMEM when memory ran out and something could not be set: the client gets no reply.
     *         All other results are ignored.
     */
    int (*set_opt)(const char *key, const cJSON *item, const char *name);
    /**
     * Answer one member of a get request. Runs on "Para_Process".
     * @param key          The request's key: the row name, or longer.
     * @param item         The value that the client sent, of any type. Borrowed for the call.
     * @param[out] answer  NULL on entry. Store a new value, which the store then owns, or leave
     *                     NULL to answer nothing. It is printed into the reply and deleted before
     *                     the next member is answered.
     * @return -ENOMEM, with no answer, when memory ran out: the client gets no reply. All other
     *         results are ignored.
     */
    int (*get_opt)(const char *key, const cJSON *item, cJSON **answer, const char *name);
    /** Nonzero when there are unsaved changes that are due. A row that has it must have save. */
    int (*need_save)(const char *name);
    /** Write the module's current values. Nonzero: failed; traced. */
    int (*save)(const char *name);
} para_module;

/** Rows of the module table. */
enum { PARA_MODULES_MAX = 64 };

/**
 * All modules. The order of the rows is the order of start-up, saving and request matching. Fixed
 * once platformparam_init() has appended its rows; read only from then on.
 */
PARA_API extern para_module module_para_handle[PARA_MODULES_MAX];

/** Rows in use; 0 before start-up and in a client process. */
PARA_API extern int module_para_handle_num;

/**
 * Offer a module of the host's own. Its name, set_opt and get_opt are taken, nothing else. A name
 * that was offered before gets the new functions. At most 32 names. Call it before
 * platformparam_init(), from the thread that will call that.
 *
 * @param row  The row is copied; the text of its name must stay alive.
 * @return 0 staged; -1 ignored: NULL row or name, start-up has run, or 32 names are staged.
 */
PARA_API int register_para_handle_extern(const para_module *row);

/**
 * Append the rows of one kind to the table: a row for each name of the web-name file's
 * "json_pattern_list" ("misc" by default) or "conf_pattern_list" ("netport", "overlay",
 * "ndi_config"), or every row that the host offered. Called by platformparam_init() only.
 * @return 0, or -1 when the table was full; the rows that fitted stay.
 */
PARA_API int register_para_handle_json_pattern(void);
PARA_API int register_para_handle_conf_pattern(void);
PARA_API int register_para_handle_extern_pattern(void);

/**
 * get_opt of the rows "msg_name" and "msg_id", which echo a request's identifiers: @p answer gets
 * a copy of the item's text (nothing if it is none), or of its integer, when the item's key is a
 * prefix of @p name. Any thread. @return 0; -ENOMEM when memory runs out
 */
PARA_API int para_get_msg_name_opt(const char *key, const cJSON *item, cJSON **answer,
                                   const char *name);
PARA_API int para_get_msg_id_opt(const char *key, const cJSON *item, cJSON **answer,
                                 const char *name);

/** Does nothing: an echoed identifier belongs to the reply. @return 0 */
PARA_API int para_free_msg_name_opt(void *unused);

PARA_END_DECLS

#endif
