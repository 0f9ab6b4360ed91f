/**
 * @file www.h
 * Web names: requests of the device's web pages, in names and forms of their own.
 *
 * A request whose "msg_from" is "www" is translated by the web-name file that start-up has read,
 * and answered in query-string form ("name=value" pairs joined by "&"). These functions run on the
 * thread "Para_Process"; a host that calls them itself does so while that thread does not run.
 * Fractions are read and written with the decimal point of the process's LC_NUMERIC, "C" unless the
 * host has called setlocale().
 */
#ifndef CAMPARAM_WWW_H
#define CAMPARAM_WWW_H

#include <cjson/cJSON.h>

#include "camparam/api.h"

PARA_BEGIN_DECLS

/** Start of the converter: does nothing. @return 0 */
PARA_API int para_init_www(void);

/** End of the converter: does nothing. */
PARA_API void para_exit_www(void);

/**
 * Translate a web request.
 * @param request     JSON text with "msg_type" "get" or "set".
 * @param[out] error  The text to reply with on failure, of at most @p size - 1 characters; the
 * empty text when there shall be no reply.
 * @return A new request in the modules' own names, which the caller deletes; NULL on failure, with
 *         the empty text when memory runs out.
 */
PARA_API cJSON *para_convert_www_opt(const char *request, char *error, int size);

/**
 * Translate a reply into query-string text: every member that has a web name, or "result=success"
 * when none has. Both functions are the same.
 * @param reply  Borrowed for the call.
 * @return Heap text that the caller frees with free(); NULL when memory runs out.
 */
PARA_API char *para_reverse_convert_www_opt(cJSON *reply);
PARA_API char *get_json2http(cJSON *reply);

/**
 * Translate a parsed web request: a get of the page that "msg_name" names, or a set of the pairs in
 * "data" (none when that is no text). Keys and values of 32 characters or more are cut to 31.
 * @return A new request, which the caller deletes; NULL when there is no such page, no "msg_name",
 *         no "data", or no pair in it, and when memory runs out.
 */
PARA_API cJSON *get_http2json(const cJSON *request);
PARA_API cJSON *set_http2json(const cJSON *request);

/**
 * The web name of a module's member.
 * @param[out] type      The entry's second text; untouched when it has none. May be NULL.
 * @param[out] modifier  The entry's third text; untouched when it has none. May be NULL.
 * @return A text of the web-name file; NULL (traced) when the member has no web name.
 */
PARA_API const char *get_http_name(const char *module, const char *member, const char **type,
                                   const char **modifier);

/** A member that a web name stands for; texts of the web-name file. */
typedef struct {
    const char *module; /**< NULL: the web name stands for none */
    const char *member; /**< the member's name */
    const char *type;   /**< "S": a text; NULL or anything else: a number */
} www_json_name;

/**
 * The member that a web name stands for.
 * @param[out] found     All NULL when there is none.
 * @param[out] modifier  The entry's third text; untouched when it has none. May be NULL.
 * @param next           0: search from the first module of the file. 1: go on behind the module of
 *                       the previous match.
 */
PARA_API void get_json_name(www_json_name *found, const char *web_name, const char **modifier,
                            int next);

PARA_END_DECLS

#endif
