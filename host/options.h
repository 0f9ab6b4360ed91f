// The command line of camparamd.
#pragma once

#include <string>

#include "camparam/command.h"
#include "networks.h"
#include "rate_limit.h"

struct options {
    std::string home;
    std::string data;
    std::string www2json = "www2json.json";
    int port = PARA_SERVER_PORT;
    std::vector<network> allowed; // empty: those of the machine's interfaces
    rate per_source;
    int trace_level = 3;
    bool client = false;
    bool guard = true;
    bool read_only_data = false;
    bool write_conf = true;
    bool share = true;
};

// Parses the command line; the folders default to those of para_profile. Returns false, and the
// exit status, when the process should end here: after --help, --version or a usage error.
bool read_options(int argc, char **argv, options &chosen, int &exit_status);
