#include "start_checks.h"

#include <cerrno>
#include <cstring>

#include "data_folder.h"
#include "home_check.h"
#include "log.h"
#include "port.h"

namespace {

bool home_is_usable(const home_check &home)
{
    if (!home.fault.empty())
        log_line("%s", home.fault.c_str());
    return home.fault.empty();
}

bool paths_fit(const std::string &data, const device_files &files)
{
    const std::string path = too_long_path(data, files.saved);
    if (!path.empty())
        log_line("the path of the data folder is too long: \"%s\" has more than 127 characters",
                 path.c_str());
    return path.empty();
}

bool port_is_free(int port)
{
    const int error = probe_server_port(port);
    if (error == EADDRINUSE)
        log_line("UDP port %d is taken; does another host process run?", port);
    else if (error != 0)
        log_line("cannot bind UDP port %d: %s", port, strerror(error));
    return error == 0;
}

// A folder that is not there is locked when it has been made.
bool lock_if_there(const options &chosen)
{
    const folder_lock lock = lock_folder(chosen.data);
    if (lock.error == 0 || lock.error == ENOENT || lock.error == ENOTDIR)
        return true;
    const bool taken = lock.error == EWOULDBLOCK;
    const bool passes = !taken && (!lock.supported || chosen.read_only_data);
    log_line("cannot lock the data folder \"%s\": %s%s", chosen.data.c_str(),
             taken ? "another host process uses it" : strerror(lock.error),
             passes ? "; a second host process would not be refused" : "");
    return passes;
}

// Whether start-up goes on without a place to save in.
bool go_on(const options &chosen, const char *what, const std::string &reason)
{
    log_line("cannot %s the data folder \"%s\": %s%s", what, chosen.data.c_str(), reason.c_str(),
             chosen.read_only_data ? "; changes will be lost" : "");
    return chosen.read_only_data;
}

bool can_save(const options &chosen)
{
    if (const std::string reason = make_folder(chosen.data); !reason.empty())
        return go_on(chosen, "make", reason);
    if (!lock_if_there(chosen))
        return false;
    if (const int error = try_to_write(chosen.data); error != 0)
        return go_on(chosen, "write to", strerror(error));
    return true;
}

} // namespace

// The data folder is made last: a start that fails leaves nothing behind.
bool pass_start_checks(const options &chosen)
{
    const home_check home = check_home(chosen.home, chosen.www2json, chosen.data);
    if (!home_is_usable(home) || !paths_fit(chosen.data, home.files))
        return false;
    if (!lock_if_there(chosen) || !port_is_free(chosen.port))
        return false;
    return can_save(chosen);
}
