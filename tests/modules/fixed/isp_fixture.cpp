#include "modules/fixed/isp_fixture.h"

#include <cstring>
#include <iterator>
#include <sstream>

std::vector<std::string> Isp::names(const std::string &text)
{
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

const std::vector<Isp::expected_member> Isp::expected_record = {
    {"style", yes, yes, yes, yes},
    {"exposure_mode_priority", yes, no, no, no},
    {"exposure_mode", yes, yes, yes, yes},
    {"shutter", yes, yes, yes, yes},
    {"iris", yes, yes, yes, yes},
    {"bright", yes, yes, yes, yes},
    {"expcomp_mode", yes, yes, yes, yes},
    {"expcomp_level", yes, yes, yes, yes},
    {"backlight", yes, yes, yes, yes},
    {"gain_limit", yes, yes, yes, yes},
    {"manual_gain", yes, yes, yes, yes},
    {"antiflicker", yes, yes, yes, yes},
    {"meter", yes, yes, yes, yes},
    {"wdr_strength", yes, yes, yes, yes},
    {"wb_mode", yes, yes, yes, yes},
    {"awb_sens", yes, yes, yes, yes},
    {"rgain", yes, yes, yes, yes},
    {"bgain", yes, yes, yes, yes},
    {"rgain_tuning", yes, yes, yes, yes},
    {"bgain_tuning", yes, yes, yes, yes},
    {"ggain_tuning", yes, yes, yes, yes},
    {"rgain_onepush", yes, yes, yes, yes},
    {"bgain_onepush", yes, yes, yes, yes},
    {"saturation", yes, yes, yes, yes},
    {"hue", yes, yes, yes, yes},
    {"temperature", yes, yes, yes, yes},
    {"len_type", yes, no, no, yes},
    {"luminance", yes, yes, yes, yes},
    {"contrast", yes, yes, yes, yes},
    {"sharpness", yes, yes, yes, yes},
    {"blackwhite_mode", yes, yes, yes, yes},
    {"gamma", yes, yes, yes, yes},
    {"drc", yes, yes, yes, yes},
    {"ccm_style", yes, no, no, yes},
    {"nr2d", yes, yes, yes, yes},
    {"nr3d", yes, yes, yes, yes},
    {"hotpixel", no, no, no, yes},
    {"skin_saturation", yes, yes, yes, yes},
};

const std::vector<std::string> Isp::expected_json_order =
    names("style exposure_mode shutter iris bright expcomp_mode expcomp_level backlight "
          "gain_limit manual_gain antiflicker meter wdr_strength wb_mode awb_sens rgain "
          "bgain rgain_tuning bgain_tuning ggain_tuning rgain_onepush bgain_onepush "
          "saturation skin_saturation hue temperature len_type luminance contrast "
          "sharpness blackwhite_mode gamma drc ccm_style nr2d nr3d hotpixel");

const std::vector<std::string> Isp::expected_by_name_order =
    names("style exposure_mode shutter iris bright expcomp_mode expcomp_level backlight "
          "gain_limit manual_gain antiflicker meter wdr_strength drc wb_mode awb_sens "
          "rgain bgain rgain_tuning bgain_tuning ggain_tuning rgain_onepush bgain_onepush "
          "saturation skin_saturation hue temperature luminance contrast sharpness "
          "blackwhite_mode gamma nr2d nr3d");

const std::vector<Isp::accessors> Isp::all_members = {
#define PICK_yes(word, name)                                                                       \
    {word,                                                                                         \
     #name,                                                                                        \
     para_get_isp_##name##_def,                                                                    \
     para_get_isp_##name##_min,                                                                    \
     para_get_isp_##name##_max,                                                                    \
     para_get_isp_##name##_init,                                                                   \
     para_get_isp_##name##_cur,                                                                    \
     para_set_isp_##name##_cur,                                                                    \
     _para_set_isp_##name##_cur},
#define PICK_no(word, name)
#define ISP_MEMBER(word, name, loaded, accessor, by_name, written) PICK_##accessor(word, name)
#include "camparam/isp_members.def"
#undef PICK_yes
#undef PICK_no
};

const std::vector<Isp::converter> Isp::all_converters = {
#define PICK_yes(name) {#name, para_get_isp_##name##_num},
#define PICK_no(name)
#define ISP_MEMBER(word, name, loaded, accessor, by_name, written) PICK_##loaded(name)
#include "camparam/isp_members.def"
#undef PICK_yes
#undef PICK_no
};

int Isp::word_of(const std::string &name)
{
    for (size_t i = 0; i < std::size(expected_record); i++) {
        if (name == expected_record[i].name)
            return static_cast<int>(i) + 1;
    }
    ADD_FAILURE() << "no member " << name;
    return 0;
}

int Isp::word_at(const isp_record &record, int word)
{
    int words[PARA_ISP_SLOTS];
    memcpy(words, &record, sizeof words);
    return words[word];
}

const Isp::accessors &Isp::member_named(const std::string &name)
{
    for (const accessors &member : all_members) {
        if (name == member.key)
            return member;
    }
    ADD_FAILURE() << "no accessors of " << name;
    return all_members[0];
}

std::string Isp::values(int offset)
{
    std::string text;
    for (const expected_member &member : expected_record) {
        text += text.empty() ? "{'" : ",'";
        text += std::string(member.name) + "':" + std::to_string(word_of(member.name) + offset);
    }
    return text + "}";
}

std::string Isp::ranges()
{
    std::string text;
    for (const expected_member &member : expected_record) {
        const int word = word_of(member.name);
        text += text.empty() ? "{'" : ",'";
        text += std::string(member.name) + "':[" + std::to_string(-word) + "," +
                std::to_string(1000 + word) + "]";
    }
    return text + "}";
}

std::string Isp::everything(int style, int offset)
{
    std::string text = "{'style':" + std::to_string(style);
    for (const std::string &name : expected_json_order) {
        if (name != "style" && name != "hotpixel")
            text += ",'" + name + "':" + std::to_string(word_of(name) + offset);
    }
    return text + "}";
}

std::string Isp::everything_printed(int style, int offset)
{
    std::string text = "{\n\t\t\"style\":\t" + std::to_string(style);
    for (const std::string &name : expected_json_order) {
        if (name != "style" && name != "hotpixel")
            text += ",\n\t\t\"" + name + "\":\t" + std::to_string(word_of(name) + offset);
    }
    return text + "\n\t}";
}

std::string Isp::style_file(int def)
{
    return "{'isp0_style_def':" + std::to_string(def) +
           ",'style_excute_by_arm':0,'isp0_style_list':['standard','vivid','soft'],'standard':" +
           values(100) + ",'vivid':" + values(200) + ",'soft':" + values(300) + "}";
}
