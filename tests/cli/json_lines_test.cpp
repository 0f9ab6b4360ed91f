#include "client/files/json_lines.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

TEST(JsonLines, AMemberStandsWhereItsKeyDoes)
{
    EXPECT_THAT(json_lines("{\n  \"a\":\n    1,\n  \"b\": {\n \"c\": \"x\"}\n}"),
                ElementsAre(1, 2, 4, 5));
}

TEST(JsonLines, ElementsOfArraysStandForThemselves)
{
    EXPECT_THAT(json_lines("[1,\n[2, true],\n{\"a\": [\nnull]}, -3.5e2]"),
                ElementsAre(1, 1, 2, 2, 2, 3, 3, 4, 4));
}

TEST(JsonLines, PunctuationInStringsIsText)
{
    EXPECT_THAT(json_lines("{\"a:{,\\\"\": \"]\\\\\",\n\"b\": \"}\"}"), ElementsAre(1, 1, 2));
}

TEST(JsonLines, LineEndsInStringsCount)
{
    EXPECT_THAT(json_lines("[\"a\nb\",\n1]"), ElementsAre(1, 1, 3));
}

TEST(JsonLines, TextsThatEndTooEarlyAreRead)
{
    for (const char *text : {"", "{", "{\"", "{\"a\\", "{\"a\":", "[1,", "\n\n"})
        EXPECT_LE(json_lines(text).size(), 2U) << text;
    EXPECT_THAT(json_lines("{\"a"), ElementsAre(1, 1));
}

TEST(JsonLines, PlacesCountFromOne)
{
    const auto place = [](size_t offset) {
        const text_place found = place_of("ab\ncd\n", offset);
        return std::pair(found.line, found.column);
    };
    EXPECT_EQ(place(0), std::pair(1, 1));
    EXPECT_EQ(place(1), std::pair(1, 2));
    EXPECT_EQ(place(3), std::pair(2, 1));
    EXPECT_EQ(place(6), std::pair(3, 1));
    EXPECT_EQ(place(99), std::pair(3, 1));
}

} // namespace
