// Locks on files, as the store and the device's other programs take them.
#pragma once

#include <sys/types.h>

#include <string>

// How many exclusive file locks this process has begun to wait for.
int lock_attempts();

// Another process that holds the exclusive lock on a file, which it creates if there is none.
class lock_holder {
public:
    explicit lock_holder(const std::string &path);
    ~lock_holder() { release(); }
    lock_holder(const lock_holder &) = delete;
    lock_holder &operator=(const lock_holder &) = delete;

    // Ends the process, and the lock with it.
    void release();

private:
    pid_t process;
    int life; // the process ends when this descriptor is closed
};
