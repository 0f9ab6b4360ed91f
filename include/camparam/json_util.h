/**
 * @file json_util.h
 * Reading members of cJSON trees with checks for NULL and for the type, and tracing trees.
 *
 * Any thread, as long as no other thread changes the tree.
 */
#ifndef CAMPARAM_JSON_UTIL_H
#define CAMPARAM_JSON_UTIL_H

#include <cjson/cJSON.h>

#include "camparam/api.h"

PARA_BEGIN_DECLS

/**
 * Trace a tree as text at level 6, with the node's type; cJSON_Print2_safe() adds @p tag, which
 * may be NULL. A NULL node, or one that cannot be printed, is traced with the caller's address.
 */
PARA_API void cJSON_Print_safe(const cJSON *node);
PARA_API void cJSON_Print2_safe(const cJSON *node, const char *tag);

/** The integer form of a number node (3.9 gives 3); -1 for NULL and for any other type. */
PARA_API int json_object_get_int(const cJSON *node);

/** The text of a string node, owned by the node; NULL for NULL (traced) and for any other type. */
PARA_API char *json_object_get_string(const cJSON *node);

/**
 * Read a number member, in its integer form or in full.
 * @param object      May be NULL.
 * @param[out] value  Untouched on failure.
 * @return 0; -1 when @p object is NULL, the key is absent or the member is not a number.
 */
PARA_API int json_object_load_number(const cJSON *object, const char *key, int *value);
PARA_API int json_object_load_double(const cJSON *object, const char *key, double *value);

/**
 * Read an array member into bytes: the low 8 bits of each element's integer form, which cJSON keeps
 * as 1 for true and as 0 for everything else that is not a number.
 *
 * @param[out] values  Room for @p capacity bytes, and for one even when it is 0 or less.
 * @param capacity     Elements to read at the most; 0 or less still reads the first.
 * @return Bytes stored; 0 when @p object is NULL; -1 when the key is absent or not an array.
 */
PARA_API int json_object_load_u8_array(const cJSON *object, const char *key, unsigned char *values,
                                       int capacity);

/**
 * Read a text member into a slot of heap text.
 *
 * An empty slot (NULL) first gets a copy of @p default_text. When the key is present the slot's
 * text is freed and replaced by a copy of the member's text (NULL for a member that is no text).
 *
 * @param[in,out] slot  Heap text or NULL. The text left there is the caller's, freed with free().
 * @return 0; -1 when memory runs out, and the slot is as before
 */
PARA_API int json_object_load_string(const cJSON *object, const char *key, char **slot,
                                     const char *default_text);

PARA_END_DECLS

#endif
