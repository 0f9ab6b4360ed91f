// camparamd: a host process of the parameter store.
#include <sys/stat.h>

#include <csignal>
#include <cstring>

#include "camparam/control.h"
#include "camparam/guard.h"
#include "camparam/platform.h"
#include "commands.h"
#include "hooks.h"
#include "log.h"
#include "options.h"
#include "share_datagram.h"
#include "share_maps.h"
#include "start_checks.h"

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
    para_profile.www2json_name = chosen.www2json.c_str();
    platformparam_set_server_port(chosen.port);
    platformparam_set_guard(chosen.guard ? 1 : 0);
    dbgout_profile[1] = chosen.trace_level;
    install_hooks();
    if (chosen.write_conf)
        let_conf_files_be_written();
}

bool start_server(const options &chosen)
{
    if (!pass_start_checks(chosen))
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
    log_line("ready on UDP port %d, home %s, data %s", chosen.port, chosen.home.c_str(),
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

    umask(027); // settings are for the host's user to write, and for its group to read
    const sigset_t ending = block_ending_signals();
    signal(SIGPIPE, SIG_IGN); // the reader of the traces may exit; settings must still be saved
    fill_profile(chosen);
    if (!(chosen.client ? start_client() : start_server(chosen)))
        return 1;

    const int received = wait_for_signal(ending);
    log_line("%s: saving and stopping", received == SIGTERM ? "SIGTERM" : "SIGINT");
    withdraw_share_maps(chosen.port);
    platformparam_stop(1);
    return 0;
}
