// Holds a lock for the rest of a block.
#pragma once

#include <pthread.h>

class lock_guard {
public:
    explicit lock_guard(pthread_mutex_t &held) : mutex(held) { pthread_mutex_lock(&mutex); }
    ~lock_guard() { pthread_mutex_unlock(&mutex); }
    lock_guard(const lock_guard &) = delete;
    lock_guard &operator=(const lock_guard &) = delete;

private:
    pthread_mutex_t &mutex;
};
