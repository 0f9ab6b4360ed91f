// Which video streams are in use.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <utility>
#include <vector>

#include "modules/fixed/presence.h"
#include "modules/fixed/video_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

using VideoStreams = Video;

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
    para_video_max[2 * PARA_VIDEO_STREAM_SLOTS + PARA_VIDEO_gop] = 123;
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.def(2), 0) << member.key;
        EXPECT_EQ(member.min(2), 0) << member.key;
        EXPECT_EQ(member.max(2), member.slot == PARA_VIDEO_gop ? 123 : 0) << member.key;
        EXPECT_EQ(member.cur(2), -1) << "not present";
        EXPECT_EQ(member.init(2), -1);
    }
    para_video_exist[2 * PARA_VIDEO_STREAM_SLOTS + PARA_VIDEO_gop] = present_as_number;
    para_video_cur[2 * PARA_VIDEO_STREAM_SLOTS + PARA_VIDEO_gop] = 45;
    EXPECT_EQ(para_get_video_gop_cur(2), 45) << "presence decides";
    EXPECT_EQ(_para_set_video_gop_cur(2, 50), 0) << "setters take streams in use alone";
    EXPECT_EQ(para_set_video_member("gop", 2, 50, nullptr), 0);
    EXPECT_EQ(para_video_cur[2 * PARA_VIDEO_STREAM_SLOTS + PARA_VIDEO_gop], 45);
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
