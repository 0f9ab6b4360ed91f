// Members are answered by their presence words, whichever bits a host finds in them.
#include <gtest/gtest.h>

#include "modules/fixed/af_fixture.h"
#include "modules/fixed/isp_fixture.h"
#include "modules/fixed/video_fixture.h"

using AfPresence = Af;
using IspPresence = Isp;
using VideoMember = Video;

TEST_F(AfPresence, AnyBitLetsAListedQueryAnswer)
{
    init();
    for (const int presence : {1, 2, int{PARA_PRESENT_AS_NUMBER}, int{PARA_PRESENT_AS_NAME}, -1}) {
        para_af_exist[PARA_AF_zoom_value] = presence;
        EXPECT_EQ(query("['zoom_value','focus_mode']"), "{'zoom_value':100,'focus_mode':1}")
            << presence;
    }
    para_af_exist[PARA_AF_zoom_value] = 0;
    EXPECT_EQ(query("['zoom_value','focus_mode']"), "{'focus_mode':1}");
}

TEST_F(IspPresence, AnyBitLetsAListedQueryAnswerWithANumber)
{
    init();
    const std::string value = std::to_string(para_get_isp_shutter_cur(0));
    for (const int presence : {1, 2, int{PARA_PRESENT_AS_NUMBER}, int{PARA_PRESENT_AS_NAME}, -1}) {
        para_isp_exist[0].shutter = presence;
        EXPECT_EQ(query("isp0", "['shutter']"), "{'shutter':" + value + "}") << presence;
    }
    para_isp_exist[0].shutter = 0;
    EXPECT_EQ(query("isp0", "['shutter']"), "{}");
}

TEST_F(VideoMember, PresenceIsTheSlotsForEveryStream)
{
    write_home("video_range.json", streams_of({stream_range}));
    write_home("video_def.json", streams_of({named_stream}));
    para_init_video("video0");
    ASSERT_EQ(para_get_video_streamNum(), 1);
    for (int stream = 0; stream < PARA_VIDEO_STREAMS; stream++) {
        const int first = stream * PARA_VIDEO_STREAM_SLOTS;
        para_video_exist[first + PARA_VIDEO_gop] = PARA_PRESENT_AS_NUMBER + stream;
        para_video_exist[first + PARA_VIDEO_rcMode] = PARA_PRESENT_AS_NAME + stream;
    }
    for (int stream = 2; stream < PARA_VIDEO_STREAMS; stream++) {
        int value = 77;
        const char *text = "untouched";
        EXPECT_EQ(para_get_video_member("gop", stream, &value, &text),
                  PARA_PRESENT_AS_NUMBER + stream);
        EXPECT_EQ(value, -1) << stream;
        EXPECT_STREQ(text, "untouched");
        EXPECT_EQ(para_get_video_member("rcMode", stream, &value, &text),
                  PARA_PRESENT_AS_NAME + stream);
        EXPECT_EQ(text, nullptr) << stream;
        EXPECT_EQ(para_get_video_member("unknown", stream, &value, nullptr), 0);
    }
    for (const int stream : {-1, int{PARA_VIDEO_STREAMS}, 1000}) {
        int value = 77;
        EXPECT_EQ(para_get_video_member("gop", stream, &value, nullptr), 0) << stream;
        EXPECT_EQ(value, -1) << stream;
    }
}
