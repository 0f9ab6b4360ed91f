// The store in the test's own process.
#pragma once

class RunningStore {
public:
    RunningStore() = default;
    ~RunningStore();
    RunningStore(const RunningStore &) = delete;
    RunningStore &operator=(const RunningStore &) = delete;

    void start();
    void stop();

private:
    bool started = false;
};
