// Measures exported getters, and sets that change nothing, against a plain read of a global array
// by a function of another shared library. Batches of all calls alternate, so that a busy machine
// slows them alike.
//
// usage: accessors
// Exits with 1 when a getter takes more than 1.5 times as long, or a set more than 2 times, and
// with 2 when nothing could be measured.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "camparam/camparam.h"
#include "plain_read.h"

namespace {

constexpr int batches = 401;
constexpr int calls_in_batch = 100000;
constexpr double highest_get_ratio = 1.5;
constexpr double highest_set_ratio = 2.0;

// The same read without the cost of a call into a library, for comparison.
int own_values[PARA_VIDEO_SLOTS];
__attribute__((noinline)) int own_read(int slot)
{
    // Volatile, so that every call reads the slot, as every call of a getter does.
    return *static_cast<volatile int *>(&own_values[slot]);
}

volatile int sink;

// Nanoseconds for one call of the body, over a batch.
template <typename body> double batch(body call)
{
    using clock = std::chrono::steady_clock;
    const clock::time_point start = clock::now();
    int sum = 0;
    for (int i = 0; i < calls_in_batch; i++)
        sum += call();
    sink = sum;
    const std::chrono::duration<double, std::nano> spent = clock::now() - start;
    return spent.count() / calls_in_batch;
}

double median(std::vector<double> samples)
{
    std::sort(samples.begin(), samples.end());
    return samples[samples.size() / 2];
}

void write_file(const std::string &path, const char *text)
{
    std::ofstream(path) << text;
}

// A folder with a small device in it.
std::string make_device()
{
    char name[] = "/tmp/camparam-bench-XXXXXX";
    if (mkdtemp(name) == nullptr)
        exit(2);
    const std::string home = name;
    write_file(home + "/af_range.json", R"({"zoom_value":[0,16384]})");
    write_file(home + "/af_def.json", R"({"zoom_value":100})");
    write_file(home + "/audio_range.json", R"({"volLeftIn":[0,100]})");
    write_file(home + "/audio_def.json", R"({"volLeftIn":50})");
    write_file(home + "/video_range.json", R"({"video0":{"bitRate":[32,65536]}})");
    write_file(home + "/video_def.json", R"({"video0":{"bitRate":4096}})");
    return home;
}

struct subject {
    const char *name;
    double (*run)();
    double highest_ratio = 0; // 0: not limited
    std::vector<double> samples = {};
};

} // namespace

int main()
{
    const std::string home = make_device();
    para_profile.home_dir = para_profile.data_dir = home.c_str();
    dbgout_profile[1] = 0;
    const bool started =
        para_init_af("af") == 0 && para_init_audio("audio") == 0 && para_init_video("video0") == 0;
    std::filesystem::remove_all(home);
    if (!started || para_get_af_zoom_value_cur() != 100 || para_get_video_bitRate_cur(0) != 4096) {
        fprintf(stderr, "accessors: the store did not load its files\n");
        return 2;
    }

    subject subjects[] = {
        {.name = "plain read",
         .run = [] { return batch([] { return plain_read(PARA_AF_zoom_value); }); }},
        {.name = "plain read, no library",
         .run = [] { return batch([] { return own_read(PARA_AF_zoom_value); }); }},
        {.name = "af get",
         .run = [] { return batch([] { return para_get_af_zoom_value_cur(); }); },
         .highest_ratio = highest_get_ratio},
        {.name = "audio get",
         .run = [] { return batch([] { return para_get_audio_volLeftIn_cur(); }); },
         .highest_ratio = highest_get_ratio},
        {.name = "video get",
         .run = [] { return batch([] { return para_get_video_bitRate_cur(0); }); },
         .highest_ratio = highest_get_ratio},
        {.name = "af set, unchanged",
         .run = [] { return batch([] { return para_set_af_zoom_value_cur(100); }); },
         .highest_ratio = highest_set_ratio},
        {.name = "af set, refused",
         .run = [] { return batch([] { return para_set_af_zoom_value_cur(-1); }); },
         .highest_ratio = highest_set_ratio},
        {.name = "audio set, unchanged",
         .run = [] { return batch([] { return para_set_audio_volLeftIn_cur(50); }); },
         .highest_ratio = highest_set_ratio},
        {.name = "video set, refused",
         .run = [] { return batch([] { return para_set_video_bitRate_cur(0, -1); }); },
         .highest_ratio = highest_set_ratio},
    };
    for (int i = 0; i < batches; i++) {
        for (subject &each : subjects)
            each.samples.push_back(each.run());
    }

    const double plain = median(subjects[0].samples);
    bool within = true;
    for (const subject &each : subjects) {
        const double ratio = median(each.samples) / plain;
        printf("%-23s %6.2f ns  ratio %.2f", each.name, median(each.samples), ratio);
        if (each.highest_ratio > 0)
            printf("  at most %.1f", each.highest_ratio);
        printf("\n");
        within = within && (each.highest_ratio == 0 || ratio <= each.highest_ratio);
    }
    return within ? 0 : 1;
}
