// The sample device in folders of its own, which are removed at the end.
#pragma once

#include <string>

class device {
public:
    device();
    ~device();
    device(const device &) = delete;
    device &operator=(const device &) = delete;

    const char *home() const { return home_folder.c_str(); }
    const char *data() const { return data_folder.c_str(); }

    // Starts the store of this process on it, at errors' trace level; port 0: without a server.
    void start_store(int port) const;

private:
    std::string folder, home_folder, data_folder;
};

// Ends the program with status 2: nothing was measured.
[[noreturn]] void give_up(const std::string &what);
