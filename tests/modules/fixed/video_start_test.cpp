// The video streams at start-up: the model with an object for each stream.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "modules/fixed/presence.h"
#include "modules/fixed/video_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

using VideoStart = Video;

TEST_F(VideoStart, EveryMemberOfEveryStreamHasTheValuesOfItsFiles)
{
    std::vector<std::string> range(6, "{"), def(6, "{"), cur(6, "{");
    for (int stream = 0; stream < PARA_VIDEO_STREAMS; stream++) {
        const auto at = static_cast<size_t>(stream);
        for (const accessors &member : all_members) {
            const int slot = stream * PARA_VIDEO_STREAM_SLOTS + member.slot;
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
    for (int stream = 0; stream < PARA_VIDEO_STREAMS; stream++) {
        for (const accessors &member : all_members) {
            const int slot = stream * PARA_VIDEO_STREAM_SLOTS + member.slot;
            EXPECT_EQ(member.min(stream), slot) << member.key;
            EXPECT_EQ(member.max(stream), slot + 200) << member.key;
            EXPECT_EQ(member.def(stream), slot + 100) << member.key;
            EXPECT_EQ(member.cur(stream), slot + 50) << member.key;
            EXPECT_EQ(member.init(stream), slot + 50) << member.key;
            EXPECT_EQ(para_video_exist[slot], present_as_number);
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
    EXPECT_EQ(para_video_exist[PARA_VIDEO_bitRate], present_as_name);
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
