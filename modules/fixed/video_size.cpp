// Picture sizes: the dimensions that some names of the member "size" have.
#include <cstring>

#include "base/trace.h"
#include "camparam/video.h"

enum { HZ_60 = 0, HZ_50 = 1, ANY_MAINS = -1 };

struct picture_size {
    const char *name;
    int mains = ANY_MAINS; // for which the row holds
    int width, height;
};

// In look-up and listing order. Some sizes differ from the usual meaning of their names.
static const picture_size size_name[] = {
    {.name = "PIC_D1", .mains = HZ_50, .width = 720, .height = 576},
    {.name = "PIC_D1", .mains = HZ_60, .width = 720, .height = 480},
    {.name = "PIC_QCIF", .width = 176, .height = 144},
    {.name = "PIC_CIF", .width = 352, .height = 288},
    {.name = "PIC_2CIF", .width = 360, .height = 576},
    {.name = "PIC_960H", .width = 960, .height = 576},
    {.name = "PIC_QVGA", .width = 320, .height = 240},
    {.name = "PIC_VGA", .width = 640, .height = 480},
    {.name = "PIC_XGA", .width = 1024, .height = 768},
    {.name = "PIC_SXGA", .width = 1400, .height = 1050},
    {.name = "PIC_UXGA", .width = 1600, .height = 1400},
    {.name = "PIC_QXGA", .width = 2048, .height = 1536},
    {.name = "PIC_WVGA", .width = 854, .height = 480},
    {.name = "PIC_WSXGA", .width = 1680, .height = 1050},
    {.name = "PIC_WUXGA", .width = 1920, .height = 1200},
    {.name = "PIC_WQXGA", .width = 2560, .height = 1600},
    {.name = "PIC_HD720", .width = 1280, .height = 720},
    {.name = "PIC_HD1080", .width = 1920, .height = 1080},
    {.name = "PIC_2304x1296", .width = 2304, .height = 1296},
    {.name = "PIC_2592x1520", .width = 2592, .height = 1520},
    {.name = "PIC_5M", .width = 2592, .height = 1944},
    {.name = "PIC_UHD4K", .width = 3840, .height = 2160},
    {.name = "PIC_3Kx3K", .width = 3000, .height = 3000},
    {.name = "PIC_12M", .width = 4000, .height = 3000},
    {.name = "PIC_QQVGA", .width = 160, .height = 120},
    {.name = "PIC_Q720", .width = 640, .height = 360},
    {.name = "PIC_QQ720", .width = 320, .height = 180},
    {.name = "PIC_Q960H", .width = 480, .height = 240},
    {.name = "PIC_HD576", .width = 1024, .height = 576},
    {.name = "PIC_960P", .width = 960, .height = 540},
    {.name = "PIC_QQ960H", .width = 240, .height = 120},
    {.name = "PIC_480_270", .width = 480, .height = 272},
    {.name = "PIC_960_540", .width = 960, .height = 540},
    {.name = "PIC_640_360", .width = 640, .height = 360},
    {.name = "PIC_320_180", .width = 320, .height = 180},
    {.name = "PIC_720_408", .width = 720, .height = 408},
    {.name = "PIC_1440_1080", .width = 1440, .height = 1080},
    {.name = "PIC_960_720", .width = 960, .height = 720},
    {.name = "PIC_768_576", .width = 768, .height = 576},
    {.name = "PIC_720_540", .width = 720, .height = 540},
    {.name = "PIC_480_320", .width = 480, .height = 320},
    {.name = "PIC_720_480", .width = 720, .height = 480},
    {.name = "PIC_720_576", .width = 720, .height = 576},
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
