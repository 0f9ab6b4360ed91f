// The members of the small device: every kind of range and default.
#pragma once

#include <climits>
#include <vector>

#include "fuzz/model/fixed.h"
#include "fuzz/model/text.h"

inline const fixed_rules af_rules = {.name = "af", .lenient = true};
inline const std::vector<std::vector<fixed_traits>> af_members = {{
    {"focus_mode", 0, 2, 0},
    {"focus_zone", 0, 3, 1},
    {"focus_sens", 0, 0, 1}, // a default outside the range
    {"focus_value", -5, 4095, 1024},
    {"focus_lock", 0, 1}, // absent
    {"zoom_value", INT_MIN, INT_MAX, -1},
}};

inline const name_list formats = {"AAC", "G711A"}, inputs = {"linein", "micin"},
                       outputs = {"lineout", "hdmi"};

inline const fixed_rules audio_rules = {.name = "audio",
                                        .moved = "adtsFlag",
                                        .before = "aeFormat",
                                        .second_moved = "audioOut",
                                        .second_before = "audioInputVol",
                                        .second_if = "audioInput"};
inline const std::vector<std::vector<fixed_traits>> audio_members = {{
    {"audioEnable", 0, 1, 1},
    {"aeFormat", 0, 1, 0, &formats, true},
    {"adtsFlag", 0, 1}, // absent
    {"sampleRate", 8000, 48000, 48000},
    {"streamRate", 0, INT_MAX, 5},
    {"audioInput", -1000, 3, 1, &inputs, true}, // values without a name
    {"volLeftIn", -5, 5, 0},
    {"volRightIn", 0, 100, 60},
    {"audioInputVol", 0, 100, 60},
    {"audioOut", 0, 1, std::nullopt, &outputs}, // written all the same, as audioInput is there
    {"audioOutVol", 0, 100, 80},
    {"mute", 0, 1},
    {"denoise", 0, 2, 7},
    {"agcEnable", 1, 0, 0}, // takes no value
    {"audioOutMute", 0, 1, 0},
}};

inline const name_list protocols = {"H264", "H265", "MJPEG"},
                       modes = {"CBR", "VBR", "ABR", "FIXQP", "AVBR"},
                       profiles = {"baseline", "mainprofile", "highprofile", "svc-t"};
inline const name_list sizes = {
    "PIC_QCIF",      "PIC_CIF",       "PIC_2CIF",      "PIC_HD1",     "PIC_D1",      "PIC_960H",
    "PIC_QVGA",      "PIC_VGA",       "PIC_XGA",       "PIC_SXGA",    "PIC_UXGA",    "PIC_QXGA",
    "PIC_WVGA",      "PIC_WSXGA",     "PIC_WUXGA",     "PIC_WQXGA",   "PIC_HD720",   "PIC_HD1080",
    "PIC_2304x1296", "PIC_2592x1520", "PIC_5M",        "PIC_6M",      "PIC_UHD4K",   "PIC_3Kx3K",
    "PIC_12M",       "PIC_16M",       "PIC_QQVGA",     "PIC_Q720",    "PIC_QQ720",   "PIC_Q960H",
    "PIC_HD576",     "PIC_960P",      "PIC_QQ960H",    "PIC_480_270", "PIC_960_540", "PIC_640_360",
    "PIC_320_180",   "PIC_720_408",   "PIC_1440_1080", "PIC_960_720", "PIC_768_576", "PIC_720_540",
    "PIC_480_320",   "PIC_USER",      "PIC_720_480",   "PIC_720_576", "PIC_BUTT"};

inline const fixed_rules video_rules = {.name = "video", .numbered = true, .keys_by_prefix = true};
inline const std::vector<std::vector<fixed_traits>> video_members = {
    {
        {"protocol", 0, 2, 1, &protocols, true},
        {"size", 0, 46, 22, &sizes, true},
        {"frameRate", 1, 60, 60},
        {"qfactor", 1, 99, 80},
        {"rcMode", 0, 4, 0, &modes, true},
        {"bitRate", 64, 102400, 32768},
        {"gop", 1, 300, 60},
        {"profile", 0, 3, 1, &profiles, true},
        {"sliceEn", 0, 1, 0},
        {"sliceMode", 0, 1}, // absent
        {"sliceSize", 1, 4096, 1024},
    },
    {
        {"protocol", 0, 1, 0, &protocols, false}, // named, with a number as its default
        {"size", 3, 17, 17, &sizes, true},
        {"frameRate", 1, 30, 30},
        {"qfactor", 0, 0},
        {"rcMode", 0, 0, 0, &modes, true},
        {"bitRate", 64, 20480, 2048},
        {"gop", 1, 300, 30},
        {"profile", 0, 0, std::nullopt, &profiles},
        {"sliceEn", 0, 1},
        {"sliceMode", 0, 1, 0},
        {"sliceSize", 0, 0},
    },
};

inline const std::vector<pattern_traits> misc_members = {
    {"ViStrategy", 0, 0, {"50", "60", "dial", "osd"}},
    {"mirror", 0, 1},
    {"flip", -1, 1},
    {"lock", 0, 1}, // without a value
};
inline const char misc_conf[] = "# defaults\nViStrategy = \"60\"\nmirror = 0\nflip=\"1\"\n"
                                "unknown = \"7\"\n";

inline const std::vector<pattern_traits> panel_members = {
    {"colour", 0, 0, {"red", "green", "re"}},
    {"level", 0, 10},
};
inline const char panel_conf[] = "colour = \"red\"\nlevel = \"5 of 10\"\n";

inline const char netport_conf[] =
    "http_port = \"80\"\ndhcp = \"1\"\nname = \"a \"quoted\" name\"\n"
    "empty =\n";
