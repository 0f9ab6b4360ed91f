#include <gtest/gtest.h>

#include <climits>

#include "tests/platform/folder.h"

TEST(TextCopy, IsAHeapBlockOfItsOwn)
{
    const char text[] = "netport";
    const heap_text copy(lib_strdup(text));
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy.get(), text);
    EXPECT_STREQ(copy.get(), text);
}

TEST(TextCopy, OfNullIsNull)
{
    EXPECT_EQ(lib_strdup(nullptr), nullptr);
}

TEST(NumberText, IsDecimalAndReturnsItsPlace)
{
    char text[32];
    EXPECT_EQ(lib_itoa(6800, text), text);
    EXPECT_STREQ(text, "6800");
    EXPECT_STREQ(lib_itoa(0, text), "0");
    EXPECT_STREQ(lib_itoa(INT_MAX, text), "2147483647");
    EXPECT_STREQ(lib_itoa(INT_MIN, text), "-2147483648");
}
