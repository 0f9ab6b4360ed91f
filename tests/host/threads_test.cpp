// Commands beside host threads that set. The thread sanitizer sees readers that are not atomic.
#include <atomic>
#include <thread>

#include "camparam/commands.h"
#include "share_maps.h"
#include "support/store.h"

namespace {

class HostThreads : public Store {
protected:
    HostThreads()
    {
        home = SAMPLE_HOME;
        para_profile.home_dir = home.c_str();
        EXPECT_EQ(para_commands_register(), 0);
        start_store();
    }

    // Sets one member of each module over and over, until the work is done.
    template <typename function> static void while_setting(const function &work)
    {
        std::atomic<int> rounds{0};
        std::atomic<bool> done{false};
        std::thread setter([&] {
            for (int value = 0; !done; value = 1 - value, rounds++)
                set_one_of_each(value);
        });
        EXPECT_TRUE(wait_until([&] { return rounds > 0; }));
        const int before = rounds;
        work();
        EXPECT_TRUE(wait_until([&] { return rounds > before; }));
        done = true;
        setter.join();
    }

    static std::string answer(const std::string &command, int mode, const std::string &data)
    {
        para_message message = {};
        snprintf(
            message.text, sizeof message.text, "%s",
            swap_quotes("{'msg_name':'" + command + "','data':" + data + "}", '\'', '"').c_str());
        const json request(cJSON_Parse(message.text));
        cJSON *reply = nullptr;
        EXPECT_EQ(param_base_json_dispose(&message, request.get(), &reply, mode), 0) << data;
        const json tree(reply);
        return compact(tree.get());
    }

private:
    static void set_one_of_each(int value)
    {
        para_set_af_zoom_value_cur(value);
        para_set_audio_streamRate_cur(32000 + value);
        para_set_video_gop_cur(0, 30 + value);
        para_set_isp_hue_cur(0, value);
        para_set_isp_style_def(0, value);
        para_set_json_cur("misc", "mirror", value);
        para_conf_set_member("netport", "http_port", value == 0 ? "80" : "81");
        para_get_isp_style_param(0, 1);
    }
};

TEST_F(HostThreads, DescribeReadsWhatTheySet)
{
    while_setting([] {
        for (int turn = 0; turn < 20; turn++) {
            const std::string all = answer("describe", PARA_GET, "{}");
            EXPECT_NE(all.find("'exposure_mode':{"), std::string::npos) << all;
        }
    });
}

TEST_F(HostThreads, LensAndStyleSetBesideThem)
{
    while_setting([] {
        for (int turn = 0; turn < 20; turn++) {
            EXPECT_NE(
                answer("lens", PARA_SET, "{'zoom_value':0,'focus_mode':1}").find("'accepted':["),
                std::string::npos);
            EXPECT_NE(answer("style", PARA_SET, "{'style':'vivid'}").find("'style'"),
                      std::string::npos);
            EXPECT_NE(answer("style", PARA_GET, "{}").find("'vivid'"), std::string::npos);
        }
    });
}

TEST_F(HostThreads, ShareMapsCopyWhatTheySet)
{
    while_setting([] {
        EXPECT_TRUE(publish_share_maps());
        for (int turn = 0; turn < 100; turn++)
            refresh_share_maps();
        withdraw_share_maps(PARA_SERVER_PORT);
    });
}

} // namespace
