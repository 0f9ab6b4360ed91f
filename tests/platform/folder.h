// A temporary folder, and configure objects.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/types.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "camparam/platform.h"

class Folder : public testing::Test {
protected:
    Folder();
    ~Folder() override;

    std::string path(const std::string &name) const { return folder + "/" + name; }
    // Writes a file and returns its path.
    std::string write(const std::string &name, const std::string &bytes) const;
    std::string read(const std::string &name) const;

private:
    std::string folder;
};

struct heap_delete {
    void operator()(void *block) const { free(block); }
};
using heap_text = std::unique_ptr<char, heap_delete>;
using heap_block = std::unique_ptr<void, heap_delete>;

// Owns a configure object.
class Conf {
public:
    Conf() : object(configure_init()) {}
    ~Conf() { configure_free(object); }
    Conf(const Conf &) = delete;
    Conf &operator=(const Conf &) = delete;

    int parse(const std::string &file) { return configure_parse(object, 0, file.c_str()); }
    int set(const std::string &key, const std::string &value);
    // The value, or "absent".
    std::string get(const std::string &key);
    // Key and value of each entry, in the order of conf_loop.
    std::vector<std::pair<std::string, std::string>> entries();
    // The value text in the entry from conf_find(); null if absent.
    const char *found(const std::string &key);
    int save(const std::string &file);
    int changed(const std::vector<const char *> &keys);

    configure *const object;
};

// Whether a thread of this process is blocked in a system call.
bool thread_sleeps(pid_t id);

// Waits up to 20 seconds for the condition. Returns whether it holds.
bool eventually(const std::function<bool()> &condition);

// Runs the action on a thread of its own. Ends the test when it takes more than 20 seconds, as the
// thread could not be joined.
void in_time(const std::function<void()> &action);
