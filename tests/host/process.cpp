#include "host/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "support/device.h"
#include "support/folders.h"

process::process(const std::vector<std::string> &command, const std::string &input)
{
    char name[] = "/tmp/camparam-process-XXXXXX";
    folder = mkdtemp(name);
    write_file(folder + "/in", input);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const int write_flags = O_WRONLY | O_CREAT | O_APPEND;
    posix_spawn_file_actions_addopen(&actions, 0, (folder + "/in").c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, (folder + "/out").c_str(), write_flags, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, (folder + "/err").c_str(), write_flags, 0600);

    std::vector<char *> words;
    for (const std::string &word : command)
        words.push_back(const_cast<char *>(word.c_str()));
    words.push_back(nullptr);
    const int error = posix_spawnp(&id, words[0], &actions, nullptr, words.data(), environ);
    EXPECT_EQ(error, 0) << words[0];
    posix_spawn_file_actions_destroy(&actions);
    ended = error != 0;
}

process::~process()
{
    if (!has_ended()) {
        send_signal(SIGKILL);
        wait_for_end();
    }
    std::filesystem::remove_all(folder);
}

void process::send_signal(int number)
{
    ASSERT_EQ(kill(id, number), 0);
}

bool process::has_ended()
{
    ended = ended || waitpid(id, &status, WNOHANG) == id;
    return ended;
}

int process::wait_for_end()
{
    if (!wait_until([&] { return has_ended(); }))
        return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string process::output() const
{
    return read_file(folder + "/out").value_or("");
}

std::string process::errors() const
{
    return read_file(folder + "/err").value_or("");
}
