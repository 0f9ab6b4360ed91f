/**
 * @file platform.h
 * What a host process must bring: trace, files, text, key/value configuration, work queue.
 *
 * libcamparam.so leaves these symbols undefined. A host takes them from libcamparam_platform.so,
 * the reference platform, or defines its own. Where a comment says "the reference platform", a
 * platform of your own may differ.
 *
 * Every function may be called from any thread. Some calls come while the store holds a lock: none
 * of these functions may call the store's.
 */
#ifndef CAMPARAM_PLATFORM_H
#define CAMPARAM_PLATFORM_H

#include <time.h>

#include "camparam/api.h"

PARA_BEGIN_DECLS

struct timespec; /* strict C99 hides it in <time.h> */

/* --- Trace ------------------------------------------------------------------------------------ */

/**
 * Trace control; the second word is the level: 0 silent, 3 errors, 6 progress, 7 request dumps.
 * The store reads it before each trace and calls wnk_traceout() only for messages of that level
 * or below. Any thread may write the level at any time, as one 32-bit store. Word 0 is unused.
 * The reference platform starts with level 3.
 */
PARA_API extern int dbgout_profile[2];

/**
 * Emit one trace message. The store has already tested the level.
 *
 * @param level   Level of the message, 3, 6 or 7.
 * @param format  printf format; it ends with a line break. Borrowed for the call.
 *
 * The reference platform writes the message to standard error as one line in one write, so messages
 * of several threads do not mix, and leaves errno as it was. The line breaks at the end of the
 * format become one; other control characters, U+0080 to U+009F in UTF-8 too, become escapes as in
 * C.
 *
 * It never waits for a pipe, terminal or socket that nobody reads, and does not touch the flags of
 * the open file: a message for which there is no room is lost, and the next that has room comes
 * behind a line "N messages lost". The rest of a message that had room in part comes first.
 *
 * Of messages at level 3 that have the same format, it writes 50 a second. The others are counted,
 * and told of as "N more of: ", and the format, with the first message of whatever kind after that
 * second, or when the process exits.
 */
PARA_API void wnk_traceout(int level, const char *format, ...)
    __attribute__((format(printf, 2, 3)));

/* --- Sizes of texts --------------------------------------------------------------------------- */

/** Bytes of a path, the final zero included. */
#define PARA_PATH_SIZE 128

/** Bytes that the text of a number needs at most, the final zero included. */
#define PARA_NUMBER_SIZE 32

/** Where the value text begins in an entry that conf_find() returns. */
#define PARA_CONF_VALUE_OFFSET 256

/* --- Files and text --------------------------------------------------------------------------- */

/**
 * Join a directory and a file name.
 *
 * @param[out] path  PARA_PATH_SIZE bytes. A result that does not fit gives the empty text,
 *                   never a cut path.
 * @param dir        Directory; "/" is added unless it ends with one. NULL: the bare name.
 * @param name       File name.
 * @return @p path
 */
PARA_API char *cat_file_name(char *path, const char *dir, const char *name);

/**
 * Read a whole file.
 * @return Heap text that the caller frees with free(); NULL when the file cannot be opened or
 *         read, or memory runs out. A zero follows the last byte of the file; zero bytes in the
 *         file are kept.
 *
 * The reference platform reads regular files of at most 4 MiB, never waits, and says in errno why
 * it returns NULL: EISDIR for a directory, EINVAL for a FIFO, device or socket and for a NULL path,
 * EFBIG for a larger file, ENOMEM, or what stat(2), open(2) and read(2) say.
 */
PARA_API char *read_file_to_buf(const char *path);

/** Heap copy of a text, freed with free(); NULL for NULL or when memory runs out. */
PARA_API char *lib_strdup(const char *text);

/**
 * Decimal text of a number.
 * @param[out] text  PARA_NUMBER_SIZE bytes.
 * @return @p text
 */
PARA_API char *lib_itoa(int value, char *text);

/**
 * Run a shell command line and wait for it.
 *
 * The reference platform calls sync(2) for the command "sync", on a thread of its own: it returns 0
 * before that has ended, and a sync that is due runs for all that asked before it began. A process
 * that ends waits up to 10 s for the last one.
 *
 * It runs any other command in a process group of its own, which is killed when the calling process
 * ends in whichever way; what a command leaves behind in the background is not.
 *
 * @return What system(3) returns.
 */
PARA_API int lib_system(const char *command);

/** Milliseconds from @p from to @p to, negative when @p to is the earlier one. */
PARA_API long long lib_common_diff_msec_timespec(const struct timespec *from,
                                                 const struct timespec *to);

/* --- Configure objects: ordered key/value stores, read from ".conf" files --------------------- */

/** A configure object: the operations below, and the platform's own data behind them. */
typedef struct configure configure;

/** Called once per entry; key and value are borrowed for the call. The result is ignored. */
typedef int (*conf_loop_callback)(void *argument, const char *key, const char *value);

/**
 * The operations of an object; a platform's private data follows behind them. One that fails for
 * want of memory leaves errno at ENOMEM, as configure_parse() and malloc() do.
 */
struct configure {
    /** Copy a value with its zero. @return 0 copied; -1 absent or longer than size - 1. */
    int (*conf_get)(configure *conf, const char *key, char *buffer, int size);
    /**
     * Call @p callback for every entry, in file order. @return 0
     *
     * The reference platform goes over the entries as they were at the call, so the callback may
     * use the operations of the same object.
     */
    int (*conf_loop)(configure *conf, conf_loop_callback callback, void *argument);
    /**
     * Set a value; a new key is added behind the others. @return 1 changed, 0 same.
     *
     * The reference platform refuses what no line of a ".conf" file can hold, returns 0 and changes
     * nothing: a value with a line feed, and a key that is empty, begins with "#", or has a "=" or
     * a blank in it. It also refuses what would make an object of more than 4096 keys, or of more
     * than 1 MiB of keys and values.
     */
    int (*conf_set)(configure *conf, const char *key, const char *value);
    /**
     * The entry of a key, whose value text begins PARA_CONF_VALUE_OFFSET bytes into it, or NULL.
     * The object owns it; the value text stays valid until that key is set or parsed with another
     * value, or the object is freed. What stands before the value is the platform's alone: the
     * offset limits no key, which is looked up whole. The reference platform has the key there, cut
     * to fit.
     */
    void *(*conf_find)(configure *conf, const char *key);
};

/** A new, empty object, freed with configure_free(); NULL when memory runs out. */
PARA_API configure *configure_init(void);

/**
 * Read a ".conf" file into an object: entries are added, or overwrite those of the same key.
 *
 * The reference platform's text: one entry a line, `key = "value"` or `key=value`; blanks around
 * "=" are free and quotes optional; blank lines, lines that begin with "#" and lines that are no
 * entry are skipped: without "=" or a valid key, with a zero byte, with a first quote but no last
 * one. A value may hold any bytes but line ends and quotes; the reference platform keeps quotes
 * too, but other readers of the file may not.
 *
 * The reference platform reads what read_file_to_buf() would read, with the same errno. While a
 * writer has the file under an exclusive flock(), it waits, but at most 2 s: then errno is
 * EWOULDBLOCK. A file that would make an object of more than 4096 keys, or of more than 1 MiB of
 * keys and values, is refused with EFBIG. The object's other users see either none or all of the
 * file.
 *
 * @param flags  Always 0.
 * @return 0, or -1 when the file cannot be read or memory runs out; the object is then unchanged.
 */
PARA_API int configure_parse(configure *conf, int flags, const char *path);

/** Release an object. NULL is ignored. */
PARA_API void configure_free(configure *conf);

/**
 * Make a key set for configure_key_IsChanged() from a list of @p count keys.
 * @return Heap block that the caller frees with free(); NULL when memory runs out.
 */
PARA_API void *config_keys_format(const char *const *keys, int count);

/**
 * Ask whether a key of the set has changed: whether its value differs from the one that it had
 * when it was last asked about, or, before the first question, after the object's first
 * configure_parse(). To appear is a change too.
 * @return Position (from 0) of the first changed key in the set, or a negative number. Every key
 *         of the set counts as asked about.
 *
 * The store asks only when the host does, by para_conf_key_IsChanged() and its relatives.
 */
PARA_API int configure_key_IsChanged(configure *conf, const void *key_set);

/**
 * conf_loop callback that writes `key = "value"` and a line end to a FILE *, which may be a stream
 * in memory: it need not have a descriptor. The reference platform writes nothing to a NULL file,
 * and no entry that its conf_set refuses. @return 0
 */
PARA_API int loop_2_conf(void *file, const char *key, const char *value);

/** State of a dump by loop_2_buf(). */
typedef struct {
    char *buffer; /**< where the text goes, always zero-terminated after a call */
    int size;     /**< bytes at buffer, the zero included */
    int used;     /**< bytes used so far, without the zero; start with 0 */
    int overflow; /**< set to 1 when an entry did not fit; start with 0 */
} conf_buffer_state;

/**
 * conf_loop callback that appends the line of loop_2_conf() to a conf_buffer_state. An entry that
 * does not fit is left out whole and sets the overflow flag. @return 0
 */
PARA_API int loop_2_buf(void *state, const char *key, const char *value);

/* --- Work queue ------------------------------------------------------------------------------- */

/** One kind of work that can be posted by name. */
typedef struct {
    const char *name; /**< what the host posts it by, with the type */
    const char *type; /**< what kind of work, such as "enum": a second name; may be NULL */
    int (*handler)(void *argument); /**< does the work; its result is ignored */
    void *argument;                 /**< what the handler gets */
} fifo_work;

/**
 * Register work items. The store registers "netport", without a type, which rereads that module,
 * and "para_video" and "para_video_size" of type "enum", which trace names. It never posts any:
 * that is for the host to do, on the reference platform by post_fifo_work() (platform_queue.h).
 *
 * @param works  Copied; the texts and arguments that it points to must stay alive.
 * @return 0, or -1 when an item has no name or no handler, or memory runs out.
 */
PARA_API int add_fifo_work(const fifo_work *works, int count);

PARA_END_DECLS

#endif
