// The image signal processor with two styles of a few members.
#pragma once

#include <climits>
#include <filesystem>
#include <string>
#include <vector>

#include "camparam/isp.h"
#include "support/store.h"

class IspStyle : public Store {
protected:
    static constexpr char two_styles[] =
        "{'isp0_style_def':0,'style_excute_by_arm':3,"
        "'isp0_style_list':['standard','vivid'],"
        "'standard':{'style':0,'saturation':50,'sharpness':8,'antiflicker':1},"
        "'vivid':{'style':1,'saturation':70,'sharpness':10,'antiflicker':2}}";

    // No style has one of these numbers, whatever the file.
    static constexpr int no_index[] = {-1, -2, -1000000, INT_MIN, 1001, 1000000, INT_MAX};

    static inline std::vector<std::string> odm_keys;
    static void odm_told(const char *key) { odm_keys.push_back(key); }

    static inline int notifications;
    static void notify(int (*)(int, int), int, int) { notifications++; }

    IspStyle()
    {
        write_home("isp_range.json",
                   "{'isp0':{'style':[0,9],'saturation':[0,100],'sharpness':[0,20],"
                   "'antiflicker':[0,60]}}");
        write_home("isp_def.json", two_styles);
        para_profile.isp_set_notify_hook = notify;
        para_profile.odm_set_notify_hook = odm_told;
    }

    int load() { return para_init_isp_style(); }
    int load(const std::string &file)
    {
        write_home("isp_def.json", file);
        return load();
    }

    void start(const std::string &file = two_styles)
    {
        write_home("isp_def.json", file);
        EXPECT_EQ(para_init_isp("isp0"), 0);
    }

    void load_odm(const std::string &bytes)
    {
        std::filesystem::create_directory(data + "/persist");
        write_data("persist/odm.json", bytes);
        EXPECT_EQ(para_init_odm("odmInter"), 0);
    }

    std::string odm_number(const char *key)
    {
        int value = 0;
        return para_get_odm_int(key, &value) == 0 ? std::to_string(value) : "none";
    }

    std::string defaults(int instance = 0)
    {
        const json object(isp_param_to_json(instance, 1));
        return compact(object.get());
    }
    std::string current(int instance = 0)
    {
        const json object(isp_param_to_json(instance, 0));
        return compact(object.get());
    }

    std::string name(int index)
    {
        const char *const text = para_get_isp_style_string(index);
        return text != nullptr ? text : "none";
    }

    void expect_no_style(int index)
    {
        EXPECT_EQ(get_isp_style_json(index), nullptr) << index;
        EXPECT_EQ(para_get_isp_style_string(index), nullptr) << index;
        EXPECT_EQ(para_get_isp_style_param(0, index), nullptr) << index;
        EXPECT_EQ(para_set_isp_style_def_index(0, index), -1) << index;
        EXPECT_EQ(para_set_isp_style_def(0, index), -1) << index;
    }

    void expect_no_styles()
    {
        for (const int index : no_index)
            expect_no_style(index);
        expect_no_style(0);
        expect_no_style(1);
        for (const char *text : {"standard", "", "isp0_style_list"})
            EXPECT_EQ(para_get_isp_style_index(text), -1);
        EXPECT_EQ(para_get_isp_style_index(nullptr), -1);
    }
};
