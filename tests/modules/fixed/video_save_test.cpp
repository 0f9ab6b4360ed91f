// Saving the video streams.
#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <string>

#include "modules/fixed/video_fixture.h"

using VideoSave = Video;

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
    stop_clock();
    EXPECT_FALSE(due());
    para_set_video_gop_cur(1, 7);
    move_clock(1999);
    EXPECT_FALSE(due());
    move_clock(1);
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
    stop_clock();
    para_set_video_gop_cur(0, 7);
    move_clock(1000);
    for (const int argument : {-1, -100, 1001, 1900, INT_MAX}) {
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
    move_clock(2000);
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
