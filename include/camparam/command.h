/**
 * @file command.h
 * The message server on a UDP port, and how a host offers commands of its own.
 *
 * Hosts need param_command and register_param_command(). The other functions are the steps by
 * which the thread "Para_Process" serves a datagram; a host that calls them itself does so on that
 * thread, or while it does not run.
 */
#ifndef CAMPARAM_COMMAND_H
#define CAMPARAM_COMMAND_H

#include <cjson/cJSON.h>
#include <netinet/in.h>

#include "camparam/api.h"

PARA_BEGIN_DECLS

/** The UDP port of the server, unless platformparam_set_server_port() sets another. */
#define PARA_SERVER_PORT 6800

/** The longest request in bytes; of a longer datagram the rest is lost. */
#define PARA_MESSAGE_MAX 4096

/** What a request wants, as handlers are told. */
enum {
    PARA_GET = 0, /**< "msg_type" is, or contains, "get" */
    PARA_SET = 1  /**< "msg_type" is, or contains, "set" */
};

/** A received datagram, and where it came from. */
typedef struct {
    char text[PARA_MESSAGE_MAX + 1]; /**< the datagram, zero-terminated */
    int socket;                      /**< the server's socket, on which the reply is sent */
    struct sockaddr_in sender;       /**< the client */
    int sender_length;               /**< 16 */
} para_message;

/**
 * Carry out a command. Runs on "Para_Process"; a handler that blocks holds up every request and
 * every save.
 *
 * @param mode        PARA_GET or PARA_SET.
 * @param message     The request as it was received; parse its text for further members. Borrowed
 *                    for the call.
 * @param[out] reply  NULL on entry. Store a new tree, which the store then owns, or leave NULL to
 *                    send no reply.
 * @return 0; nonzero: the client gets {"err":"Invalid API command"} instead of the tree, which the
 *         store frees. When memory has run out: 0 without a reply, so that the client asks again.
 */
typedef int (*param_command_handler)(int mode, para_message *message, cJSON **reply);

/** A row of a table of commands. */
typedef struct {
    const char *name;              /**< requests name it, or a beginning of it, in "msg_name" */
    param_command_handler handler; /**< carries it out */
    void *reserved;                /**< never read */
} param_command;

/**
 * Offer a table of commands. Before or after platformparam_init(), on any thread, but by one
 * thread at a time. Tables are never given back. The newest registration is searched first, each
 * from its last row to its first; a request matches the first command whose name begins with its
 * "msg_name".
 *
 * @param name   Name of the registration; cut to 63 characters.
 * @param table  Not copied: it must stay alive. Every row needs a name and a handler; of that,
 *               only the first row is tested here, and a later row without them is never matched.
 * @param count  Rows in @p table, at least 1.
 * @return 0; -1 when the name, the table, its first row's name or handler, or the count is
 *         missing, or memory runs out.
 */
PARA_API int register_param_command(const char *name, const param_command *table, int count);

/** Make the empty command registry, once. Any thread. @return 0 */
PARA_API int param_base_register_init(void);

/**
 * Open the server's socket, on all IPv4 addresses, and make the command registry.
 * @return The socket; -1 when it cannot be opened or bound (traced), and for port 0.
 */
PARA_API int para_server_init(void);

/** Serve one datagram: parse it, tell its kind by "msg_type", handle it, reply. @return 0 */
PARA_API int para_server_message_Process(para_message *message);

/**
 * Send one datagram without blocking; a length of 0 sends nothing. Any thread.
 * @param text  Zero-terminated, as it is traced too; @p length bytes of it are sent.
 * @return 0. A send that fails is not noticed.
 */
PARA_API int SendBuf2Client(int socket, struct sockaddr_in client, const char *text, int length);

/**
 * Handle a request (PARA_GET or PARA_SET) on the modules, and reply.
 * @param request  Owned by the callee from here on.
 * @return 0; -1 when there is no request, or memory runs out for the reply, and none is sent.
 */
PARA_API int Recive_message_Process_gset(para_message *message, cJSON *request, int mode);

/**
 * Handle a request to a command, and reply.
 * @param request  Owned by the callee from here on.
 * @return 0, or -1 when the request has no "msg_name".
 */
PARA_API int Recive_message_Process_api(para_message *message, cJSON *request, int mode);

/**
 * Find a request's command and run it.
 * @param request     Borrowed for the call.
 * @param[out] reply  NULL on entry. What the command stored; the caller deletes it, whatever the
 *                    result.
 * @return 0; -1 when no command matches or the command failed.
 */
PARA_API int param_base_json_dispose(para_message *message, cJSON *request, cJSON **reply,
                                     int mode);

PARA_END_DECLS

#endif
