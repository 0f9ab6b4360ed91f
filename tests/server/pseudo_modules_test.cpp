#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/store.h"

using testing::ElementsAre;

class PseudoModules : public Store {
protected:
    // What the function answers to the only member of an object, "none" for nothing.
    template <typename getter> std::string answer(getter get, const char *object, const char *name)
    {
        const json request = parse(object);
        cJSON *stored = nullptr;
        const cJSON *const item = request->child;
        EXPECT_EQ(get(item->string, item, &stored, name), 0);
        const json owner(stored);
        return stored != nullptr ? compact(stored) : "none";
    }
};

TEST_F(PseudoModules, MessageNameEchoesTheText)
{
    EXPECT_EQ(answer(para_get_msg_name_opt, "{'msg_name':'n'}", "msg_name"), "'n'");
    EXPECT_THAT(traces_of("para_get_msg_name_opt"), ElementsAre("inter\n"));
}

TEST_F(PseudoModules, MessageIdEchoesTheInteger)
{
    EXPECT_EQ(answer(para_get_msg_id_opt, "{'msg_id':5.9}", "msg_id"), "5");
    EXPECT_EQ(answer(para_get_msg_id_opt, "{'msg_id':'5'}", "msg_id"), "0");
    EXPECT_THAT(traces_of("para_get_msg_id_opt"), ElementsAre("inter\n", "inter\n"));
}

TEST_F(PseudoModules, AKeyLongerThanTheRowNameIsNotEchoed)
{
    EXPECT_EQ(answer(para_get_msg_name_opt, "{'msg_names':'n'}", "msg_name"), "none");
    EXPECT_EQ(answer(para_get_msg_id_opt, "{'msg_id2':5}", "msg_id"), "none");
}

TEST_F(PseudoModules, AKeyMayBeCutShort)
{
    EXPECT_EQ(answer(para_get_msg_name_opt, "{'msg_n':'n'}", "msg_name"), "'n'");
    EXPECT_EQ(answer(para_get_msg_id_opt, "{'':5}", "msg_id"), "5");
}

TEST_F(PseudoModules, ANameThatIsNoTextIsNotEchoed)
{
    EXPECT_EQ(answer(para_get_msg_name_opt, "{'msg_name':5}", "msg_name"), "none");
}

TEST_F(PseudoModules, FreeDoesNothing)
{
    char text[] = "text";
    EXPECT_EQ(para_free_msg_name_opt(text), 0);
    EXPECT_EQ(para_free_msg_name_opt(nullptr), 0);
    EXPECT_STREQ(text, "text");
}
