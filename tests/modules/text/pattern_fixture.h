// The pattern module "panel" with files of its own.
#pragma once

#include <string>
#include <vector>

#include "camparam/misc.h"
#include "support/store.h"

class JsonModule : public Store {
protected:
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

    struct requested {
        std::string module;
        const cJSON *item;
    };
    static inline std::vector<requested> requests;
    static void request(const char *module, const cJSON *item)
    {
        requests.push_back({module, item});
    }

    static constexpr char panel_range[] =
        "{'brightness':[0,100],'offset':[-10,10],'mode':['off','on','auto'],"
        "'single':['only'],'empty':[],'flags':[true,1],'plain':7,"
        "'unset':[0,9],'unset_mode':['a','b']}";
    static constexpr char panel_defaults[] =
        "brightness = '50'\noffset=-3\nmode = 'on'\nsingle = 'only'\n"
        "flags = '1'\nextra = '12 apples'\n";

    static constexpr const char *unknown_modules[] = {nullptr, "",     "pane", "panels",
                                                      "Panel", "json", "misc"};
    static constexpr const char *unknown_members[] = {nullptr, "", "brightnes", "brightness2",
                                                      "all"};

    static std::string text_or_none(const char *text) { return text != nullptr ? text : "none"; }

    JsonModule()
    {
        para_profile.misc_set_notify_hook = notify;
        para_profile.misc_set_request_hook = request;
    }

    void write_module(const std::string &name, const std::string &range = panel_range,
                      const std::string &defaults = panel_defaults)
    {
        write_home(name + "_range.json", range);
        write_home(name + ".conf", defaults);
    }

    // Starts the store, and the module "panel" with these files.
    void init(const std::string &range = panel_range, const std::string &defaults = panel_defaults)
    {
        write_module("panel", range, defaults);
        EXPECT_EQ(para_init_misc("json"), 0);
        EXPECT_EQ(para_init_misc("panel"), 0);
    }

    // The current text of a member; "none" when there is none.
    std::string value(const char *member, const char *module = "panel")
    {
        char text[1000];
        return para_get_json_string(module, member, text, sizeof text) == 0 ? text : "none";
    }

    bool due(const char *name = "panel") { return para_need_save_misc(name) == 1; }
    bool change_pending()
    {
        move_clock(10000);
        return due();
    }

    std::string query(const std::string &item, const std::string &key = "panel")
    {
        const json tree = parse("{'" + key + "':" + item + "}");
        cJSON *answer = nullptr;
        EXPECT_EQ(para_get_misc_opt(key.c_str(), tree->child, &answer, "panel"), 0);
        const json owner(answer);
        return answer != nullptr ? compact(answer) : "none";
    }

    void change(const std::string &item)
    {
        const json tree = parse("{'panel':" + item + "}");
        EXPECT_EQ(para_set_misc_opt("panel", tree->child, "panel"), 0);
    }

    std::string object(int defaults)
    {
        const json tree(cJSON_CreateObject());
        EXPECT_EQ(Create_Json_Misc_Object("panel", tree.get(), defaults), 0);
        return compact(tree.get());
    }

    std::string saved()
    {
        EXPECT_EQ(para_save_misc("panel"), 0);
        return read_data("panel.conf").value_or("none");
    }

    // What the functions answer for a module that was never loaded.
    void expect_unknown(const char *module)
    {
        SCOPED_TRACE(text_or_none(module));
        const json text = parse("'on'");
        char buffer[32] = "untouched";
        EXPECT_EQ(peek_json_enum_type(module, "mode"), -1);
        EXPECT_EQ(para_get_json_emum_str(module, "mode", 0), nullptr);
        EXPECT_EQ(para_get_json_enum_index(module, "mode", "on"), -1);
        EXPECT_EQ(para_get_json_item_number(module, text.get(), "mode"), -1);
        EXPECT_EQ(para_get_json_min(module, "brightness"), -1);
        EXPECT_EQ(para_get_json_max(module, "brightness"), -1);
        EXPECT_EQ(para_get_json_def(module, "brightness"), -1);
        EXPECT_EQ(para_get_json_cur(module, "brightness"), -1);
        EXPECT_EQ(para_get_json_string(module, "brightness", buffer, sizeof buffer), -1);
        EXPECT_EQ(para_set_json_cur_str(module, "mode", "auto"), 0);
        EXPECT_EQ(para_set_json_cur_number(module, "brightness", 1), 0);
        EXPECT_EQ(_para_set_json_cur(module, "brightness", 1), -1);
        EXPECT_EQ(para_set_json_cur(module, "brightness", 1), -1);
        EXPECT_EQ(para_save_misc_conf_2_buf(module, buffer, sizeof buffer), -1);
        EXPECT_STREQ(buffer, "untouched");

        const json tree(cJSON_CreateObject());
        EXPECT_LT(Create_Json_Misc_Object(module, tree.get(), 0), 0);
        EXPECT_LT(Create_Json_Misc_Object(module, tree.get(), 1), 0);
        EXPECT_EQ(compact(tree.get()), "{}");
    }

    void expect_unknown_row(const char *name)
    {
        const json tree = parse("{'x':['all']}");
        cJSON *answer = tree.get();
        EXPECT_EQ(para_get_misc_opt("x", tree->child, &answer, name), -1) << name;
        EXPECT_EQ(answer, tree.get()) << "untouched";
        EXPECT_EQ(para_set_misc_opt("x", tree.get(), name), 0) << name;
        EXPECT_EQ(para_need_save_misc(name), -1) << name;
        EXPECT_EQ(para_save_misc(name), -1) << name;
    }
};
