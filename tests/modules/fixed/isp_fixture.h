// The image signal processor with three styles and every member.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "camparam/isp.h"
#include "support/store.h"

class Isp : public Store {
protected:
    // What a host relies on, member by member, whatever the list in the headers says.
    struct expected_member {
        const char *name;
        bool loaded, accessor, by_name, written;
    };
    static constexpr bool yes = true, no = false;
    static const std::vector<expected_member> expected_record;
    // In the order of files and answers; hotpixel, the last of them, is never present.
    static const std::vector<std::string> expected_json_order;
    // In the order in which a set request's key is tried.
    static const std::vector<std::string> expected_by_name_order;

    struct accessors {
        int word;
        const char *key;
        int (*def)(int), (*min)(int), (*max)(int), (*init)(int), (*cur)(int);
        int (*set)(int, int), (*quiet_set)(int, int);
    };
    static const std::vector<accessors> all_members;

    struct converter {
        const char *key;
        int (*num)(const char *);
    };
    static const std::vector<converter> all_converters;

    // The words of a text.
    static std::vector<std::string> names(const std::string &text);
    static int word_of(const std::string &name);
    static int word_at(const isp_record &record, int word);
    static const accessors &member_named(const std::string &name);

    // Every name of the record, hotpixel too: 'name':word + offset.
    static std::string values(int offset);
    // Every name of the record: 'name':[-word, 1000 + word].
    static std::string ranges();
    // What an answer with every member holds when each one's value is word + offset, but for the
    // style.
    static std::string everything(int style, int offset);
    // Its form in the current file, below an instance's key.
    static std::string everything_printed(int style, int offset);
    // Three styles: their members are 100, 200 and 300 above their words.
    static std::string style_file(int def = 0);

    struct notified {
        int (*setter)(int, int);
        int instance, value;
    };
    static inline std::vector<notified> notifications;
    static void notify(int (*setter)(int, int), int instance, int value)
    {
        notifications.push_back({setter, instance, value});
    }

    static inline int requests;
    static void requested(const cJSON *) { requests++; }

    static inline std::vector<std::string> odm_keys;
    static void odm_told(const char *key) { odm_keys.push_back(key); }

    Isp()
    {
        write_home("isp_range.json", "{'isp0':" + ranges() + "}");
        write_home("isp_def.json", style_file());
        para_profile.isp_set_notify_hook = notify;
        para_profile.isp_set_request_hook = requested;
        para_profile.odm_set_notify_hook = odm_told;
    }

    int init() { return para_init_isp("isp0"); }

    void remove_home(const std::string &name) { std::filesystem::remove(home + "/" + name); }

    void write_odm(const std::string &bytes)
    {
        std::filesystem::create_directory(data + "/persist");
        write_data("persist/odm.json", bytes);
        EXPECT_EQ(para_init_odm("odmInter"), 0);
    }

    bool due() { return para_need_save_isp("isp0") == 1; }

    bool change_pending()
    {
        move_clock(10000);
        return due();
    }

    std::string query(const std::string &key, const std::string &item)
    {
        const json request = parse("{'" + key + "':" + item + "}");
        cJSON *answer = nullptr;
        EXPECT_EQ(para_get_isp_opt(key.c_str(), request->child, &answer, "isp0"), 0);
        const json owner(answer);
        return answer != nullptr ? compact(answer) : "none";
    }

    void change(const std::string &key, const std::string &item)
    {
        const json request = parse("{'" + key + "':" + item + "}");
        EXPECT_EQ(para_set_isp_opt("any key", request->child, "any name"), 0);
    }

    std::string to_json(int instance, int use_defaults)
    {
        const json object(isp_param_to_json(instance, use_defaults));
        return compact(object.get());
    }

    std::string saved()
    {
        EXPECT_EQ(para_save_isp("isp0"), 0);
        return read_data("isp_cur.json").value_or("none");
    }
};
