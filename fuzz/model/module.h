// What all modules have in common: changes, when they are due, and what comes of saving them.
#pragma once

#include <string>

#include "camparam/guard.h"
#include "fuzz/model/disk.h"

class model_module {
public:
    model_module(model_disk &written_to, const long long &clock) : disk(written_to), now(clock) {}
    virtual ~model_module() = default;
    model_module(const model_module &) = delete;
    model_module &operator=(const model_module &) = delete;

    // As after start-up: the values of the files.
    virtual void start() = 0;

    // Returns whether it succeeded, as the row's save function does.
    virtual bool save() = 0;

    // Whether a pass calls save() when it asks first.
    virtual bool is_due() const;

    virtual para_module_status status() const;

protected:
    void forget();
    void accept_change();
    void stamp_change();
    bool write(const std::string &name, const std::string &bytes);
    void end_save(bool written);
    bool may_be_saved() const;
    bool is_waiting() const; // after a failed save

    model_disk &disk;
    const long long &now;
    bool changed = false;
    long long changed_at = 0;
    long long delay = 2000;
    unsigned changes = 0;
    unsigned saved = 0; // of the changes
    unsigned flags = 0;

private:
    unsigned failures = 0;
    long long failed_at = 0;
};
