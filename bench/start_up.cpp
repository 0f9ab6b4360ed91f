// Measures the start-up call next to reading and parsing the same files, each once. Every
// measurement is in a process of its own, and the two take turns.
//
// usage: start_up [--quick]
// Exits with 2 when nothing could be measured.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cjson/cJSON.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "bench/support/device.h"
#include "bench/support/median.h"
#include "bench/support/result.h"
#include "camparam/camparam.h"

namespace {

namespace fs = std::filesystem;

// Microseconds that the action takes in a process of its own.
template <typename action> double time_alone(const action &act)
{
    int ends[2];
    if (pipe(ends) != 0)
        give_up("pipe");
    const pid_t child = fork();
    if (child == 0) {
        using clock = std::chrono::steady_clock;
        const clock::time_point start = clock::now();
        act();
        const std::chrono::duration<double, std::micro> spent = clock::now() - start;
        const double time = spent.count();
        _exit(write(ends[1], &time, sizeof time) == sizeof time ? 0 : 1);
    }
    close(ends[1]);
    double time = 0;
    int status = 0;
    const bool measured = read(ends[0], &time, sizeof time) == sizeof time;
    close(ends[0]);
    if (waitpid(child, &status, 0) != child || status != 0 || !measured)
        give_up("measurement in a process of its own");
    return time;
}

void read_json(const char *path)
{
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    std::string text(fs::file_size(path), '\0');
    if (file < 0 || read(file, text.data(), text.size()) < 0)
        give_up(path);
    close(file);
    cJSON *const tree = cJSON_Parse(text.c_str());
    if (tree == nullptr)
        give_up(path);
    cJSON_Delete(tree);
}

void read_conf(const char *path)
{
    configure *const values = configure_init();
    configure_parse(values, 0, path);
    configure_free(values);
}

struct start_up_file {
    std::string path;
    bool is_json;
};

void read_files(const std::vector<start_up_file> &files)
{
    for (const start_up_file &file : files) {
        if (file.is_json)
            read_json(file.path.c_str());
        else
            read_conf(file.path.c_str());
    }
}

std::vector<start_up_file> files_of(const device &files)
{
    std::vector<start_up_file> found;
    for (const char *folder : {files.home(), files.data()}) {
        for (const auto &entry : fs::directory_iterator(folder)) {
            if (entry.is_regular_file())
                found.push_back({entry.path(), entry.path().extension() == ".json"});
        }
    }
    return found;
}

// Saved files of each module, as a device has them that has been used.
void save_all(const device &files)
{
    const pid_t child = fork();
    if (child == 0) {
        para_profile.conf_save_hook = [] {};
        files.start_store(0);
        platformparam_save();
        platformparam_stop(1);
        _exit(0);
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child || status != 0)
        give_up("saving the device's files");
}

} // namespace

int main(int argc, char **argv)
{
    const int repetitions = argc > 1 && strcmp(argv[1], "--quick") == 0 ? 51 : 301;
    const device files;
    save_all(files);
    const std::vector<start_up_file> to_read = files_of(files);
    std::vector<double> starts, reads, ratios;
    for (int i = 0; i < repetitions; i++) {
        starts.push_back(time_alone([&] { files.start_store(0); }));
        reads.push_back(time_alone([&] { read_files(to_read); }));
        ratios.push_back(starts.back() / reads.back());
    }
    printf("start-up, %zu files        %8.0f us\n", to_read.size(), median(starts));
    printf("reading and parsing them  %8.0f us\n", median(reads));
    printf("ratio, goal 1.3           %8.2f\n", median(ratios));
    add_result("start-up to reading and parsing", median(ratios), 1.3);
    return 0;
}
