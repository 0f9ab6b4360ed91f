// Measures exported getters and setters next to the least that functions of another shared library
// can be that do the same: read a slot, check a range, store and stamp. Batches of all calls
// alternate, so that a busy machine slows them alike.
//
// usage: accessors
// Exits with 2 when nothing could be measured.
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "bench/bare/bare.h"
#include "bench/support/device.h"
#include "bench/support/median.h"
#include "bench/support/result.h"

namespace {

constexpr int batches = 401;
constexpr int calls_in_batch = 100000;

volatile int sink;

// Nanoseconds of one call, over a batch.
template <typename body> double batch(body call)
{
    using clock = std::chrono::steady_clock;
    const clock::time_point start = clock::now();
    int sum = 0;
    for (int i = 0; i < calls_in_batch; i++)
        sum += call(i);
    sink = sum;
    const std::chrono::duration<double, std::nano> spent = clock::now() - start;
    return spent.count() / calls_in_batch;
}

struct subject {
    const char *name;
    double (*run)();
    std::vector<double> samples = {};
};

// The first subject is what the others are measured by.
void measure(const char *title, double goal, std::vector<subject> subjects)
{
    for (int i = 0; i < batches; i++) {
        for (subject &each : subjects)
            each.samples.push_back(each.run());
    }
    printf("%-24s %6s  ratio, goal %.2f\n", title, "ns", goal);
    const double least = median(subjects[0].samples);
    for (const subject &each : subjects) {
        const double time = median(each.samples);
        printf("  %-22s %6.2f  %.2f\n", each.name, time, time / least);
        if (&each != &subjects[0])
            add_result(std::string(title) + ", " + each.name, time / least, goal);
    }
}

} // namespace

int main()
{
    const device files;
    files.start_store(0);
    platformparam_stop(1);
    for (int &max : bare_max)
        max = 16384;

    measure("get", 1.15,
            {{"slot read", [] { return batch([](int) { return bare_get(); }); }},
             {"af", [] { return batch([](int) { return para_get_af_zoom_value_cur(); }); }},
             {"audio", [] { return batch([](int) { return para_get_audio_volLeftIn_cur(); }); }}});
    measure("get, of a stream", 1.15,
            {{"slot read", [] { return batch([](int) { return bare_get_of_stream(0); }); }},
             {"video", [] { return batch([](int) { return para_get_video_bitRate_cur(0); }); }}});
    measure("get, of a record", 1.15,
            {{"slot read", [] { return batch([](int) { return bare_get_of_record(0); }); }},
             {"isp", [] { return batch([](int) { return para_get_isp_saturation_cur(0); }); }}});
    measure(
        "set, taken", 1.10,
        {{"stamped store",
          [] { return batch([](int i) { return bare_stamped_set(40 + i % 2); }); }},
         {"af", [] { return batch([](int i) { return para_set_af_zoom_value_cur(40 + i % 2); }); }},
         {"audio",
          [] { return batch([](int i) { return para_set_audio_volLeftIn_cur(40 + i % 2); }); }},
         {"video",
          [] { return batch([](int i) { return para_set_video_bitRate_cur(0, 4000 + i % 2); }); }},
         {"isp",
          [] { return batch([](int i) { return para_set_isp_saturation_cur(0, 40 + i % 2); }); }}});
    measure(
        "set, refused", 1.15,
        {{"checked store", [] { return batch([](int) { return bare_checked_set(-1); }); }},
         {"af", [] { return batch([](int) { return para_set_af_zoom_value_cur(-1); }); }},
         {"audio", [] { return batch([](int) { return para_set_audio_volLeftIn_cur(-1); }); }}});
    measure(
        "set of a stream, refused", 1.15,
        {{"checked store",
          [] { return batch([](int) { return bare_checked_set_of_stream(0, -1); }); }},
         {"video", [] { return batch([](int) { return para_set_video_bitRate_cur(0, -1); }); }}});
    measure(
        "set of a record, refused", 1.15,
        {{"checked store",
          [] { return batch([](int) { return bare_checked_set_of_record(0, -1); }); }},
         {"isp", [] { return batch([](int) { return para_set_isp_saturation_cur(0, -1); }); }}});
    return 0;
}
