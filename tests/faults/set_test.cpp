// Set requests while memory runs out: each member has its old or its new value, and a reply means
// that all have the new ones.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "faults/faulted_store.h"

namespace {

using values = std::vector<std::string>;

std::string conf_value(const char *key)
{
    char text[64] = "";
    para_conf_get_member_safe("netport", key, text, sizeof text);
    return text;
}

std::string pattern_value(const char *module, const char *member)
{
    char text[64] = "";
    para_get_json_string(module, member, text, sizeof text);
    return text;
}

} // namespace

class StarvedSet : public FaultedStore {
protected:
    // Both requests set the same members, to other values.
    void is_done_or_not(const std::string &old_request, const std::string &new_request,
                        const std::function<values()> &read)
    {
        SCOPED_TRACE(new_request);
        client.ask(old_request);
        const values before = read();
        const DirectClient::answer right = client.ask(new_request);
        const values after = read();
        ASSERT_NE(right.text, "");
        int answered = 0;
        for_each_failure(right.tried, [&](long failing, shortage lasting) {
            client.ask(old_request);
            ASSERT_EQ(read(), before);
            const std::string got = client.ask(new_request, failing, lasting).text;
            const values now = read();
            for (size_t i = 0; i < now.size(); i++)
                EXPECT_TRUE(now[i] == before[i] || now[i] == after[i]) << now[i];
            answered += got.empty() ? 0 : 1;
            if (!got.empty()) {
                EXPECT_EQ(got, right.text);
                EXPECT_EQ(now, after) << "answered, and not done";
            }
            EXPECT_EQ(client.ask(new_request).text, right.text) << "memory is back";
            EXPECT_EQ(read(), after);
        });
        EXPECT_LT(answered, right.tried) << "for ever is too little for an answer";
    }
};

TEST_F(StarvedSet, OfModulesWithFixedMembers)
{
    is_done_or_not("{'msg_type':'set','isp0':{'bright':1,'iris':2}}",
                   "{'msg_type':'set','msg_name':'n','msg_id':3,'isp0':{'bright':3,'iris':4}}", [] {
                       return values{std::to_string(para_get_isp_bright_cur(0)),
                                     std::to_string(para_get_isp_iris_cur(0))};
                   });
    is_done_or_not("{'msg_type':'set','video0':{'bitRate':5,'protocol':'H264'}}",
                   "{'msg_type':'set','msg_id':3,'video0':{'bitRate':6,'protocol':'MJPEG'}}", [] {
                       return values{std::to_string(para_get_video_bitRate_cur(0)),
                                     std::to_string(para_get_video_protocol_cur(0))};
                   });
    is_done_or_not("{'msg_type':'set','audio':{'audioEnable':0,'aeFormat':'G711A'}}",
                   "{'msg_type':'set','msg_id':3,'audio':{'audioEnable':1,'aeFormat':'AAC'}}", [] {
                       return values{std::to_string(para_get_audio_audioEnable_cur()),
                                     std::to_string(para_get_audio_aeFormat_cur())};
                   });
}

TEST_F(StarvedSet, OfPatternModules)
{
    is_done_or_not(
        "{'msg_type':'set','misc':{'ViStrategy':'50','mirror':0}}",
        "{'msg_type':'set','misc':{'ViStrategy':'dial','mirror':1}}", [] {
            return values{pattern_value("misc", "ViStrategy"), pattern_value("misc", "mirror")};
        });
    is_done_or_not(
        "{'msg_type':'set','lens':{'filter':'clear','steps':1}}",
        "{'msg_type':'set','lens':{'filter':'red','steps':2}}", [] {
            return values{pattern_value("lens", "filter"), pattern_value("lens", "steps")};
        });
}

TEST_F(StarvedSet, OfConfModules)
{
    is_done_or_not("{'msg_type':'set','netport':{'http_port':'1','rtsp_port':'2'}}",
                   "{'msg_type':'set','netport':{'http_port':'3','rtsp_port':'4'}}", [] {
                       return values{conf_value("http_port"), conf_value("rtsp_port")};
                   });
}

TEST_F(StarvedSet, OfWebPages)
{
    is_done_or_not("{'msg_from':'www','msg_type':'set','msg_name':'p',"
                   "'data':'AudioOn=0&Bright=2&HttpPort=90&Strategy=60'}",
                   "{'msg_from':'www','msg_type':'set','msg_name':'p',"
                   "'data':'AudioOn=1&Bright=4&HttpPort=91&Strategy=dial'}",
                   [] {
                       return values{std::to_string(para_get_audio_audioEnable_cur()),
                                     std::to_string(para_get_isp_bright_cur(0)),
                                     conf_value("http_port"), pattern_value("misc", "mirror"),
                                     pattern_value("misc", "ViStrategy")};
                   });
}

namespace {

int handed_over;

int count_set(const char *, const cJSON *, const char *)
{
    handed_over++;
    return 0;
}

} // namespace

class StarvedReplyOfASet : public FaultedStore {
protected:
    StarvedReplyOfASet()
    {
        para_module row = {};
        row.name = "host";
        row.set_opt = count_set;
        register_para_handle_extern(&row);
    }
};

TEST_F(StarvedReplyOfASet, MeansThatNothingIsSet)
{
    // Its name is escaped to more than the memory that is kept for replies.
    const std::string request =
        "{'msg_type':'set','host':1,'msg_name':'" + std::string(1000, '\x01') + "'}";
    const DirectClient::answer right = client.ask(request);
    ASSERT_GT(right.text.size(), 6000U);
    for_each_failure(right.tried, [&](long failing, shortage lasting) {
        handed_over = 0;
        const bool answered = !client.ask(request, failing, lasting).text.empty();
        EXPECT_EQ(handed_over, answered ? 1 : 0);
    });
}

// --- Setters of hosts ---

class StarvedOdm : public FaultedStore {
protected:
    // A key for each try: one that is there needs no memory.
    std::string new_key() { return "key" + std::to_string(++keys); }

    int keys = 0;
};

TEST_F(StarvedOdm, SetsANumberOrSaysThatItDidNot)
{
    int failed = 0;
    for_each_failure(3, [&](long failing, shortage lasting) {
        const std::string key = new_key();
        int changed = 0;
        {
            const Allocations allocations(failing, lasting);
            changed = _para_set_odm_int(key.c_str(), 5);
        }
        int value = 0;
        EXPECT_EQ(para_get_odm_int(key.c_str(), &value), changed == 1 ? 0 : -2);
        failed += changed == 1 ? 0 : 1;
        EXPECT_EQ(_para_set_odm_int(key.c_str(), 5), changed == 1 ? 0 : 1) << "memory is back";
        EXPECT_EQ(para_get_odm_int(key.c_str(), &value), 0);
        EXPECT_EQ(value, 5);
    });
    EXPECT_EQ(failed, 4) << "the item and its key";
}

TEST_F(StarvedOdm, SetsATextOrSaysThatItDidNot)
{
    int failed = 0;
    std::string old_text = "some";
    for_each_failure(2, [&](long failing, shortage lasting) {
        const std::string new_text = old_text + " and more";
        int changed = 0;
        {
            const Allocations allocations(failing, lasting);
            changed = _para_set_odm_string("maker", new_text.c_str());
        }
        failed += changed == 1 ? 0 : 1;
        char text[PARA_ODM_TEXT_MAX];
        EXPECT_EQ(para_get_odm_string("maker", text), 0);
        EXPECT_EQ(text, changed == 1 ? new_text : old_text);
        EXPECT_EQ(_para_set_odm_string("maker", new_text.c_str()), changed == 1 ? 0 : 1);
        EXPECT_EQ(para_get_odm_string("maker", text), 0);
        EXPECT_EQ(text, new_text) << "memory is back";
        old_text = new_text;
    });
    EXPECT_EQ(failed, 2);
}

TEST_F(StarvedOdm, AddsATextOrSaysThatItDidNot)
{
    for_each_failure(4, [&](long failing, shortage lasting) {
        const std::string key = new_key();
        int changed = 0;
        {
            const Allocations allocations(failing, lasting);
            changed = _para_set_odm_string(key.c_str(), "text");
        }
        char text[PARA_ODM_TEXT_MAX] = "";
        EXPECT_EQ(para_get_odm_string(key.c_str(), text), changed == 1 ? 0 : -2);
        EXPECT_STREQ(text, changed == 1 ? "text" : "");
    });
}

TEST_F(StarvedOdm, WithoutRoomTellsNoHookAndMarksNothing)
{
    const timespec before = odm_item_start_time;
    static int told;
    told = 0;
    para_profile.odm_set_notify_hook = [](const char *) { told++; };
    {
        const Allocations none(1, shortage::for_ever);
        para_set_odm_int("new", 1);
        para_set_odm_string("other", "text");
        para_set_odm_string("maker", "a text that needs more room than the one before");
    }
    EXPECT_EQ(told, 0);
    EXPECT_EQ(odm_item_start_time.tv_sec, before.tv_sec);
    EXPECT_EQ(odm_item_start_time.tv_nsec, before.tv_nsec);
}

class StarvedNewOdm : public FaultedFolders {};

TEST_F(StarvedNewOdm, HasNoDocumentUntilAValueIsStored)
{
    int value = 0;
    for (const shortage lasting : {shortage::for_ever, shortage::once}) {
        for (long failing = 1; failing <= 5; failing++) {
            int changed = 1;
            {
                const Allocations allocations(failing, lasting);
                changed = _para_set_odm_int("first", 1);
            }
            ASSERT_EQ(changed, 0) << failing;
            ASSERT_EQ(para_get_odm_int("version", &value), -1) << failing;
        }
    }
    EXPECT_EQ(_para_set_odm_int("first", 1), 1);
    EXPECT_EQ(para_get_odm_int("version", &value), 0);
    EXPECT_EQ(value, 1);
}
