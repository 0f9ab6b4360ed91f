// A UDP server in place of a host process, which sends the answers that the test gives it.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

class fake_server {
public:
    // Returns the datagrams to send in reply to a request. Called by one thread at a time.
    using answerer = std::function<std::vector<std::string>(const std::string &request)>;

    explicit fake_server(answerer answers);
    ~fake_server();

    fake_server(const fake_server &) = delete;
    fake_server &operator=(const fake_server &) = delete;

    // All requests so far, in order, including those that were still in the socket's queue.
    std::vector<std::string> requests() const;

private:
    void serve();
    void serve_waiting() const; // under the lock

    answerer answer;
    int descriptor;
    std::atomic<bool> stopping{false};
    mutable std::mutex lock;
    mutable std::vector<std::string> received;
    std::thread thread;
};

// A text that one thread may change while another reads it.
class shared_text {
public:
    void operator=(const std::string &new_text)
    {
        const std::lock_guard<std::mutex> guard(lock);
        text = new_text;
    }
    operator std::string() const
    {
        const std::lock_guard<std::mutex> guard(lock);
        return text;
    }

private:
    mutable std::mutex lock;
    std::string text;
};

// The "msg_id" of a request as text; "none" without one.
std::string id_of(const std::string &request);
