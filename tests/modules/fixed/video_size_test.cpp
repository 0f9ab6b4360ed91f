// Picture sizes: names, dimensions, and their listings.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "camparam/video.h"
#include "support/store.h"

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

const std::vector<std::string> names = {
    "PIC_QCIF",      "PIC_CIF",       "PIC_2CIF",      "PIC_HD1",     "PIC_D1",      "PIC_960H",
    "PIC_QVGA",      "PIC_VGA",       "PIC_XGA",       "PIC_SXGA",    "PIC_UXGA",    "PIC_QXGA",
    "PIC_WVGA",      "PIC_WSXGA",     "PIC_WUXGA",     "PIC_WQXGA",   "PIC_HD720",   "PIC_HD1080",
    "PIC_2304x1296", "PIC_2592x1520", "PIC_5M",        "PIC_6M",      "PIC_UHD4K",   "PIC_3Kx3K",
    "PIC_12M",       "PIC_16M",       "PIC_QQVGA",     "PIC_Q720",    "PIC_QQ720",   "PIC_Q960H",
    "PIC_HD576",     "PIC_960P",      "PIC_QQ960H",    "PIC_480_270", "PIC_960_540", "PIC_640_360",
    "PIC_320_180",   "PIC_720_408",   "PIC_1440_1080", "PIC_960_720", "PIC_768_576", "PIC_720_540",
    "PIC_480_320",   "PIC_USER",      "PIC_720_480",   "PIC_720_576", "PIC_BUTT",
};

struct dimensions {
    std::string name;
    int mains, width, height;
};

const std::vector<dimensions> rows = {
    {"PIC_D1", 1, 720, 576},           {"PIC_D1", 0, 720, 480},
    {"PIC_QCIF", -1, 176, 144},        {"PIC_CIF", -1, 352, 288},
    {"PIC_2CIF", -1, 360, 576},        {"PIC_960H", -1, 960, 576},
    {"PIC_QVGA", -1, 320, 240},        {"PIC_VGA", -1, 640, 480},
    {"PIC_XGA", -1, 1024, 768},        {"PIC_SXGA", -1, 1400, 1050},
    {"PIC_UXGA", -1, 1600, 1400},      {"PIC_QXGA", -1, 2048, 1536},
    {"PIC_WVGA", -1, 854, 480},        {"PIC_WSXGA", -1, 1680, 1050},
    {"PIC_WUXGA", -1, 1920, 1200},     {"PIC_WQXGA", -1, 2560, 1600},
    {"PIC_HD720", -1, 1280, 720},      {"PIC_HD1080", -1, 1920, 1080},
    {"PIC_2304x1296", -1, 2304, 1296}, {"PIC_2592x1520", -1, 2592, 1520},
    {"PIC_5M", -1, 2592, 1944},        {"PIC_UHD4K", -1, 3840, 2160},
    {"PIC_3Kx3K", -1, 3000, 3000},     {"PIC_12M", -1, 4000, 3000},
    {"PIC_QQVGA", -1, 160, 120},       {"PIC_Q720", -1, 640, 360},
    {"PIC_QQ720", -1, 320, 180},       {"PIC_Q960H", -1, 480, 240},
    {"PIC_HD576", -1, 1024, 576},      {"PIC_960P", -1, 960, 540},
    {"PIC_QQ960H", -1, 240, 120},      {"PIC_480_270", -1, 480, 272},
    {"PIC_960_540", -1, 960, 540},     {"PIC_640_360", -1, 640, 360},
    {"PIC_320_180", -1, 320, 180},     {"PIC_720_408", -1, 720, 408},
    {"PIC_1440_1080", -1, 1440, 1080}, {"PIC_960_720", -1, 960, 720},
    {"PIC_768_576", -1, 768, 576},     {"PIC_720_540", -1, 720, 540},
    {"PIC_480_320", -1, 480, 320},     {"PIC_720_480", -1, 720, 480},
    {"PIC_720_576", -1, 720, 576},
};

} // namespace

class VideoSize : public Store {
protected:
    // The dimensions as "720x576", or "none" when there are none, and then nothing was stored.
    static std::string size_of(const char *name, int mains)
    {
        int width = -7, height = -9;
        if (para_get_video_size_byname(name, mains, &width, &height) != 0) {
            EXPECT_EQ(width, -7);
            EXPECT_EQ(height, -9);
            return "none";
        }
        return std::to_string(width) + "x" + std::to_string(height);
    }

    static std::string of(const dimensions &row)
    {
        return std::to_string(row.width) + "x" + std::to_string(row.height);
    }
};

TEST_F(VideoSize, EveryNameHasItsValueAndBack)
{
    ASSERT_EQ(names.size(), 47U);
    for (size_t i = 0; i < names.size(); i++) {
        const int value = static_cast<int>(i);
        EXPECT_STREQ(para_get_video_size_str(value), names[i].c_str());
        EXPECT_EQ(para_get_video_size_num(names[i].c_str()), value) << names[i];
    }
    EXPECT_EQ(para_get_video_size_str(47), nullptr);
    EXPECT_EQ(para_get_video_size_str(-1), nullptr);
}

TEST_F(VideoSize, EveryRowHasItsDimensions)
{
    ASSERT_EQ(rows.size(), 43U);
    for (const dimensions &row : rows) {
        const std::vector<int> mains =
            row.mains < 0 ? std::vector<int>{0, 1, 2, -1} : std::vector<int>{row.mains};
        for (const int hertz : mains)
            EXPECT_EQ(size_of(row.name.c_str(), hertz), of(row)) << row.name << " " << hertz;
    }
    EXPECT_THAT(traces(), IsEmpty());
}

TEST_F(VideoSize, D1DependsOnTheMains)
{
    EXPECT_EQ(size_of("PIC_D1", 1), "720x576");
    EXPECT_EQ(size_of("PIC_D1", 0), "720x480");
    EXPECT_EQ(size_of("PIC_D1", 2), "none");
    EXPECT_EQ(size_of("PIC_D1", -1), "none");
    EXPECT_THAT(traces_of("para_get_video_size_byname"),
                ElementsAre("unsupport PIC_D1\n", "unsupport PIC_D1\n"));
}

TEST_F(VideoSize, SomeSizesHaveNoDimensions)
{
    for (const char *name : {"PIC_HD1", "PIC_6M", "PIC_16M", "PIC_USER", "PIC_BUTT"}) {
        EXPECT_EQ(size_of(name, 1), "none");
        EXPECT_EQ(count_traces(std::string("unsupport ") + name, "para_get_video_size_byname"), 1);
    }
}

TEST_F(VideoSize, NamesAreExact)
{
    for (const char *name : {"pic_hd1080", "PIC_HD108", "PIC_HD10800", "", "HD1080"})
        EXPECT_EQ(size_of(name, 1), "none") << name;
    EXPECT_EQ(size_of(nullptr, 1), "none");
    EXPECT_EQ(traces_of("para_get_video_size_byname").back(), "name is null \n");
}

TEST_F(VideoSize, ListsTheDimensions)
{
    std::vector<std::string> expected = {"--------size:--------\n"};
    for (const dimensions &row : rows) {
        const std::string hertz = row.mains < 0 ? "" : " 50HZ:" + std::to_string(row.mains);
        expected.push_back("--------" + row.name + hertz + " " + of(row) + "\n");
    }
    EXPECT_EQ(para_video_size_enum(nullptr, nullptr), 0);
    EXPECT_THAT(traces_of("para_video_size_enum"), ElementsAreArray(expected));
    EXPECT_EQ(traces().front().level, 6);
}

TEST_F(VideoSize, ListsTheNames)
{
    const std::vector<std::pair<std::string, std::vector<std::string>>> lists = {
        {"size", names},
        {"protocol", {"H264", "H265", "MJPEG"}},
        {"rcMode", {"CBR", "VBR", "ABR", "FIXQP", "AVBR"}},
        {"profile", {"baseline", "mainprofile", "highprofile", "svc-t"}},
    };
    std::vector<std::string> expected;
    for (const auto &[title, entries] : lists) {
        expected.push_back("--" + title + ":--------\n");
        for (size_t i = 0; i < entries.size(); i++)
            expected.push_back("--------" + std::to_string(i) + ":" + entries[i] + "\n");
    }
    EXPECT_EQ(para_video_enum(nullptr, nullptr), 0);
    EXPECT_THAT(traces_of("para_video_enum"), ElementsAreArray(expected));
}

TEST_F(VideoSize, ListingsAreOfferedToTheWorkQueueInOneCall)
{
    write_home("video_range.json", "{}");
    write_home("video_def.json", "{}");
    ASSERT_EQ(para_init_video("video0"), 0);
    ASSERT_EQ(registered_work().size(), 1U);
    const std::vector<fifo_work> work = registered_work()[0];
    ASSERT_EQ(work.size(), 2U);
    EXPECT_STREQ(work[0].name, "para_video");
    EXPECT_STREQ(work[0].type, "enum");
    EXPECT_STREQ(work[1].name, "para_video_size");
    EXPECT_STREQ(work[1].type, "enum");
    work[0].handler(work[0].argument);
    work[1].handler(work[1].argument);
    EXPECT_EQ(count_traces("--------46:PIC_BUTT", "para_video_enum"), 1);
    EXPECT_EQ(count_traces("--------PIC_720_576 720x576", "para_video_size_enum"), 1);

    para_init_video("video1");
    EXPECT_EQ(registered_work().size(), 1U) << "by the first start-up alone";
}

TEST_F(VideoSize, ListingsAreNotOfferedByAFailedStartUp)
{
    EXPECT_EQ(para_init_video("video0"), -1);
    EXPECT_THAT(registered_work(), IsEmpty());
}
