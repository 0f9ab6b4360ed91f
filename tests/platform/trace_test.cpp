#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <thread>
#include <vector>

#include "camparam/platform_trace.h"
#include "tests/platform/folder.h"

// Replaces standard error with a packet socket, so that each write arrives as a packet.
class TraceOutput : public testing::Test {
protected:
    TraceOutput() : usual(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0))
    {
        int ends[2];
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
        dup2(ends[0], STDERR_FILENO);
        close(ends[0]);
        reader = ends[1];
    }

    ~TraceOutput() override
    {
        dup2(usual, STDERR_FILENO);
        close(usual);
        close(reader);
    }

    // The next write, or "none".
    std::string next_write() const
    {
        std::string packet(1 << 20, '\0');
        const ssize_t length = recv(reader, packet.data(), packet.size(), MSG_DONTWAIT);
        if (length < 0)
            return "none";
        packet.resize(static_cast<size_t>(length));
        return packet;
    }

private:
    const int usual;
    int reader = -1;
};

TEST_F(TraceOutput, IsTheFormattedMessageInOneWrite)
{
    wnk_traceout(6, "[para %s +%-4d]%s %d->%d\n", "save_param", 7, "odm", 0, 1);
    EXPECT_EQ(next_write(), "[para save_param +7   ]odm 0->1\n");
    EXPECT_EQ(next_write(), "none");
}

TEST_F(TraceOutput, TellsOfMessagesThatCannotBeFormatted)
{
    const wchar_t no_letter[] = {0x110000, 0};
    errno = ENOENT;
    wnk_traceout(3, "%ls\n", no_letter);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(next_write(), "none");
    wnk_traceout(3, "next\n");
    EXPECT_EQ(next_write(), "1 message lost\n");
    EXPECT_EQ(next_write(), "next\n");
}

TEST_F(TraceOutput, HoldsMessagesOfAnyLength)
{
    const std::string text(100000, 't');
    wnk_traceout(7, "%s\n", text.c_str());
    EXPECT_EQ(next_write(), text + "\n");
    EXPECT_EQ(next_write(), "none");
}

TEST_F(TraceOutput, IsNotFilteredAgain)
{
    dbgout_profile[1] = 0;
    wnk_traceout(7, "dump\n");
    EXPECT_EQ(next_write(), "dump\n");
}

TEST_F(TraceOutput, LeavesErrnoAlone)
{
    errno = ENOENT;
    wnk_traceout(3, "open failed: %d\n", 1);
    EXPECT_EQ(errno, ENOENT);

    close(STDERR_FILENO);
    errno = EACCES;
    wnk_traceout(3, "nobody reads this\n");
    EXPECT_EQ(errno, EACCES);
}

TEST_F(TraceOutput, OfSeveralThreadsDoesNotMix)
{
    const int each = 20;
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (char name : {'a', 'b', 'c', 'd'}) {
        threads.emplace_back([name] {
            for (int i = 0; i < each; i++)
                wnk_traceout(6, "%s\n", std::string(100, name).c_str());
        });
    }
    std::vector<std::string> seen;
    EXPECT_TRUE(eventually([&] {
        for (std::string line = next_write(); line != "none"; line = next_write())
            seen.push_back(line);
        return seen.size() == size_t{4} * each;
    }));
    for (std::thread &thread : threads)
        thread.join();

    for (char name : {'a', 'b', 'c', 'd'})
        EXPECT_EQ(std::count(seen.begin(), seen.end(), std::string(100, name) + "\n"), each);
}

TEST_F(TraceOutput, IsOneLineWhateverTheMessageHolds)
{
    wnk_traceout(3, "not found: %s\n", "a\n[para forged +1   ]b\r\tc\x1b[31m\x7f\x01");
    EXPECT_EQ(next_write(), R"(not found: a\n[para forged +1   ]b\r\tc\x1b[31m\x7f\x01)"
                            "\n");
    wnk_traceout(3, "%s\n", "its own\n");
    EXPECT_EQ(next_write(), "its own\\n\n");
    wnk_traceout(3, "%c%c.\n", 0, 31);
    EXPECT_EQ(next_write(), "\\x00\\x1f.\n");
}

TEST_F(TraceOutput, EndsWithOneLineBreak)
{
    wnk_traceout(3, "Error before: [%s]\n\n", "");
    EXPECT_EQ(next_write(), "Error before: []\n");
    wnk_traceout(3, "%s\n\n", "two\n\n");
    EXPECT_EQ(next_write(), "two\\n\\n\n");
    wnk_traceout(3, "none");
    EXPECT_EQ(next_write(), "none\n");
    wnk_traceout(3, "%s", "\n");
    EXPECT_EQ(next_write(), "\\n\n");
    wnk_traceout(3, "\n");
    EXPECT_EQ(next_write(), "\n");
}

TEST_F(TraceOutput, PassesTextInUtf8ButItsControlCharacters)
{
    const char *const text = "S\u00fcd \u5317 \U0001f4f7 \xc2\xa0 \xff\x80 \xc2";
    wnk_traceout(3, "%s\n", text);
    EXPECT_EQ(next_write(), std::string(text) + "\n");
    wnk_traceout(3, "%s\n",
                 "\xc2\x9b"
                 "31m \xc2\x80 \xc2\x9f");
    EXPECT_EQ(next_write(), "\\xc2\\x9b31m \\xc2\\x80 \\xc2\\x9f\n");
}

TEST_F(TraceOutput, OfAFloodOfErrorsIsCounted)
{
    int written = 0;
    int counted = 0;
    const auto take_writes = [&] {
        for (std::string line = next_write(); line != "none"; line = next_write()) {
            if (line.rfind("bad datagram ", 0) == 0)
                written++;
            else if (line.find(" more of: bad datagram %d [%s]\n") != std::string::npos)
                counted += std::stoi(line);
        }
    };
    for (int i = 0; i < 1000; i++) {
        wnk_traceout(3, "bad datagram %d [%s]\n\n", i, "");
        take_writes();
    }
    EXPECT_GE(written, 50);
    EXPECT_LT(written, 1000);

    EXPECT_TRUE(eventually([&] {
        wnk_traceout(6, "progress\n");
        take_writes();
        return written + counted == 1000;
    })) << written
        << " and " << counted;

    wnk_traceout(3, "bad datagram %d [%s]\n\n", 1000, "");
    EXPECT_EQ(next_write(), "bad datagram 1000 []\n") << "after the flood";
}

TEST_F(TraceOutput, OfOtherErrorsAndOfProgressGoesOnInAFlood)
{
    for (int i = 0; i < 200; i++)
        wnk_traceout(3, "bad datagram\n");
    wnk_traceout(3, "disk full\n");
    for (int i = 0; i < 200; i++)
        wnk_traceout(6, "progress\n");
    std::vector<std::string> lines;
    for (std::string line = next_write(); line != "none"; line = next_write())
        lines.push_back(line);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "disk full\n"), 1);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "progress\n"), 200);
}

TEST(TraceLevel, ShowsErrorsUntilItIsSet)
{
    EXPECT_EQ(dbgout_profile[1], 3);
}

TEST_F(TraceOutput, HidesWhatFollowsTheNameOfASecret)
{
    const char *const names[] = {"Key", "pin"};
    ASSERT_EQ(hide_in_traces(names, 2), 0);
    const struct {
        const char *message, *shown;
    } messages[] = {
        {"{\"key\": \"abc\", \"a\": 1}", "{\"key..."},
        {"{\"a\": 1, \"KEY\": \"abc\"}", "{\"a\": 1, \"KEY..."},
        {"a=1&key=abc&pin=5", "a=1&key..."},
        {"pin 5, key abc", "pin..."},
        {"key = 'abc'", "key..."},
        {"para_set_x_pin_cur(5)", "para_set_x_pin..."},
        {"key", "key..."},
        {"keys = 'abc', pins 5, monkey=7, key_2", "keys = 'abc', pins 5, monkey=7, key_2"},
        {"keys key=7", "keys key..."},
        {"nothing", "nothing"},
        {"", ""},
    };
    for (const auto &each : messages) {
        wnk_traceout(6, "%s\n", each.message);
        EXPECT_EQ(next_write(), std::string(each.shown) + "\n");
    }
    ASSERT_EQ(hide_in_traces(nullptr, 0), 0);
    wnk_traceout(6, "key=abc\n");
    EXPECT_EQ(next_write(), "key=abc\n");
}
