// Shared memory and share datagrams.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstring>

#include "camparam/camparam.h"
#include "host/host_process.h"
#include "share_maps.h"

namespace {

class Sharing : public HostProcess {
protected:
    Sharing()
    {
        home = SAMPLE_HOME;
        share();
    }

    static std::string name_of(int module)
    {
        char name[64];
        snprintf(name, sizeof name, PARA_SHARE_MAP_NAME, module);
        return name;
    }

    static bool is_published(int module)
    {
        const int descriptor = shm_open(name_of(module).c_str(), O_RDONLY, 0);
        close(descriptor);
        return descriptor >= 0;
    }

    static off_t size_of(int module)
    {
        struct stat object = {};
        return stat(("/dev/shm" + name_of(module)).c_str(), &object) == 0 ? object.st_size : -1;
    }

    // An entry of a share module, attached as a client process of the device does.
    static const int *entry(int module, int number)
    {
        EXPECT_EQ(para_share_register(module), 0) << module;
        return static_cast<const int *>(para_get_share_map(module, number));
    }

    static std::string send(const std::string &datagram, const std::string &query)
    {
        Client client;
        client.send(datagram);
        return client.ask("{'msg_type':'get'," + query + "}");
    }
};

const char *const streams = "'video0':['bitRate'],'video1':['bitRate','protocol']";
const char *const streams_untouched =
    "{'video0':{'bitRate':32768},'video1':{'bitRate':2048,'protocol':'H264'}}";

para_share_datagram number_of(const char *module, unsigned instance, const char *member, int number)
{
    para_share_datagram datagram = {};
    datagram.instance = instance;
    datagram.number = number;
    memcpy(datagram.module, module, strnlen(module, sizeof datagram.module));
    memcpy(datagram.member, member, strnlen(member, sizeof datagram.member));
    return datagram;
}

para_share_datagram text_of(const char *module, unsigned instance, const char *member,
                            const char *text)
{
    para_share_datagram datagram = number_of(module, instance, member, 0);
    datagram.type = PARA_SHARE_TEXT;
    memcpy(datagram.text, text, strnlen(text, sizeof datagram.text));
    return datagram;
}

std::string bytes_of(const para_share_datagram &datagram)
{
    return {reinterpret_cast<const char *>(&datagram), sizeof datagram};
}

TEST_F(Sharing, MapsHoldTheValuesOfTheStart)
{
    start_host();

    const int *const stream = entry(SHARE_VIDEO, 2);
    EXPECT_EQ(stream[PARA_VIDEO_protocol], para_get_video_protocol_num("H264"));
    EXPECT_EQ(stream[PARA_VIDEO_size], para_get_video_size_num("PIC_HD1080"));
    EXPECT_EQ(stream[PARA_VIDEO_bitRate], 2048);
    EXPECT_EQ(entry(SHARE_VIDEO, 3)[PARA_VIDEO_bitRate], 1024);
    EXPECT_EQ(entry(SHARE_VIDEO, 6)[PARA_VIDEO_bitRate], 0); // not in use
    EXPECT_EQ(entry(SHARE_AUDIO, 1)[PARA_AUDIO_streamRate], 128000);
    const auto *const isp = reinterpret_cast<const isp_record *>(entry(SHARE_ISP, 1));
    EXPECT_EQ(isp->size, 156);
    EXPECT_EQ(isp->temperature, 5000);
    EXPECT_EQ(reinterpret_cast<const isp_record *>(entry(SHARE_ISP, 2))->size, 156);
}

TEST_F(Sharing, MapsHaveTheAnnouncedForm)
{
    start_host();

    const para_share_map expected[] = {{1, 6, 44}, {1, 1, 60}, {1, 2, 156}};
    for (int module = 0; module < 3; module++) {
        const auto *const map = reinterpret_cast<const para_share_map *>(entry(module, 1)) - 1;
        EXPECT_EQ(map->registered, expected[module].registered) << module;
        EXPECT_EQ(map->entry_count, expected[module].entry_count) << module;
        EXPECT_EQ(map->entry_size, expected[module].entry_size) << module;
    }
    EXPECT_FALSE(is_published(3));
}

TEST_F(Sharing, MapsAreForTheGroupToReadAndNobodyElse)
{
    start_host();
    for (int module = 0; module < 3; module++) {
        struct stat object = {};
        EXPECT_EQ(stat(("/dev/shm" + name_of(module)).c_str(), &object), 0) << module;
        EXPECT_EQ(object.st_mode & 07777U, 0640U) << module;
    }
}

TEST_F(Sharing, MapsFollowChanges)
{
    start_host();
    const volatile int *const bit_rate = &entry(SHARE_VIDEO, 2)[PARA_VIDEO_bitRate];
    const volatile int *const mute = &entry(SHARE_AUDIO, 1)[PARA_AUDIO_mute];
    const volatile int *const hue = &reinterpret_cast<const isp_record *>(entry(SHARE_ISP, 1))->hue;

    Client().ask(
        "{'msg_type':'set','video1':{'bitRate':4096},'audio':{'mute':1},'isp0':{'hue':3}}");

    EXPECT_TRUE(wait_until([&] { return *bit_rate == 4096 && *mute == 1 && *hue == 3; }));
}

TEST_F(Sharing, MapsHoldEveryMember)
{
    start_host();
    const volatile int *const audio = entry(SHARE_AUDIO, 1);
    const volatile int *const stream = entry(SHARE_VIDEO, 3);

    Client().ask("{'msg_type':'set','audio':{'audioEnable':0,'audioOutMute':1},"
                 "'video2':{'sliceSize':7}}");

    EXPECT_TRUE(wait_until(
        [&] { return audio[PARA_AUDIO_audioEnable] == 0 && audio[PARA_AUDIO_SLOTS - 1] == 1; }));
    EXPECT_TRUE(wait_until([&] { return stream[PARA_VIDEO_STREAM_SLOTS - 1] == 7; }));
}

TEST_F(Sharing, TheHostServesWithoutMapsThatCannotBePublished)
{
    const std::string obstacle = "/dev/shm" + name_of(SHARE_AUDIO); // a folder cannot be replaced
    ASSERT_EQ(mkdir(obstacle.c_str(), 0700), 0);
    start_host();

    EXPECT_TRUE(host_has_logged("cannot publish the shared memory")) << host->errors();
    EXPECT_EQ(Client().ask("{'msg_type':'get','video1':['bitRate']}"),
              "{'video1':{'bitRate':2048}}");
    EXPECT_EQ(end_host(SIGTERM), 0);
    EXPECT_FALSE(is_published(SHARE_VIDEO));
    EXPECT_EQ(rmdir(obstacle.c_str()), 0);
}

TEST_F(Sharing, AMapThatIsCutShortIsPublishedAnew)
{
    start_host();
    const off_t sizes[] = {12 + 6 * 44, 12 + 60, 12 + 2 * 156};
    for (int turn = 0; turn < 3; turn++) {
        for (int module = 0; module < 3; module++)
            ASSERT_EQ(truncate(("/dev/shm" + name_of(module)).c_str(), 0), 0) << module;
        for (int module = 0; module < 3; module++)
            EXPECT_TRUE(wait_until([&] { return size_of(module) == sizes[module]; })) << module;
        EXPECT_FALSE(host->has_ended()) << host->errors();
        EXPECT_TRUE(wait_until([] { return entry(SHARE_VIDEO, 2)[PARA_VIDEO_bitRate] == 2048; }));
        EXPECT_EQ(entry(SHARE_AUDIO, 1)[PARA_AUDIO_streamRate], 128000);
    }
    EXPECT_TRUE(host_has_logged("the shared memory 1 was cut short")) << host->errors();

    const volatile int *const bit_rate = &entry(SHARE_VIDEO, 2)[PARA_VIDEO_bitRate];
    for (const int rate : {4096, 2048, 1024}) {
        EXPECT_EQ(Client().ask("{'msg_type':'set','msg_id':1,'video1':{'bitRate':" +
                               std::to_string(rate) + "}}"),
                  "{'msg_id':1}");
        EXPECT_TRUE(wait_until([&] { return *bit_rate == rate; })) << "in the same map";
    }
    EXPECT_EQ(end_host(SIGTERM), 0);
    EXPECT_FALSE(is_published(SHARE_VIDEO));
}

TEST_F(Sharing, AMapThatCannotBePublishedAnewIsGone)
{
    start_host();
    const std::string path = "/dev/shm" + name_of(SHARE_AUDIO);
    // A folder takes the name, which cannot be replaced; the object is cut short without it.
    const int object = open(path.c_str(), O_RDWR);
    ASSERT_GE(object, 0);
    ASSERT_EQ(unlink(path.c_str()), 0);
    ASSERT_EQ(mkdir(path.c_str(), 0700), 0);
    ASSERT_EQ(ftruncate(object, 0), 0);
    close(object);

    EXPECT_TRUE(wait_until([&] {
        return host_has_logged("cannot publish the shared memory 1 anew");
    })) << host->errors();
    EXPECT_EQ(Client().ask("{'msg_type':'get','video1':['bitRate']}"),
              "{'video1':{'bitRate':2048}}");
    EXPECT_EQ(entry(SHARE_VIDEO, 2)[PARA_VIDEO_bitRate], 2048);
    EXPECT_EQ(rmdir(path.c_str()), 0);
    EXPECT_EQ(end_host(SIGTERM), 0);
}

TEST_F(Sharing, AnotherBusErrorEndsTheHostAsEver)
{
    start_host();
    host->send_signal(SIGBUS);
    EXPECT_NE(host->wait_for_end(), 0);
    EXPECT_TRUE(host->has_ended());
    EXPECT_FALSE(host_has_logged("saving and stopping")) << "it does not end of itself";
}

TEST_F(Sharing, MapsGoAwayAtTheEnd)
{
    for (const int number : {SIGTERM, SIGINT}) {
        start_host();
        for (int module = 0; module < 3; module++)
            EXPECT_TRUE(is_published(module)) << module;

        EXPECT_EQ(end_host(number), 0);

        for (int module = 0; module < 3; module++)
            EXPECT_FALSE(is_published(module)) << module;
    }
}

TEST_F(Sharing, MapsOfAnotherPortHaveNamesOfTheirOwnAndGoAwayToo)
{
    start_host({"--port", "6801"});
    const auto is_published_for_it = [](int module) {
        char path[64];
        snprintf(path, sizeof path, "/dev/shm" PARA_SHARE_MAP_NAME_WITH_PORT, module, 6801);
        return access(path, F_OK) == 0;
    };
    for (int module = 0; module < 3; module++) {
        EXPECT_TRUE(is_published_for_it(module)) << module;
        EXPECT_FALSE(is_published(module)) << module;
    }
    EXPECT_EQ(end_host(SIGTERM), 0);
    for (int module = 0; module < 3; module++)
        EXPECT_FALSE(is_published_for_it(module)) << module;
}

TEST_F(Sharing, CanBeLeftOut)
{
    start_host({"--no-share"});

    for (int module = 0; module < 3; module++)
        EXPECT_FALSE(is_published(module)) << module;
    EXPECT_EQ(send(bytes_of(number_of("video", 1, "bitRate", 4096)), streams), streams_untouched);
    EXPECT_TRUE(host_has_logged("cJSON_Parse err")) << host->errors();
}

TEST_F(Sharing, TheClientRoleSharesNothing)
{
    start_host({"--client"});

    EXPECT_FALSE(is_published(SHARE_VIDEO));
}

TEST_F(Sharing, ASettingOfAClientProcessIsApplied)
{
    start_host();
    ASSERT_EQ(para_share_register(SHARE_VIDEO), 0);

    para_set_share_video_bitRate_number(1, 4096);
    para_set_share_video_protocol_string(1, "H265");
    para_set_share_video_gop_number(2, 7);
    para_set_share_audio_aeFormat_string(0, "G711A");
    para_set_share_isp_skin_saturation_number(0, 9);

    EXPECT_TRUE(wait_until([] {
        return Client().ask("{'msg_type':'get','video1':['bitRate','protocol'],'video2':['gop'],"
                            "'audio':['aeFormat'],'isp0':['skin_saturation']}") ==
               "{'video1':{'bitRate':4096,'protocol':'H265'},'video2':{'gop':7},"
               "'audio':{'aeFormat':'G711A'},'isp0':{'skin_saturation':9}}";
    }));
    EXPECT_TRUE(host_has_logged("audio_set_request: audio {\"aeFormat\":\"G711A\"}"));
    EXPECT_FALSE(host_has_logged("refused")) << host->errors();
}

TEST_F(Sharing, ASettingIsSavedAndSurvivesARestart)
{
    start_host();
    EXPECT_EQ(send(bytes_of(number_of("video", 1, "bitRate", 4096)), "'video1':['bitRate']"),
              "{'video1':{'bitRate':4096}}");
    EXPECT_TRUE(wait_until([&] {
        const std::optional<std::string> saved = read_data("video_cur.json");
        return saved && saved->find("4096") != std::string::npos;
    }));
    EXPECT_EQ(end_host(SIGTERM), 0);

    start_host();

    EXPECT_EQ(entry(SHARE_VIDEO, 2)[PARA_VIDEO_bitRate], 4096);
}

TEST_F(Sharing, AValueThatARequestWouldNotSetIsIgnored)
{
    start_host();

    for (const para_share_datagram &datagram :
         {number_of("video", 1, "bitRate", 99999999), number_of("video", 1, "bitRate", -1),
          number_of("video", 1, "protocol", 1), text_of("video", 1, "protocol", "VP9")})
        EXPECT_EQ(send(bytes_of(datagram), streams), streams_untouched);
    EXPECT_FALSE(host_has_logged("refused")) << host->errors();
}

TEST_F(Sharing, UnknownNamesAndInstancesAreRefused)
{
    start_host();

    for (const para_share_datagram &datagram :
         {number_of("", 1, "bitRate", 4096), number_of("vide", 1, "bitRate", 4096),
          number_of("video1", 1, "bitRate", 4096), number_of("misc", 0, "mirror", 1),
          number_of("video", 1, "", 4096), number_of("video", 1, "bitRateX", 4096),
          number_of("video", 1, "bitrate", 4096), number_of("video", 3, "bitRate", 4096),
          number_of("video", 6, "bitRate", 4096), number_of("video", 0xffffffff, "bitRate", 4096),
          number_of("audio", 1, "mute", 1), number_of("isp", 1, "hue", 1),
          number_of("isp", 0, "len_type", 1), text_of("video", 9, "protocol", "H265")}) {
        EXPECT_EQ(send(bytes_of(datagram), streams), streams_untouched)
            << datagram.module << "." << datagram.member;
        EXPECT_TRUE(host_has_logged("share datagram refused: " + std::string(datagram.module) +
                                    "." + datagram.member + "\n"))
            << host->errors();
    }
    EXPECT_EQ(Client().ask("{'msg_type':'get','misc':['mirror'],'audio':['mute'],'isp0':['hue']}"),
              "{'misc':{'mirror':0},'audio':{'mute':0},'isp0':{'hue':7}}");
}

TEST_F(Sharing, FieldsWithoutTheirZeroAreRefused)
{
    start_host();

    para_share_datagram module = number_of("video", 1, "bitRate", 4096);
    memset(module.module, 'v', sizeof module.module);
    para_share_datagram member = number_of("video", 1, "bitRate", 4096);
    memset(member.member, 'b', sizeof member.member);
    para_share_datagram text = text_of("video", 1, "protocol", "H265");
    memset(text.text, 'H', sizeof text.text);

    for (const para_share_datagram &datagram : {module, member, text})
        EXPECT_EQ(send(bytes_of(datagram), streams), streams_untouched);
    EXPECT_TRUE(host_has_logged("share datagram refused: vvvvvvvvvvvvvvvv.bitRate\n"));
    EXPECT_TRUE(host_has_logged("share datagram refused: video.bbbbbbbbbbbbbbbb\n"));
    EXPECT_TRUE(host_has_logged("share datagram refused: video.protocol\n"));
}

TEST_F(Sharing, OtherSizesAndTypesAreNoShareDatagrams)
{
    start_host();

    const std::string whole = bytes_of(number_of("video", 1, "bitRate", 4096));
    para_share_datagram third_type = number_of("video", 1, "bitRate", 4096);
    third_type.type = 2;
    for (const std::string &bytes :
         {whole.substr(0, 75), whole + '\0', whole + whole, bytes_of(third_type)})
        EXPECT_EQ(send(bytes, streams), streams_untouched);
    EXPECT_FALSE(host_has_logged("refused")) << host->errors();
}

} // namespace
