// The conf module "netport" with files of its own.
#pragma once

#include <string>
#include <vector>

#include "camparam/conf.h"
#include "support/store.h"

class ConfModule : public Store {
protected:
    static inline std::vector<std::string> members_told; // "<module> <key>"
    static void tell_member(const char *module, const char *key)
    {
        members_told.push_back(std::string(module) + " " + key);
    }

    static inline std::vector<std::string> updates_told;
    static int tell_update(const char *module)
    {
        updates_told.push_back(module);
        return -1; // ignored
    }

    static inline int switch_calls = 0;
    static void save_switch() { switch_calls++; }

    static constexpr char port_defaults[] =
        "port = '80'\nrtsp=554\nname = 'front door'\nempty = ''\n";
    static constexpr const char *unknown_modules[] = {"netpor", "netports", "Netport",
                                                      "conf",   "",         nullptr};

    static std::string text_or_none(const char *text) { return text != nullptr ? text : "none"; }

    ConfModule()
    {
        para_profile.conf_member_notify_hook = tell_member;
        para_profile.conf_update_hook = tell_update;
        para_profile.conf_save_hook = save_switch;
    }

    void init(const std::string &defaults = port_defaults, const std::string &current = "")
    {
        write_home("netport.conf", defaults);
        if (!current.empty())
            write_data("netport.conf", current);
        init_without_files();
    }
    void init_without_files()
    {
        EXPECT_EQ(para_init_conf("conf"), 0);
        EXPECT_EQ(para_init_conf("netport"), 0);
    }

    std::string value(const char *key)
    {
        return text_or_none(para_conf_get_member("netport", key));
    }
    std::string default_value(const char *key)
    {
        char text[300];
        return para_conf_get_def_member_safe("netport", key, text, sizeof text) == 0 ? text
                                                                                     : "none";
    }

    bool change_pending()
    {
        move_clock(10000);
        return para_need_save_conf("netport") == 1;
    }

    std::string query(const std::string &item, const std::string &key = "netport",
                      const char *row = "netport")
    {
        const json tree = parse("{'" + key + "':" + item + "}");
        cJSON *answer = nullptr;
        EXPECT_EQ(para_get_conf_opt(key.c_str(), tree->child, &answer, row), 0);
        const json owner(answer);
        return answer != nullptr ? compact(answer) : "none";
    }

    void change(const std::string &item, const char *row = "netport")
    {
        const json tree = parse("{'netport':" + item + "}");
        EXPECT_EQ(para_set_conf_opt("netport", tree->child, row), 0);
    }

    std::string saved()
    {
        EXPECT_EQ(para_save_conf("netport"), 0);
        return read_data("netport.conf").value_or("none");
    }

    // A module without values: unknown, or one whose defaults could not be read.
    void expect_nothing(const char *module)
    {
        SCOPED_TRACE(text_or_none(module));
        char buffer[32] = "untouched";
        const char *const keys[] = {"port"};
        EXPECT_EQ(para_conf_get_member(module, "port"), nullptr);
        EXPECT_EQ(para_conf_get_member_safe(module, "port", buffer, sizeof buffer), -1);
        EXPECT_EQ(para_conf_get_def_member_safe(module, "port", buffer, sizeof buffer), -1);
        EXPECT_EQ(_para_conf_set_member(module, "port", "1"), -1);
        EXPECT_EQ(para_conf_set_member(module, "port", "1"), -1);
        EXPECT_EQ(para_conf_key_IsChanged(module, keys, 1), -1);
        EXPECT_EQ(para_save_conf_2_buf(module, buffer, sizeof buffer), -1);
        EXPECT_STREQ(buffer, "untouched");
        EXPECT_EQ(query("['all']", "x", module), "{}");
        EXPECT_EQ(query("['all']", "x_def", module), "{}");
        EXPECT_EQ(query("['port','rtsp']", "x", module), "{}");
        change("{'port':'1'}", module);
        EXPECT_EQ(para_save_conf(module), -1);
        EXPECT_THAT(members_told, testing::IsEmpty());
        EXPECT_THAT(updates_told, testing::IsEmpty());
    }

    int changed(const std::vector<const char *> &keys)
    {
        return para_conf_key_IsChanged("netport", keys.data(),
                                       static_cast<unsigned char>(keys.size()));
    }
};
