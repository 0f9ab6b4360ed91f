#include "host/host_process.h"

#include <algorithm>
#include <filesystem>

#include "support/shared_memory.h"

HostProcess::HostProcess()
{
    write_home("af_range.json", "{'focus_mode':[0,3],'zoom_value':[-100,1000]}");
    write_home("af_def.json", "{'focus_mode':1,'zoom_value':0}");
}

void HostProcess::start_host(const std::vector<std::string> &options)
{
    std::vector<std::string> command = {CAMPARAMD, "--home", home, "--data", data};
    if (!shares)
        command.push_back("--no-share");
    command.insert(command.end(), options.begin(), options.end());
    host = std::make_unique<process>(command);
    ASSERT_TRUE(
        wait_until([&] { return host_has_logged("camparamd: ready") || host->has_ended(); }));
    ASSERT_FALSE(host->has_ended()) << host->errors();
}

int HostProcess::run_host(const std::vector<std::string> &arguments)
{
    std::vector<std::string> command = {CAMPARAMD};
    command.insert(command.end(), arguments.begin(), arguments.end());
    host = std::make_unique<process>(command);
    return host->wait_for_end();
}

int HostProcess::end_host(int number)
{
    host->send_signal(number);
    return host->wait_for_end();
}

void HostProcess::write_long_conf_files()
{
    std::string lines;
    for (int i = 0; i < 160; i++)
        lines += "line" + std::to_string(i) + " = '" + std::string(100, 'x') + "'\n";
    write_home("netport.conf", lines);
    write_home("overlay.conf", lines);
}

bool HostProcess::host_has_open(const std::string &path) const
{
    std::error_code error;
    const std::string files = "/proc/" + std::to_string(host->pid()) + "/fd";
    for (const auto &each : std::filesystem::directory_iterator(files)) {
        if (std::filesystem::read_symlink(each.path(), error) == path)
            return true;
    }
    return false;
}

bool HostProcess::host_has_logged(const std::string &text) const
{
    return host->errors().find(text) != std::string::npos;
}

bool HostProcess::saves(const std::string &name, const std::string &text)
{
    std::string expected = text;
    std::replace(expected.begin(), expected.end(), '\'', '"');
    expected += '\0';
    return wait_until([&] { return read_data(name) == expected; });
}

void HostProcess::share()
{
    remove_share_maps();
    shares = true;
}
