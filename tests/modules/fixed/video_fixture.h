// Video with files for any number of streams.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "camparam/video.h"
#include "support/store.h"

class Video : public Store {
protected:
    struct accessors {
        int slot;
        const char *key;
        int (*def)(int), (*min)(int), (*max)(int), (*init)(int), (*cur)(int);
        int (*set)(int, int), (*quiet_set)(int, int);
        int (*num)(const char *);
    };
    static const std::vector<accessors> all_members;

    struct named_accessors {
        const char *key;
        const char *(*str)(int);
        int (*num)(const char *);
        int (*set_bystr)(int, const char *);
        int (*cur)(int);
    };
    static const std::vector<named_accessors> named_members;
    static const std::map<std::string, int> name_counts;

    struct notified {
        int (*setter)(int, int);
        int stream, value;
    };
    static inline std::vector<notified> notifications;
    static void notify(int (*setter)(int, int), int stream, int value)
    {
        notifications.push_back({setter, stream, value});
    }

    static inline int requests;
    static void requested(const cJSON *) { requests++; }

    static constexpr char stream_range[] =
        "{'protocol':['H264','MJPEG'],'size':[0,46],'frameRate':[1,60],"
        "'qfactor':[1,99],'rcMode':['CBR','AVBR'],'bitRate':[32,65536],"
        "'gop':[1,300],'profile':[0,3],'sliceEn':[0,1],'sliceMode':[0,1],"
        "'sliceSize':[1,64]}";
    static constexpr char named_stream[] =
        "{'protocol':'H265','size':'PIC_HD1080','frameRate':30,'qfactor':80,"
        "'rcMode':'CBR','bitRate':4096,'gop':60,'profile':'highprofile',"
        "'sliceEn':0,'sliceMode':0,'sliceSize':4}";
    static constexpr char numeric_stream[] =
        "{'protocol':0,'size':16,'frameRate':25,'qfactor':70,'rcMode':1,"
        "'bitRate':1024,'gop':50,'profile':1,'sliceEn':1,'sliceMode':1,"
        "'sliceSize':8}";

    // {"video0":<object>,"video1":<object>...}
    static std::string streams_of(const std::vector<std::string> &objects);

    Video()
    {
        para_profile.video_set_notify_hook = notify;
        para_profile.video_set_request_hook = requested;
    }

    int init(const std::string &range, const std::string &defaults)
    {
        write_home("video_range.json", range);
        write_home("video_def.json", defaults);
        return para_init_video("video0");
    }

    // So many streams with every member; the last one's defaults are numbers.
    int init(size_t count)
    {
        std::vector<std::string> defaults(count, named_stream);
        if (count > 0)
            defaults.back() = numeric_stream;
        return init(streams_of(std::vector<std::string>(count, stream_range)),
                    streams_of(defaults));
    }

    bool due() { return para_need_save_video("video0") == 1; }

    bool change_pending()
    {
        move_clock(10000);
        return due();
    }

    std::string query(const std::string &key, const std::string &item)
    {
        const json request = parse("{'" + key + "':" + item + "}");
        cJSON *answer = nullptr;
        EXPECT_EQ(para_get_video_opt("unused", request->child, &answer, "unused"), 0);
        const json owner(answer);
        return answer != nullptr ? compact(answer) : "none";
    }

    void change(const std::string &key, const std::string &item)
    {
        const json request = parse("{'" + key + "':" + item + "}");
        EXPECT_EQ(para_set_video_opt("unused", request->child, "unused"), 0);
    }

    std::string saved()
    {
        EXPECT_EQ(para_save_video("video0"), 0);
        return read_data("video_cur.json").value_or("none");
    }
};
