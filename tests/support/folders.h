// The home and data folders of a store, for one in the test's own process or another.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>

// The bytes of a file, or nothing when there is none.
std::optional<std::string> read_file(const std::string &path);
void write_file(const std::string &path, const std::string &bytes);

// A fixture with empty home and data folders in para_profile and every trace recorded.
class Folders : public testing::Test {
protected:
    Folders();
    ~Folders() override;

    // An apostrophe stands for a quote.
    void write_home(const std::string &name, const std::string &bytes);
    void write_data(const std::string &name, const std::string &bytes);
    std::optional<std::string> read_data(const std::string &name);

    std::string home, data;

private:
    std::string folder;
};
