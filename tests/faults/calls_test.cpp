// Single calls of the interface and of the platform while memory runs out.
#include <gtest/gtest.h>

#include <cstdlib>

#include "camparam/camparam.h"
#include "faults/allocations.h"
#include "support/json_text.h"

namespace {

int answer_nothing(int, para_message *, cJSON **)
{
    return 0;
}

const param_command nothing[] = {{"nothing", answer_nothing, nullptr}};

} // namespace

TEST(StarvedCall, RegistersACommandOrSaysNo)
{
    {
        const Allocations allocations(1);
        EXPECT_EQ(register_param_command("nothing", nothing, 1), -1);
        EXPECT_EQ(allocations.kept(), 0);
    }
    EXPECT_EQ(register_param_command("nothing", nothing, 1), 0) << "memory is back";
}

TEST(StarvedCall, LeavesATextThatCannotBeReplaced)
{
    const json object = parse("{'name':'new'}");
    char *text = lib_strdup("old");
    {
        const Allocations allocations(1);
        EXPECT_EQ(json_object_load_string(object.get(), "name", &text, nullptr), -1);
        EXPECT_EQ(allocations.kept(), 0);
    }
    EXPECT_STREQ(text, "old");
    EXPECT_EQ(json_object_load_string(object.get(), "name", &text, nullptr), 0);
    EXPECT_STREQ(text, "new");
    free(text);
}

TEST(StarvedCall, MakesNoSetOfKeys)
{
    const char *const keys[] = {"one", "two"};
    {
        const Allocations allocations(1);
        EXPECT_EQ(config_keys_format(keys, 2), nullptr);
    }
    void *const set = config_keys_format(keys, 2);
    EXPECT_NE(set, nullptr);
    free(set);
}
