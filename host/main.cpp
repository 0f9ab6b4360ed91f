// camparamd: a host process of the parameter store.
#include <sys/stat.h>

#include <csignal>
#include <cstring>

#include "camparam/commands.h"
#include "camparam/control.h"
#include "camparam/guard.h"
#include "camparam/platform.h"
#include "change_log.h"
#include "conf_reload.h"
#include "hooks.h"
#include "log.h"
#include "options.h"
#include "request_filter.h"
#include "secrets.h"
#include "share_datagram.h"
#include "share_maps.h"
#include "signals.h"
#include "start_checks.h"
#include "unsaved.h"

namespace {

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
    if (!hide_secrets(chosen.home, chosen.www2json) || para_commands_register() != 0) {
        log_line("cannot register the commands: out of memory");
        return false;
    }
    install_request_filter(
        {.allowed = chosen.allowed, .per_source = chosen.per_source, .port = chosen.port});
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

// What the main thread does a few times a second, while there is something to do. Returns whether
// work waits for a later turn.
bool take_turn()
{
    refresh_share_maps();
    const bool reload_waits = reload_requested_conf();
    tell_dropped_datagrams();
    tell_unlisted_changes(false);
    return reload_waits;
}

// Returns the signal that ends the host.
int serve_signals()
{
    bool work_waits = false;
    while (true) {
        const int received = wait_for_signal(work_waits);
        if (is_ending_signal(received))
            return received;
        if (received == SIGHUP) {
            log_line("SIGHUP: rereading conf files");
            request_conf_reload();
        } else if (received == SIGUSR1) {
            log_line("SIGUSR1: saving");
            platformparam_save();
            tell_unsaved();
        }
        work_waits = take_turn();
    }
}

} // namespace

int main(int argc, char **argv)
{
    options chosen;
    int exit_status = 0;
    if (!read_options(argc, argv, chosen, exit_status))
        return exit_status;

    umask(027); // settings are for the host's user to write, and for its group to read
    block_handled_signals();
    signal(SIGPIPE, SIG_IGN); // the reader of the traces may exit; settings must still be saved
    fill_profile(chosen);
    if (!(chosen.client ? start_client() : start_server(chosen)))
        return 1;

    log_line("%s: saving and stopping", signal_name(serve_signals()));
    withdraw_share_maps(chosen.port);
    platformparam_stop(1);
    tell_unlisted_changes(true);
    const bool changes_lost = tell_unsaved();
    return changes_lost && !chosen.read_only_data ? 1 : 0;
}
