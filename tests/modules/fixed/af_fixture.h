// Focus and zoom with a full set of files.
#pragma once

#include <string>
#include <vector>

#include "camparam/af.h"
#include "support/store.h"

class Af : public Store {
protected:
    struct accessors {
        int slot;
        const char *key;
        int (*def)(), (*min)(), (*max)(), (*init)(), (*cur)();
        int (*set)(int);
    };
    static const std::vector<accessors> all_members;

    struct notified {
        int (*setter)(int);
        int value;
    };
    static inline std::vector<notified> notifications;
    static void notify(int (*setter)(int), int value) { notifications.push_back({setter, value}); }

    Af()
    {
        write_home("af_range.json", "{'focus_mode':[0,3],'focus_zone':[0,4],'focus_sens':[1,9],"
                                    "'focus_value':[-500,500],'focus_lock':[0,1],"
                                    "'zoom_value':[0,16384]}");
        write_home("af_def.json", "{'focus_mode':1,'focus_zone':2,'focus_sens':5,'focus_value':-7,"
                                  "'focus_lock':0,'zoom_value':100}");
        para_profile.af_set_notify_hook = notify;
    }

    int init() { return para_init_af("af"); }

    bool change_pending()
    {
        move_clock(10000);
        return para_need_save_af("af") == 1;
    }

    // What a query with this item answers; "none" for no answer.
    std::string query(const std::string &item, const std::string &key = "af")
    {
        const json request = parse("{'" + key + "':" + item + "}");
        cJSON *answer = nullptr;
        EXPECT_EQ(para_get_af_opt(key.c_str(), request->child, &answer, "af"), 0);
        const json owner(answer);
        return answer != nullptr ? compact(answer) : "none";
    }
};
