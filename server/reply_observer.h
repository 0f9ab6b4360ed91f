// Telling the host of replies.
#pragma once

#include <netinet/in.h>

// Tells the host's observer, if there is one, of a reply that was sent.
void tell_reply_observer(const sockaddr_in &client, int length);
