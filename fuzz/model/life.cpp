#include "fuzz/model/life.h"

#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <iterator>

#include "camparam/camparam.h"
#include "fuzz/model/store.h"
#include "fuzz/support/device.h"
#include "runtime/save_pass.h"

// --- Time, saves and failures ---

void life::pass_time()
{
    // On both sides of the delays of saves and of their repetition.
    static const int times[] = {1, 500, 1500, 1999, 2000, 3999, 4000, 60000};
    const int milliseconds = times[input.choice(std::size(times))];
    device.clock_ms += milliseconds;
    if (live)
        move_clock(milliseconds);
}

void life::save_due()
{
    device.save_pass(false);
    if (live)
        save_param(save_mode::due);
}

void life::save_all()
{
    device.save_pass(true);
    if (live)
        platformparam_save();
}

void life::lose_folder()
{
    if (device.disk.gone)
        return;
    const std::string before = data_folder(device);
    device.disk.gone = true;
    if (live)
        std::filesystem::rename(before, data_folder(device));
}

void life::find_folder()
{
    if (!device.disk.gone)
        return;
    const std::string before = data_folder(device);
    device.disk.gone = false;
    if (live)
        std::filesystem::rename(before, data_folder(device));
}

static void limit_files(rlim_t bytes)
{
    rlimit limit = {};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = std::min(bytes, limit.rlim_max);
    setrlimit(RLIMIT_FSIZE, &limit);
}

void life::fill_disk()
{
    device.disk.limit = input.byte() * size_t{2};
    if (live)
        limit_files(*device.disk.limit);
}

void life::empty_disk()
{
    device.disk.limit.reset();
    if (live)
        limit_files(RLIM_INFINITY);
}

void life::reload()
{
    device.netport.reload();
    if (live)
        para_conf_need_update("netport");
}

void life::set_delays()
{
    const int audio = 500 * input.choice(8), video = 500 * input.choice(8);
    device.audio.set_delay(audio);
    device.video.set_delay(video);
    if (live)
        platformparam_set_save_param_time(audio, video);
}

// --- A life ---

const std::vector<life::operation> life::operations = {
    &life::set_af,
    &life::set_audio,
    &life::set_audio_internally,
    &life::set_video,
    &life::set_video_internally,
    &life::set_video_by_name,
    &life::set_pattern,
    &life::set_pattern_text,
    &life::set_conf,
    &life::set_odm_int,
    &life::set_odm_text,
    &life::ask_set,
    &life::ask_get,
    &life::pass_time,
    &life::save_due,
    &life::save_all,
    &life::lose_folder,
    &life::find_folder,
    &life::fill_disk,
    &life::empty_disk,
    &life::reload,
    &life::set_delays,
};

void life::start()
{
    const int settings = input.byte();
    const bool guard = (settings & 1) != 0, writes_conf_files = (settings & 2) != 0;
    device.start(guard, writes_conf_files);
    if (!live)
        return;
    dbgout_profile[1] = 3;    // dumps would take most of the time
    signal(SIGXFSZ, SIG_IGN); // a write beyond the limit fails
    move_clock(device.clock_ms - clock_ms());
    platformparam_set_guard(guard ? 1 : 0);
    static const para_entry_point only_tested = [] {};
    para_profile.conf_save_hook = writes_conf_files ? only_tested : nullptr;
    observe_changes();
    start_store();
}

void life::check()
{
    if (!live)
        return;
    check_values(device);
    if (device.disk.opened != seen_opened) // and at the end of this life
        check_files(device);
    seen_opened = device.disk.opened;
}

void life::stop()
{
    device.save_pass(true);
    if (live)
        platformparam_stop(1);
    check();
}

void life::run_operations()
{
    while (!input.empty()) {
        const size_t choice = input.byte() % (operations.size() + 2);
        if (choice == operations.size())
            stop();
        if (choice >= operations.size())
            return; // or without a save
        (this->*operations[choice])();
        check();
    }
}

void life::run()
{
    start();
    check();
    run_operations();
    if (live)
        check_files(device);
}
