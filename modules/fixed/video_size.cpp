// Picture sizes: the names of the member "size" by value, and the dimensions that some have.
#include "modules/fixed/video_size.h"

#include <cstring>

#include "base/trace.h"
#include "camparam/video.h"

static const char *const size[] = {
    "PIC_QCIF",      "PIC_CIF",       "PIC_2CIF",      "PIC_HD1",     "PIC_D1",      "PIC_960H",
    "PIC_QVGA",      "PIC_VGA",       "PIC_XGA",       "PIC_SXGA",    "PIC_UXGA",    "PIC_QXGA",
    "PIC_WVGA",      "PIC_WSXGA",     "PIC_WUXGA",     "PIC_WQXGA",   "PIC_HD720",   "PIC_HD1080",
    "PIC_2304x1296", "PIC_2592x1520", "PIC_5M",        "PIC_6M",      "PIC_UHD4K",   "PIC_3Kx3K",
    "PIC_12M",       "PIC_16M",       "PIC_QQVGA",     "PIC_Q720",    "PIC_QQ720",   "PIC_Q960H",
    "PIC_HD576",     "PIC_960P",      "PIC_QQ960H",    "PIC_480_270", "PIC_960_540", "PIC_640_360",
    "PIC_320_180",   "PIC_720_408",   "PIC_1440_1080", "PIC_960_720", "PIC_768_576", "PIC_720_540",
    "PIC_480_320",   "PIC_USER",      "PIC_720_480",   "PIC_720_576", "PIC_BUTT",
};
static_assert(sizeof size / sizeof size[0] == 47, "saved files and hosts hold the values");

const value_names size_names = names_of(size);

enum { HZ_60 = 0, HZ_50 = 1, ANY_MAINS = -1 };

struct picture_size {
    const char *name;
    int mains; // for which the row holds
    int width, height;
};

// In look-up and listing order. Some sizes differ from the usual meaning of their names.
static const picture_size size_name[] = {
    {"PIC_D1", HZ_50, 720, 576},
    {"PIC_D1", HZ_60, 720, 480},
    {"PIC_QCIF", ANY_MAINS, 176, 144},
    {"PIC_CIF", ANY_MAINS, 352, 288},
    {"PIC_2CIF", ANY_MAINS, 360, 576},
    {"PIC_960H", ANY_MAINS, 960, 576},
    {"PIC_QVGA", ANY_MAINS, 320, 240},
    {"PIC_VGA", ANY_MAINS, 640, 480},
    {"PIC_XGA", ANY_MAINS, 1024, 768},
    {"PIC_SXGA", ANY_MAINS, 1400, 1050},
    {"PIC_UXGA", ANY_MAINS, 1600, 1400},
    {"PIC_QXGA", ANY_MAINS, 2048, 1536},
    {"PIC_WVGA", ANY_MAINS, 854, 480},
    {"PIC_WSXGA", ANY_MAINS, 1680, 1050},
    {"PIC_WUXGA", ANY_MAINS, 1920, 1200},
    {"PIC_WQXGA", ANY_MAINS, 2560, 1600},
    {"PIC_HD720", ANY_MAINS, 1280, 720},
    {"PIC_HD1080", ANY_MAINS, 1920, 1080},
    {"PIC_2304x1296", ANY_MAINS, 2304, 1296},
    {"PIC_2592x1520", ANY_MAINS, 2592, 1520},
    {"PIC_5M", ANY_MAINS, 2592, 1944},
    {"PIC_UHD4K", ANY_MAINS, 3840, 2160},
    {"PIC_3Kx3K", ANY_MAINS, 3000, 3000},
    {"PIC_12M", ANY_MAINS, 4000, 3000},
    {"PIC_QQVGA", ANY_MAINS, 160, 120},
    {"PIC_Q720", ANY_MAINS, 640, 360},
    {"PIC_QQ720", ANY_MAINS, 320, 180},
    {"PIC_Q960H", ANY_MAINS, 480, 240},
    {"PIC_HD576", ANY_MAINS, 1024, 576},
    {"PIC_960P", ANY_MAINS, 960, 540},
    {"PIC_QQ960H", ANY_MAINS, 240, 120},
    {"PIC_480_270", ANY_MAINS, 480, 272},
    {"PIC_960_540", ANY_MAINS, 960, 540},
    {"PIC_640_360", ANY_MAINS, 640, 360},
    {"PIC_320_180", ANY_MAINS, 320, 180},
    {"PIC_720_408", ANY_MAINS, 720, 408},
    {"PIC_1440_1080", ANY_MAINS, 1440, 1080},
    {"PIC_960_720", ANY_MAINS, 960, 720},
    {"PIC_768_576", ANY_MAINS, 768, 576},
    {"PIC_720_540", ANY_MAINS, 720, 540},
    {"PIC_480_320", ANY_MAINS, 480, 320},
    {"PIC_720_480", ANY_MAINS, 720, 480},
    {"PIC_720_576", ANY_MAINS, 720, 576},
};

int para_get_video_size_byname(const char *name, int mains, int *width, int *height)
{
    if (name == nullptr) {
        PARA_TRACE(PARA_INFO, "name is null ");
        return -1;
    }
    for (const picture_size &row : size_name) {
        if (strcmp(row.name, name) == 0 && (row.mains == ANY_MAINS || row.mains == mains)) {
            *width = row.width;
            *height = row.height;
            return 0;
        }
    }
    PARA_TRACE(PARA_INFO, "unsupport %s", name);
    return -1;
}

int para_video_size_enum(void *, void *)
{
    PARA_TRACE(PARA_INFO, "--------size:--------");
    for (const picture_size &row : size_name) {
        if (row.mains != ANY_MAINS)
            PARA_TRACE(PARA_INFO, "--------%s 50HZ:%d %dx%d", row.name, row.mains, row.width,
                       row.height);
        else
            PARA_TRACE(PARA_INFO, "--------%s %dx%d", row.name, row.width, row.height);
    }
    return 0;
}
