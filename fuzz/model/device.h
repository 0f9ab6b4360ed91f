// A small device, whole: what its store must do.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "fuzz/model/disk.h"
#include "fuzz/model/fixed.h"
#include "fuzz/model/odm.h"
#include "fuzz/model/text.h"

// Has no files in the home folder, and so is not loaded.
class model_isp : public model_module {
public:
    using model_module::model_module;
    void start() override;
    bool save() override;
};

class model_device {
public:
    model_device();

    long long clock_ms = 1000000;
    model_disk disk;
    unsigned syncs = 0; // since the start

    model_odm odm;
    model_isp isp;
    model_fixed af, audio, video;
    model_pattern misc, panel;
    model_conf netport;

    void start(bool guard, bool writes_conf_files);
    void save_pass(bool forced);

    // The modules, by their rows in the module table.
    std::vector<std::pair<std::string, model_module *>> rows();
    // In the order of start-up.
    std::vector<model_module *> modules()
    {
        return {&odm, &isp, &af, &video, &audio, &misc, &panel, &netport};
    }
    model_pattern &pattern(int which) { return which == 0 ? misc : panel; }
    std::vector<model_pattern *> patterns() { return {&misc, &panel}; }

    // The reply to a request, which may be none; and what a set request does.
    std::string get(const cJSON *request) const;
    std::string set(const cJSON *request);

    // Names and contents of the home folder.
    std::vector<std::pair<std::string, std::string>> home_files() const;

private:
    cJSON *answer(const std::string &key, const cJSON *item) const;
    void apply(const std::string &key, const cJSON *item);
};
