// Saving audio.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <string>

#include "modules/fixed/audio_fixture.h"
#include "support/reallocation.h"

using testing::HasSubstr;

using AudioSave = Audio;

TEST_F(AudioSave, WritesNumbersAndNamesInFileOrder)
{
    init(numeric_defaults);
    EXPECT_EQ(saved(), std::string("{\n"
                                   "\t\"audioEnable\":\t1,\n"
                                   "\t\"adtsFlag\":\t0,\n"
                                   "\t\"aeFormat\":\t\"G711A\",\n"
                                   "\t\"sampleRate\":\t48000,\n"
                                   "\t\"streamRate\":\t128,\n"
                                   "\t\"audioInput\":\t\"linein\",\n"
                                   "\t\"volLeftIn\":\t50,\n"
                                   "\t\"volRightIn\":\t51,\n"
                                   "\t\"audioOut\":\t\"hdmi\",\n"
                                   "\t\"audioInputVol\":\t52,\n"
                                   "\t\"audioOutVol\":\t53,\n"
                                   "\t\"mute\":\t0,\n"
                                   "\t\"denoise\":\t2,\n"
                                   "\t\"agcEnable\":\t1,\n"
                                   "\t\"audioOutMute\":\t0\n"
                                   "}") +
                           '\0');
}

TEST_F(AudioSave, WritesNamedDefaults)
{
    init("{'aeFormat':'G711A','audioInput':'micin','audioOut':'hdmi'}");
    EXPECT_EQ(saved(), std::string("{\n"
                                   "\t\"aeFormat\":\t\"G711A\",\n"
                                   "\t\"audioInput\":\t\"micin\",\n"
                                   "\t\"audioOut\":\t\"hdmi\"\n"
                                   "}") +
                           '\0');
}

TEST_F(AudioSave, WritesMixedDefaults)
{
    init("{'aeFormat':0,'audioInput':'linein','sampleRate':8000}");
    para_set_audio_sampleRate_cur(16000);
    EXPECT_EQ(saved(), std::string("{\n"
                                   "\t\"aeFormat\":\t\"AAC\",\n"
                                   "\t\"sampleRate\":\t16000,\n"
                                   "\t\"audioInput\":\t\"linein\",\n"
                                   "\t\"audioOut\":\t\"lineout\"\n"
                                   "}") +
                           '\0')
        << "the output is written with the input";
}

TEST_F(AudioSave, OutputFollowsThePresenceOfTheInput)
{
    init("{'audioOut':'hdmi','mute':1}");
    EXPECT_EQ(saved(), std::string("{\n\t\"mute\":\t1\n}") + '\0');
    EXPECT_EQ(query("['audioOut']"), "{'audioOut':'hdmi'}") << "a query still reports it";
}

TEST_F(AudioSave, WhatIsSavedIsLoadedAgain)
{
    init(named_defaults);
    change("{'aeFormat':'G711A','audioInput':'linein','audioOut':'lineout','sampleRate':8000}");
    saved();
    init(named_defaults);
    EXPECT_EQ(query("['aeFormat','audioInput','audioOut','sampleRate']"),
              "{'aeFormat':'G711A','audioInput':'linein','audioOut':'lineout','sampleRate':8000}");
}

TEST_F(AudioSave, IsDueAfterItsDelay)
{
    init();
    stop_clock();
    EXPECT_FALSE(due());
    para_set_audio_mute_cur(1);
    EXPECT_FALSE(due());
    move_clock(1999);
    EXPECT_FALSE(due());
    move_clock(1);
    EXPECT_TRUE(due());
    saved();
    EXPECT_FALSE(due());
}

TEST_F(AudioSave, OnlyAFlagOfOneIsAChange)
{
    init();
    move_clock(10000);
    for (const int flag : {0, 2, -1, INT_MAX}) {
        audio_item_changed = flag;
        EXPECT_FALSE(due()) << flag;
    }
    audio_item_changed = 1;
    EXPECT_TRUE(due());
}

// Else a change after a long rest would be due at once, by the time of the one before it.
TEST_F(AudioSave, AChangeIsMarkedOnceItsTimeIsTaken)
{
    static int mark_at_stamp = -1;
    init();
    watch_clock([] { mark_at_stamp = audio_item_changed; });
    para_set_audio_mute_cur(1);
    watch_clock(nullptr);
    EXPECT_EQ(mark_at_stamp, 0);
    EXPECT_EQ(audio_item_changed, 1);
}

TEST_F(AudioSave, TheDelayCanBeSet)
{
    init();
    stop_clock();
    para_set_audio_mute_cur(1);
    EXPECT_EQ(platformparam_set_save_param_time(500, 9000), 0);
    EXPECT_EQ(audio_save_param_time, 500);
    move_clock(500);
    EXPECT_TRUE(due());
    EXPECT_EQ(para_set_audio_save_param_time(5000), 0);
    EXPECT_FALSE(due());
    para_set_audio_save_param_time(0);
    EXPECT_TRUE(due());
    para_set_audio_save_param_time(-5);
    EXPECT_TRUE(due());
}

TEST_F(AudioSave, HostDrivenSaveGoesByTheModulesDelay)
{
    init();
    stop_clock();
    para_set_audio_mute_cur(1);
    move_clock(1999);
    for (const int argument : {0, -1, 500, 1999, 100000}) {
        EXPECT_EQ(save_cur_audio_param_delay(argument), 0);
        EXPECT_FALSE(read_data("audio_cur.json")) << argument;
    }
    move_clock(1);
    EXPECT_EQ(save_cur_audio_param_delay(100000), 0);
    EXPECT_TRUE(read_data("audio_cur.json"));
    EXPECT_FALSE(due());
}

// While the text of the file is made.
static int mark_during_save = -1;
static bool note_mark()
{
    mark_during_save = audio_item_changed;
    return true;
}

// Else the store's thread might find the module due, and write the same file meanwhile.
TEST_F(AudioSave, HostDrivenSaveClearsTheMarkBeforeItWrites)
{
    init();
    para_set_audio_save_param_time(0);
    para_set_audio_mute_cur(1);
    on_reallocation(note_mark);
    save_cur_audio_param_delay(0);
    on_reallocation(nullptr);
    EXPECT_EQ(mark_during_save, 0);
}

TEST_F(AudioSave, HostDrivenSaveDoesNothingWithoutAChange)
{
    init();
    move_clock(5000);
    save_cur_audio_param_delay(0);
    EXPECT_FALSE(read_data("audio_cur.json"));
}

TEST_F(AudioSave, AFailedSaveIsNotRetried)
{
    init();
    para_set_audio_mute_cur(1);
    rmdir(data.c_str());
    EXPECT_EQ(para_save_audio("audio"), 0);
    EXPECT_FALSE(change_pending());
}

TEST_F(AudioSave, TheThreadSavesARequestedChange)
{
    write_home("audio_def.json", named_defaults);
    start_store();
    Client client;
    client.ask("{'msg_type':'set','audio':{'aeFormat':'G711A'}}");
    move_clock(2000);
    EXPECT_TRUE(wait_until([this] { return read_data("audio_cur.json").has_value(); }));
    stop_store();
    EXPECT_THAT(read_data("audio_cur.json").value_or(""), HasSubstr("\"aeFormat\":\t\"G711A\""));
}

TEST_F(AudioSave, OutputIsWrittenWithWhateverItsSlotHolds)
{
    write_data("audio_cur.json", "{'audioOut':'hdmi'}");
    init("{'audioInput':'linein'}");
    EXPECT_EQ(saved(), std::string("{\n"
                                   "\t\"audioInput\":\t\"linein\",\n"
                                   "\t\"audioOut\":\t\"hdmi\"\n"
                                   "}") +
                           '\0');
}

TEST_F(AudioSave, AValueWithoutANameIsSavedAsANumberAndNotReportedAsAName)
{
    write_home("audio_range.json", "{'aeFormat':[0,9]}");
    init("{'aeFormat':'AAC'}");
    para_set_audio_aeFormat_cur(7);
    EXPECT_EQ(query("['aeFormat']"), "{}");
    EXPECT_EQ(saved(), std::string("{\n\t\"aeFormat\":\t7\n}") + '\0');
    init("{'aeFormat':'AAC'}");
    EXPECT_EQ(para_get_audio_aeFormat_cur(), 7);
}

TEST_F(AudioSave, IsDueAtItsDelayExactly)
{
    init();
    stop_clock();
    para_set_audio_mute_cur(1);
    move_clock(1999);
    EXPECT_FALSE(due());
    save_cur_audio_param_delay(0);
    EXPECT_FALSE(read_data("audio_cur.json"));
    para_set_audio_mute_cur(100);
    para_set_audio_mute_cur(1);
    move_clock(1);
    EXPECT_TRUE(due()) << "a refused set stamps nothing";
    save_cur_audio_param_delay(0);
    EXPECT_TRUE(read_data("audio_cur.json"));
}

TEST_F(AudioSave, WithoutADelayAChangeIsDueAtOnce)
{
    init();
    stop_clock();
    para_set_audio_save_param_time(0);
    para_set_audio_mute_cur(1);
    EXPECT_TRUE(due());
}
