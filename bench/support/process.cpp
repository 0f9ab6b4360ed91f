#include "bench/support/process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "bench/support/device.h"

process::process(const std::vector<std::string> &command) : child(fork())
{
    if (child != 0)
        return;
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    std::vector<char *> arguments;
    for (const std::string &argument : command)
        arguments.push_back(const_cast<char *>(argument.c_str()));
    arguments.push_back(nullptr);
    const int nowhere = open("/dev/null", O_RDWR);
    dup2(nowhere, STDIN_FILENO);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

process::~process()
{
    kill(child, SIGTERM);
    waitpid(child, nullptr, 0);
}

bool is_installed(const std::string &program)
{
    return system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

bool succeeds_soon(const std::function<bool()> &attempt)
{
    for (int i = 0; i < 1000; i++) {
        if (attempt())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

scratch_folder::scratch_folder() : name("/tmp/camparam-bench-XXXXXX")
{
    if (mkdtemp(name.data()) == nullptr)
        give_up(name);
}

scratch_folder::~scratch_folder()
{
    std::filesystem::remove_all(name);
}
