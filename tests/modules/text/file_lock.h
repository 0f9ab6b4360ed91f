// Locks on files, as the store and the device's other programs take them.
#pragma once

#include <sys/types.h>

#include <string>

// How many exclusive file locks this process has begun to wait for.
int lock_attempts();
// So many of the next ones are interrupted, as by a signal.
void interrupt_locks(int count);
// From now on they fail with this errno.
void fail_locks(int error);
// Whether the file of the last one is closed when the process becomes another program.
bool last_lock_closes_on_exec();
// What stood in the file whose lock this process gave up last.
std::string bytes_at_unlock();

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
