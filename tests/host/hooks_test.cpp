#include "hooks.h"

#include <regex>

#include "camparam/camparam.h"
#include "support/device.h"
#include "support/json_text.h"

namespace {

class Hooks : public testing::Test {
protected:
    Hooks() { install_hooks(); }

    static std::string logged()
    {
        std::string texts;
        for (const trace_line &line : traces())
            texts += line.text;
        return texts;
    }
};

// Stands for the setters of modules with several instances.
extern "C" PARA_API int para_set_sample_gain_cur(int, int)
{
    return 0;
}

TEST_F(Hooks, NameTheSetterAndItsArguments)
{
    para_profile.af_set_notify_hook(para_set_af_focus_lock_cur, 1);
    para_profile.audio_set_notify_hook(para_set_af_zoom_value_cur, -3);

    EXPECT_EQ(logged(), "camparamd: af_set_notify: para_set_af_focus_lock_cur(1)\n"
                        "camparamd: audio_set_notify: para_set_af_zoom_value_cur(-3)\n");
}

TEST_F(Hooks, NameTheInstance)
{
    para_profile.isp_set_notify_hook(para_set_sample_gain_cur, 0, 12);
    para_profile.video_set_notify_hook(para_set_sample_gain_cur, 2, 30);

    const std::regex lines("camparamd: isp_set_notify: \\w+\\(0, 12\\)\n"
                           "camparamd: video_set_notify: \\w+\\(2, 30\\)\n");
    const std::string text = logged();
    EXPECT_TRUE(std::regex_match(text, lines)) << text;
}

TEST_F(Hooks, NameModuleAndMember)
{
    const auto setter = reinterpret_cast<para_entry_point>(para_set_af_zoom_value_cur);
    para_profile.misc_set_notify_hook("misc", setter, "mirror", 1);
    para_profile.odm_set_notify_hook("vendor");
    para_profile.conf_member_notify_hook("netport", "http_port");
    EXPECT_EQ(para_profile.conf_update_hook("overlay"), 0);
    para_profile.conflict_hook("odm", 0, 1);

    EXPECT_EQ(logged(), "camparamd: misc_set_notify: para_set_af_zoom_value_cur(misc, mirror, 1)\n"
                        "camparamd: odm_set_notify: vendor\n"
                        "camparamd: conf_member_notify: netport http_port\n"
                        "camparamd: conf_update: overlay\n"
                        "camparamd: conflict: odm 0 -> 1\n");
}

TEST_F(Hooks, ShowTheRequest)
{
    const json root = parse("{'isp0':{'hue':1},'video1':{'gop':2},'audio':{'mute':0},'misc':{}}");
    para_profile.isp_set_request_hook(cJSON_GetObjectItem(root.get(), "isp0"));
    para_profile.video_set_request_hook(cJSON_GetObjectItem(root.get(), "video1"));
    para_profile.audio_set_request_hook(cJSON_GetObjectItem(root.get(), "audio"));
    para_profile.misc_set_request_hook("misc", cJSON_GetObjectItem(root.get(), "misc"));

    EXPECT_EQ(logged(), "camparamd: isp_set_request: isp0 {\"hue\":1}\n"
                        "camparamd: video_set_request: video1 {\"gop\":2}\n"
                        "camparamd: audio_set_request: audio {\"mute\":0}\n"
                        "camparamd: misc_set_request: misc {}\n");
}

TEST_F(Hooks, StayOneLineWhateverTheNamesHold)
{
    const json item = parse("{'mute':'a\\nb'}");
    para_profile.conf_member_notify_hook("netport", "a\nb\x1b[31m");
    para_profile.audio_set_request_hook(item.get());
    para_profile.audio_set_request_hook(nullptr);

    EXPECT_EQ(logged(), "camparamd: conf_member_notify: netport a?b?[31m\n"
                        "camparamd: audio_set_request:  {\"mute\":\"a\\nb\"}\n"
                        "camparamd: audio_set_request:  \n");
}

TEST_F(Hooks, LetConfFilesBeWrittenOnRequest)
{
    EXPECT_EQ(para_profile.conf_save_hook, nullptr);
    let_conf_files_be_written();
    ASSERT_NE(para_profile.conf_save_hook, nullptr);
    para_profile.conf_save_hook();
    EXPECT_EQ(logged(), "");
}

} // namespace
