#include <cstring>
#include <limits>

#include "tests/platform/folder.h"

using testing::ElementsAre;
using testing::Pair;
using namespace std::string_literals;

class ConfText : public Folder {
protected:
    // The entries of a text.
    std::vector<std::pair<std::string, std::string>> entries(const std::string &text) const
    {
        Conf conf;
        EXPECT_EQ(conf.parse(write("text.conf", text)), 0);
        return conf.entries();
    }
};

TEST_F(ConfText, MayQuoteItsValues)
{
    EXPECT_THAT(entries("a = \"1\"\nb=2\nc=\"3\"\nd = 4\n"),
                ElementsAre(Pair("a", "1"), Pair("b", "2"), Pair("c", "3"), Pair("d", "4")));
}

TEST_F(ConfText, MayHaveBlanksAroundEachPart)
{
    EXPECT_THAT(entries("  a\t= \t1 2  \n\tb  =\" 3 \"\t\nc=4\r\nd = \"5\"\r\n"),
                ElementsAre(Pair("a", "1 2"), Pair("b", " 3 "), Pair("c", "4"), Pair("d", "5")));
}

TEST_F(ConfText, CountsVerticalTabAndFormFeedAsBlanks)
{
    EXPECT_THAT(entries("\f\va\v=\f1\v\nb\vb=2\n"), ElementsAre(Pair("a", "1")));
}

TEST_F(ConfText, SkipsCommentsAndBlankLines)
{
    EXPECT_THAT(entries("# a = 1\n\n   \n  #b=2\n#\nc = 3\n"), ElementsAre(Pair("c", "3")));
}

TEST_F(ConfText, SkipsBrokenLinesOnly)
{
    const std::string broken = "no equals sign\n= value\n=\n two words = 1\n\"quoted\"\n";
    EXPECT_THAT(entries("first=1\n" + broken + "last=2\n"),
                ElementsAre(Pair("first", "1"), Pair("last", "2")));
}

TEST_F(ConfText, SkipsLinesThatAWriteLeftUnfinished)
{
    EXPECT_THAT(entries("a = \"1\"\nb = \"half"), ElementsAre(Pair("a", "1")));
    EXPECT_THAT(entries("a = \"1\"\nb = \""), ElementsAre(Pair("a", "1")));
    EXPECT_THAT(entries("a = \"1\"\nb = \"2\0\"\nc = \"3\"\n\0\0\0\0"s),
                ElementsAre(Pair("a", "1"), Pair("c", "3")));
}

TEST_F(ConfText, MayLackTheLastLineEnd)
{
    EXPECT_THAT(entries("a=1\nb=2"), ElementsAre(Pair("a", "1"), Pair("b", "2")));
    EXPECT_THAT(entries(""), ElementsAre());
    EXPECT_THAT(entries("a="), ElementsAre(Pair("a", "")));
}

TEST_F(ConfText, KeepsTheFirstPlaceAndTheLastValueOfARepeatedKey)
{
    EXPECT_THAT(entries("a=1\nb=2\na=3\n"), ElementsAre(Pair("a", "3"), Pair("b", "2")));
}

TEST_F(ConfText, BringsEveryValueBack)
{
    const std::string values[] = {
        "",
        " ",
        " leading and trailing \t",
        "#no comment",
        "a = b",
        "=",
        "Kamera Süd 北 \xf0\x9f\x93\xb7",
        "\xff\x80 not UTF-8",
        "\x01\x1b\x7f",
        "back\\slash \\n",
        "100%s",
        "carriage\rreturn\r",
        "it's",
        "\"",
        "\"quoted\"",
        "say \"hi\" # twice",
        std::string(255, 'v'),
        std::string(256, 'v'),
        std::string(1000000, 'v'),
    };
    Conf saved;
    for (size_t i = 0; i < std::size(values); i++)
        EXPECT_EQ(saved.set("key" + std::to_string(i), values[i]), 1);
    ASSERT_EQ(saved.save(path("round.conf")), 0);

    Conf loaded;
    ASSERT_EQ(loaded.parse(path("round.conf")), 0);
    EXPECT_EQ(loaded.entries(), saved.entries());
    for (size_t i = 0; i < std::size(values); i++)
        EXPECT_EQ(loaded.get("key" + std::to_string(i)), values[i]);
}

TEST_F(ConfText, BringsLongKeysBack)
{
    const std::string key(5000, 'k');
    Conf saved;
    saved.set(key, "1");
    saved.set(key + "2", "2");
    ASSERT_EQ(saved.save(path("keys.conf")), 0);
    EXPECT_THAT(entries(read("keys.conf")), ElementsAre(Pair(key, "1"), Pair(key + "2", "2")));
}

TEST_F(ConfText, IsWrittenWithQuotes)
{
    Conf conf;
    conf.set("port", "80");
    conf.set("name", "a b");
    ASSERT_EQ(conf.save(path("written.conf")), 0);
    EXPECT_EQ(read("written.conf"), "port = \"80\"\nname = \"a b\"\n");
}

TEST_F(ConfText, IsNotWrittenToAFileThatDidNotOpen)
{
    EXPECT_EQ(loop_2_conf(nullptr, "port", "80"), 0);
}

TEST_F(ConfText, LeavesOutWhatNoLineCanHold)
{
    FILE *const file = fopen(path("callback.conf").c_str(), "wb");
    ASSERT_NE(file, nullptr);
    loop_2_conf(file, "a", "1");
    loop_2_conf(file, "b", "2\nport = \"6\"");
    loop_2_conf(file, "c=", "3");
    loop_2_conf(file, "", "4");
    loop_2_conf(file, "d", "5");
    fclose(file);
    EXPECT_EQ(read("callback.conf"), "a = \"1\"\nd = \"5\"\n");
}

class ConfDump : public testing::Test {
protected:
    ConfDump() { memset(area, 'x', sizeof area); }

    char area[64];
    conf_buffer_state state = {area, sizeof area, 0, 0};
};

TEST_F(ConfDump, AppendsTheLinesOfTheFile)
{
    EXPECT_EQ(loop_2_buf(&state, "port", "80"), 0);
    EXPECT_EQ(loop_2_buf(&state, "name", "a b"), 0);
    EXPECT_STREQ(area, "port = \"80\"\nname = \"a b\"\n");
    EXPECT_EQ(state.used, static_cast<int>(strlen(area)));
    EXPECT_EQ(state.overflow, 0);
}

TEST_F(ConfDump, FillsTheBufferToItsLastByte)
{
    state.size = static_cast<int>(strlen("port = \"80\"\n")) + 1;
    loop_2_buf(&state, "port", "80");
    EXPECT_STREQ(area, "port = \"80\"\n");
    EXPECT_EQ(state.used, state.size - 1);
    EXPECT_EQ(state.overflow, 0);
    EXPECT_EQ(area[state.size], 'x');
}

TEST_F(ConfDump, LeavesOutAnEntryThatDoesNotFit)
{
    loop_2_buf(&state, "a", "1");
    state.size = state.used + static_cast<int>(strlen("port = \"80\"\n"));
    loop_2_buf(&state, "port", "80");
    EXPECT_STREQ(area, "a = \"1\"\n");
    EXPECT_EQ(state.used, static_cast<int>(strlen(area)));
    EXPECT_EQ(state.overflow, 1);
    EXPECT_EQ(area[state.size], 'x');
}

TEST_F(ConfDump, OverflowStaysSetWhenALaterEntryFits)
{
    state.size = 12;
    loop_2_buf(&state, "port", "80");
    loop_2_buf(&state, "a", "1");
    EXPECT_STREQ(area, "a = \"1\"\n");
    EXPECT_EQ(state.overflow, 1);
}

TEST_F(ConfDump, WritesNothingWithoutRoom)
{
    for (const int used : {0, 1, -1, std::numeric_limits<int>::min()}) {
        state = {area, 0, used, 0};
        loop_2_buf(&state, "a", "1");
        EXPECT_EQ(state.overflow, 1);
        EXPECT_EQ(state.used, used);
    }
    state = {nullptr, 64, 0, 0};
    loop_2_buf(&state, "a", "1");
    EXPECT_EQ(state.overflow, 1);
    EXPECT_EQ(std::string(area, sizeof area), std::string(sizeof area, 'x'));
}

TEST_F(ConfDump, LeavesOutWhatNoLineCanHold)
{
    loop_2_buf(&state, "a", "1\n");
    loop_2_buf(&state, "b c", "2");
    EXPECT_EQ(state.used, 0);
    EXPECT_EQ(state.overflow, 0);
}
