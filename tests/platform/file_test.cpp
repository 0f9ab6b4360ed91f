#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

#include "tests/platform/folder.h"

static std::string joined(const char *dir, const char *name)
{
    char path[128];
    memset(path, 'x', sizeof path);
    EXPECT_EQ(cat_file_name(path, dir, name), path);
    EXPECT_NE(memchr(path, '\0', sizeof path), nullptr);
    return path;
}

TEST(PathName, GetsASeparatorUnlessTheFolderEndsWithOne)
{
    EXPECT_EQ(joined("/data", "af_cur.json"), "/data/af_cur.json");
    EXPECT_EQ(joined("/data/", "af_cur.json"), "/data/af_cur.json");
    EXPECT_EQ(joined("/", "af_cur.json"), "/af_cur.json");
    EXPECT_EQ(joined("", "af_cur.json"), "/af_cur.json");
    EXPECT_EQ(joined("/data", ""), "/data/");
}

TEST(PathName, IsTheBareNameWithoutAFolder)
{
    EXPECT_EQ(joined(nullptr, "af_cur.json"), "af_cur.json");
}

TEST(PathName, HoldsUpTo127Characters)
{
    const std::string longest = "/" + std::string(126, 'n');
    EXPECT_EQ(joined("/", std::string(126, 'n').c_str()), longest);
    EXPECT_EQ(joined("", std::string(126, 'n').c_str()), longest);
    EXPECT_EQ(joined(longest.c_str() + 1, ""), std::string(126, 'n') + "/");
    EXPECT_EQ(joined(nullptr, longest.c_str()), longest);
}

TEST(PathName, ThatDoesNotFitIsEmptyNotCut)
{
    EXPECT_EQ(joined("/", std::string(127, 'n').c_str()), "");
    EXPECT_EQ(joined("", std::string(127, 'n').c_str()), "");
    EXPECT_EQ(joined(std::string(127, 'd').c_str(), ""), "");
    EXPECT_EQ(joined(std::string(4096, 'd').c_str(), "n"), "");
    EXPECT_EQ(joined(nullptr, std::string(128, 'n').c_str()), "");
}

class WholeFile : public Folder {
protected:
    static std::string text_of(const std::string &path)
    {
        const heap_text text(read_file_to_buf(path.c_str()));
        return text != nullptr ? text.get() : "unreadable";
    }
};

TEST_F(WholeFile, IsRead)
{
    EXPECT_EQ(text_of(write("a", "{\"af\": 1}\n")), "{\"af\": 1}\n");
    EXPECT_EQ(text_of(write("empty", "")), "");
}

TEST_F(WholeFile, OfAnyLengthIsRead)
{
    for (const size_t length : {16383UL, 16384UL, 16385UL, 3000000UL}) {
        const std::string bytes(length, 'v');
        EXPECT_EQ(text_of(write("long", bytes)), bytes) << length;
    }
}

TEST_F(WholeFile, KeepsZeroBytesAndAddsOne)
{
    using namespace std::string_literals;
    const heap_text text(read_file_to_buf(write("zero", "a\0b\0"s).c_str()));
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(std::string(text.get(), 5), "a\0b\0\0"s);
}

TEST_F(WholeFile, IsReadThoughItTellsNoSize)
{
    struct stat status = {};
    ASSERT_EQ(stat("/proc/self/status", &status), 0);
    ASSERT_EQ(status.st_size, 0);
    EXPECT_THAT(text_of("/proc/self/status"), testing::HasSubstr("\nPid:\t"));
}

TEST_F(WholeFile, ThatCannotBeReadIsNull)
{
    EXPECT_EQ(read_file_to_buf(path("missing").c_str()), nullptr);
    EXPECT_EQ(read_file_to_buf(path("").c_str()), nullptr) << "a folder";
    EXPECT_EQ(read_file_to_buf(""), nullptr);
    EXPECT_EQ(read_file_to_buf(nullptr), nullptr);
}

TEST_F(WholeFile, IsClosedAgain)
{
    const std::string file = write("a", "text");
    const int first_free = open("/dev/null", O_RDONLY | O_CLOEXEC);
    close(first_free);
    EXPECT_EQ(text_of(file), "text");
    const int still_free = open("/dev/null", O_RDONLY | O_CLOEXEC);
    close(still_free);
    EXPECT_EQ(still_free, first_free);
}
