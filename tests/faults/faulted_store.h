// A store with a module of every kind, and requests that are served on the test's own thread with
// or without a failing allocation.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "camparam/camparam.h"
#include "faults/allocations.h"
#include "support/device.h"
#include "support/folders.h"

// One datagram's way through the server, without the store's thread.
class DirectClient {
public:
    DirectClient();
    ~DirectClient();
    DirectClient(const DirectClient &) = delete;
    DirectClient &operator=(const DirectClient &) = delete;

    struct answer {
        std::string text; // empty: none was sent
        long tried, kept; // allocations, and blocks that were not given back
    };
    // An apostrophe stands for a quote, in the request alone.
    answer ask(const std::string &request, long failing = 0, shortage lasting = shortage::once);

private:
    para_message message = {};
    int receiver, sender;
};

// Runs a function for each allocation up to the last, which fails once, and then for ever. Ends
// with the first failure of a test.
using faulted_run = std::function<void(long, shortage)>;
void for_each_failure(long last, const faulted_run &run);

// A part of these runs, for tests of which all together would take long: every fourth.
struct part_of_failures {
    shortage lasting;
    long first; // 1 to 4
};
void for_each_failure(long last, const part_of_failures &part, const faulted_run &run);
std::vector<part_of_failures> all_parts();
std::string name_of_part(const testing::TestParamInfo<part_of_failures> &part);
void PrintTo(const part_of_failures &part, std::ostream *out);

// Home and data folders with files for every kind of module; nothing is started.
class FaultedFolders : public Folders {
protected:
    FaultedFolders();
    void use_legacy_misc();
};

// The same, started and stopped again: the values are in force, and the store's thread does not
// run.
class FaultedStore : public FaultedFolders {
protected:
    void SetUp() override;

    DirectClient client;
};
