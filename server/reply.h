// Replies: their text, and sending it.
#pragma once

#include "base/json_writer.h"
#include "camparam/command.h"

// A reply while it is written.
class reply_writer {
public:
    reply_writer();
    ~reply_writer();
    reply_writer(const reply_writer &) = delete;
    reply_writer &operator=(const reply_writer &) = delete;

    json_writer &text() { return writer; }

    // Nothing when it is not complete.
    void send_to(const para_message &sender);

private:
    json_writer writer;
};

void send_text(const para_message &message, const char *text);
void send_tree(const para_message &message, const cJSON *tree);
