// Share modules at their limits: sizes, what is refused and how, and what a refusal leaves behind.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <climits>
#include <csignal>
#include <sstream>
#include <string>

#include "camparam/share.h"
#include "share/share_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

class ShareLimits : public testing::Test, public OwnSharedMemory {
protected:
    ShareLimits() { set_trace_level(7); }

    // What publishing traces; nothing for success.
    static std::vector<std::string> refusal(int module, int count, int size)
    {
        forget_traces();
        const void *const map = para_share_publish(module, count, size);
        EXPECT_EQ(map == nullptr, !traces().empty());
        EXPECT_EQ(traces().size(), traces_of("para_share_publish").size());
        return traces_of("para_share_publish");
    }

    static off_t object_size(int module)
    {
        struct stat object = {};
        return stat(object_path(module).c_str(), &object) == 0 ? object.st_size : -1;
    }

    static std::string object(uint32_t count, uint32_t size, size_t bytes)
    {
        return word_bytes(1) + word_bytes(count) + word_bytes(size) + std::string(bytes, '\0');
    }

    // How often this process has objects of share modules in its memory.
    static int mappings()
    {
        std::istringstream maps(read_file("/proc/self/maps").value_or(""));
        int count = 0;
        for (std::string line; std::getline(maps, line);)
            count += line.find("camparam_share_") != std::string::npos ? 1 : 0;
        return count;
    }
};

TEST_F(ShareLimits, AMapHasAGibibyteAtTheMost)
{
    constexpr int gibibyte = 1 << 30, header_size = sizeof(para_share_map);
    EXPECT_THAT(refusal(0, 1, gibibyte - header_size), IsEmpty());
    EXPECT_EQ(object_size(0), gibibyte);
    EXPECT_THAT(refusal(1, 1, gibibyte - header_size + 1),
                ElementsAre("ERROR: share module 1 of 1 x 1073741813 bytes\n"));
    EXPECT_THAT(refusal(1, gibibyte - header_size + 1, 1),
                ElementsAre("ERROR: share module 1 of 1073741813 x 1 bytes\n"));
    EXPECT_THAT(refusal(1, 1 << 15, 1 << 15),
                ElementsAre("ERROR: share module 1 of 32768 x 32768 bytes\n"));
    EXPECT_FALSE(object_exists(1));
    EXPECT_THAT(refusal(1, (1 << 15) - 1, 1 << 15), IsEmpty());
    EXPECT_EQ(object_size(1), header_size + ((1 << 15) - 1) * (1 << 15));
}

TEST_F(ShareLimits, ARefusedSizeIsTracedAsItWasGiven)
{
    // The products of the last ones are small, or none, in 32 bits.
    EXPECT_THAT(refusal(2, -1, 8), ElementsAre("ERROR: share module 2 of -1 x 8 bytes\n"));
    EXPECT_THAT(refusal(2, 8, -1), ElementsAre("ERROR: share module 2 of 8 x -1 bytes\n"));
    EXPECT_THAT(refusal(2, -1, -1), ElementsAre("ERROR: share module 2 of -1 x -1 bytes\n"));
    EXPECT_THAT(refusal(2, -5, 0), ElementsAre("ERROR: share module 2 of -5 x 0 bytes\n"));
    EXPECT_THAT(refusal(2, 0, -5), ElementsAre("ERROR: share module 2 of 0 x -5 bytes\n"));
    EXPECT_THAT(refusal(2, 65536, 65536),
                ElementsAre("ERROR: share module 2 of 65536 x 65536 bytes\n"));
    EXPECT_THAT(refusal(2, INT_MAX, INT_MAX),
                ElementsAre("ERROR: share module 2 of 2147483647 x 2147483647 bytes\n"));
    EXPECT_THAT(refusal(2, INT_MIN, INT_MIN),
                ElementsAre("ERROR: share module 2 of -2147483648 x -2147483648 bytes\n"));
    EXPECT_FALSE(object_exists(2));
    EXPECT_EQ(mappings(), 0);
}

TEST_F(ShareLimits, ARefusedModuleIsTracedAsItWasGiven)
{
    EXPECT_THAT(refusal(-1, 1, 8), ElementsAre("ERROR: share module -1 of 1 x 8 bytes\n"));
    EXPECT_THAT(refusal(PARA_SHARE_MODULES, 1, 8),
                ElementsAre("ERROR: share module 4 of 1 x 8 bytes\n"));
    EXPECT_THAT(refusal(PARA_SHARE_MODULES - 1, 1, 8), IsEmpty());
    EXPECT_THAT(traces(), IsEmpty());
}

TEST_F(ShareLimits, AnObjectThatCannotGrowIsTakenAway)
{
    signal(SIGXFSZ, SIG_IGN);
    const rlimit small = {4096, 4096};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    EXPECT_THAT(refusal(0, 1, 8192), ElementsAre("ERROR: share module 0 cannot be published\n"));
    EXPECT_THAT(levels_of("ERROR: share module 0 cannot be published", "para_share_publish"),
                ElementsAre(3));
    EXPECT_FALSE(object_exists(0));
    EXPECT_EQ(mappings(), 0);
    EXPECT_EQ(para_share_register(0), -1);
}

TEST_F(ShareLimits, AnObjectThatDoesNotHoldItsEntriesIsNotKeptInMemory)
{
    for (const std::string &bytes :
         {object(1, 8, 0), object(1, 8, 7), object(0x10000, 0x10000, 100),
          object(0x7fffffff, 0xffffffff, 100), object(0xffffffff, 0, 100)}) {
        write_object(0, bytes);
        EXPECT_EQ(para_share_register(0), -1) << bytes.size();
        EXPECT_EQ(para_get_share_map(0, 1), nullptr) << bytes.size();
        EXPECT_EQ(mappings(), 0) << bytes.size();
    }
    write_object(0, object(1, 8, 8));
    EXPECT_EQ(para_share_register(0), 0);
    EXPECT_EQ(para_share_register(0), 0);
    EXPECT_EQ(mappings(), 1) << "attached once";
}
