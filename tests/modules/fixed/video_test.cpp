// The video streams: the model with an object for each stream.
#include "camparam/video.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "support/store.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

constexpr int stream_slots = 11;

struct accessors {
    int slot;
    const char *key;
    int (*def)(int), (*min)(int), (*max)(int), (*init)(int), (*cur)(int);
    int (*set)(int, int), (*quiet_set)(int, int);
    int (*num)(const char *);
};

const accessors all_members[] = {
#define VIDEO_MEMBER(slot, name)                                                                   \
    {slot,                                                                                         \
     #name,                                                                                        \
     para_get_video_##name##_def,                                                                  \
     para_get_video_##name##_min,                                                                  \
     para_get_video_##name##_max,                                                                  \
     para_get_video_##name##_init,                                                                 \
     para_get_video_##name##_cur,                                                                  \
     para_set_video_##name##_cur,                                                                  \
     _para_set_video_##name##_cur,                                                                 \
     para_get_video_##name##_num},
#include "camparam/video_members.def"
};

struct named_accessors {
    const char *key;
    const char *(*str)(int);
    int (*num)(const char *);
    int (*set_bystr)(int, const char *);
    int (*cur)(int);
};

const named_accessors named_members[] = {
#define VIDEO_NAMED_MEMBER(slot, name)                                                             \
    {#name, para_get_video_##name##_str, para_get_video_##name##_num,                              \
     para_set_video_##name##_cur_bystr, para_get_video_##name##_cur},
#include "camparam/video_members.def"
};

const std::map<std::string, int> name_counts = {
    {"protocol", 3}, {"size", 47}, {"rcMode", 5}, {"profile", 4}};

struct notified {
    int (*setter)(int, int);
    int stream, value;
};
std::vector<notified> notifications;
void notify(int (*setter)(int, int), int stream, int value)
{
    notifications.push_back({setter, stream, value});
}

int requests;
void requested(const cJSON *)
{
    requests++;
}

const char stream_range[] = "{'protocol':['H264','MJPEG'],'size':[0,46],'frameRate':[1,60],"
                            "'qfactor':[1,99],'rcMode':['CBR','AVBR'],'bitRate':[32,65536],"
                            "'gop':[1,300],'profile':[0,3],'sliceEn':[0,1],'sliceMode':[0,1],"
                            "'sliceSize':[1,64]}";
const char named_stream[] = "{'protocol':'H265','size':'PIC_HD1080','frameRate':30,'qfactor':80,"
                            "'rcMode':'CBR','bitRate':4096,'gop':60,'profile':'highprofile',"
                            "'sliceEn':0,'sliceMode':0,'sliceSize':4}";
const char numeric_stream[] = "{'protocol':0,'size':16,'frameRate':25,'qfactor':70,'rcMode':1,"
                              "'bitRate':1024,'gop':50,'profile':1,'sliceEn':1,'sliceMode':1,"
                              "'sliceSize':8}";

// {"video0":<object>,"video1":<object>...}
std::string streams_of(const std::vector<std::string> &objects)
{
    std::string text = "{";
    for (size_t i = 0; i < objects.size(); i++)
        text += (i > 0 ? ",'video" : "'video") + std::to_string(i) + "':" + objects[i];
    return text + "}";
}

} // namespace

class Video : public Store {
protected:
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

using VideoStart = Video;
using VideoStreams = Video;
using VideoNames = Video;
using VideoSetter = Video;
using VideoQuery = Video;
using VideoSetRequest = Video;
using VideoSave = Video;

TEST_F(VideoStart, EveryMemberOfEveryStreamHasTheValuesOfItsFiles)
{
    std::vector<std::string> range(6, "{"), def(6, "{"), cur(6, "{");
    for (int stream = 0; stream < 6; stream++) {
        const auto at = static_cast<size_t>(stream);
        for (const accessors &member : all_members) {
            const int slot = stream * stream_slots + member.slot;
            const std::string key = std::string("'") + member.key + "':";
            range[at] += key + "[" + std::to_string(slot) + "," + std::to_string(slot + 200) + "],";
            def[at] += key + std::to_string(slot + 100) + ",";
            cur[at] += key + std::to_string(slot + 50) + ",";
        }
        range[at].back() = def[at].back() = cur[at].back() = '}';
    }
    write_data("video_cur.json", streams_of(cur));
    EXPECT_EQ(init(streams_of(range), streams_of(def)), 0);
    EXPECT_EQ(para_get_video_streamNum(), 6);
    for (int stream = 0; stream < 6; stream++) {
        for (const accessors &member : all_members) {
            const int slot = stream * stream_slots + member.slot;
            EXPECT_EQ(member.min(stream), slot) << member.key;
            EXPECT_EQ(member.max(stream), slot + 200) << member.key;
            EXPECT_EQ(member.def(stream), slot + 100) << member.key;
            EXPECT_EQ(member.cur(stream), slot + 50) << member.key;
            EXPECT_EQ(member.init(stream), slot + 50) << member.key;
            EXPECT_EQ(para_video_exist[slot], 0x81);
            EXPECT_EQ(para_video_cur[slot], slot + 50);
        }
    }
}

TEST_F(VideoStart, HappensOnce)
{
    EXPECT_EQ(init(1), 0);
    para_set_video_gop_cur(0, 99);
    forget_traces();
    EXPECT_EQ(init(2), 0);
    EXPECT_EQ(para_get_video_streamNum(), 1);
    EXPECT_EQ(para_get_video_gop_cur(0), 99);
    EXPECT_THAT(traces(), IsEmpty());
}

TEST_F(VideoStart, AFailureIsNotRetriedByTheOtherRows)
{
    EXPECT_EQ(para_init_video("video0"), -1);
    EXPECT_THAT(traces_of("para_init_video"), ElementsAre("Error range def buf\n\n"));
    EXPECT_EQ(init(2), 0);
    EXPECT_EQ(para_get_video_streamNum(), 0);
}

TEST_F(VideoStart, AMissingDefaultsFileLeavesTheStreamCount)
{
    write_home("video_range.json", streams_of({stream_range, stream_range}));
    EXPECT_EQ(para_init_video("video0"), -1);
    EXPECT_THAT(traces_of("para_init_video"), ElementsAre("Error read def buf\n\n"));
    EXPECT_EQ(para_get_video_streamNum(), 2);
    EXPECT_EQ(para_get_video_gop_max(1), 300);
}

TEST_F(VideoStart, ABrokenRangeFileIsTraced)
{
    EXPECT_EQ(init("rubbish", "{}"), -1);
    EXPECT_THAT(traces_of("para_init_video"), ElementsAre("Error before: [rubbish]\n\n"));
}

TEST_F(VideoStart, ABrokenDefaultsFileIsTraced)
{
    EXPECT_EQ(init("{}", "rubbish"), -1);
    EXPECT_THAT(traces_of("para_init_video"), ElementsAre("Error before: [rubbish]\n\n"));
}

TEST_F(VideoStart, ABrokenCurrentFileIsTracedAndTheDefaultsStand)
{
    write_data("video_cur.json", "rubbish");
    EXPECT_EQ(init(1), 0);
    EXPECT_THAT(traces_of("para_init_video"),
                ElementsAre("Error before: [rubbish]\n\n", "parse_ok:0\n"));
    EXPECT_EQ(para_get_video_gop_cur(0), 50);
}

TEST_F(VideoStart, AnUnreadableCurrentFileIsTraced)
{
    mkdir((data + "/video_cur.json").c_str(), 0755);
    EXPECT_EQ(init(1), 0);
    EXPECT_THAT(traces_of("para_init_video"),
                ElementsAre("Error read cur buf\n\n", "parse_ok:0\n"));
}

TEST_F(VideoStart, AGoodCurrentFileIsTraced)
{
    write_data("video_cur.json", "{'video0':{'gop':7}}");
    EXPECT_EQ(init(1), 0);
    EXPECT_THAT(traces_of("para_init_video"), ElementsAre("parse_ok:1\n"));
    EXPECT_EQ(para_get_video_gop_cur(0), 7);
    EXPECT_EQ(para_get_video_gop_init(0), 7);
    EXPECT_EQ(para_get_video_gop_def(0), 50);
}

TEST_F(VideoStart, DumpsEveryStream)
{
    init(2);
    const std::vector<std::string> page = traces_of("video_page");
    ASSERT_EQ(page.size(), 1U + 2 * 12 + 1);
    EXPECT_EQ(page[0], "----------VIDEO PARAM-----------\n\n");
    EXPECT_EQ(page[1], "stream_0 param:\n");
    EXPECT_EQ(page[2], "        protocol : cur:[1],\tdef:[1],\trange:[0,2]\n");
    EXPECT_EQ(page[12], "       sliceSize : cur:[4],\tdef:[4],\trange:[1,64]\n");
    EXPECT_EQ(page[13], "stream_1 param:\n");
    EXPECT_EQ(page[14], "        protocol : cur:[0],\tdef:[0],\trange:[0,2]\n");
    EXPECT_EQ(page[25], "--------------------------------\n\n");
}

TEST_F(VideoStart, NamesInFilesMayBeCutShortAndTheLastFittingOneWins)
{
    init("{'video0':{'protocol':['H264','H26'],'size':['PIC_QCIF','PIC_D'],'profile':['',3]}}",
         "{'video0':{'protocol':'H','size':'PIC_720','rcMode':'','bitRate':'null'}}");
    EXPECT_EQ(para_get_video_protocol_max(0), 1);
    EXPECT_EQ(para_get_video_size_max(0), 4);
    EXPECT_EQ(para_get_video_profile_min(0), 3);
    EXPECT_EQ(para_get_video_protocol_def(0), 1);
    EXPECT_EQ(para_get_video_size_def(0), 45) << "PIC_720_576 is the last that begins so";
    EXPECT_EQ(para_get_video_rcMode_def(0), 4);
    EXPECT_EQ(para_video_exist[5], 0x101);
}

TEST_F(VideoStreams, AreCountedByTheRangeFile)
{
    const std::vector<std::pair<const char *, int>> counts = {
        {"{}", 0},
        {"{'video0':{}}", 1},
        {"{'video0':{},'video2':5}", 2},
        {"{'video1':{}}", 1},
        {"{'video0':0,'video1':0,'video2':0,'video3':0,'video4':0,'video5':0}", 6},
        {"{'video0':0,'video1':0,'video2':0,'video3':0,'video4':0,'video5':0,'video6':0}", 6},
        {"{'video6':0,'video7':0,'video':0,'audio':0}", 0},
        {"[]", 0},
    };
    for (const auto &[document, count] : counts) {
        forget_traces();
        EXPECT_EQ(check_video_num(parse(document).get()), count) << document;
        EXPECT_THAT(traces_of("check_video_num"),
                    ElementsAre("check video num = " + std::to_string(count) + "\n"));
    }
}

TEST_F(VideoStreams, AGapShiftsNothing)
{
    init("{'video0':" + std::string(stream_range) + ",'video2':" + stream_range + "}",
         streams_of({named_stream, named_stream, named_stream}));
    EXPECT_EQ(para_get_video_streamNum(), 2);
    EXPECT_EQ(para_get_video_gop_max(0), 300);
    EXPECT_EQ(para_get_video_gop_max(1), 0) << "the file has no range for it";
    EXPECT_EQ(para_get_video_gop_cur(1), 60);
    EXPECT_EQ(para_get_video_gop_cur(2), -1);
}

TEST_F(VideoStreams, AnOnlySecondStreamIsStreamZeroWithoutAnything)
{
    init("{'video1':" + std::string(stream_range) + "}",
         "{'video1':" + std::string(named_stream) + "}");
    EXPECT_EQ(para_get_video_streamNum(), 1);
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.max(0), 0) << member.key;
        EXPECT_EQ(member.def(0), 0) << member.key;
        EXPECT_EQ(member.cur(0), -1) << member.key;
    }
    EXPECT_EQ(saved(), std::string("{\n\t\"video0\":\t{\n\t}\n}") + '\0');
}

TEST_F(VideoStreams, CountItselfIsLetThrough)
{
    init(2);
    para_video_max[2 * stream_slots + 6] = 123;
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.def(2), 0) << member.key;
        EXPECT_EQ(member.min(2), 0) << member.key;
        EXPECT_EQ(member.max(2), member.slot == 6 ? 123 : 0) << member.key;
        EXPECT_EQ(member.cur(2), -1) << "not present";
        EXPECT_EQ(member.init(2), -1);
    }
    para_video_exist[2 * stream_slots + 6] = 0x81;
    para_video_cur[2 * stream_slots + 6] = 45;
    EXPECT_EQ(para_get_video_gop_cur(2), 45) << "presence decides";
    EXPECT_EQ(_para_set_video_gop_cur(2, 50), 0) << "setters take streams in use alone";
}

TEST_F(VideoStreams, SixStreamsHaveNoSeventh)
{
    init(6);
    for (const accessors &member : all_members) {
        for (int (*const get)(int) : {member.def, member.min, member.max, member.init, member.cur})
            EXPECT_EQ(get(6), -1) << member.key;
        EXPECT_EQ(member.quiet_set(6, member.max(5)), 0);
        EXPECT_NE(member.cur(5), -1);
    }
    EXPECT_EQ(query("video6", "['gop']"), "none");
    change("video6", "{'gop':5}");
    EXPECT_FALSE(change_pending());
}

TEST_F(VideoStreams, OtherNumbersAreAbsentEverywhere)
{
    init(2);
    for (const int stream : {-1, 3, 6, 7, 1000, INT_MAX, INT_MIN}) {
        for (const accessors &member : all_members) {
            for (int (*const get)(int) :
                 {member.def, member.min, member.max, member.init, member.cur})
                EXPECT_EQ(get(stream), -1) << member.key << " " << stream;
            EXPECT_EQ(member.set(stream, member.max(0)), 0);
            EXPECT_EQ(member.quiet_set(stream, member.max(0)), 0);
            int value = 77;
            EXPECT_EQ(para_get_video_member(member.key, stream, &value, nullptr), 0);
            EXPECT_EQ(para_set_video_member(member.key, stream, 1, "1"), 0);
        }
        for (const named_accessors &member : named_members)
            EXPECT_EQ(member.set_bystr(stream, member.str(1)), 0);
        const json object(Create_Json_Video_Object(stream));
        EXPECT_EQ(compact(object.get()), "{}");
    }
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(VideoNames, EveryNameHasItsValueAndBack)
{
    ASSERT_EQ(std::size(named_members), name_counts.size());
    for (const named_accessors &member : named_members) {
        const int count = name_counts.at(member.key);
        for (int i = 0; i < count; i++) {
            ASSERT_NE(member.str(i), nullptr);
            EXPECT_EQ(member.num(member.str(i)), i) << member.str(i);
        }
        for (const int beyond : {-1, count, INT_MAX, INT_MIN})
            EXPECT_EQ(member.str(beyond), nullptr) << member.key;
        EXPECT_EQ(member.num(""), 0);
        EXPECT_EQ(member.num("7"), 7);
        EXPECT_EQ(member.num("none"), -1000);
        EXPECT_EQ(member.num(nullptr), -1000);
    }
    EXPECT_STREQ(para_get_video_rcMode_str(3), "FIXQP");
    EXPECT_STREQ(para_get_video_profile_str(3), "svc-t");
    EXPECT_EQ(para_get_video_protocol_num("H26"), 0);
}

TEST_F(VideoNames, MembersWithoutNamesKnowNull)
{
    for (const accessors &member : all_members) {
        if (name_counts.count(member.key) != 0)
            continue;
        EXPECT_EQ(member.num("nul"), 0) << member.key;
        EXPECT_EQ(member.num("12x"), 12) << member.key;
        EXPECT_EQ(member.num("x"), -1000) << member.key;
    }
}

TEST_F(VideoNames, SettingByNameTakesWholeNames)
{
    init(2);
    for (const named_accessors &member : named_members) {
        for (int i = 0; i < name_counts.at(member.key); i++) {
            EXPECT_EQ(member.set_bystr(1, member.str(i)), 0);
            EXPECT_EQ(member.cur(1), i) << member.key;
        }
        for (const char *text : {"", "PIC_D", "H26", "C", "base", "h264", "0", "PIC_D1 "})
            EXPECT_EQ(member.set_bystr(1, text), -1) << member.key << " " << text;
        EXPECT_EQ(member.set_bystr(1, nullptr), -1);
    }
}

TEST_F(VideoNames, SettingByNameTellsTheHookOfThePublicSetter)
{
    init(1);
    EXPECT_EQ(para_set_video_rcMode_cur_bystr(0, "AVBR"), 0);
    ASSERT_EQ(notifications.size(), 1U);
    EXPECT_EQ(notifications[0].setter, para_set_video_rcMode_cur);
    EXPECT_EQ(notifications[0].value, 4);
    EXPECT_EQ(para_set_video_rcMode_cur_bystr(0, "AVBR"), 0) << "known, if already so";
    EXPECT_EQ(notifications.size(), 1U);
}

TEST_F(VideoSetter, TakesEveryValueOfTheRangeAndTellsTheHook)
{
    init(3);
    for (int stream = 0; stream < 3; stream++) {
        for (const accessors &member : all_members) {
            for (const int value : {member.max(stream), member.min(stream)}) {
                member.quiet_set(stream, value == member.max(stream) ? member.min(stream)
                                                                     : member.max(stream));
                notifications.clear();
                EXPECT_EQ(member.set(stream, value), 0);
                EXPECT_EQ(member.cur(stream), value) << member.key;
                ASSERT_EQ(notifications.size(), 1U) << member.key;
                EXPECT_EQ(notifications[0].setter, member.set) << member.key;
                EXPECT_EQ(notifications[0].stream, stream);
                EXPECT_EQ(notifications[0].value, value);
            }
        }
    }
}

TEST_F(VideoSetter, TheInternalSetterTellsTheChangeAndNoHook)
{
    init(2);
    for (const accessors &member : all_members) {
        const int other = member.cur(1) == member.max(1) ? member.min(1) : member.max(1);
        const int before = member.cur(0);
        EXPECT_EQ(member.quiet_set(1, other), 1) << member.key;
        EXPECT_EQ(member.quiet_set(1, other), 0) << member.key;
        EXPECT_EQ(member.cur(0), before) << "the other stream is left alone";
    }
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_TRUE(change_pending());
}

TEST_F(VideoSetter, RefusesWhatIsOutsideTheRangeOrCurrent)
{
    init(1);
    for (const accessors &member : all_members) {
        const int before = member.cur(0);
        for (const int value : {member.min(0) - 1, member.max(0) + 1, INT_MIN, INT_MAX, before}) {
            EXPECT_EQ(member.set(0, value), 0);
            EXPECT_EQ(member.quiet_set(0, value), 0);
            EXPECT_EQ(member.cur(0), before) << member.key;
        }
    }
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(VideoSetter, AnAbsentMemberCannotBeSet)
{
    init(streams_of({stream_range}), "{}");
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.set(0, member.max(0)), 0);
        EXPECT_EQ(member.quiet_set(0, member.max(0)), 0);
        EXPECT_EQ(para_video_cur[member.slot], 0) << member.key;
    }
    EXPECT_FALSE(change_pending());
}

TEST_F(VideoSetter, WorksWithoutAHook)
{
    para_profile.video_set_notify_hook = nullptr;
    init(1);
    EXPECT_EQ(para_set_video_gop_cur(0, 7), 0);
    EXPECT_EQ(para_get_video_gop_cur(0), 7);
}

TEST_F(VideoQuery, MemberLookUpGivesValueNameAndPresence)
{
    init(2);
    int value = 77;
    const char *text = "untouched";
    EXPECT_EQ(para_get_video_member("size", 0, &value, &text), 0x101);
    EXPECT_EQ(value, 17);
    EXPECT_STREQ(text, "PIC_HD1080");
    EXPECT_EQ(para_get_video_member("size", 0, &value, nullptr), 0x101);
    EXPECT_EQ(para_get_video_member("size", 1, &value, &text), 0x81);
    EXPECT_EQ(value, 16);
    EXPECT_EQ(text, nullptr);
    for (const char *name : {"siz", "sizes", "Size", "", "gopX"}) {
        value = 77;
        EXPECT_EQ(para_get_video_member(name, 0, &value, &text), 0) << name;
        EXPECT_EQ(value, 77) << name;
    }
}

TEST_F(VideoQuery, AnswersEachMemberInTheFormOfItsDefault)
{
    init(2);
    EXPECT_EQ(query("video0", "['size','gop','nothing','profile',5]"),
              "{'size':'PIC_HD1080','gop':60,'profile':'highprofile'}");
    EXPECT_EQ(query("video1", "['size','gop']"), "{'size':16,'gop':50}");
}

TEST_F(VideoQuery, AllAnswersEveryPresentMemberWithNames)
{
    init(2);
    EXPECT_EQ(query("video0", "['all']"), std::string(named_stream));
    EXPECT_EQ(query("video1", "['all of it']"),
              "{'protocol':'H264','size':'PIC_HD720','frameRate':25,'qfactor':70,'rcMode':'VBR',"
              "'bitRate':1024,'gop':50,'profile':'mainprofile','sliceEn':1,'sliceMode':1,"
              "'sliceSize':8}");
    EXPECT_EQ(query("video0", "['all','gop']"), "{'gop':60}");
}

TEST_F(VideoQuery, TheKeyNamesTheStreamAndMayBeCutShort)
{
    init(2);
    for (const char *key : {"video", "video0", "v", ""})
        EXPECT_EQ(query(key, "['gop']"), "{'gop':60}") << key;
    EXPECT_EQ(query("video1", "['gop']"), "{'gop':50}");
    for (const char *key : {"video2", "video10", "video00", "Video0", "x"})
        EXPECT_EQ(query(key, "['gop']"), "none") << key;
}

TEST_F(VideoQuery, IsTracedAtLevelSeven)
{
    init(1);
    forget_traces();
    query("video0", "['gop']");
    query("video0", "['all']");
    query("video9", "['gop']");
    EXPECT_THAT(traces_of("para_get_video_opt"),
                ElementsAre("inter\n", "leave\n", "inter\n", "leave\n", "inter\n", "leave\n"));
    EXPECT_EQ(traces().front().level, 7);
    set_trace_level(6);
    forget_traces();
    query("video0", "['gop']");
    EXPECT_THAT(traces(), IsEmpty());
}

TEST_F(VideoQuery, WithoutStreamsNothingIsAnswered)
{
    init("{}", "{}");
    EXPECT_EQ(query("video0", "['all']"), "none");
    EXPECT_EQ(query("video", "['all']"), "none");
}

TEST_F(VideoSetRequest, AppliesEachMemberInTheFormOfItsDefault)
{
    init(2);
    change("video0", "{'size':'PIC_D1','gop':10,'unknown':1,'rcMode':2}");
    EXPECT_EQ(query("video0", "['size','gop','rcMode']"),
              "{'size':'PIC_D1','gop':10,'rcMode':'CBR'}");
    change("video1", "{'size':'PIC_D1','rcMode':2}");
    EXPECT_EQ(para_get_video_size_cur(1), 16) << "exchanged as a number, which a text is not";
    EXPECT_EQ(para_get_video_rcMode_cur(1), 1) << "named members are set from names alone";
    EXPECT_THAT(traces_of("para_set_video_opt"), ElementsAre("inter\n", "inter\n"));
}

TEST_F(VideoSetRequest, NeverCallsTheRequestHook)
{
    init(2);
    change("video0", "{'gop':10,'bitRate':100}");
    change("video1", "{'gop':10}");
    change("other", "{'gop':11}");
    EXPECT_EQ(para_get_video_gop_cur(1), 10);
    EXPECT_EQ(requests, 0);
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_TRUE(change_pending());
}

TEST_F(VideoSetRequest, NamesMayBeCutShort)
{
    init(2);
    change("video0", "{'size':'PIC_D'}");
    EXPECT_EQ(para_get_video_size_cur(0), 4) << "the first that begins so";
    change("video0", "{'size':''}");
    EXPECT_EQ(para_get_video_size_cur(0), 0);
    change("video0", "{'size':'17'}");
    EXPECT_EQ(para_get_video_size_cur(0), 17);
    change("video0", "{'size':'unknown','profile':null}");
    EXPECT_EQ(para_get_video_size_cur(0), 17);
    EXPECT_EQ(para_get_video_profile_cur(0), 2);
}

TEST_F(VideoSetRequest, AMemberIsChosenByThePrefixOfItsKey)
{
    init(2);
    change("video0", "{'gopX':11,'sizes':'PIC_CIF','bit':99}");
    EXPECT_EQ(para_get_video_gop_cur(0), 11);
    EXPECT_EQ(para_get_video_size_cur(0), 1);
    EXPECT_EQ(para_get_video_bitRate_cur(0), 4096);
}

TEST_F(VideoSetRequest, TheKeyNamesTheStreamAndMayBeCutShort)
{
    init(2);
    change("video", "{'gop':12}");
    EXPECT_EQ(para_get_video_gop_cur(0), 12);
    EXPECT_EQ(para_get_video_gop_cur(1), 50);
    for (const char *key : {"video2", "video5", "video6", "video10", "vide0", "isp0"})
        change(key, "{'gop':13}");
    EXPECT_EQ(para_get_video_gop_cur(0), 12);
    EXPECT_EQ(para_get_video_gop_cur(1), 50);
}

TEST_F(VideoSetRequest, ANumericMemberGivenAsTextIsSetToZero)
{
    init(1);
    change("video0", "{'sliceEn':'1','gop':'10'}");
    EXPECT_EQ(para_get_video_sliceEn_cur(0), 0);
    EXPECT_EQ(para_get_video_gop_cur(0), 50) << "zero is out of its range";
}

TEST_F(VideoSetRequest, ItemsOfOtherTypesChangeNothing)
{
    init(1);
    for (const char *item : {"'text'", "5", "null", "[1,2]", "[]", "{'gop':[5]}", "{'gop':null}"})
        change("video0", item);
    EXPECT_FALSE(change_pending());
}

TEST_F(VideoSetRequest, IsServedOverUdp)
{
    write_home("video_range.json", streams_of({stream_range, stream_range}));
    write_home("video_def.json", streams_of({named_stream, named_stream}));
    start_store();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'set','msg_id':1,'video1':{'rcMode':'VBR','bitRate':512}}"),
              "{'msg_id':1}");
    EXPECT_EQ(client.ask("{'msg_type':'get','video1':['rcMode','bitRate'],'video0':['bitRate'],"
                         "'video6':['bitRate']}"),
              "{'video1':{'rcMode':'VBR','bitRate':512},'video0':{'bitRate':4096}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','video10':['bitRate']}"), "{}")
        << "the row video1 is asked, and knows no such stream";
}

TEST_F(VideoSave, WritesEveryStreamInUse)
{
    init(2);
    EXPECT_EQ(saved(), std::string("{\n"
                                   "\t\"video0\":\t{\n"
                                   "\t\t\"protocol\":\t\"H265\",\n"
                                   "\t\t\"size\":\t\"PIC_HD1080\",\n"
                                   "\t\t\"frameRate\":\t30,\n"
                                   "\t\t\"qfactor\":\t80,\n"
                                   "\t\t\"rcMode\":\t\"CBR\",\n"
                                   "\t\t\"bitRate\":\t4096,\n"
                                   "\t\t\"gop\":\t60,\n"
                                   "\t\t\"profile\":\t\"highprofile\",\n"
                                   "\t\t\"sliceEn\":\t0,\n"
                                   "\t\t\"sliceMode\":\t0,\n"
                                   "\t\t\"sliceSize\":\t4\n"
                                   "\t},\n"
                                   "\t\"video1\":\t{\n"
                                   "\t\t\"protocol\":\t\"H264\",\n"
                                   "\t\t\"size\":\t\"PIC_HD720\",\n"
                                   "\t\t\"frameRate\":\t25,\n"
                                   "\t\t\"qfactor\":\t70,\n"
                                   "\t\t\"rcMode\":\t\"VBR\",\n"
                                   "\t\t\"bitRate\":\t1024,\n"
                                   "\t\t\"gop\":\t50,\n"
                                   "\t\t\"profile\":\t\"mainprofile\",\n"
                                   "\t\t\"sliceEn\":\t1,\n"
                                   "\t\t\"sliceMode\":\t1,\n"
                                   "\t\t\"sliceSize\":\t8\n"
                                   "\t}\n"
                                   "}") +
                           '\0');
}

TEST_F(VideoSave, WritesPresentMembersAlone)
{
    init(streams_of({stream_range, stream_range}), "{'video1':{'size':'PIC_VGA','gop':9}}");
    para_set_video_gop_cur(1, 8);
    EXPECT_EQ(saved(), std::string("{\n"
                                   "\t\"video0\":\t{\n"
                                   "\t},\n"
                                   "\t\"video1\":\t{\n"
                                   "\t\t\"size\":\t\"PIC_VGA\",\n"
                                   "\t\t\"gop\":\t8\n"
                                   "\t}\n"
                                   "}") +
                           '\0');
}

TEST_F(VideoSave, WithoutStreamsTheFileIsTheEmptyObject)
{
    init("{}", "{'video0':{'gop':1}}");
    EXPECT_EQ(saved(), std::string("{\n}") + '\0');
}

TEST_F(VideoSave, IsDueAfterItsDelay)
{
    init(2);
    EXPECT_FALSE(due());
    para_set_video_gop_cur(1, 7);
    move_clock(1900);
    EXPECT_FALSE(due());
    move_clock(101);
    EXPECT_TRUE(due());
    platformparam_set_save_param_time(0, 5000);
    EXPECT_EQ(video_save_param_time, 5000);
    EXPECT_FALSE(due());
    EXPECT_EQ(para_set_video_save_param_time(0), 0);
    EXPECT_TRUE(due());
    saved();
    EXPECT_FALSE(due());
}

TEST_F(VideoSave, HostDrivenSaveGoesByItsArgument)
{
    init(1);
    para_set_video_gop_cur(0, 7);
    move_clock(1000);
    for (const int argument : {-1, -100, 1900, INT_MAX}) {
        EXPECT_EQ(save_cur_video_param_delay(argument), 0);
        EXPECT_FALSE(read_data("video_cur.json")) << argument;
    }
    EXPECT_EQ(save_cur_video_param_delay(1000), 0);
    EXPECT_TRUE(read_data("video_cur.json"));
    EXPECT_FALSE(change_pending());

    para_set_video_gop_cur(0, 8);
    unlink((data + "/video_cur.json").c_str());
    save_cur_video_param_delay(0);
    EXPECT_TRUE(read_data("video_cur.json")) << "at once";

    para_set_video_gop_cur(0, 9);
    move_clock(2001);
    unlink((data + "/video_cur.json").c_str());
    save_cur_video_param_delay(-1);
    EXPECT_TRUE(read_data("video_cur.json")) << "by the module's delay";
}

TEST_F(VideoSave, AFailedSaveIsNotRetried)
{
    init(1);
    para_set_video_gop_cur(0, 7);
    rmdir(data.c_str());
    EXPECT_EQ(para_save_video("video0"), 0);
    EXPECT_FALSE(change_pending());
}

TEST_F(VideoSave, SizesAreReadBackByTheRuleForFiles)
{
    init(1);
    for (int size = 0; size < 47; size++) {
        para_set_video_size_cur(0, size);
        saved();
        video_init_done = 0;
        ASSERT_EQ(para_init_video("video0"), 0);
        const bool begins_another = std::string(para_get_video_size_str(size)) == "PIC_HD1";
        EXPECT_EQ(para_get_video_size_cur(0), begins_another ? 17 : size)
            << para_get_video_size_str(size);
    }
}

TEST_F(VideoSave, OneStampCoversAllStreams)
{
    init(2);
    stop_clock();
    para_set_video_gop_cur(0, 7);
    move_clock(1500);
    para_set_video_gop_cur(1, 7);
    move_clock(1999);
    EXPECT_FALSE(due());
    para_set_video_gop_cur(1, 100000);
    para_set_video_gop_cur(1, 7);
    move_clock(1);
    EXPECT_TRUE(due()) << "a refused set stamps nothing";
}

TEST_F(VideoSave, HostDrivenSaveTakesAnAgeEqualToItsArgument)
{
    init(1);
    stop_clock();
    para_set_video_gop_cur(0, 7);
    move_clock(499);
    save_cur_video_param_delay(500);
    EXPECT_FALSE(read_data("video_cur.json"));
    move_clock(1);
    save_cur_video_param_delay(500);
    EXPECT_TRUE(read_data("video_cur.json"));
}

TEST_F(VideoSave, MixedFormsAreSavedAsNames)
{
    init(streams_of({stream_range}), "{'video0':{'protocol':0,'size':'PIC_VGA','rcMode':4}}");
    EXPECT_EQ(saved(), std::string("{\n"
                                   "\t\"video0\":\t{\n"
                                   "\t\t\"protocol\":\t\"H264\",\n"
                                   "\t\t\"size\":\t\"PIC_VGA\",\n"
                                   "\t\t\"rcMode\":\t\"AVBR\"\n"
                                   "\t}\n"
                                   "}") +
                           '\0');
}

TEST_F(VideoSave, AValueWithoutANameIsSavedAsANumberAndNotReportedAsAName)
{
    init("{'video0':{'rcMode':[0,9]}}", "{'video0':{'rcMode':'CBR'}}");
    para_set_video_rcMode_cur(0, 7);
    EXPECT_EQ(query("video0", "['rcMode']"), "{}");
    EXPECT_EQ(query("video0", "['all']"), "{'rcMode':7}");
    saved();
    video_init_done = 0;
    para_init_video("video0");
    EXPECT_EQ(para_get_video_rcMode_cur(0), 7);
}

TEST_F(VideoSave, StandsInTheWorkingDirectoryWithoutDirectories)
{
    write_home("video_range.json", streams_of({stream_range}));
    write_home("video_def.json", streams_of({named_stream}));
    ASSERT_EQ(chdir(home.c_str()), 0);
    para_profile.home_dir = para_profile.data_dir = nullptr;
    EXPECT_EQ(para_init_video("video0"), 0);
    EXPECT_EQ(para_save_video("video0"), 0);
    EXPECT_TRUE(read_file(home + "/video_cur.json"));
}

TEST_F(VideoStart, MoreThanSixStreamsAreSix)
{
    const std::vector<std::string> eight(8, stream_range);
    EXPECT_EQ(init(streams_of(eight), streams_of(std::vector<std::string>(8, "{'gop':9}"))), 0);
    EXPECT_EQ(para_get_video_streamNum(), 6);
    EXPECT_EQ(para_get_video_gop_cur(5), 9);
    const json file = parse(saved().c_str());
    EXPECT_EQ(cJSON_GetArraySize(file.get()), 6);
}

TEST_F(VideoStart, TracesAtTheirLevels)
{
    init(1);
    change("video0", "{}");
    int width = 0, height = 0;
    para_get_video_size_byname("none", 1, &width, &height);
    para_get_video_size_byname(nullptr, 1, &width, &height);
    EXPECT_THAT(levels_of("check video num = 1", "check_video_num"), ElementsAre(6));
    EXPECT_THAT(levels_of("parse_ok:0", "para_init_video"), ElementsAre(6));
    EXPECT_THAT(levels_of("stream_0 param:", "video_page"), ElementsAre(6));
    EXPECT_THAT(levels_of("inter", "para_set_video_opt"), ElementsAre(6));
    EXPECT_THAT(levels_of("unsupport none", "para_get_video_size_byname"), ElementsAre(6));
    EXPECT_THAT(levels_of("name is null ", "para_get_video_size_byname"), ElementsAre(6));
    set_trace_level(5);
    forget_traces();
    para_video_enum(nullptr, nullptr);
    para_video_size_enum(nullptr, nullptr);
    video_page();
    EXPECT_THAT(traces(), IsEmpty());
}

TEST_F(VideoQuery, EveryMemberCanBeLookedUpAndSetByName)
{
    init(2);
    for (const accessors &member : all_members) {
        const bool named = name_counts.count(member.key) != 0;
        int value = 77;
        EXPECT_EQ(para_get_video_member(member.key, 0, &value, nullptr), named ? 0x101 : 0x81);
        EXPECT_EQ(value, member.cur(0)) << member.key;
        if (named)
            continue;
        EXPECT_EQ(para_set_video_member(member.key, 0, member.max(0), "unused"), 1) << member.key;
        EXPECT_EQ(member.cur(0), member.max(0)) << member.key;
    }
    for (const named_accessors &member : named_members) {
        const int changes = member.cur(0) == 0 ? 0 : 1;
        EXPECT_EQ(para_set_video_member(member.key, 0, 77, member.str(0)), changes);
        EXPECT_EQ(member.cur(0), 0) << member.key;
    }
}

TEST_F(VideoQuery, AStreamOutOfUseReadsAsAbsent)
{
    init(2);
    for (const int stream : {-1, 3, 5, 6, INT_MAX}) {
        int value = 77;
        const char *text = "replaced";
        EXPECT_EQ(para_get_video_member("size", stream, &value, &text), 0) << stream;
        EXPECT_EQ(value, -1);
        EXPECT_EQ(text, nullptr);
        EXPECT_EQ(para_get_video_member("none", stream, &value, &text), 0);
    }
    int value = 77;
    EXPECT_EQ(para_get_video_member("size", 2, &value, nullptr), 0) << "equal to the count";
    EXPECT_EQ(value, -1);
}

TEST_F(VideoSetRequest, ANullTextCountsAsMinusOneThousand)
{
    init("{'video0':{'rcMode':[-1000,4]}}", "{'video0':{'rcMode':'CBR'}}");
    EXPECT_EQ(para_set_video_member("rcMode", 0, 1, nullptr), 1);
    EXPECT_EQ(para_get_video_rcMode_cur(0), -1000);
}

TEST_F(Video, MayBeUsedByManyThreadsAtOnce)
{
    para_profile.video_set_notify_hook = nullptr; // the test's own records one thread's changes
    write_home("video_range.json", streams_of({stream_range, stream_range}));
    write_home("video_def.json", streams_of({named_stream, named_stream}));
    start_store();
    std::vector<std::thread> hosts;
    for (int first = 0; first < 4; first++) {
        hosts.emplace_back([first] {
            for (int i = 0; i < 300; i++) {
                para_set_video_bitRate_cur(i % 2, 100 + first * 300 + i);
                para_set_video_size_cur_bystr(1, i % 2 == 0 ? "PIC_CIF" : "PIC_VGA");
                save_cur_video_param_delay(100000);
            }
        });
    }
    Client client;
    for (int i = 0; i < 100; i++) {
        if (i % 20 == 0)
            move_clock(2000);
        client.ask("{'msg_type':'set','video1':{'gop':" + std::to_string(i) + "}}");
        EXPECT_THAT(client.ask("{'msg_type':'get','video1':['all']}"), StartsWith("{'video1':{"));
    }
    for (std::thread &host : hosts)
        host.join();
}
