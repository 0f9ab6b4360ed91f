#include "bench/support/device.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "camparam/camparam.h"

namespace fs = std::filesystem;

void give_up(const std::string &what)
{
    fprintf(stderr, "bench: %s: %s\n", what.c_str(), strerror(errno));
    exit(2);
}

device::device()
{
    char name[] = "/tmp/camparam-bench-XXXXXX";
    if (mkdtemp(name) == nullptr)
        give_up(name);
    folder = name;
    home_folder = folder + "/home";
    data_folder = folder + "/data";
    fs::copy(SAMPLE_HOME, home_folder);
    fs::create_directory(data_folder);
}

device::~device()
{
    fs::remove_all(folder);
}

void device::start_store(int port) const
{
    dbgout_profile[1] = 3;
    para_profile.home_dir = home();
    para_profile.data_dir = data();
    platformparam_set_server_port(port);
    if (platformparam_init() != 0)
        give_up("platformparam_init");
}
