#include <cerrno>

#include "tests/platform/folder.h"

// An object holds 4096 keys, and 1 MiB of keys and values.
class FullConfigureObject : public Folder {
protected:
    static constexpr size_t most_keys = 4096;
    static constexpr size_t most_bytes = size_t{1} << 20;

    static std::string lines(size_t count, const std::string &value)
    {
        std::string text;
        for (size_t i = 0; i < count; i++)
            text.append("key" + std::to_string(i) + "=").append(value).append("\n");
        return text;
    }

    int parse_text(const std::string &text)
    {
        errno = 0;
        return conf.parse(write("text.conf", text));
    }

    Conf conf;
};

TEST_F(FullConfigureObject, TakesNoFurtherKey)
{
    for (size_t i = 0; i < most_keys; i++)
        ASSERT_EQ(conf.set("key" + std::to_string(i), "v"), 1);
    const auto before = conf.entries();
    EXPECT_EQ(before.size(), most_keys);

    EXPECT_EQ(conf.set("one_more", "v"), 0);
    EXPECT_EQ(parse_text("key0=v\none_more=v\n"), -1);
    EXPECT_EQ(errno, EFBIG);
    EXPECT_EQ(conf.entries(), before);
}

TEST_F(FullConfigureObject, ChangesTheKeysThatItHas)
{
    ASSERT_EQ(parse_text(lines(most_keys, "v")), 0);
    EXPECT_EQ(conf.set("key7", "new"), 1);
    EXPECT_EQ(parse_text("key8=new\n"), 0);
    EXPECT_EQ(conf.get("key7"), "new");
    EXPECT_EQ(conf.get("key8"), "new");
}

TEST_F(FullConfigureObject, TakesNoFurtherByte)
{
    const std::string filling(most_bytes - 3, 'v');
    EXPECT_EQ(conf.set("key", filling + "v"), 0);
    EXPECT_EQ(conf.get("key"), "absent");
    EXPECT_EQ(conf.set("key", filling), 1);
    EXPECT_EQ(conf.set("key", filling + "v"), 0);
    EXPECT_EQ(conf.set("k", ""), 0);
    EXPECT_EQ(parse_text("k=\n"), -1);
    EXPECT_EQ(errno, EFBIG);
    EXPECT_EQ(conf.entries().size(), 1U);
    EXPECT_EQ(conf.get("key"), filling);
}

TEST_F(FullConfigureObject, CountsWhatItHoldsNotWhatItHeld)
{
    const std::string filling(most_bytes - 3, 'v');
    for (int i = 0; i < 3; i++) {
        EXPECT_EQ(conf.set("key", filling), 1);
        EXPECT_EQ(conf.set("key", ""), 1);
    }
    EXPECT_EQ(conf.set("other", std::string(most_bytes - 8, 'v')), 1);
    EXPECT_EQ(conf.set("x", ""), 0);
}

TEST_F(FullConfigureObject, IsMadeByAFile)
{
    ASSERT_EQ(parse_text(lines(most_keys, "v")), 0);
    EXPECT_EQ(conf.entries().size(), most_keys);
    Conf other;
    const std::string filling(most_bytes - 3, 'v');
    ASSERT_EQ(other.parse(write("filling.conf", "key=" + filling + "\n")), 0);
    EXPECT_EQ(other.get("key"), filling);
}

TEST_F(FullConfigureObject, IsNoneAfterAFileThatHoldsTooMuch)
{
    conf.set("key1", "before");
    EXPECT_EQ(parse_text(lines(most_keys + 1, "v")), -1);
    EXPECT_EQ(errno, EFBIG);
    EXPECT_EQ(parse_text("key1=new\nkey2=" + std::string(most_bytes, 'v') + "\n"), -1);
    EXPECT_EQ(errno, EFBIG);
    EXPECT_THAT(conf.entries(), testing::ElementsAre(testing::Pair("key1", "before")));
}

TEST_F(FullConfigureObject, OfAFileCountsTheLastValueOfEachKey)
{
    const std::string half(most_bytes / 2, 'v');
    EXPECT_EQ(parse_text("a=" + half + "\na=" + half + "\na=" + half + "\nb=1\na=2\n"), 0);
    EXPECT_THAT(conf.entries(),
                testing::ElementsAre(testing::Pair("a", "2"), testing::Pair("b", "1")));
}

// A file that was refused is no first read, from which changes would count.
TEST_F(FullConfigureObject, AsksAboutChangesAsBeforeARefusedFile)
{
    conf.set("port", "80");
    EXPECT_EQ(parse_text(lines(most_keys + 1, "v")), -1);
    EXPECT_EQ(conf.changed({"port"}), 0);
}
