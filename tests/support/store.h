// A parameter store on folders of its own, and a client that talks to it over UDP.
#pragma once

#include <cjson/cJSON.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "camparam/camparam.h"
#include "support/device.h"

struct json_delete {
    void operator()(cJSON *node) const { cJSON_Delete(node); }
};
using json = std::unique_ptr<cJSON, json_delete>;

// Parses a text that must be JSON; an apostrophe stands for a quote.
json parse(std::string text);

// The tree without blanks; an apostrophe stands for a quote.
std::string compact(const cJSON *node);

// The bytes of a file, or nothing when there is none.
std::optional<std::string> read_file(const std::string &path);
void write_file(const std::string &path, const std::string &bytes);

// A fixture with empty home and data folders in para_profile and every trace recorded. Nothing is
// started; stop_store() runs at the end if start_store() was called.
class Store : public testing::Test {
protected:
    Store();
    ~Store() override;

    void write_home(const std::string &name, const std::string &bytes);
    void write_data(const std::string &name, const std::string &bytes);
    std::optional<std::string> read_data(const std::string &name);

    void start_store();
    void stop_store();

    std::string home, data;

private:
    std::string folder;
    bool started = false;
};

// A UDP client of the store on this machine.
class Client {
public:
    Client();
    ~Client();

    void send(const std::string &datagram);
    // The next reply; a null text when none comes within the time.
    std::optional<std::string> receive(int timeout_ms = 20000);
    // Sends a JSON text (an apostrophe stands for a quote) and returns the reply.
    std::optional<std::string> request(std::string text);
    // The reply to a request without blanks, an apostrophe for a quote; "none" when none comes.
    std::string ask(const std::string &text);
    // Whether the store has served everything sent so far without a reply to it: its answer to a
    // request of the client's own comes first.
    bool stays_silent();

private:
    int descriptor;
};
