// A fuzz target: called with one input after another, by libFuzzer or by replay.cpp. It keeps no
// state from one call to the next, so that an input alone tells what went wrong.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

// Prints the message and aborts, unless the property holds.
void require(bool holds, const char *format, ...) __attribute__((format(printf, 2, 3)));
