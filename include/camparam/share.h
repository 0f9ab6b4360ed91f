/**
 * @file share.h
 * Setting values from other processes of the device by datagram, and the memory that the main
 * program shares with them.
 *
 * A client process (role nonzero in its profile) registers for a share module, 0 to 3, and then
 * calls the setters. The main program publishes the share modules, and sets a handler that applies
 * the datagrams. Which number stands for which module is agreed between the two.
 */
#ifndef CAMPARAM_SHARE_H
#define CAMPARAM_SHARE_H

#include <stdint.h>

#include "camparam/api.h"

PARA_BEGIN_DECLS

/** Share modules: 0 to PARA_SHARE_MODULES - 1. */
enum { PARA_SHARE_MODULES = 4 };

/** The name of a share module's shared-memory object, as a format for its number. */
#define PARA_SHARE_MAP_NAME "/camparam_share_%d"

/** The same for a store on another port than PARA_SERVER_PORT: for its number and the port. */
#define PARA_SHARE_MAP_NAME_WITH_PORT "/camparam_share_%d_%d"

/**
 * What a share module's memory begins with, 12 bytes; its entries follow. The library reads it when
 * it attaches the memory, and keeps the sizes that it has checked then.
 */
typedef struct {
    uint32_t registered; /**< 1 while the main program publishes it */
    int32_t entry_count; /**< entries that follow */
    uint32_t entry_size; /**< bytes of an entry */
} para_share_map;

/** What a datagram sets: a number or a text. */
enum { PARA_SHARE_NUMBER = 0, PARA_SHARE_TEXT = 1 };

/** A datagram, 76 bytes, in the byte order of the host. */
typedef struct {
    uint32_t type;     /**< PARA_SHARE_NUMBER or PARA_SHARE_TEXT */
    uint32_t instance; /**< the setter's first argument: stream, channel or ISP instance */
    int32_t number;    /**< of a PARA_SHARE_NUMBER, else 0 */
    char module[16];   /**< "video", "audio" or "isp", filled up with zeros */
    char member[16];   /**< member name, filled up with zeros */
    char text[32];     /**< of a PARA_SHARE_TEXT: filled up with zeros; a text of 32 bytes has none
                          behind it */
} para_share_datagram;

/* --- Client processes --------------------------------------------------------------------------
 */

/**
 * Register for a share module: attach the memory that the main program has published for it, for
 * reading, and open the socket of the setters at the first success. One thread at a time. Memory
 * that an earlier registration attached stays mapped, also when this one is refused.
 * @return 0; -1 (traced) when the module is not 0 to 3, not published, or its object is smaller
 * than its header says, or larger than 1 GiB: it then has no entries.
 */
PARA_API int para_share_register(int module);

/**
 * An entry of a share module's memory. Any thread, once the module is registered and while it is
 * not registered again.
 * @param entry  From 1. One beyond the entries is traced, and its address returned all the same.
 * @return The entry's address, which stays valid as long as the process, for reading: a store ends
 *         the process with SIGSEGV. Whoever may write the object may also cut it short, and to read
 *         what is missing then ends the process with SIGBUS. NULL (traced) when the module is not 0
 *         to 3, or not registered.
 */
PARA_API void *para_get_share_map(int module, int entry);

/** Open the socket of the setters; para_share_register() does. @return Its descriptor, or -1. */
PARA_API int Send_Initial(void);

/**
 * For each member of share_members.def, such as video and bitRate:
 *
 * int para_set_share_video_bitRate_number(int instance, int value)
 * int para_set_share_video_bitRate_string(int instance, const char *text)
 *
 * Send one datagram to the main program; a text is cut to 32 bytes. Any thread. Returns 0: nothing
 * tells whether it was sent, received or applied, and before a registration it is not.
 */
#define SHARE_MEMBER(module, member)                                                               \
    PARA_API int para_set_share_##module##_##member##_number(int instance, int value);             \
    PARA_API int para_set_share_##module##_##member##_string(int instance, const char *text);
#include "camparam/share_members.def"

/** For hosts; the library neither reads nor writes them. */
PARA_API extern void *g_shareMap;
PARA_API extern int g_shareMapLen;

/* --- The main program --------------------------------------------------------------------------
 */

/**
 * Publish a share module: a shared-memory object of the name above that holds the words 1
 * (registered), @p entry_count and @p entry_size, and then the entries, all zero until the main
 * program fills them. Its mode is 0644 less the umask, which decides whether other users
 * may read it. An object of that name is replaced; clients already attached keep the old mapping.
 * The object outlives the process: a host that withdraws it calls shm_unlink(). One thread at a
 * time.
 *
 * The library never touches the memory itself. A process of the same user, or of root, can cut the
 * object short; a host that stores into the part that is missing then gets SIGBUS, and may handle
 * that by mapping other memory there.
 *
 * @return The object's address, which stays valid as long as the process; NULL (traced) when the
 *         module is not 0 to 3, a size is negative, the object larger than 1 GiB, or the system
 *         refuses.
 */
PARA_API void *para_share_publish(int module, int entry_count, int entry_size);

/**
 * Set the function that applies datagrams; NULL: they are dropped, as in the beginning. Any thread.
 *
 * The handler runs on the thread "Para_Process", for every datagram of 76 bytes whose type is 0 or
 * 1. Nothing else in it has been looked at: fields may lack their zero, names may be unknown. It
 * returns nonzero for one that it refuses, which is traced.
 */
PARA_API void register_share_datagram_handler(int (*handler)(const para_share_datagram *datagram));

PARA_END_DECLS

#endif
