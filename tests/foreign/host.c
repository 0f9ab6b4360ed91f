/* usage: host HOME DATA
 * A host process on this host's own platform, until SIGTERM; with WITH_COMMANDS it has the command
 * kit. Says "ready" on standard error. */
#include <signal.h>
#include <stdio.h>

#include "camparam/camparam.h"
#include "camparam/commands.h"

static void written(void) {}

int main(int argc, char **argv)
{
    sigset_t ending;
    int received = 0;
    if (argc != 3) {
        fprintf(stderr, "usage: host HOME DATA\n");
        return 2;
    }
    sigemptyset(&ending);
    sigaddset(&ending, SIGTERM);
    sigprocmask(SIG_BLOCK, &ending, NULL); /* before the store's thread takes the mask over */

    para_profile.home_dir = argv[1];
    para_profile.data_dir = argv[2];
    para_profile.conf_save_hook = written;
    platformparam_set_guard(1);
#ifdef WITH_COMMANDS
    if (para_commands_register() != 0)
        return 1;
#endif
    if (platformparam_init() != 0)
        return 1;
    fprintf(stderr, "ready\n");
    sigwait(&ending, &received);
    return platformparam_stop(1);
}
