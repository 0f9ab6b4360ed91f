// camparamd: a host process of the parameter store.
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <string>

#include "camparam/control.h"
#include "camparam/platform.h"
#include "commands.h"
#include "hooks.h"
#include "log.h"
#include "options.h"
#include "port.h"
#include "share_datagram.h"
#include "share_maps.h"

namespace {

// Runs before any thread is created: all inherit the mask, and only the main thread takes these
// signals. One that interrupted a wait of the store's thread would end that thread.
sigset_t block_ending_signals()
{
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGTERM);
    sigaddset(&ending, SIGINT);
    sigprocmask(SIG_BLOCK, &ending, nullptr);
    return ending;
}

void fill_profile(const options &chosen)
{
    para_profile.home_dir = chosen.home.c_str();
    para_profile.data_dir = chosen.data.c_str();
    para_profile.role = chosen.client ? 1 : 0;
    if (!chosen.www2json.empty())
        para_profile.www2json_name = chosen.www2json.c_str();
    dbgout_profile[1] = chosen.trace_level;
    install_hooks();
    if (chosen.write_conf)
        let_conf_files_be_written();
}

// With an unreadable home folder the store would start without settings and save that state.
bool can_read_home(const std::string &home)
{
    std::error_code error;
    const std::filesystem::directory_iterator content(home, error);
    if (error)
        log_line("cannot read the home folder \"%s\": %s", home.c_str(), error.message().c_str());
    return !error;
}

bool make_data_folder(const std::string &data)
{
    std::error_code error;
    std::filesystem::create_directories(data, error);
    if (!error && !std::filesystem::is_directory(data, error) && !error)
        error = std::make_error_code(std::errc::not_a_directory);
    if (error)
        log_line("cannot make the data folder \"%s\": %s", data.c_str(), error.message().c_str());
    return !error;
}

bool port_is_free()
{
    const int error = probe_server_port();
    if (error == EADDRINUSE)
        log_line("UDP port %d is taken; does another host process run?", PARA_SERVER_PORT);
    else if (error != 0)
        log_line("cannot bind UDP port %d: %s", PARA_SERVER_PORT, strerror(error));
    return error == 0;
}

bool start_server(const options &chosen)
{
    if (!can_read_home(chosen.home) || !port_is_free() || !make_data_folder(chosen.data))
        return false;
    if (register_commands() != 0) {
        log_line("cannot register the commands");
        return false;
    }
    if (chosen.share)
        register_share_datagram_handler(apply_share_datagram);
    if (const int error = platformparam_init(); error != 0) {
        log_line("cannot start the store: %s", strerror(error));
        return false;
    }
    if (chosen.share && !publish_share_maps())
        log_line("cannot publish the shared memory; client processes find nothing to attach");
    log_line("ready on UDP port %d, home %s, data %s", PARA_SERVER_PORT, chosen.home.c_str(),
             chosen.data.c_str());
    return true;
}

bool start_client()
{
    if (platformparam_init() != 0)
        return false;
    log_line("ready in the client role");
    return true;
}

// Refreshes the share maps until one of the signals arrives. Returns its number.
int wait_for_signal(const sigset_t &ending)
{
    const timespec turn = {0, 100000000};
    int received = -1;
    while ((received = sigtimedwait(&ending, nullptr, &turn)) < 0)
        refresh_share_maps();
    return received;
}

} // namespace

int main(int argc, char **argv)
{
    options chosen;
    int exit_status = 0;
    if (!read_options(argc, argv, chosen, exit_status))
        return exit_status;

    const sigset_t ending = block_ending_signals();
    signal(SIGPIPE, SIG_IGN); // the reader of the traces may exit; settings must still be saved
    fill_profile(chosen);
    if (!(chosen.client ? start_client() : start_server(chosen)))
        return 1;

    const int received = wait_for_signal(ending);
    log_line("%s: saving and stopping", received == SIGTERM ? "SIGTERM" : "SIGINT");
    withdraw_share_maps();
    platformparam_stop(1);
    return 0;
}
