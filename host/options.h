// What the command line of camparamd says.
#pragma once

#include <string>

struct options {
    std::string home;
    std::string data;
    std::string www2json; // empty: the store's own default
    int trace_level = 3;
    bool client = false;
    bool write_conf = false;
    bool share = true;
};

// Fills the options; their defaults are what para_profile holds. When the process is to end here,
// because of a mistake or of a question such as --help, returns false with the exit status.
bool read_options(int argc, char **argv, options &chosen, int &exit_status);
