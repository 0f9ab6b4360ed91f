// What stands in for the device: folders, clock, traces, shell, work queue.
#pragma once

#include <optional>
#include <string>

// Empty at first; para_profile names home and data. Removed when the process ends.
struct device_folders {
    std::string root, home, data;
};
const device_folders &folders();

std::optional<std::string> read_file(const std::string &path);
void write_file(const std::string &path, const std::string &bytes);

// Removes everything in a folder.
void empty_folder(const std::string &path);

// Puts the files of the sample device into the home folder.
void install_sample_home();

// platformparam_init(), but that no port is taken and the store's thread does not run: a target
// makes its turns.
void start_store();

// The store's monotonic clock stands but for these moves.
void move_clock(long long milliseconds);
long long clock_ms();

// How often the store has run "sync".
int count_syncs();
