// The names of the picture sizes, by the value of the member "size". Saved files and hosts hold the
// values.
#pragma once

inline constexpr const char *size[] = {
    "PIC_QCIF",      "PIC_CIF",       "PIC_2CIF",      "PIC_HD1",     "PIC_D1",      "PIC_960H",
    "PIC_QVGA",      "PIC_VGA",       "PIC_XGA",       "PIC_SXGA",    "PIC_UXGA",    "PIC_QXGA",
    "PIC_WVGA",      "PIC_WSXGA",     "PIC_WUXGA",     "PIC_WQXGA",   "PIC_HD720",   "PIC_HD1080",
    "PIC_2304x1296", "PIC_2592x1520", "PIC_5M",        "PIC_6M",      "PIC_UHD4K",   "PIC_3Kx3K",
    "PIC_12M",       "PIC_16M",       "PIC_QQVGA",     "PIC_Q720",    "PIC_QQ720",   "PIC_Q960H",
    "PIC_HD576",     "PIC_960P",      "PIC_QQ960H",    "PIC_480_270", "PIC_960_540", "PIC_640_360",
    "PIC_320_180",   "PIC_720_408",   "PIC_1440_1080", "PIC_960_720", "PIC_768_576", "PIC_720_540",
    "PIC_480_320",   "PIC_USER",      "PIC_720_480",   "PIC_720_576", "PIC_BUTT",
};
