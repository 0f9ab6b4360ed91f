#include "server/reply.h"

#include <cstdlib>
#include <cstring>

// Memory for a reply, kept from one to the next. A handler may have a request served while it
// answers one: who finds none here allocates.
static char *kept;
constexpr size_t kept_size = size_t{4} * 1024;

static text_space take_kept()
{
    char *const bytes = __atomic_exchange_n(&kept, nullptr, __ATOMIC_ACQ_REL);
    return {bytes, bytes != nullptr ? kept_size : 0};
}

// After a large reply, so much of it is kept as a usual one needs.
static void keep(const text_space &space)
{
    void *const shrunk = space.size > kept_size ? realloc(space.bytes, kept_size) : nullptr;
    char *const bytes = shrunk != nullptr ? static_cast<char *>(shrunk) : space.bytes;
    free(__atomic_exchange_n(&kept, bytes, __ATOMIC_ACQ_REL));
}

reply_writer::reply_writer() : writer(take_kept())
{
    writer.reserve(kept_size);
}

reply_writer::~reply_writer()
{
    keep(writer.release());
}

void reply_writer::send_to(const para_message &sender)
{
    const char *const text = writer.written();
    if (text != nullptr)
        SendBuf2Client(sender.socket, sender.sender, text, static_cast<int>(writer.length()));
}

void send_text(const para_message &message, const char *text)
{
    SendBuf2Client(message.socket, message.sender, text, static_cast<int>(strlen(text)));
}

void send_tree(const para_message &message, const cJSON *tree)
{
    reply_writer reply;
    reply.text().document(tree);
    reply.send_to(message);
}
