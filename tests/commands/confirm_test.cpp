// The command "confirm": values for a time.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "commands/kit.h"
#include "support/own_module.h"

using testing::MatchesRegex;

class ConfirmCommand : public Kit {
protected:
    std::string set_for(int seconds, const std::string &values)
    {
        return ask("confirm", "{'seconds':" + std::to_string(seconds) + ",'set':" + values + "}",
                   "api_set");
    }
    std::string confirm() { return ask("confirm", "", "api_set"); }

    static int port() { return kind_named("Conf").get(); }
};

TEST_F(ConfirmCommand, TakesValuesBackThatNobodyConfirms)
{
    start_store();
    EXPECT_EQ(set_for(1, "{'netport':{'port':'9'},'af':{'zoom_value':9},'panel':{'brightness':9}}"),
              "{'accepted':['netport.port','af.zoom_value','panel.brightness'],'refused':{}}");
    EXPECT_EQ(port(), 9);
    EXPECT_TRUE(wait_until([] { return port() == default_number; }));
    EXPECT_TRUE(wait_until([] { return kind_named("Pattern").get() == default_number; }));
    EXPECT_EQ(kind_named("Af").get(), default_number);
    EXPECT_EQ(confirm(), "{'confirmed':[]}") << "it is too late";
    EXPECT_EQ(ask("confirm"), "{'waiting':[]}");
}

TEST_F(ConfirmCommand, KeepsWhatIsConfirmed)
{
    start_store();
    set_for(1, "{'netport':{'port':'9'}}");
    EXPECT_EQ(confirm(), "{'confirmed':['netport.port']}");
    EXPECT_EQ(set_for(1, "{'af':{'zoom_value':9}}"), "{'accepted':['af.zoom_value'],'refused':{}}");
    EXPECT_TRUE(wait_until([] { return kind_named("Af").get() == default_number; }));
    EXPECT_EQ(port(), 9);
}

TEST_F(ConfirmCommand, TellsWhatWaits)
{
    start_store();
    EXPECT_EQ(ask("confirm"), "{'waiting':[]}");
    set_for(3600, "{'netport':{'port':'9'},'af':{'zoom_value':9}}");
    EXPECT_THAT(ask("confirm"), MatchesRegex("\\{'waiting':\\['netport.port','af.zoom_value'\\],"
                                             "'seconds':3[56][0-9][0-9]\\}"));
}

TEST_F(ConfirmCommand, SetsAllOrNothing)
{
    start_store();
    EXPECT_EQ(
        set_for(60, "{'netport':{'port':'9','none':'1'},'af':{'zoom_value':900},'x':{'a':1}}"),
        "{'accepted':[],'refused':{'netport.none':'no such member',"
        "'af.zoom_value':'out of range, 0 to 100','x':'no such module'}}");
    EXPECT_EQ(port(), default_number);
    EXPECT_EQ(ask("confirm"), "{'waiting':[]}");
}

TEST_F(ConfirmCommand, WaitsForOneChangeAtATime)
{
    start_store();
    set_for(60, "{'netport':{'port':'9'}}");
    EXPECT_EQ(set_for(60, "{'netport':{'port':'10'},'af':{'zoom_value':9}}"),
              "{'accepted':[],'refused':{"
              "'netport.port':'another change waits to be confirmed',"
              "'af.zoom_value':'another change waits to be confirmed'}}");
    EXPECT_EQ(port(), 9);
}

TEST_F(ConfirmCommand, LeavesWhatOthersHaveSetSince)
{
    start_store();
    set_for(1, "{'netport':{'port':'9'},'af':{'zoom_value':9}}");
    kind_named("Conf").set(11);
    EXPECT_TRUE(wait_until([] { return kind_named("Af").get() == default_number; }));
    EXPECT_EQ(port(), 11);
}

// On the kit's thread, while it takes the lens back.
static std::atomic<bool> is_taking_back{false}, may_go_on{false};

static void stop_at_default(int (*)(int), int value)
{
    if (value != default_number)
        return;
    is_taking_back = true;
    wait_until([] { return may_go_on.load(); });
}

TEST_F(ConfirmCommand, WaitsUntilAllIsTakenBack)
{
    para_profile.af_set_notify_hook = stop_at_default;
    start_store();
    set_for(1, "{'af':{'zoom_value':9},'netport':{'port':'9'}}");
    ASSERT_TRUE(wait_until([] { return is_taking_back.load(); }));
    EXPECT_EQ(set_for(60, "{'netport':{'port':'10'}}"),
              "{'accepted':[],'refused':{'netport.port':'another change waits to be confirmed'}}");
    EXPECT_EQ(confirm(), "{'confirmed':[]}") << "it is too late";
    EXPECT_EQ(ask("confirm"), "{'waiting':[]}");
    may_go_on = true;
    EXPECT_TRUE(wait_until([] { return port() == default_number; }));
    EXPECT_TRUE(wait_until([&] {
        return set_for(60, "{'netport':{'port':'10'}}") ==
               "{'accepted':['netport.port'],'refused':{}}";
    }));
}

TEST_F(ConfirmCommand, RefusesWhatCannotBeTakenBack)
{
    static std::atomic<int> sets{0};
    add_own_module(
        "lamp",
        [](const char *, const cJSON *, cJSON **answer, const char *) {
            *answer = parse("{'level':5}").release();
            return 0;
        },
        [](const char *, const cJSON *, const char *) { return static_cast<int>(sets++); });
    start_store();
    EXPECT_EQ(set_for(60, "{'lamp':{'level':7},'af':{'zoom_value':9}}"),
              "{'accepted':[],'refused':{'lamp.level':'cannot be taken back'}}");
    EXPECT_EQ(sets, 0);
    EXPECT_EQ(kind_named("Af").get(), default_number);
}

// A setter takes no value outside the range, though a file may have brought one in.
TEST_F(ConfirmCommand, RefusesWhatWasOutOfItsRange)
{
    write_home("af_def.json", "{'zoom_value':300}");
    write_home("netport.conf", "port = '" + std::string(300, 'x') + "'\n");
    start_store();
    ASSERT_EQ(kind_named("Af").get(), 300);
    EXPECT_EQ(set_for(60, "{'af':{'zoom_value':9}}"),
              "{'accepted':[],'refused':{'af.zoom_value':'cannot be taken back'}}");
    EXPECT_EQ(kind_named("Af").get(), 300);
    EXPECT_EQ(set_for(1, "{'netport':{'port':'9'}}"), "{'accepted':['netport.port'],'refused':{}}");
    EXPECT_TRUE(wait_until([] {
        char text[400] = "";
        para_conf_get_member_safe("netport", "port", text, sizeof text);
        return text == std::string(300, 'x');
    })) << "a long text can be taken back";
}

TEST_F(ConfirmCommand, DoesNotWaitForNothing)
{
    start_store();
    for (const char *nothing : {"{}", "{'af':{}}"})
        EXPECT_EQ(set_for(60, nothing), "{'accepted':[],'refused':{}}") << nothing;
    EXPECT_EQ(ask("confirm"), "{'waiting':[]}");
}

TEST_F(ConfirmCommand, IsCarriedOutBesideOtherWork)
{
    platformparam_set_guard(1);
    start_store();
    set_for(1, "{'netport':{'port':'9'}}");
    EXPECT_EQ(ask("save", "", "api_set"), "{}");
    EXPECT_TRUE(wait_until([] { return port() == default_number; }));
    EXPECT_EQ(ask("save", "", "api_set"), "{}");
    EXPECT_EQ(read_data("netport.conf"), "port = \"40\"\n");
}

TEST_F(ConfirmCommand, RefusesOtherForms)
{
    start_store();
    for (const char *details :
         {"{'set':{'af':{'zoom_value':9}}}", "{'seconds':0,'set':{'af':{'zoom_value':9}}}",
          "{'seconds':3601,'set':{'af':{'zoom_value':9}}}",
          "{'seconds':1.5,'set':{'af':{'zoom_value':9}}}",
          "{'seconds':'1','set':{'af':{'zoom_value':9}}}", "{'seconds':1,'set':[]}",
          "{'seconds':1,'set':{'af':9}}", "{'seconds':1,'set':null}",
          "{'seconds':1,'set':{'af':{'zoom_value':9,'zoom_value':8}}}",
          "{'seconds':1,'set':{'af':{'zoom_value':9},'af':{'zoom_value':8}}}"})
        EXPECT_EQ(ask("confirm", details, "api_set"), invalid) << details;
    EXPECT_EQ(kind_named("Af").get(), default_number);
}
