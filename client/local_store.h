// A store in this process, on the files of a device: a way to settings without a host.
#pragma once

#include <string>
#include <vector>

#include "client/connection.h"
#include "client/saved.h"

enum class file_access {
    none,
    reads,
    changes,
};

struct device_folders {
    std::string home;
    std::string data; // of the saved settings; empty: none are saved
};

// Parses HOME or HOME:DATA.
device_folders parse_folders(const std::string &text);

// Starts the store, on no port; once in a process. Who only reads has it work on a copy of the
// saved settings, so that nothing is written whatever it finds. Throws a failure when a folder is
// not there, or a host or another program is at work on it.
std::unique_ptr<connection> open_local_store(const device_folders &folders, file_access access);

// Writes what has been changed. Returns what cannot be.
std::vector<unsaved_module> save_local_store();
