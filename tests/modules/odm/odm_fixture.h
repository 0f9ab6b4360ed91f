// The ODM store below a folder of its own.
#pragma once

#include <sys/stat.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "camparam/odm.h"
#include "support/store.h"

class Odm : public Store {
protected:
    static inline std::vector<std::string> told; // keys, as odm_set_notify_hook heard them
    static void tell(const char *key) { told.push_back(key); }

    static inline std::vector<std::string> conflicts;
    static void conflict(const char *name, int old_value, int new_value)
    {
        conflicts.push_back(std::string(name) + " " + std::to_string(old_value) + " " +
                            std::to_string(new_value));
    }

    Odm()
    {
        umask(0);
        para_profile.odm_set_notify_hook = tell;
        para_profile.conflict_hook = conflict;
    }

    void write_store(const std::string &bytes)
    {
        std::filesystem::create_directory(data + "/persist");
        write_data("persist/odm.json", bytes);
    }

    int init() { return para_init_odm("odmInter"); }
    int init(const std::string &bytes)
    {
        write_store(bytes);
        return init();
    }
    int second_stage() { return para_init_stage2_odm("odmInter"); }

    bool due() { return para_need_save_odm("odmInter") == 1; }
    bool change_pending()
    {
        move_clock(10000);
        return due();
    }

    std::string saved()
    {
        EXPECT_EQ(para_save_odm("odmInter"), 0);
        return read_data("persist/odm.json").value_or("none");
    }
    // The saved document without blanks.
    std::string saved_document() { return compact(parse(saved().c_str()).get()); }

    std::string number(const char *key)
    {
        int value = 77;
        const int result = para_get_odm_int(key, &value);
        EXPECT_TRUE(result == 0 || value == 77) << key << " was touched";
        return result == 0 ? std::to_string(value) : "error " + std::to_string(result);
    }
    static std::string text(const char *key)
    {
        char value[PARA_ODM_TEXT_MAX] = "untouched";
        const int result = para_get_odm_string(key, value);
        EXPECT_TRUE(result == 0 || strcmp(value, "untouched") == 0) << key;
        return result == 0 ? value : "error " + std::to_string(result);
    }

    // Everything below the data folder, relative to it.
    std::vector<std::string> data_entries()
    {
        std::vector<std::string> entries;
        for (const auto &entry : std::filesystem::recursive_directory_iterator(data))
            entries.push_back(entry.path().lexically_relative(data).string());
        return entries;
    }

    // A data directory whose path has that length.
    void use_data_of_length(size_t length)
    {
        long_data = data + "/";
        long_data.append(length - long_data.size(), 'd');
        std::filesystem::create_directory(long_data);
        para_profile.data_dir = long_data.c_str();
    }

    std::string long_data;
};
