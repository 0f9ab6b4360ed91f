// The main program: datagrams that arrive on the store's port.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <cstring>
#include <mutex>
#include <string>
#include <vector>

#include "camparam/guard.h"
#include "camparam/share.h"
#include "share/share_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// What the handlers were called with, on the store's thread.
struct {
    std::mutex lock;
    std::vector<std::string> datagrams;
} taken;

int take(const para_share_datagram *datagram)
{
    const std::lock_guard<std::mutex> guard(taken.lock);
    taken.datagrams.emplace_back(reinterpret_cast<const char *>(datagram), sizeof *datagram);
    return 0;
}

int refuse(const para_share_datagram *datagram)
{
    take(datagram);
    return -7;
}

int take_differently(const para_share_datagram *datagram)
{
    const std::lock_guard<std::mutex> guard(taken.lock);
    taken.datagrams.push_back(std::string("other ") + datagram->module);
    return 0;
}

int set_volume(const para_share_datagram *datagram)
{
    return para_set_audio_volLeftIn_cur(datagram->number);
}

// Who made each change.
struct {
    std::mutex lock;
    std::vector<std::string> senders;
} changes;

void note_sender(const char *, const sockaddr_in *sender)
{
    const std::lock_guard<std::mutex> guard(changes.lock);
    const bool client = sender != nullptr && sender->sin_addr.s_addr == htonl(INADDR_LOOPBACK);
    changes.senders.emplace_back(client ? "client" : "host");
}

const char not_json[] = "cJSON_Parse err,Rec buffer: ";
const char by_dispatcher[] = "para_server_message_Process";

} // namespace

class ShareHandler : public Store {
protected:
    ShareHandler()
    {
        start_store();
        forget_traces();
    }

    ~ShareHandler() override
    {
        stop_store();
        register_share_datagram_handler(nullptr);
    }

    // Sends a datagram, and waits until the store has seen it.
    void send(const std::string &datagram)
    {
        client.send(datagram);
        EXPECT_TRUE(client.stays_silent());
    }

    static std::vector<std::string> datagrams()
    {
        const std::lock_guard<std::mutex> guard(taken.lock);
        return taken.datagrams;
    }

    static std::vector<std::string> senders()
    {
        const std::lock_guard<std::mutex> guard(changes.lock);
        return changes.senders;
    }

    Client client;
};

TEST_F(ShareHandler, HasTheFormOfTheDatagram)
{
    EXPECT_EQ(sizeof(para_share_datagram), 76U);
    const std::string bytes = text_datagram("module", "member", 5, "text");
    para_share_datagram datagram;
    memcpy(&datagram, bytes.data(), sizeof datagram);
    EXPECT_EQ(datagram.type, 1U);
    EXPECT_EQ(datagram.instance, 5U);
    EXPECT_EQ(datagram.number, 0);
    EXPECT_STREQ(datagram.module, "module");
    EXPECT_STREQ(datagram.member, "member");
    EXPECT_STREQ(datagram.text, "text");
}

TEST_F(ShareHandler, WithoutOneDatagramsAreNotJson)
{
    send(number_datagram("isp", "hue", 1, 5));
    EXPECT_EQ(count_traces(not_json, by_dispatcher), 1);
    send(text_datagram("isp", "hue", 0, "x"));
    EXPECT_EQ(count_traces(std::string(not_json) + "\1", by_dispatcher), 1);
}

TEST_F(ShareHandler, GetsTheBytesOfEveryDatagram)
{
    register_share_datagram_handler(take);
    const std::string number = number_datagram("isp", "hue", 1, -5);
    const std::string text = text_datagram("video", "size", 0, "PIC_HD1080");
    send(number);
    send(text);
    EXPECT_THAT(datagrams(), ElementsAre(number, text));
    EXPECT_EQ(count_traces(not_json, by_dispatcher), 0);
}

TEST_F(ShareHandler, GetsWhatTheSettersSend)
{
    register_share_datagram_handler(take);
    EXPECT_GE(Send_Initial(), 0);
    para_set_share_audio_volLeftIn_number(0, 30);
    para_set_share_isp_style_string(1, "vivid");
    EXPECT_TRUE(wait_until([] { return datagrams().size() == 2; }));
    EXPECT_THAT(datagrams(), ElementsAre(number_datagram("audio", "volLeftIn", 0, 30),
                                         text_datagram("isp", "style", 1, "vivid")));
}

TEST_F(ShareHandler, GetsFieldsThatNobodyHasLookedAt)
{
    register_share_datagram_handler(take);
    const std::string full =
        word_bytes(1) + word_bytes(0xffffffffU) + word_bytes(0x80000000U) + std::string(64, 'x');
    const std::string unknown = number_datagram("nobody", "nothing", INT_MAX, INT_MIN);
    send(full);
    send(unknown);
    EXPECT_THAT(datagrams(), ElementsAre(full, unknown));
}

TEST_F(ShareHandler, GetsNothingOfAnotherSize)
{
    register_share_datagram_handler(take);
    const std::string datagram = number_datagram("isp", "hue", 1, 5);
    int dropped = 0;
    for (const size_t size : {1U, 4U, 12U, 75U, 77U, 152U, 4096U}) {
        send(field_bytes(datagram, size));
        EXPECT_EQ(count_traces(not_json, by_dispatcher), ++dropped) << size;
    }
    EXPECT_THAT(datagrams(), IsEmpty());
}

TEST_F(ShareHandler, GetsNothingOfAnotherType)
{
    register_share_datagram_handler(take);
    const std::string rest = number_datagram("isp", "hue", 1, 5).substr(4);
    for (const uint32_t type : {2U, 3U, 256U, 0x01000000U, 0xffffffffU})
        send(word_bytes(type) + rest);
    EXPECT_THAT(datagrams(), IsEmpty());
    int dropped = 0;
    for (const std::string &text : traces_of(by_dispatcher))
        dropped += text.compare(0, strlen(not_json), not_json) == 0 ? 1 : 0;
    EXPECT_EQ(dropped, 5);
}

TEST_F(ShareHandler, LeavesJsonOfTheSameSizeAlone)
{
    register_share_datagram_handler(take);
    std::string request = "{\"msg_type\":\"get\",\"msg_id\":5,\"msg_name\":\"";
    request += std::string(76 - request.size() - 2, 'n') + "\"}";
    ASSERT_EQ(request.size(), 76U);
    EXPECT_THAT(client.request(request).value_or("none"), testing::HasSubstr("\"msg_id\":\t5"));
    const std::string blanks = "{\"msg_type\":\"get\",\"msg_id\":6}";
    EXPECT_EQ(client.request(std::string(76 - blanks.size(), ' ') + blanks),
              "{\n\t\"msg_id\":\t6\n}");
    EXPECT_THAT(datagrams(), IsEmpty());
}

TEST_F(ShareHandler, ARefusalIsTraced)
{
    register_share_datagram_handler(refuse);
    send(number_datagram("isp", "hue", 1, 5));
    EXPECT_EQ(count_traces("share datagram refused: isp.hue"), 1);
    for (const trace_line &line : traces()) {
        if (line.text == "share datagram refused: isp.hue\n") {
            EXPECT_EQ(line.level, 3);
        }
    }
    send(text_datagram(std::string(16, 'm'), std::string(16, 'n'), 1, std::string(32, 't')));
    EXPECT_EQ(count_traces("share datagram refused: " + std::string(16, 'm') + "." +
                           std::string(16, 'n')),
              1)
        << "names without a zero behind them";
    EXPECT_EQ(datagrams().size(), 2U);
}

TEST_F(ShareHandler, AnAcceptedDatagramIsNotTraced)
{
    register_share_datagram_handler(take);
    send(number_datagram("isp", "hue", 1, 5));
    for (const trace_line &line : traces())
        EXPECT_NE(line.level, 3) << line.text;
}

// By the store's thread, which runs already; the thread sanitizer tells of a missing order.
TEST_F(ShareHandler, SeesWhatTheHostWroteBeforeItRegisteredIt)
{
    static int prepared;
    static std::atomic<int> seen{0};
    set_trace_level(0);
    prepared = 5;
    register_share_datagram_handler([](const para_share_datagram *) {
        seen = prepared;
        return 0;
    });
    send(number_datagram("isp", "hue", 1, 5));
    EXPECT_EQ(seen, 5);
}

TEST_F(ShareHandler, IsReplacedAndTakenAway)
{
    const std::string datagram = number_datagram("isp", "hue", 1, 5);
    register_share_datagram_handler(take);
    send(datagram);
    register_share_datagram_handler(take_differently);
    send(datagram);
    register_share_datagram_handler(nullptr);
    send(datagram);
    EXPECT_THAT(datagrams(), ElementsAre(datagram, "other isp"));
    EXPECT_EQ(count_traces(not_json, by_dispatcher), 1);
}

TEST_F(ShareHandler, ItsChangesAreTheSenders)
{
    para_audio_min[PARA_AUDIO_volLeftIn] = 0;
    para_audio_max[PARA_AUDIO_volLeftIn] = 100;
    para_audio_exist[PARA_AUDIO_volLeftIn] = PARA_PRESENT;
    platformparam_set_change_observer(note_sender);
    register_share_datagram_handler(set_volume);
    send(number_datagram("audio", "volLeftIn", 0, 30));
    EXPECT_EQ(para_get_audio_volLeftIn_cur(), 30);
    EXPECT_THAT(senders(), ElementsAre("client"));
    para_set_audio_volLeftIn_cur(31);
    EXPECT_THAT(senders(), ElementsAre("client", "host"));
    platformparam_set_change_observer(nullptr);
}
