// Requests to the video streams.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "modules/fixed/presence.h"
#include "modules/fixed/video_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

using VideoQuery = Video;
using VideoSetRequest = Video;

TEST_F(VideoQuery, MemberLookUpGivesValueNameAndPresence)
{
    init(2);
    int value = 77;
    const char *text = "untouched";
    EXPECT_EQ(para_get_video_member("size", 0, &value, &text), present_as_name);
    EXPECT_EQ(value, 17);
    EXPECT_STREQ(text, "PIC_HD1080");
    EXPECT_EQ(para_get_video_member("size", 0, &value, nullptr), present_as_name);
    EXPECT_EQ(para_get_video_member("size", 1, &value, &text), present_as_number);
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

TEST_F(VideoQuery, EveryMemberCanBeLookedUpAndSetByName)
{
    init(2);
    for (const accessors &member : all_members) {
        const bool named = name_counts.count(member.key) != 0;
        int value = 77;
        EXPECT_EQ(para_get_video_member(member.key, 0, &value, nullptr),
                  named ? present_as_name : present_as_number);
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
