#include "calls/lives.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "camparam/camparam.h"

Lives::Lives()
{
    saved = data + "-saved";
    set_trace_level(0);
}

const std::vector<module_kind> &Lives::kinds()
{
    static const std::vector<module_kind> all = [] {
        std::vector<module_kind> chosen;
        for (const module_kind &kind : all_kinds) {
            if (kind.name != "LegacyMisc")
                chosen.push_back(kind);
        }
        return chosen;
    }();
    return all;
}

long Lives::stride()
{
    const char *const chosen = getenv("CAMPARAM_PROOF_STRIDE");
    return chosen != nullptr && atol(chosen) > 0 ? atol(chosen) : 1;
}

void Lives::start()
{
    platformparam_set_server_port(0);
    if (platformparam_init() != 0)
        _exit(254);
}

void Lives::set_all(int number)
{
    for (const module_kind &kind : kinds())
        kind.set(number);
}

std::vector<int> Lives::numbers_after_start()
{
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        platformparam_set_guard(guarded ? 1 : 0);
        start();
        for (const module_kind &kind : kinds()) {
            const int number = kind.get();
            if (write(ends[1], &number, sizeof number) != sizeof number)
                _exit(1);
        }
        _exit(0);
    }
    close(ends[1]);
    std::vector<int> numbers;
    for (int number = 0; read(ends[0], &number, sizeof number) == sizeof number;)
        numbers.push_back(number);
    close(ends[0]);
    int ended = 0;
    waitpid(child, &ended, 0);
    EXPECT_TRUE(WIFEXITED(ended) && WEXITSTATUS(ended) == 0);
    EXPECT_EQ(numbers.size(), kinds().size());
    numbers.resize(kinds().size(), -1000);
    return numbers;
}

void Lives::go_back_to(int number)
{
    namespace files = std::filesystem;
    files::remove_all(data);
    if (saved_number != number) {
        files::remove_all(saved);
        files::create_directories(data + "/persist");
        const pid_t child = fork();
        if (child == 0) {
            platformparam_set_guard(guarded ? 1 : 0);
            start();
            set_all(number);
            platformparam_save();
            _exit(0);
        }
        waitpid(child, nullptr, 0);
        files::rename(data, saved);
        saved_number = number;
    }
    files::copy(saved, data, files::copy_options::recursive);
}
