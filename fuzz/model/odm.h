// The ODM store.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "fuzz/model/module.h"
#include "fuzz/support/json.h"

class model_odm : public model_module {
public:
    using model_module::model_module;

    void start() override;
    bool save() override;

    // As the getters: 0, or what they return without a value.
    int get_int(const std::string &key, int &value) const;
    int get_text(const std::string &key, std::string &text) const;

    // Return whether that counts as a change.
    bool set_int(const std::string &key, int value);
    bool set_text(const std::string &key, const std::string &text);

private:
    struct item {
        std::string key;
        tree_ptr value; // as the file has it
        int number;     // a text may have one as well, until the next start
    };
    const item *find(const std::string &key) const;
    item *item_to_set(const std::string &key);
    void load(const cJSON *root);

    bool folder_missed = false; // at the start, and not made since
    std::optional<std::vector<item>> document;
};
