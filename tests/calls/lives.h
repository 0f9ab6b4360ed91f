// Lives of a store in child processes, one after the other, on the same files.
#pragma once

#include <string>
#include <vector>

#include "calls/supervisor.h"
#include "support/every_kind.h"

class Lives : public EveryKind {
protected:
    Lives();

    // The modules that the device has: one of each kind, "misc" in its current set.
    static const std::vector<module_kind> &kinds();

    // The numbers of all modules after a start, in the order of the kinds.
    std::vector<int> numbers_after_start();

    // Brings the data folder back to what a save of this number in all modules left.
    void go_back_to(int number);

    // For children: starts the store without a server, or exits.
    static void start();
    static void set_all(int number);

    // Every call is tried, or every n-th where processes start slowly: the environment variable
    // CAMPARAM_PROOF_STRIDE says.
    static long stride();

    bool guarded = true;

private:
    std::string saved; // a copy of the data folder
    int saved_number = 0;
};
