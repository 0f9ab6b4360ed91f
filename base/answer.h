// How modules answer: member by member, to a sink. They do not know whether it makes a tree of the
// answer (base/answer_tree.h) or the text of a reply or file (base/json_writer.h).
#pragma once

#include "base/json.h"

// A sink for which memory ran out takes no more, and is not complete.
//
// The functions have bodies because pure ones would need the C++ run-time library.
class answer_sink {
public:
    // Opens an object, whose members follow up to its close(). The outermost value has no key: that
    // of its call is not used.
    virtual void open(const char *) {}
    virtual void close() {}

    virtual void number(const char *, int) {}
    virtual void text(const char *, const char *) {}
    virtual void tree(const char *, json_ptr) {}

    virtual bool complete() const { return false; }

protected:
    ~answer_sink() = default;
};

// Answers a member of a get request under its key, or does not. Returns what get_opt functions do.
using answer_function = int (*)(const char *key, const cJSON *item, const char *name,
                                answer_sink &sink);
