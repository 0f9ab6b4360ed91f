// A module may be listed under the empty name.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "modules/text/conf_fixture.h"
#include "modules/text/pattern_fixture.h"

using ConfEmptyName = ConfModule;
using JsonEmptyName = JsonModule;

TEST_F(ConfEmptyName, IsFoundWhenItIsListed)
{
    write_home(".conf", "port = '80'\n");
    init_without_files();
    EXPECT_EQ(para_conf_get_member("", "port"), nullptr) << "not listed";
    EXPECT_EQ(para_need_save_conf(""), -1);
    para_init_conf("");
    EXPECT_STREQ(para_conf_get_member("", "port"), "80");
    EXPECT_EQ(para_conf_set_member("", "port", "81"), 1);
    EXPECT_EQ(query("['port']", "x", ""), "{'port':'81'}");
    EXPECT_EQ(para_save_conf(""), 0);
    EXPECT_EQ(read_data(".conf"), "port = \"81\"\n");
}

TEST_F(JsonEmptyName, IsFoundWhenItIsListed)
{
    write_module("");
    write_module("panel");
    para_init_misc("json");
    expect_unknown("");
    para_init_misc("panel");
    expect_unknown("");
    para_init_misc("");
    EXPECT_EQ(para_get_json_cur("", "brightness"), 50);
    EXPECT_EQ(para_set_json_cur("", "brightness", 60), 1);
    EXPECT_EQ(para_get_json_cur("panel", "brightness"), 50);
    EXPECT_EQ(para_save_misc(""), 0);
    EXPECT_THAT(read_data(".conf").value_or("none"), testing::StartsWith("brightness = \"60\"\n"));
}
