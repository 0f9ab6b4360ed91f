#include "support/every_kind.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "camparam/camparam.h"

namespace {

int get_conf()
{
    char text[16] = "";
    para_conf_get_member_safe("netport", "port", text, sizeof text);
    return atoi(text);
}

int get_odm()
{
    int value = -1;
    para_get_odm_int("mine", &value);
    return value;
}

void save_switch() {}

} // namespace

const std::vector<module_kind> all_kinds = {
    {"Af", "af", "af_cur.json", "{'zoom_value':@}", para_get_af_zoom_value_cur,
     [](int number) { para_set_af_zoom_value_cur(number); }, "af_def.json"},
    {"Audio", "audio", "audio_cur.json", "{'audioInputVol':@}", para_get_audio_audioInputVol_cur,
     [](int number) { para_set_audio_audioInputVol_cur(number); }, "audio_def.json"},
    {"Video", "video0", "video_cur.json", "{'video0':{'gop':@}}",
     [] { return para_get_video_gop_cur(0); },
     [](int number) { para_set_video_gop_cur(0, number); }, "video_def.json"},
    {"Isp", "isp0", "isp_cur.json", "{'isp0':{'style':0,'bright':@}}",
     [] { return para_get_isp_bright_cur(0); },
     [](int number) { para_set_isp_bright_cur(0, number); }, "isp_def.json"},
    {"Misc", "misc", "misc.conf", "vi_framerate = '@'\n", para_get_misc_vi_framerate_cur,
     [](int number) { para_set_misc_vi_framerate_cur(number); }, "misc.conf"},
    {"LegacyMisc", "misc", "misc_cur.json", "{'vi_framerate':@}", para_get_misc_vi_framerate_cur,
     [](int number) { para_set_misc_vi_framerate_cur(number); }, "misc_def.json"},
    {"Pattern", "panel", "panel.conf", "brightness = '@'\n",
     [] { return para_get_json_cur("panel", "brightness"); },
     [](int number) { para_set_json_cur("panel", "brightness", number); }, "panel.conf"},
    {"Conf", "netport", "netport.conf", "port = '@'\n", get_conf,
     [](int number) { para_conf_set_member("netport", "port", std::to_string(number).c_str()); },
     "netport.conf"},
    {"Odm", "odmInter", "persist/odm.json", "{'version':1,'mine':@}", get_odm,
     [](int number) { para_set_odm_int("mine", number); }, nullptr},
};

const module_kind &kind_named(const std::string &name)
{
    return *std::find_if(all_kinds.begin(), all_kinds.end(),
                         [&](const module_kind &kind) { return kind.name == name; });
}

EveryKind::EveryKind()
{
    const std::string number = std::to_string(default_number);
    write_home("www2json.json",
               "{'json_pattern_list':['misc','panel'],'conf_pattern_list':['netport']}");
    write_home("af_range.json", "{'zoom_value':[0,100]}");
    write_home("af_def.json", "{'zoom_value':" + number + "}");
    write_home("audio_range.json", "{'audioInputVol':[0,100]}");
    write_home("audio_def.json", "{'audioInputVol':" + number + "}");
    write_home("video_range.json", "{'video0':{'gop':[0,100]},'video1':{'gop':[0,100]}}");
    write_home("video_def.json", "{'video0':{'gop':" + number + "},'video1':{'gop':1}}");
    write_home("isp_range.json", "{'isp0':{'style':[0,0],'bright':[0,100]}}");
    write_home("isp_def.json", "{'isp0_style_def':0,'isp0_style_list':['plain'],"
                               "'plain':{'style':0,'bright':" +
                                   number + "}}");
    write_home("misc_range.json", "{'version':2,'vi_framerate':[0,100]}");
    write_home("misc.conf", "vi_framerate = '" + number + "'\n");
    write_home("panel_range.json", "{'brightness':[0,100]}");
    write_home("panel.conf", "brightness = '" + number + "'\n");
    write_home("netport.conf", "port = '" + number + "'\n");
    std::filesystem::create_directory(data + "/persist");
    para_profile.conf_save_hook = save_switch;
}

void EveryKind::use_legacy_misc()
{
    write_home("misc_range.json", "{'vi_framerate':[0,100]}");
    write_home("misc_def.json", "{'vi_framerate':" + std::to_string(default_number) + "}");
    std::filesystem::remove(home + "/misc.conf");
}

std::string EveryKind::text_with(const module_kind &kind, int number)
{
    std::string text = kind.text;
    return text.replace(text.find('@'), 1, std::to_string(number));
}

void EveryKind::in_child(const std::function<void()> &steps)
{
    const pid_t child = fork();
    if (child == 0) {
        alarm(60);
        steps();
        fflush(stdout);
        _exit(HasFailure() ? 1 : 0);
    }
    int ended = 0;
    waitpid(child, &ended, 0);
    EXPECT_TRUE(WIFEXITED(ended) && WEXITSTATUS(ended) == 0) << "see above";
}
