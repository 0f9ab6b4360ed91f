// Rewriting single lines of ".conf" files.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <climits>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "camparam/conf.h"
#include "modules/text/file_lock.h"
#include "support/store.h"

using testing::ElementsAre;

namespace {

std::atomic<int> lines_before_failure{INT_MAX};

ssize_t read_line(char **line, size_t *size, int delimiter, FILE *file)
{
    if (lines_before_failure-- <= 0)
        return -1; // for want of memory: neither the end of the file nor an error of it
    using reader = ssize_t(char **, size_t *, int, FILE *);
    auto *const read = reinterpret_cast<reader *>(dlsym(RTLD_NEXT, "getdelim"));
    return read(line, size, delimiter, file);
}

} // namespace

extern "C" {

PARA_API ssize_t getline(char **line, size_t *size, FILE *file)
{
    return read_line(line, size, '\n', file);
}

// What an optimised call of getline() is in the C library's header.
PARA_API ssize_t __getdelim(char **line, size_t *size, int delimiter, FILE *file)
{
    return read_line(line, size, delimiter, file);
}

} // extern "C"

class ConfLine : public Store {
protected:
    // The file after a rewrite of what it held before.
    std::string rewritten(const std::string &before, const std::string &key,
                          const std::string &line)
    {
        write_file(path, before);
        EXPECT_EQ(update_conf(path.c_str(), key.c_str(), line.c_str()), 0);
        return contents();
    }
    std::string contents() { return read_file(path).value_or("none"); }

    const std::string path = data + "/file.conf";
};

using ConfLineFormat = ConfLine;

TEST_F(ConfLine, ALineWithTheKeyIsReplaced)
{
    EXPECT_EQ(rewritten("port=80\n", "port", "port=8080"), "port=8080\n");
    EXPECT_EQ(rewritten("port = \"80\"\n", "port", "port=8080"), "port=8080\n");
    EXPECT_EQ(rewritten("port =80\n", "port", "anything else"), "anything else\n");
    EXPECT_EQ(rewritten("port \n", "port", ""), "\n");
    EXPECT_EQ(rewritten("port=\n", "port", "port=1"), "port=1\n");
}

TEST_F(ConfLine, OtherLinesAreKeptAsTheyAre)
{
    const std::string others = "portal=1\n\n# port=2\n port=3\nPort=4\nport\n\nport\t=5\nport:6\n"
                               "\r\nsport=7\nport\"=8\n   \n";
    EXPECT_EQ(rewritten(others, "port", "port=8080"), others);
    EXPECT_EQ(rewritten("a=1\nport=80\n" + others, "port", "port=8080"),
              "a=1\nport=8080\n" + others);
}

TEST_F(ConfLine, EveryMatchingLineIsReplaced)
{
    EXPECT_EQ(rewritten("port=1\na=2\nport = 3\nport=4", "port", "port=9"),
              "port=9\na=2\nport=9\nport=9\n");
}

TEST_F(ConfLine, AKeyThatNoLineHasIsNotAdded)
{
    EXPECT_EQ(rewritten("a=1\n", "port", "port=9"), "a=1\n");
    EXPECT_EQ(rewritten("", "port", "port=9"), "");
}

TEST_F(ConfLine, AKeyThatBeginsAnotherIsNotTakenForIt)
{
    EXPECT_EQ(rewritten("port=1\nport_tls=2\nport2=3\n", "port", "port=9"),
              "port=9\nport_tls=2\nport2=3\n");
    EXPECT_EQ(rewritten("port=1\nport_tls=2\n", "port_tls", "port_tls=9"), "port=1\nport_tls=9\n");
    EXPECT_EQ(rewritten("port=1\n", "port=1", "port=9"), "port=1\n");
}

TEST_F(ConfLine, TheLastLineNeedsNoLineEnd)
{
    EXPECT_EQ(rewritten("port=1\na=2", "port", "port=9"), "port=9\na=2");
    EXPECT_EQ(rewritten("a=2\nport=1", "port", "port=9"), "a=2\nport=9\n");
    EXPECT_EQ(rewritten("a=2\nport", "port", "port=9"), "a=2\nport");
}

TEST_F(ConfLine, LinesThatBeginWithAZeroByteAreDropped)
{
    const std::string zero(1, '\0');
    EXPECT_EQ(
        rewritten("a=1\n" + zero + "port=2\n" + zero + "\n\nport=3\n" + zero, "port", "port=9"),
        "a=1\n\nport=9\n");
    EXPECT_EQ(rewritten("a=1" + zero + "2\nport=3\n", "port", "port=9"),
              "a=1" + zero + "2\nport=9\n")
        << "later in a line it is kept";
}

TEST_F(ConfLine, BytesOfAnyKindAreKept)
{
    std::string bytes;
    for (int byte = 1; byte < 256; byte++)
        bytes += static_cast<char>(byte);
    EXPECT_EQ(rewritten(bytes + "\r\nport=1\r\n", "port", "port=%s%n"), bytes + "\r\nport=%s%n\n");
}

TEST_F(ConfLine, LongLinesLoseNothing)
{
    const std::string text(10 * 1024, 'x');
    const std::string others = "a=" + text + "\n" + text + "\nb = \"" + text + "\"\n";
    EXPECT_EQ(rewritten(others + "port=1\n" + others, "port", "port=" + text),
              others + "port=" + text + "\n" + others);
    EXPECT_EQ(rewritten("port = \"" + text + "\"\n" + others, "port", "port=1"),
              "port=1\n" + others);
    EXPECT_EQ(rewritten("a=1\n" + text + "=2\n", text, text + "=9"), "a=1\n" + text + "=9\n");
}

TEST_F(ConfLine, LinesAboutTheSizeOfABufferLoseNothing)
{
    for (const size_t length : {62U, 63U, 64U, 94U, 95U, 96U, 97U, 119U, 120U, 2046U, 2047U, 2048U,
                                2049U, 4095U, 4096U, 4097U}) {
        const std::string line(length, 'x');
        EXPECT_EQ(rewritten(line + "\nport=1\n" + line, "port", "port=" + line),
                  line + "\nport=" + line + "\n" + line)
            << length;
    }
}

TEST_F(ConfLine, LargeFilesLoseNothing)
{
    std::string before, after;
    while (before.size() < 1024 * 1024) {
        const std::string number = std::to_string(before.size());
        const std::string others = "key" + number + " = \"" + std::string(70, 'v') + "\"\n\n";
        before += others + "port=" + number + "\n";
        after += others + "port=9\n";
    }
    EXPECT_TRUE(rewritten(before, "port", "port=9") == after);
    EXPECT_TRUE(rewritten(before, "absent", "absent=9") == before);
}

TEST_F(ConfLine, AShorterFileLeavesNoRest)
{
    EXPECT_EQ(rewritten("port=" + std::string(5000, '1') + "\na=1\n", "port", "port=9"),
              "port=9\na=1\n");
}

TEST_F(ConfLine, AFileThatIsNotReadToItsEndStaysAsItIs)
{
    const std::string before = "port=80\nname=front\nlast=1\n";
    write_file(path, before);
    for (const int lines : {0, 1, 2}) {
        lines_before_failure = lines;
        EXPECT_EQ(update_conf(path.c_str(), "port", "port=8080"), -1);
        EXPECT_EQ(contents(), before) << lines;
    }
    lines_before_failure = INT_MAX;
    EXPECT_EQ(update_conf(path.c_str(), "port", "port=8080"), 0);
    EXPECT_EQ(contents(), "port=8080\nname=front\nlast=1\n");
}

TEST_F(ConfLine, AMissingFileIsNotCreated)
{
    EXPECT_EQ(update_conf(path.c_str(), "port", "port=1"), -1);
    EXPECT_EQ(update_line_conf(path.c_str(), "port", "port=1"), -1);
    EXPECT_EQ(update_line_conf_str(path.c_str(), "port", "1", "%s=%s"), -1);
    EXPECT_EQ(update_line_conf_int(path.c_str(), "port", 1, "%s=%d"), -1);
    EXPECT_EQ(contents(), "none");
    EXPECT_EQ(update_conf((data + "/none/file.conf").c_str(), "port", "port=1"), -1);
    EXPECT_EQ(update_conf(data.c_str(), "port", "port=1"), -1) << "a folder";
    EXPECT_EQ(update_conf("", "port", "port=1"), -1);
}

TEST_F(ConfLine, NullTextsAreRefused)
{
    write_file(path, "port=1\n");
    EXPECT_EQ(update_conf(nullptr, "port", "port=2"), -1);
    EXPECT_EQ(update_conf(path.c_str(), nullptr, "port=2"), -1);
    EXPECT_EQ(update_conf(path.c_str(), "port", nullptr), -1);
    EXPECT_EQ(update_line_conf(path.c_str(), "port", nullptr), -1);
    EXPECT_EQ(update_line_conf_str(path.c_str(), nullptr, "2", "%s=%s"), -1);
    EXPECT_EQ(update_line_conf_str(path.c_str(), "port", nullptr, "%s=%s"), -1);
    EXPECT_EQ(update_line_conf_str(path.c_str(), "port", "2", nullptr), -1);
    EXPECT_EQ(update_line_conf_int(path.c_str(), nullptr, 2, "%s=%d"), -1);
    EXPECT_EQ(update_line_conf_int(path.c_str(), "port", 2, nullptr), -1);
    EXPECT_EQ(contents(), "port=1\n");
}

TEST_F(ConfLine, AWholeLineMayBeGiven)
{
    write_file(path, "port=1\n");
    EXPECT_EQ(update_line_conf(path.c_str(), "port", "something = else"), 0);
    EXPECT_EQ(contents(), "something = else\n");
}

TEST_F(ConfLine, AFileInThePlaceOfALinkIsTheOneThatIsWritten)
{
    write_file(data + "/real.conf", "port=1\n");
    ASSERT_EQ(symlink("real.conf", path.c_str()), 0);
    EXPECT_EQ(update_conf(path.c_str(), "port", "port=2"), 0);
    EXPECT_EQ(read_data("real.conf"), "port=2\n");
    struct stat status = {};
    EXPECT_EQ(lstat(path.c_str(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
}

TEST_F(ConfLine, WaitsForAnotherProcessThatHasTheFileLockedAndKeepsItsLines)
{
    write_file(path, "port=1\n");
    lock_holder other(path);
    std::atomic<bool> done{false};
    std::thread rewriter([&] {
        EXPECT_EQ(update_conf(path.c_str(), "port", "port=9"), 0);
        done = true;
    });
    EXPECT_TRUE(wait_until([] { return lock_attempts() >= 1; }));
    EXPECT_EQ(contents(), "port=1\n");
    write_file(path, "port=1\nadded=1\n");
    EXPECT_FALSE(done);
    other.release();
    rewriter.join();
    EXPECT_EQ(contents(), "port=9\nadded=1\n");
}

TEST_F(ConfLine, ASignalDoesNotMakeTheFileOurs)
{
    write_file(path, "port=1\n");
    lock_holder other(path);
    interrupt_locks(3);
    std::thread rewriter([this] { EXPECT_EQ(update_conf(path.c_str(), "port", "port=9"), 0); });
    EXPECT_TRUE(wait_until([] { return lock_attempts() == 4; }));
    EXPECT_EQ(contents(), "port=1\n");
    other.release();
    rewriter.join();
    EXPECT_EQ(contents(), "port=9\n");
}

TEST_F(ConfLine, GivesUpTheLockOnAWholeFile)
{
    rewritten("port=1\nname=x\n", "port", "port=2");
    EXPECT_EQ(bytes_at_unlock(), "port=2\nname=x\n");
    EXPECT_TRUE(last_lock_closes_on_exec()) << "the host starts programs meanwhile";
}

TEST_F(ConfLine, ReleasesTheLock)
{
    rewritten("port=1\n", "port", "port=2");
    lock_holder other(path);
    EXPECT_EQ(lock_attempts(), 1);
}

TEST_F(ConfLine, SeveralThreadsMayRewriteOneFile)
{
    std::string before;
    for (int i = 0; i < 4; i++)
        before += "key" + std::to_string(i) + "=start\n";
    write_file(path, before);
    std::vector<std::thread> writers;
    for (int i = 0; i < 4; i++) {
        writers.emplace_back([this, i] {
            const std::string key = "key" + std::to_string(i);
            for (int value = 0; value < 50; value++)
                EXPECT_EQ(update_line_conf_int(path.c_str(), key.c_str(), value, "%s=%d"), 0);
        });
    }
    for (std::thread &writer : writers)
        writer.join();
    EXPECT_EQ(contents(), "key0=49\nkey1=49\nkey2=49\nkey3=49\n");
}

// --- Formats ---

TEST_F(ConfLineFormat, TextsInQuotesOrNot)
{
    write_file(path, "a=1\nname=old\n");
    EXPECT_EQ(update_line_conf_str(path.c_str(), "name", "two words", "%s = \"%s\""), 0);
    EXPECT_EQ(contents(), "a=1\nname = \"two words\"\n");
    EXPECT_EQ(update_line_conf_str(path.c_str(), "name", "x", "%s=%s"), 0);
    EXPECT_EQ(contents(), "a=1\nname=x\n");
    EXPECT_EQ(update_line_conf_str(path.c_str(), "name", "", "%s = \"%s\""), 0);
    EXPECT_EQ(contents(), "a=1\nname = \"\"\n");
    EXPECT_EQ(update_line_conf_str(path.c_str(), "name", "%d%s%n", "%s=%s"), 0);
    EXPECT_EQ(contents(), "a=1\nname=%d%s%n\n");
}

TEST_F(ConfLineFormat, NumbersInQuotesOrNot)
{
    write_file(path, "port = \"80\"\na=1\n");
    EXPECT_EQ(update_line_conf_int(path.c_str(), "port", 8080, "%s=%d"), 0);
    EXPECT_EQ(contents(), "port=8080\na=1\n");
    EXPECT_EQ(update_line_conf_int(path.c_str(), "port", INT_MIN, "%s = \"%d\""), 0);
    EXPECT_EQ(contents(), "port = \"-2147483648\"\na=1\n");
    EXPECT_EQ(update_line_conf_int(path.c_str(), "port", INT_MAX, "%s=%d"), 0);
    EXPECT_EQ(contents(), "port=2147483647\na=1\n");
}

TEST_F(ConfLineFormat, AnotherFormatIsTracedAndChangesNothing)
{
    write_file(path, "port=80\n");
    for (const char *format : {"%s:%s", "%s = %s", "%s=\"%s\"", "%s = \"%d\"", "%s=%d", "%s=%s\n",
                               " %s=%s", "%s=%s%s", "", "port=1"}) {
        forget_traces();
        EXPECT_EQ(update_line_conf_str(path.c_str(), "port", "1", format), -1) << format;
        EXPECT_THAT(traces_of("update_line_conf_str"), ElementsAre("error: format is wrong\n"));
        EXPECT_THAT(levels_of("error: format is wrong", "update_line_conf_str"), ElementsAre(3));
    }
    for (const char *format : {"%s:%d", "%s = %d", "%s = \"%s\"", "%s=%s", "%s=%x", "%d=%s", ""}) {
        forget_traces();
        EXPECT_EQ(update_line_conf_int(path.c_str(), "port", 1, format), -1) << format;
        EXPECT_THAT(traces_of("update_line_conf_int"), ElementsAre("error: format is wrong\n"));
        EXPECT_THAT(levels_of("error: format is wrong", "update_line_conf_int"), ElementsAre(3));
    }
    EXPECT_EQ(contents(), "port=80\n");
}

TEST_F(ConfLineFormat, AnotherFormatIsFoundFirst)
{
    EXPECT_EQ(update_line_conf_str(path.c_str(), "port", "1", "%s:%s"), -1);
    EXPECT_THAT(traces_of("update_line_conf_str"), ElementsAre("error: format is wrong\n"));
    EXPECT_EQ(contents(), "none");
}

TEST_F(ConfLineFormat, LongKeysAndTextsLoseNothing)
{
    const std::string key(10 * 1024, 'k');
    for (const size_t length : {55U, 63U, 64U, 255U, 256U, 10240U}) {
        const std::string text(length, 't');
        write_file(path, "a=1\nname=1\n" + key + "=2\n");
        EXPECT_EQ(update_line_conf_str(path.c_str(), "name", text.c_str(), "%s = \"%s\""), 0);
        EXPECT_EQ(update_line_conf_str(path.c_str(), key.c_str(), text.c_str(), "%s=%s"), 0);
        EXPECT_EQ(contents(), "a=1\nname = \"" + text + "\"\n" + key + "=" + text + "\n");
    }
    EXPECT_EQ(update_line_conf_int(path.c_str(), key.c_str(), -5, "%s = \"%d\""), 0);
    EXPECT_EQ(contents().substr(contents().find(key)), key + " = \"-5\"\n");
}
