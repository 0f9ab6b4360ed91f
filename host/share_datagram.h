// Settings that client processes change by datagram.
#pragma once

#include "camparam/share.h"

// Applies a datagram by the rules of a set request: a value of the other form, or out of range, is
// ignored. Returns -1, and changes nothing, when a field lacks its zero or when there is no such
// module, member or instance. Runs on the store's thread.
int apply_share_datagram(const para_share_datagram *datagram);
