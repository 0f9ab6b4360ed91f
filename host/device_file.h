// A file of the device as the store would find it.
#pragma once

#include <cstdlib>
#include <memory>
#include <string>

struct text_free {
    void operator()(char *text) const { free(text); }
};

struct device_file {
    bool exists = false;
    std::string fault; // why the store cannot read it; empty also for a file that does not exist
    std::unique_ptr<char, text_free> text; // null without a readable file
};

device_file read_device_file(const std::string &folder, const std::string &name);
