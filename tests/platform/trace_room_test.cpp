// Traces while nobody reads standard error.
#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <sstream>
#include <thread>

#include "tests/platform/folder.h"

namespace {

// The ends of an output: {reader, writer}.
std::pair<int, int> open_terminal()
{
    const int reader = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_EQ(grantpt(reader), 0);
    EXPECT_EQ(unlockpt(reader), 0);
    char name[128] = "";
    EXPECT_EQ(ptsname_r(reader, name, sizeof name), 0);
    const int writer = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios raw = {};
    EXPECT_EQ(tcgetattr(writer, &raw), 0);
    cfmakeraw(&raw);
    EXPECT_EQ(tcsetattr(writer, TCSANOW, &raw), 0);
    return {reader, writer};
}

std::pair<int, int> open_output(const std::string &kind)
{
    if (kind == "Terminal")
        return open_terminal();
    int ends[2] = {-1, -1};
    if (kind == "Pipe")
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    else
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    return {ends[0], ends[1]};
}

// Whether it happens to the descriptor within 50 ms: the kernel moves the bytes of a terminal
// later.
bool happens(int descriptor, short event)
{
    pollfd asked = {descriptor, event, 0};
    return poll(&asked, 1, 50) == 1;
}

} // namespace

class TraceWithoutReader : public testing::TestWithParam<std::string> {
protected:
    TraceWithoutReader() : usual(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0))
    {
        const auto [first, second] = open_output(GetParam());
        reader = first;
        dup2(second, STDERR_FILENO);
        close(second);
        fcntl(reader, F_SETFL, O_NONBLOCK);
    }

    ~TraceWithoutReader() override
    {
        dup2(usual, STDERR_FILENO);
        close(usual);
        close(reader);
    }

    // Writes "-" until there is no room.
    static void fill()
    {
        const int flags = fcntl(STDERR_FILENO, F_GETFL);
        fcntl(STDERR_FILENO, F_SETFL, flags | O_NONBLOCK);
        const std::string block(4096, '-');
        do {
            for (const size_t size : {block.size(), size_t{1}}) {
                while (write(STDERR_FILENO, block.data(), size) > 0) {
                }
                EXPECT_EQ(errno, EAGAIN);
            }
        } while (happens(STDERR_FILENO, POLLOUT));
        fcntl(STDERR_FILENO, F_SETFL, flags);
    }

    // What was written and not read.
    std::string drain() const
    {
        std::string all;
        char block[65536];
        while (happens(reader, POLLIN)) {
            const ssize_t length = read(reader, block, sizeof block);
            all.append(block, length > 0 ? static_cast<size_t>(length) : 0);
        }
        return all;
    }

    const int usual;
    int reader;
};

INSTANTIATE_TEST_SUITE_P(Each, TraceWithoutReader, testing::Values("Pipe", "Terminal", "Socket"),
                         [](const auto &each) { return each.param; });

TEST_P(TraceWithoutReader, GoesOnAndTellsHowManyMessagesWereLost)
{
    fill();
    in_time([] {
        for (int i = 0; i < 12; i++)
            wnk_traceout(3, "lost %d\n", i);
    });
    drain();
    wnk_traceout(3, "one\n");
    wnk_traceout(3, "two\n");
    EXPECT_EQ(drain(), "12 messages lost\none\ntwo\n");

    fill();
    in_time([] { wnk_traceout(3, "lost\n"); });
    drain();
    wnk_traceout(3, "three\n");
    EXPECT_EQ(drain(), "1 message lost\nthree\n");
}

TEST_P(TraceWithoutReader, LeavesTheFlagsOfTheOpenFileAndErrno)
{
    const int flags = fcntl(STDERR_FILENO, F_GETFL);
    fill();
    in_time([flags] {
        errno = ENOENT;
        wnk_traceout(3, "lost\n");
        EXPECT_EQ(errno, ENOENT);
        EXPECT_EQ(fcntl(STDERR_FILENO, F_GETFL), flags);
    });
    drain();
    wnk_traceout(3, "one\n");
    EXPECT_EQ(fcntl(STDERR_FILENO, F_GETFL), flags);
}

// What follows a message that was written in part waits for the rest of it.
TEST_P(TraceWithoutReader, CompletesAMessageThatItBegan)
{
    const std::string text(300000, 't');
    std::string seen;
    in_time([&] { wnk_traceout(7, "%s\n", text.c_str()); });
    in_time([] { wnk_traceout(7, "lost\n"); });
    EXPECT_TRUE(eventually([&] {
        seen += drain();
        in_time([] { wnk_traceout(3, "."); });
        return seen.find('.') != std::string::npos;
    }));
    EXPECT_EQ(seen.substr(0, text.size() + 1), text + "\n");
    const std::string behind = seen.substr(text.size() + 1);
    EXPECT_THAT(behind, testing::MatchesRegex("[0-9]+ messages? lost\n(\\.\n)+"));
}

// Traces while the process can open nothing.
static void trace_without_opening(const std::string &text)
{
    in_time([&text] {
        rlimit usual = {};
        EXPECT_EQ(getrlimit(RLIMIT_NOFILE, &usual), 0);
        rlimit no_more = usual;
        no_more.rlim_cur = 3;
        EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &no_more), 0);
        wnk_traceout(3, "%s\n", text.c_str());
        EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &usual), 0);
    });
}

TEST_P(TraceWithoutReader, GoesOnWhereTheOutputCannotBeOpenedAgain)
{
    fill();
    trace_without_opening("lost");
    drain();
    const std::string text(300000, 't');
    trace_without_opening(text);
    std::string seen;
    EXPECT_TRUE(eventually([&] {
        seen += drain();
        trace_without_opening(".");
        return seen.find('.') != std::string::npos;
    }));
    const std::string begin = "1 message lost\n" + text + "\n";
    EXPECT_EQ(seen.substr(0, begin.size()), begin);
}

TEST_P(TraceWithoutReader, GoesOnWhenTheReaderHasGone)
{
    signal(SIGPIPE, SIG_IGN);
    close(reader);
    in_time([] { wnk_traceout(3, "lost\n"); });
    trace_without_opening("lost");

    const auto [first, second] = open_output(GetParam());
    reader = first;
    fcntl(reader, F_SETFL, O_NONBLOCK);
    dup2(second, STDERR_FILENO);
    close(second);
    wnk_traceout(3, "one\n");
    EXPECT_EQ(drain(), "2 messages lost\none\n");
}

TEST_P(TraceWithoutReader, CountsEachMessageOfSeveralThreads)
{
    const int each = 200;
    std::atomic<int> running{4};
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (char name : {'a', 'b', 'c', 'd'}) {
        threads.emplace_back([name, &running] {
            for (int i = 0; i < each; i++)
                wnk_traceout(6, "%s\n", std::string(9000, name).c_str());
            running--;
        });
    }
    std::string seen;
    EXPECT_TRUE(eventually([&] {
        seen += drain();
        return running == 0;
    }));
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_TRUE(eventually([&] {
        wnk_traceout(6, ".");
        seen += drain();
        return seen.find('.') != std::string::npos;
    }));

    int counted = 0;
    std::istringstream lines(seen);
    for (std::string line; std::getline(lines, line) && line != ".";) {
        const bool whole = line == std::string(9000, line[0]);
        counted += whole ? 1 : std::stoi(line);
        EXPECT_TRUE(whole || line.find(" lost") != std::string::npos) << line;
    }
    EXPECT_GE(counted, 4 * each);
}

TEST_P(TraceWithoutReader, TellsOfTheLastLossAtTheEndOfTheProcess)
{
    fill();
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const pid_t child = fork();
    if (child == 0) {
        wnk_traceout(3, "lost\n");
        wnk_traceout(3, "lost\n");
        dup2(ends[1], STDERR_FILENO); // where there is room
        exit(0);
    }
    close(ends[1]);
    char line[100] = "";
    EXPECT_GT(read(ends[0], line, sizeof line - 1), 0);
    EXPECT_STREQ(line, "2 messages lost\n");
    EXPECT_EQ(waitpid(child, nullptr, 0), child);
    close(ends[0]);
}

class TraceFile : public Folder {};

TEST_F(TraceFile, TakesAllMessages)
{
    const int usual = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
    const int file = open(path("trace").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    dup2(file, STDERR_FILENO);
    wnk_traceout(3, "one\n");
    const std::string text(1000000, 't');
    wnk_traceout(3, "%s\n", text.c_str());
    wnk_traceout(3, "two\n");
    dup2(usual, STDERR_FILENO);
    close(usual);
    close(file);
    EXPECT_EQ(read("trace"), "one\n" + text + "\ntwo\n");
}

TEST_F(TraceFile, ThatIsFullLosesMessages)
{
    const int usual = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    dup2(full, STDERR_FILENO);
    wnk_traceout(3, "lost\n");
    close(STDERR_FILENO);
    wnk_traceout(3, "lost too\n");
    const int file = open(path("trace").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    dup2(file, STDERR_FILENO);
    wnk_traceout(3, "one\n");
    dup2(usual, STDERR_FILENO);
    for (const int opened : {usual, full, file})
        close(opened);
    EXPECT_EQ(read("trace"), "2 messages lost\none\n");
}
