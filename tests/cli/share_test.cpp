// Settings by share datagram.
#include "cli/run.h"
#include "host/host_process.h"

namespace {

class ShareCommand : public HostProcess {
protected:
    ShareCommand()
    {
        home = SAMPLE_HOME;
        share();
    }

    // The received datagrams that are not JSON objects.
    static std::vector<std::string> datagrams(const fake_server &camera)
    {
        std::vector<std::string> found;
        for (const std::string &request : camera.requests()) {
            if (request.empty() || request[0] != '{')
                found.push_back(request);
        }
        return found;
    }
};

// A field of a datagram, padded with zeros.
std::string field(std::string text, size_t size)
{
    text.resize(size);
    return text;
}

TEST_F(ShareCommand, SetsAStreamAndReadsItBack)
{
    start_host();

    const run_result set = run({"share", "video.bitRate=4096", "--instance", "1"});

    EXPECT_EQ(set.status, 0);
    EXPECT_EQ(set.output, "video1.bitRate=4096\n");
    EXPECT_EQ(set.errors, "");
    EXPECT_EQ(run({"share", "video.protocol=H264"}).output, "video0.protocol=H264\n");
    EXPECT_EQ(run({"share", "audio.aeFormat=G711A"}).output, "audio.aeFormat=G711A\n");
    EXPECT_EQ(run({"share", "isp.hue=3"}).output, "isp0.hue=3\n");
    EXPECT_EQ(squeeze(run({"share", "isp.hue=4", "--json"}).output), "{'isp0':{'hue':4}}");
}

TEST_F(ShareCommand, NamesAValueThatWasNotTaken)
{
    start_host();

    const run_result range = run({"share", "video.gop=301"});
    EXPECT_EQ(range.status, 4);
    EXPECT_EQ(range.errors, "camparam: video0.gop: \"301\" is out of range (number, 1 to 300)\n");
    EXPECT_EQ(run({"share", "video.rcMode=QVBR"}).status, 4);
    EXPECT_EQ(run({"share", "video.gop=fast"}).status, 4);
    EXPECT_EQ(run({"share", "isp.rgain_tuning=3"}).status, 4);
    EXPECT_EQ(run({"share", "video.nosuch=1"}).status, 5);
    EXPECT_EQ(run({"share", "video.gop=5", "--instance", "3"}).status, 5);
}

TEST_F(ShareCommand, TellsWhenTheHostDropsDatagrams)
{
    start_host({"--no-share"});

    const run_result set = run({"share", "video.bitRate=4096", "--instance", "1"});

    EXPECT_EQ(set.status, 4);
    EXPECT_EQ(set.errors, "camparam: video1.bitRate: \"4096\" was not taken, the value is \"2048\" "
                          "(number, 64 to 20480)\n");
}

TEST_F(ShareCommand, SendsNumbersAndTexts)
{
    const fake_server camera([](const std::string &request) {
        const bool describes = is_for(request, "describe");
        return std::vector<std::string>{
            reply_to(request, describes ? "'modules':{'video2':{'members':{'gop':{'kind':'number'},"
                                          "'rcMode':{'kind':'enum','names':['VBR']}}}}"
                                        : "'video2':{'gop':-2,'rcMode':'VBR'}")};
    });

    EXPECT_EQ(run({"share", "video.gop=-2", "--instance", "2"}).status, 0);
    EXPECT_EQ(run({"share", "video.rcMode=VBR", "--instance", "2"}).status, 0);

    const std::vector<std::string> sent = datagrams(camera);
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(sent[0], std::string("\0\0\0\0\2\0\0\0\xfe\xff\xff\xff", 12) + field("video", 16) +
                           field("gop", 16) + field("", 32));
    EXPECT_EQ(sent[1], std::string("\1\0\0\0\2\0\0\0\0\0\0\0", 12) + field("video", 16) +
                           field("rcMode", 16) + field("VBR", 32));
}

TEST_F(ShareCommand, FormIsSaidWhenTheHostDescribesNothing)
{
    const fake_server camera([](const std::string &request) {
        const bool is_api = request.find("\"api_") != std::string::npos;
        return std::vector<std::string>{is_api ? quoted("{'err':'Invalid API command'}")
                                               : reply_to(request, "'audio':{'mute':1}")};
    });

    EXPECT_EQ(run({"share", "audio.mute=1"}).status, 2);
    EXPECT_EQ(run({"share", "audio.mute=1", "--number"}).output, "audio.mute=1\n");
    EXPECT_EQ(datagrams(camera).size(), 1u);
}

TEST_F(ShareCommand, WhatFitsInNoDatagramIsAUsageError)
{
    const fake_server camera([](const std::string &request) {
        return std::vector<std::string>{reply_to(request, "'audio':{}")};
    });

    const run_result text = run({"share", "--text", "audio.aeFormat=" + std::string(32, 'x')});
    EXPECT_EQ(text.status, 2);
    EXPECT_NE(text.errors.find("a share datagram holds 31 bytes"), std::string::npos);
    EXPECT_EQ(run({"share", "--text", "audio.member_of_16_byte=x"}).status, 2);
    EXPECT_EQ(datagrams(camera).size(), 0u);

    run({"share", "--text", "audio.aeFormat=" + std::string(31, 'x')});
    EXPECT_EQ(datagrams(camera).size(), 1u);
}

} // namespace
