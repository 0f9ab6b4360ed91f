// The module "misc" with either of its file sets.
#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "camparam/misc.h"
#include "support/store.h"

class Misc : public Store {
protected:
    struct accessors {
        const char *key;
        int (*min)(), (*max)(), (*def)(), (*cur)();
        int (*set)(int);
    };
    static const std::vector<accessors> all_members;

    struct enum_accessors {
        const char *key;
        std::vector<std::string> names;
        const char *(*str)(int);
        int (*num)(const char *);
        int (*set)(int);
        int (*set_by_text)(const char *);
        int (*cur)();
    };
    static const std::vector<enum_accessors> enum_members;
    static bool is_enum(const std::string &key);

    struct notified {
        std::string module;
        para_entry_point setter;
        std::string member;
        int value;
    };
    static inline std::vector<notified> notifications;
    static void notify(const char *module, para_entry_point setter, const char *member, int value)
    {
        notifications.push_back({module, setter, member, value});
    }

    static inline std::vector<std::string> requests;
    static void request(const char *module, const cJSON *item)
    {
        requests.push_back(module + compact(item));
    }

    static constexpr char versioned_range[] =
        "{'version':2,'ViStrategy':['50','60','dial','osd'],"
        "'ndi_mode':['off','low','medium','high','264P50','264P60','265P50','265P60'],"
        "'hdmivideoformat':['1080P60','1080P50','720P60'],'mirror':[0,1],'flip':[0,1],"
        "'vi_framerate':[1,60],'ezoom_limit':[1,16],'lock':[0,1],'privacyCover':[0,1],"
        "'netStream':[0,3],'trackMode':[0,4],'telnetEn':[0,1]}";
    static constexpr char versioned_defaults[] =
        "ViStrategy = '60'\nndi_mode = 'high'\nhdmivideoformat = '1080P60'\nmirror = '0'\n"
        "flip = '1'\nvi_framerate = '50'\nezoom_limit = '4'\nlock = '0'\nprivacyCover = '1'\n"
        "netStream = '2'\ntrackMode = '3'\ntelnetEn = '0'\n";
    static constexpr char legacy_range[] =
        "{'ViStrategy':['50','osd'],'ndi_mode':['off','high'],'hdmivideoformat':['4KP30','4KP60'],"
        "'mirror':[0,1],'flip':[0,1],'vi_framerate':[1,60],'ezoom_limit':[1,16],'lock':[0,1],"
        "'privacyCover':[0,1],'netStream':[0,3],'trackMode':[0,4],'telnetEn':[0,1]}";
    static constexpr char legacy_defaults[] =
        "{'ViStrategy':'60','ndi_mode':'high','hdmivideoformat':'4KP25','mirror':0,'flip':1,"
        "'vi_framerate':50,'ezoom_limit':4,'lock':0,'privacyCover':1,'netStream':2,'trackMode':3,"
        "'telnetEn':0}";

    static const std::map<std::string, int> number_defaults;
    static const std::map<std::string, std::pair<int, int>> number_ranges;

    static std::string list_of(const std::vector<std::string> &names, size_t first, size_t last);

    Misc()
    {
        para_profile.misc_set_notify_hook = notify;
        para_profile.misc_set_request_hook = request;
    }

    void write_versioned()
    {
        write_home("misc_range.json", versioned_range);
        write_home("misc.conf", versioned_defaults);
    }
    void write_legacy()
    {
        write_home("misc_range.json", legacy_range);
        write_home("misc_def.json", legacy_defaults);
    }

    void init()
    {
        EXPECT_EQ(para_init_misc("json"), 0);
        EXPECT_EQ(para_init_misc("misc"), 0);
    }
    void init_versioned()
    {
        write_versioned();
        init();
    }
    void init_legacy()
    {
        write_legacy();
        init();
    }

    std::string value(const char *member)
    {
        char text[300];
        return para_get_json_string("misc", member, text, sizeof text) == 0 ? text : "none";
    }

    bool change_pending()
    {
        move_clock(10000);
        return para_need_save_misc("misc") == 1;
    }

    // Names of the files in the data folder.
    std::set<std::string> data_files()
    {
        std::set<std::string> names;
        for (const auto &file : std::filesystem::directory_iterator(data))
            names.insert(file.path().filename().string());
        return names;
    }

    void expect_number_members()
    {
        for (const accessors &member : all_members) {
            if (is_enum(member.key))
                continue;
            EXPECT_EQ(member.min(), number_ranges.at(member.key).first) << member.key;
            EXPECT_EQ(member.max(), number_ranges.at(member.key).second) << member.key;
            EXPECT_EQ(member.def(), number_defaults.at(member.key)) << member.key;
            EXPECT_EQ(member.cur(), number_defaults.at(member.key)) << member.key;
        }
    }

    // What the next start of the device would find in the current values.
    std::string after_restart(const char *member)
    {
        configure *cur = nullptr, *def = nullptr;
        cJSON *range = nullptr;
        EXPECT_EQ(para_init_misc_legacy("misc", &cur, &def, &range), 0);
        restarted.emplace_back(range); // the store keeps a look at its version
        char text[300];
        const bool found = cur->conf_get(cur, member, text, sizeof text) == 0;
        configure_free(cur);
        configure_free(def);
        return found ? text : "none";
    }

    void expect_no_values()
    {
        for (const accessors &member : all_members) {
            EXPECT_EQ(member.def(), -1) << member.key;
            EXPECT_EQ(member.cur(), -1) << member.key;
            for (const int number : {0, 1})
                EXPECT_EQ(member.set(number), 0) << member.key;
        }
        for (const enum_accessors &member : enum_members) {
            for (const std::string &name : member.names)
                EXPECT_EQ(member.set_by_text(name.c_str()), 0) << member.key;
        }
        EXPECT_THAT(notifications, testing::IsEmpty());
        EXPECT_FALSE(change_pending());
    }

private:
    std::vector<json> restarted;
};
