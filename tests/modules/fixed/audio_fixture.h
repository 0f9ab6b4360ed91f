// Audio with a full set of files.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "camparam/audio.h"
#include "support/store.h"

class Audio : public Store {
protected:
    struct accessors {
        int slot;
        const char *key;
        int (*def)(), (*min)(), (*max)(), (*init)(), (*cur)();
        int (*set)(int), (*quiet_set)(int);
        int (*num)(const char *);
    };
    static const std::vector<accessors> all_members;

    struct named_accessors {
        const char *key;
        const char *(*str)(int);
        int (*num)(const char *);
    };
    static const std::vector<named_accessors> named_members;
    static const std::map<std::string, std::vector<std::string>> names;

    struct notified {
        int (*setter)(int);
        int value;
    };
    static inline std::vector<notified> notifications;
    static void notify(int (*setter)(int), int value) { notifications.push_back({setter, value}); }

    static inline std::vector<std::string> requests;
    static void requested(const cJSON *item) { requests.push_back(item->string + compact(item)); }

    static constexpr char wide_ranges[] =
        "{'audioEnable':[0,1],'aeFormat':['AAC','G711A'],'adtsFlag':[0,1],"
        "'sampleRate':[8000,48000],'streamRate':[16,256],"
        "'audioInput':['linein','micin'],'volLeftIn':[0,100],"
        "'volRightIn':[0,100],'audioInputVol':[0,100],'audioOut':[0,1],"
        "'audioOutVol':[0,100],'mute':[0,1],'denoise':[0,3],'agcEnable':[0,1],"
        "'audioOutMute':[0,1]}";
    static constexpr char numeric_defaults[] =
        "{'audioEnable':1,'aeFormat':1,'adtsFlag':0,'sampleRate':48000,"
        "'streamRate':128,'audioInput':0,'volLeftIn':50,'volRightIn':51,"
        "'audioInputVol':52,'audioOut':1,'audioOutVol':53,'mute':0,"
        "'denoise':2,'agcEnable':1,'audioOutMute':0}";
    static constexpr char named_defaults[] = "{'audioEnable':1,'aeFormat':'AAC','sampleRate':48000,"
                                             "'audioInput':'micin','audioOut':'hdmi','mute':0}";

    Audio()
    {
        write_home("audio_range.json", wide_ranges);
        write_home("audio_def.json", numeric_defaults);
        para_profile.audio_set_notify_hook = notify;
        para_profile.audio_set_request_hook = requested;
    }

    int init(const std::string &defaults = "")
    {
        if (!defaults.empty())
            write_home("audio_def.json", defaults);
        return para_init_audio("audio");
    }

    bool due() { return para_need_save_audio("audio") == 1; }

    bool change_pending()
    {
        move_clock(10000);
        return due();
    }

    std::string query(const std::string &item)
    {
        const json request = parse("{'any key':" + item + "}");
        cJSON *answer = nullptr;
        EXPECT_EQ(para_get_audio_opt("any key", request->child, &answer, "audio"), 0);
        const json owner(answer);
        return answer != nullptr ? compact(answer) : "none";
    }

    void change(const std::string &item)
    {
        const json request = parse("{'any key':" + item + "}");
        EXPECT_EQ(para_set_audio_opt("any key", request->child, "audio"), 0);
    }

    std::string saved()
    {
        EXPECT_EQ(para_save_audio("audio"), 0);
        return read_data("audio_cur.json").value_or("none");
    }
};
