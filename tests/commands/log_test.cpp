// The command "log".
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "commands/kit.h"

using testing::ElementsAre;
using testing::IsEmpty;

class LogCommand : public Kit {
protected:
    LogCommand()
    {
        set_wall_clock(1700000000);
        stop_clock();
        start_store();
    }

    // The changes of a page, without the time.
    std::vector<std::string> page(const std::string &details = "")
    {
        const json answer = asked("log", details);
        std::vector<std::string> changes;
        const cJSON *change = nullptr;
        cJSON_ArrayForEach(change, cJSON_GetObjectItem(answer.get(), "changes"))
        {
            std::string text = compact(change);
            const std::string time = "'time':1700000000000,";
            const size_t begin = text.find(time);
            EXPECT_NE(begin, std::string::npos) << text;
            if (begin != std::string::npos)
                text.erase(begin, time.size());
            changes.push_back(text);
        }
        const cJSON *const more = cJSON_GetObjectItem(answer.get(), "next");
        next = more != nullptr ? more->valueint : 0;
        return changes;
    }

    // All that the log holds, by pages.
    std::vector<std::string> pages()
    {
        std::vector<std::string> all = page();
        while (next != 0) {
            for (const std::string &change : page("{'after':" + std::to_string(next) + "}"))
                all.push_back(change);
        }
        return all;
    }

    int next = 0; // of the last page
};

TEST_F(LogCommand, IsEmptyAtFirst)
{
    EXPECT_THAT(page(), IsEmpty());
    EXPECT_EQ(next, 0);
}

TEST_F(LogCommand, TellsWhatWasChangedByWhom)
{
    kind_named("Af").set(9);
    client.ask("{'msg_type':'set','netport':{'port':'81','new':'x'}}");
    para_set_odm_string("maker", "A");
    EXPECT_THAT(
        page(),
        ElementsAre("{'number':1,'module':'af','member':'zoom_value','old':40,'new':9,'by':'host'}",
                    "{'number':2,'module':'netport','member':'port','old':'40','new':'81',"
                    "'by':'127.0.0.1'}",
                    "{'number':3,'module':'netport','member':'new','new':'x','by':'127.0.0.1'}",
                    "{'number':4,'module':'odmInter','member':'maker','new':'A','by':'host'}"));
}

TEST_F(LogCommand, NamesTheInstanceOfTheImageProcessor)
{
    para_isp_max[1].bright = 100; // no file fills the second
    para_isp_exist[1].bright = PARA_PRESENT;
    isp_num = 2;
    para_set_isp_bright_cur(1, 7);
    EXPECT_THAT(page(), ElementsAre("{'number':1,'module':'isp1','member':'bright','old':0,"
                                    "'new':7,'by':'host'}"));
}

TEST_F(LogCommand, GoesOnBehindANumber)
{
    for (int i = 1; i <= 3; i++)
        kind_named("Af").set(i);
    EXPECT_EQ(page("{'after':0}").size(), 3U);
    EXPECT_THAT(page("{'after':2}"), ElementsAre("{'number':3,'module':'af','member':'zoom_value',"
                                                 "'old':2,'new':3,'by':'host'}"));
    for (const char *none : {"{'after':3}", "{'after':4}", "{'after':1e300}"})
        EXPECT_THAT(page(none), IsEmpty()) << none;
}

TEST_F(LogCommand, HoldsTheLast256)
{
    for (int i = 1; i <= 300; i++)
        kind_named("Af").set(i % 2);
    const std::vector<std::string> all = pages();
    ASSERT_EQ(all.size(), 256U);
    EXPECT_EQ(all.front().substr(0, 13), "{'number':45,");
    EXPECT_EQ(all.back().substr(0, 14), "{'number':300,");
}

TEST_F(LogCommand, AnswersInPages)
{
    const std::string longest(255, '\x01');
    for (int i = 0; i < 20; i++)
        para_conf_set_member("netport", "port",
                             (longest.substr(1) + std::to_string(i % 2)).c_str());
    size_t told = 0;
    for (std::string details; next != 0 || told == 0;
         details = "{'after':" + std::to_string(next) + "}") {
        const std::string answer = client
                                       .request("{'msg_type':'api_get','msg_name':'log','msg_id':"
                                                "1234567890,'data':" +
                                                (details.empty() ? "{}" : details) + "}")
                                       .value_or("");
        EXPECT_LE(answer.size(), 4000U);
        const std::vector<std::string> changes = page(details.empty() ? "{}" : details);
        EXPECT_FALSE(changes.empty());
        told += changes.size();
    }
    EXPECT_EQ(told, 20U);
}

TEST_F(LogCommand, RefusesWhatIsNoNumber)
{
    for (const char *details : {"{'after':'1'}", "{'after':-1}", "{'after':null}", "{'after':[]}"})
        EXPECT_EQ(ask("log", details), invalid) << details;
}

// A host's own observer calls the kit's.
TEST_F(LogCommand, TakesNotesOfAHostsObserver)
{
    platformparam_set_setting_observer([](const para_setting_change *change) {
        if (change->new_value.number != 8)
            para_commands_note(change);
    });
    kind_named("Af").set(8);
    kind_named("Af").set(9);
    EXPECT_THAT(page(), ElementsAre("{'number':1,'module':'af','member':'zoom_value','old':8,"
                                    "'new':9,'by':'host'}"));
}
