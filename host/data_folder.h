// The folder of the saved settings.
#pragma once

#include <string>
#include <vector>

// The first of the files whose path the store could not build, as it is too long; empty: none.
std::string too_long_path(const std::string &folder, const std::vector<std::string> &names);

// Makes the folder with its parents. Returns an empty text, or the reason.
std::string make_folder(const std::string &folder);

struct folder_lock {
    int error;      // 0, or the error number: EWOULDBLOCK when another process has the lock
    bool supported; // false: the file system has no locks
};

// Keeps other processes from locking the folder, until this one ends. Tries it once: when it has
// found a folder, does nothing.
folder_lock lock_folder(const std::string &folder);

// Makes a file in the folder and removes it. Returns 0, or the error number.
int try_to_write(const std::string &folder);
