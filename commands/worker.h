// Work that waits for files, and would hold up every other client: a thread of its own does it, and
// answers.
#pragma once

#include "camparam/command.h"
#include "json.h"

// What is to be done, and for what module; null where that does not matter. Adds to the object
// "failed" of the reply, which is left out when nothing is added.
using late_work = void (*)(const char *module, json_builder &failed);

// Has the work done and the message answered, by the reply that is begun. One piece of work answers
// all that ask for the same and wait. Beyond 32 that wait a request is not answered, and so
// repeated by its client.
void answer_later(const para_message &message, json_builder &reply, late_work work,
                  const char *module);

// In work: lets so much time pass.
void pause_work(long milliseconds);

// Has work done on that thread at a time of CLOCK_MONOTONIC, in milliseconds. There is one such
// time: a later call takes the place of an earlier. Returns false when the thread cannot be
// started.
bool do_at(long long time_ms, void (*work)());
