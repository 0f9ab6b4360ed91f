// The modules whose values are texts: of a pattern with a range file, and of conf files.
#pragma once

#include <cjson/cJSON.h>

#include <string>
#include <vector>

#include "fuzz/model/conf_values.h"
#include "fuzz/model/module.h"

// A member of a range file: two numbers, or texts.
struct pattern_traits {
    const char *name;
    int min = 0, max = 0;
    std::vector<std::string> texts = {};
    bool is_enum() const { return !texts.empty(); }
};

class model_text : public model_module {
public:
    model_text(model_disk &disk, const long long &clock, const char *of, const char *defaults);

    void start() override;
    const char *name() const { return module; }
    const char *home_file() const { return home; } // its text
    const conf_values &current() const { return cur; }
    const conf_values &defaults() const { return def; }

protected:
    // Over the values.
    void read_files();

    const char *const module;
    const char *const home;
    conf_values def, cur;
};

class model_pattern : public model_text {
public:
    model_pattern(model_disk &disk, const long long &clock, const char *of, const char *defaults,
                  std::vector<pattern_traits> range);

    bool save() override;
    std::string range_file() const;
    const std::vector<pattern_traits> &members() const { return range; }

    // Null for a member without a range.
    const pattern_traits *find(const std::string &member) const;
    // Of a value in one of the two sets; -1 where there is none.
    int number_in(const conf_values &values, const std::string &member) const;
    int lowest(const std::string &member) const;
    int highest(const std::string &member) const;

    // Setters; they return 1 for a change.
    int set_text(const std::string &member, const std::string &text);
    int set_number(const std::string &member, int value);
    int set(const std::string &member, int value);
    bool request(const std::string &member, const cJSON *value);

    cJSON *answer_all(bool defaults) const;
    cJSON *answer_listed(bool defaults, const std::vector<std::string> &names) const;

private:
    void add(cJSON *object, const std::string &member, const std::string &text) const;
    int store(const std::string &member, const std::string &text);

    const std::vector<pattern_traits> range;
};

class model_conf : public model_text {
public:
    using model_text::model_text;

    bool save() override;
    bool is_due() const override;
    para_module_status status() const override;

    void reload();

    bool writes_files = false; // the host's switch

    int set(const std::string &key, const std::string &value);
    bool request(const std::string &key, const cJSON *value);

    cJSON *answer_all(bool defaults) const;
    cJSON *answer_listed(const std::vector<std::string> &names) const;
};
