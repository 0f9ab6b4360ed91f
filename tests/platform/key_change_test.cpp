#include "tests/platform/folder.h"

class KeyChange : public Folder {
protected:
    Conf conf;
};

TEST_F(KeyChange, IsNoneRightAfterTheFirstRead)
{
    ASSERT_EQ(conf.parse(write("a.conf", "port=80\nname=cam\n")), 0);
    EXPECT_LT(conf.changed({"port", "name"}), 0);
}

TEST_F(KeyChange, BeforeTheFirstQuestionCountsFromTheFirstRead)
{
    ASSERT_EQ(conf.parse(write("home.conf", "port=80\nname=cam\n")), 0);
    ASSERT_EQ(conf.parse(write("data.conf", "name=mine\n")), 0);
    EXPECT_EQ(conf.changed({"port", "name"}), 1);
}

TEST_F(KeyChange, AfterAQuestionCountsFromThatQuestion)
{
    ASSERT_EQ(conf.parse(write("a.conf", "port=80\n")), 0);
    conf.set("port", "81");
    EXPECT_EQ(conf.changed({"port"}), 0);
    EXPECT_LT(conf.changed({"port"}), 0);
    conf.set("port", "80");
    EXPECT_EQ(conf.changed({"port"}), 0);
    EXPECT_LT(conf.changed({"port"}), 0);
}

TEST_F(KeyChange, IsAboutTheValueNotAboutHowOftenItWasSet)
{
    ASSERT_EQ(conf.parse(write("a.conf", "port=80\n")), 0);
    conf.set("port", "81");
    conf.set("port", "80");
    EXPECT_LT(conf.changed({"port"}), 0);

    conf.set("port", "82");
    ASSERT_EQ(conf.parse(path("a.conf")), 0);
    EXPECT_LT(conf.changed({"port"}), 0);
}

TEST_F(KeyChange, IsThePositionOfTheFirstOne)
{
    ASSERT_EQ(conf.parse(write("a.conf", "a=1\nb=2\nc=3\n")), 0);
    conf.set("b", "x");
    conf.set("c", "y");
    EXPECT_EQ(conf.changed({"a", "missing", "c", "b"}), 2);
}

TEST_F(KeyChange, AsksAboutEveryKeyOfTheSet)
{
    ASSERT_EQ(conf.parse(write("a.conf", "a=1\nb=2\nc=3\n")), 0);
    conf.set("a", "x");
    conf.set("b", "y");
    conf.set("c", "z");
    EXPECT_EQ(conf.changed({"a", "b"}), 0);
    EXPECT_LT(conf.changed({"a", "b"}), 0);
    EXPECT_EQ(conf.changed({"a", "b", "c"}), 2) << "c was not asked about";
}

TEST_F(KeyChange, IncludesKeysThatAppear)
{
    ASSERT_EQ(conf.parse(write("a.conf", "a=1\n")), 0);
    EXPECT_LT(conf.changed({"late"}), 0);
    conf.set("late", "");
    EXPECT_EQ(conf.changed({"late"}), 0);
    EXPECT_LT(conf.changed({"late"}), 0);

    ASSERT_EQ(conf.parse(write("b.conf", "later=1\n")), 0);
    EXPECT_EQ(conf.changed({"later"}), 0);
}

TEST_F(KeyChange, RemembersQuestionsFromBeforeTheFirstRead)
{
    EXPECT_LT(conf.changed({"port"}), 0);
    conf.set("name", "cam");
    EXPECT_EQ(conf.changed({"name"}), 0);
    ASSERT_EQ(conf.parse(write("a.conf", "port=80\nname=mine\nsize=1\n")), 0);
    EXPECT_EQ(conf.changed({"size", "port"}), 1);
    EXPECT_EQ(conf.changed({"size", "name"}), 1);
}

TEST_F(KeyChange, IgnoresAFirstReadThatFailed)
{
    conf.set("port", "80");
    EXPECT_EQ(conf.parse(path("missing.conf")), -1);
    EXPECT_EQ(conf.changed({"port"}), 0);
}

TEST_F(KeyChange, BelongsToTheObject)
{
    Conf other;
    const std::string file = write("a.conf", "port=80\n");
    ASSERT_EQ(conf.parse(file), 0);
    ASSERT_EQ(other.parse(file), 0);
    conf.set("port", "81");
    EXPECT_LT(other.changed({"port"}), 0);
    EXPECT_EQ(conf.changed({"port"}), 0);
    other.set("port", "81");
    EXPECT_EQ(other.changed({"port"}), 0);
}

TEST_F(KeyChange, IsNoneInAnEmptyOrMissingSet)
{
    conf.set("port", "80");
    EXPECT_LT(conf.changed({}), 0);
    EXPECT_LT(configure_key_IsChanged(conf.object, nullptr), 0);
    const heap_block none(config_keys_format(nullptr, 3));
    EXPECT_LT(configure_key_IsChanged(conf.object, none.get()), 0);
    const char *const port[] = {"port"};
    const heap_block negative(config_keys_format(port, -1));
    EXPECT_LT(configure_key_IsChanged(conf.object, negative.get()), 0);
    const heap_block set(config_keys_format(port, 1));
    EXPECT_LT(configure_key_IsChanged(nullptr, set.get()), 0);
    EXPECT_EQ(configure_key_IsChanged(conf.object, set.get()), 0);
}

TEST_F(KeyChange, KeepsThePlaceOfAMissingKeyText)
{
    conf.set("port", "80");
    EXPECT_EQ(conf.changed({nullptr, "", "port"}), 2);
}

TEST_F(KeyChange, SetOutlivesTheListItWasMadeOf)
{
    std::string key = "port";
    const char *list[] = {key.c_str()};
    const heap_block set(config_keys_format(list, 1));
    key = "else";
    list[0] = nullptr;
    conf.set("port", "80");
    EXPECT_EQ(configure_key_IsChanged(conf.object, set.get()), 0);
}
