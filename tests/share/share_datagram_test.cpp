// Client processes: the setters, byte by byte.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <climits>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "camparam/share.h"
#include "share/share_fixture.h"

namespace {

struct setters {
    std::string module, member;
    int (*number)(int, int);
    int (*string)(int, const char *);
};

#define SETTERS(module, member)                                                                    \
    {                                                                                              \
#module, #member, para_set_share_##module##_##member##_number,                             \
            para_set_share_##module##_##member##_string                                            \
    }

// Every member that can be set, as clients know them.
const std::vector<setters> all_setters = {
    SETTERS(video, protocol),    SETTERS(video, size),
    SETTERS(video, frameRate),   SETTERS(video, qfactor),
    SETTERS(video, rcMode),      SETTERS(video, bitRate),
    SETTERS(video, gop),         SETTERS(video, profile),
    SETTERS(video, sliceMode),   SETTERS(video, sliceSize),
    SETTERS(audio, audioEnable), SETTERS(audio, adtsFlag),
    SETTERS(audio, aeFormat),    SETTERS(audio, sampleRate),
    SETTERS(audio, streamRate),  SETTERS(audio, audioInput),
    SETTERS(audio, volLeftIn),   SETTERS(audio, volRightIn),
    SETTERS(isp, exposure_mode), SETTERS(isp, shutter),
    SETTERS(isp, iris),          SETTERS(isp, bright),
    SETTERS(isp, expcomp_mode),  SETTERS(isp, expcomp_level),
    SETTERS(isp, backlight),     SETTERS(isp, gain_limit),
    SETTERS(isp, manual_gain),   SETTERS(isp, antiflicker),
    SETTERS(isp, meter),         SETTERS(isp, wb_mode),
    SETTERS(isp, awb_sens),      SETTERS(isp, rgain),
    SETTERS(isp, bgain),         SETTERS(isp, rgain_tuning),
    SETTERS(isp, bgain_tuning),  SETTERS(isp, ggain_tuning),
    SETTERS(isp, saturation),    SETTERS(isp, skin_saturation),
    SETTERS(isp, hue),           SETTERS(isp, temperature),
    SETTERS(isp, luminance),     SETTERS(isp, contrast),
    SETTERS(isp, sharpness),     SETTERS(isp, blackwhite_mode),
    SETTERS(isp, gamma),         SETTERS(isp, style),
    SETTERS(isp, drc),           SETTERS(isp, nr2d),
    SETTERS(isp, nr3d),
};

// And as the library declares them.
const std::vector<std::string> declared_members = {
#define SHARE_MEMBER(module, member) #module "." #member,
#include "camparam/share_members.def"
};

} // namespace

class ShareSetter : public testing::Test {
protected:
    // Opens the socket as a registration would.
    ShareSetter() { EXPECT_GE(Send_Initial(), 0); }

    DatagramReceiver main_program;
};

TEST(ShareMembers, AreTenOfVideoEightOfAudioAndThirtyOneOfTheIsp)
{
    std::map<std::string, int> counts;
    std::vector<std::string> members;
    for (const setters &setter : all_setters) {
        counts[setter.module]++;
        members.push_back(setter.module + "." + setter.member);
    }
    EXPECT_EQ(counts, (std::map<std::string, int>{{"video", 10}, {"audio", 8}, {"isp", 31}}));
    EXPECT_EQ(declared_members, members);
}

TEST_F(ShareSetter, EveryNumberIsADatagramOf76Bytes)
{
    int value = -1000000;
    for (const setters &setter : all_setters) {
        value += 54321;
        const int instance = value % 7;
        EXPECT_EQ(setter.number(instance, value), 0);
        const std::string received = main_program.receive();
        EXPECT_EQ(received.size(), 76U) << setter.member;
        EXPECT_EQ(received, number_datagram(setter.module, setter.member, instance, value))
            << setter.module << "." << setter.member;
    }
}

TEST_F(ShareSetter, EveryTextIsADatagramOf76Bytes)
{
    int instance = 0;
    for (const setters &setter : all_setters) {
        const std::string text = "text for " + setter.member;
        EXPECT_EQ(setter.string(++instance, text.c_str()), 0);
        const std::string received = main_program.receive();
        EXPECT_EQ(received.size(), 76U) << setter.member;
        EXPECT_EQ(received, text_datagram(setter.module, setter.member, instance, text))
            << setter.module << "." << setter.member;
    }
}

TEST_F(ShareSetter, ANumberWrittenOutByteByByte)
{
    para_set_share_isp_skin_saturation_number(2, 40);
    const char expected[76 + 1] = "\0\0\0\0"
                                  "\2\0\0\0"
                                  "\x28\0\0\0"
                                  "isp\0\0\0\0\0\0\0\0\0\0\0\0\0"
                                  "skin_saturation\0"
                                  "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
                                  "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0";
    EXPECT_EQ(main_program.receive(), std::string(expected, 76));
}

TEST_F(ShareSetter, ATextWrittenOutByteByByte)
{
    para_set_share_audio_aeFormat_string(0, "G711A");
    const char expected[76 + 1] = "\1\0\0\0"
                                  "\0\0\0\0"
                                  "\0\0\0\0"
                                  "audio\0\0\0\0\0\0\0\0\0\0\0"
                                  "aeFormat\0\0\0\0\0\0\0\0"
                                  "G711A\0\0\0\0\0\0\0\0\0\0\0"
                                  "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0";
    EXPECT_EQ(main_program.receive(), std::string(expected, 76));
}

TEST_F(ShareSetter, InstancesAndValuesOf32BitsAreSentAsTheyAre)
{
    for (const int instance : {0, 1, -1, 7, 65536, INT_MAX, INT_MIN}) {
        for (const int value : {0, -1, 40, 16777216, INT_MAX, INT_MIN}) {
            para_set_share_video_bitRate_number(instance, value);
            EXPECT_EQ(main_program.receive(), number_datagram("video", "bitRate", instance, value))
                << instance << " " << value;
        }
        para_set_share_video_bitRate_string(instance, "x");
        EXPECT_EQ(main_program.receive(), text_datagram("video", "bitRate", instance, "x"));
    }
}

TEST_F(ShareSetter, ATextOf32BytesFillsItsField)
{
    const std::string letters = "abcdefghijklmnopqrstuvwxyz012345";
    ASSERT_EQ(letters.size(), 32U);
    para_set_share_video_size_string(1, letters.c_str());
    const std::string received = main_program.receive();
    ASSERT_EQ(received.size(), 76U);
    EXPECT_EQ(received.substr(44), letters);
    para_set_share_video_size_string(1, letters.substr(0, 31).c_str());
    EXPECT_EQ(main_program.receive().substr(44), letters.substr(0, 31) + '\0');
}

TEST_F(ShareSetter, ALongerTextIsCutTo32Bytes)
{
    for (const size_t length : {33U, 300U, 5000U}) {
        const std::string text(length, 't');
        para_set_share_isp_style_string(-3, text.c_str());
        EXPECT_EQ(main_program.receive(), text_datagram("isp", "style", -3, std::string(32, 't')))
            << length;
    }
}

TEST_F(ShareSetter, AnEmptyOrMissingTextIsZeros)
{
    for (const char *text : {"", static_cast<const char *>(nullptr)}) {
        EXPECT_EQ(para_set_share_isp_style_string(0, text), 0);
        EXPECT_EQ(main_program.receive(), text_datagram("isp", "style", 0, ""));
    }
}

TEST_F(ShareSetter, ATextLeavesNothingBehindForTheNext)
{
    para_set_share_isp_style_string(-1, std::string(32, 't').c_str());
    para_set_share_isp_hue_string(0, "u");
    para_set_share_isp_hue_number(0, 0);
    main_program.receive();
    EXPECT_EQ(main_program.receive(), text_datagram("isp", "hue", 0, "u"));
    EXPECT_EQ(main_program.receive(), number_datagram("isp", "hue", 0, 0));
}

TEST_F(ShareSetter, ThreadsDoNotMixTheirBytes)
{
    const int each = 60;
    std::thread one([] {
        for (int i = 0; i < each; i++)
            para_set_share_video_gop_number(i, -i);
    });
    std::thread other([] {
        for (int i = 0; i < each; i++)
            para_set_share_audio_audioInput_string(i, "micin");
    });
    one.join();
    other.join();
    std::vector<std::string> expected, received;
    for (int i = 0; i < each; i++) {
        expected.push_back(number_datagram("video", "gop", i, -i));
        expected.push_back(text_datagram("audio", "audioInput", i, "micin"));
        received.push_back(main_program.receive());
        received.push_back(main_program.receive());
    }
    EXPECT_THAT(received, testing::UnorderedElementsAreArray(expected));
}

TEST(ShareSetterAlone, NeedsNobodyToListen)
{
    EXPECT_GE(Send_Initial(), 0);
    for (int i = 0; i < 3; i++) {
        EXPECT_EQ(para_set_share_isp_hue_number(0, 2), 0);
        EXPECT_EQ(para_set_share_isp_hue_string(0, "2"), 0);
    }
    const DatagramReceiver main_program;
    // The refusal of an earlier datagram takes one more with it.
    para_set_share_isp_hue_number(0, 3);
    para_set_share_isp_hue_number(0, 3);
    EXPECT_EQ(main_program.receive(), number_datagram("isp", "hue", 0, 3));
}

TEST(ShareSetterBeforeRegistration, SendsNothingAndAnswersZero)
{
    const DatagramReceiver main_program;
    // Descriptor 0, on which an unopened setter sends, as a socket that could send.
    const int socket_on_zero = socket(AF_INET, SOCK_DGRAM, 0);
    ASSERT_EQ(dup2(socket_on_zero, 0), 0);
    for (const setters &setter : all_setters) {
        EXPECT_EQ(setter.number(0, 1), 0);
        EXPECT_EQ(setter.string(0, "text"), 0);
    }
    EXPECT_GE(Send_Initial(), 0);
    para_set_share_isp_nr3d_number(1, 2);
    EXPECT_EQ(main_program.receive(), number_datagram("isp", "nr3d", 1, 2))
        << "the first that arrives";
    close(socket_on_zero);
}

TEST(ShareSetterSocket, IsClosedInProgramsThatTheClientStarts)
{
    const int descriptor = Send_Initial();
    EXPECT_EQ(fcntl(descriptor, F_GETFD), FD_CLOEXEC);
    close(descriptor);
}
