// One life of the store: the same operations on the model, and in the process of that life on the
// store.
#pragma once

#include <string>
#include <vector>

#include "fuzz/model/device.h"
#include "fuzz/support/input.h"
#include "fuzz/support/json.h"

class life {
public:
    life(model_device &on, input_reader &from, bool with_store)
        : device(on), input(from), live(with_store)
    {
    }

    // From the start to an operation that ends this life, or to the end of the input.
    void run();

private:
    using operation = void (life::*)();
    static const std::vector<operation> operations;

    void start();
    void run_operations();
    void check();
    void stop();

    int chosen_value(int min, int max, int current);
    std::string chosen_text(const name_list &known);
    std::string chosen_key(const std::vector<std::string> &known);
    void set_fixed(model_fixed &module, bool internally);
    std::vector<std::string> members_of(const std::string &key);
    void add_value(cJSON *object, const std::string &member);
    tree_ptr new_request(const char *type);
    void ask(const tree_ptr &request, bool sets);

    void set_af() { set_fixed(device.af, false); }
    void set_audio() { set_fixed(device.audio, false); }
    void set_video() { set_fixed(device.video, false); }
    void set_audio_internally() { set_fixed(device.audio, true); }
    void set_video_internally() { set_fixed(device.video, true); }
    void set_video_by_name();
    void set_pattern();
    void set_pattern_text();
    void set_conf();
    void set_odm_int();
    void set_odm_text();
    void ask_set();
    void ask_get();
    void pass_time();
    void save_due();
    void save_all();
    void lose_folder();
    void find_folder();
    void fill_disk();
    void empty_disk();
    void reload();
    void set_delays();

    model_device &device;
    input_reader &input;
    const bool live;
    unsigned seen_opened = 0;
};
