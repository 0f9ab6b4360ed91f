// Settings that client processes of the device change by datagram.
#pragma once

#include "camparam/share.h"

// Applies a datagram by the rules of a set request: a value of the wrong type or out of range is
// ignored. Returns -1, and changes nothing, when a field is not zero-terminated or the module,
// member or instance does not exist. Runs on the store's thread.
int apply_share_datagram(const para_share_datagram *datagram);
