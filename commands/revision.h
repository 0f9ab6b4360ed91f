// A number for the set of settings.
#pragma once

#include <cstdint>

#include "description.h"

// Hands members on, and makes the number of them: another one when a module or member has come or
// gone, or a member has another kind, range, list of names or text of the device's.
class revision : public member_sink {
public:
    explicit revision(member_sink &into) : sink(into) {}

    void begin_module(int row, const para_module &module, const char *command) override;
    void take(const char *name, json_ptr member) override;

    // 1 to 2147483647.
    int number() const;

private:
    void add(const char *text);

    member_sink &sink;
    uint32_t hash = 2166136261U;
};
