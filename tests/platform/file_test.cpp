#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <thread>

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

    static int error_of(const char *path)
    {
        errno = 0;
        const heap_text text(read_file_to_buf(path));
        EXPECT_EQ(text, nullptr);
        return errno;
    }
};

TEST_F(WholeFile, IsRead)
{
    EXPECT_EQ(text_of(write("a", "{\"af\": 1}\n")), "{\"af\": 1}\n");
    EXPECT_EQ(text_of(write("empty", "")), "");
}

TEST_F(WholeFile, OfUpTo4MiBIsRead)
{
    for (const size_t length : {16383UL, 16384UL, 16385UL, 4194304UL}) {
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

TEST_F(WholeFile, ThatCannotBeReadIsNullAndErrnoSaysWhy)
{
    EXPECT_EQ(error_of(path("missing").c_str()), ENOENT);
    EXPECT_EQ(error_of(path("").c_str()), EISDIR);
    EXPECT_EQ(error_of(write("folder_of_this", "").append("/name").c_str()), ENOTDIR);
    EXPECT_EQ(error_of(""), ENOENT);
    EXPECT_EQ(error_of(nullptr), EINVAL);
    ASSERT_EQ(symlink("loop", path("loop").c_str()), 0);
    EXPECT_EQ(error_of(path("loop").c_str()), ELOOP);
    EXPECT_EQ(error_of("/proc/self/mem"), EIO) << "its first page is never mapped";
}

TEST_F(WholeFile, IsNoFifoWhetherOrNotSomeoneWrites)
{
    const std::string fifo = path("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    in_time([&] { EXPECT_EQ(error_of(fifo.c_str()), EINVAL); });

    const int both_ends = open(fifo.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(::write(both_ends, "text", 4), 4);
    in_time([&] { EXPECT_EQ(error_of(fifo.c_str()), EINVAL); });
    close(both_ends);
}

TEST_F(WholeFile, IsNoDeviceOrSocket)
{
    EXPECT_EQ(error_of("/dev/null"), EINVAL);

    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    path("socket").copy(address.sun_path, sizeof address.sun_path - 1);
    const int server = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(server, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    EXPECT_EQ(error_of(address.sun_path), EINVAL);
    close(server);
}

TEST_F(WholeFile, OfMoreThan4MiBIsRefused)
{
    const std::string file = write("large", "");
    ASSERT_EQ(truncate(file.c_str(), 4194305), 0);
    EXPECT_EQ(error_of(file.c_str()), EFBIG);
    EXPECT_EQ(error_of("/proc/self/pagemap"), EFBIG) << "it tells no size";
}

TEST_F(WholeFile, MayChangePlacesWithAFifo)
{
    const std::string file = write("file", "text");
    const std::string fifo = path("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    std::atomic<bool> done{false};
    std::thread exchange([&] {
        while (!done)
            EXPECT_EQ(renameat2(AT_FDCWD, file.c_str(), AT_FDCWD, fifo.c_str(), RENAME_EXCHANGE),
                      0);
    });
    in_time([&] {
        for (int i = 0; i < 20000; i++) {
            const heap_text text(read_file_to_buf(file.c_str()));
            EXPECT_TRUE(text == nullptr || strcmp(text.get(), "text") == 0) << text.get();
        }
    });
    done = true;
    exchange.join();
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
