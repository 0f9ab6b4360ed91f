// Hold a lock for the rest of a block.
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

class write_guard {
public:
    explicit write_guard(pthread_rwlock_t &held) : lock(held) { pthread_rwlock_wrlock(&lock); }
    ~write_guard() { pthread_rwlock_unlock(&lock); }
    write_guard(const write_guard &) = delete;
    write_guard &operator=(const write_guard &) = delete;

private:
    pthread_rwlock_t &lock;
};
