// The commands "status" and "changes".
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <string>

#include "commands/kit.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

// Nothing is saved by itself. Before the kit is registered, which takes note of the time.
class StoppedClock {
protected:
    StoppedClock() { stop_clock(); }
};

class StatusCommand : private StoppedClock, public Kit {
protected:
    // What is told of a module.
    std::string module(const std::string &name)
    {
        const json answer = asked("status");
        const cJSON *const found =
            cJSON_GetObjectItem(cJSON_GetObjectItem(answer.get(), "modules"), name.c_str());
        return found != nullptr ? compact(found) : "none";
    }
};

TEST_F(StatusCommand, TellsVersionAndAgeOfTheStore)
{
    set_wall_clock(1700000000);
    start_store();
    move_clock(7999);
    EXPECT_THAT(ask("status"), AllOf(HasSubstr("'version':'" CAMPARAM_VERSION "'"),
                                     HasSubstr("'uptime':7,"), HasSubstr("'started':1")));
}

TEST_F(StatusCommand, TellsWhatTheStoreHasCounted)
{
    start_store();
    client.send("no request");
    EXPECT_THAT(ask("status"), HasSubstr("'counters':{'received':2,'dropped':0,'replies':0,"
                                         "'saves':0,'failed_saves':0}"));
    platformparam_save();
    para_counters counted = {};
    platformparam_get_counters(&counted);
    EXPECT_THAT(ask("status"), HasSubstr("'received':3,'dropped':0,'replies':1,'saves':" +
                                         std::to_string(counted.saves) + ","));
}

TEST_F(StatusCommand, TellsOfEachModuleWhatIsSaved)
{
    start_store();
    EXPECT_EQ(module("af"), "{'changes':0,'saved':0}");
    kind_named("Af").set(9);
    kind_named("Af").set(10);
    EXPECT_EQ(module("af"), "{'changes':2,'saved':0}");
    EXPECT_EQ(module("netport"), "{'changes':0,'saved':0}");
    platformparam_save();
    EXPECT_THAT(module("af"), MatchesRegex("\\{'changes':2,'saved':2,'saved_at':[0-9]{13}\\}"));
}

TEST_F(StatusCommand, TellsWhyASaveFailed)
{
    start_store();
    kind_named("Af").set(9);
    std::filesystem::remove_all(data);
    platformparam_save();
    EXPECT_EQ(module("af"), "{'changes':1,'saved':0,'error':'No such file or directory'}");
}

TEST_F(StatusCommand, TellsWhatCannotBeSaved)
{
    std::filesystem::remove(home + "/af_range.json");
    platformparam_set_guard(1);
    start_store();
    para_profile.conf_save_hook = nullptr;
    EXPECT_EQ(module("af"),
              "{'changes':0,'saved':0,'cannot_be_saved':'not loaded','load_failed':true}");
    EXPECT_EQ(module("netport"), "{'changes':0,'saved':0,'cannot_be_saved':'writing is off'}");
    EXPECT_EQ(module("audio"), "{'changes':0,'saved':0}");
}

TEST_F(StatusCommand, TellsOfRestoredAndBadFiles)
{
    write_data("af_cur.json", "");
    write_data("af_cur.json.bak", "{'zoom_value':7}");
    write_data("audio_cur.json", "garbage");
    platformparam_set_guard(1);
    start_store();
    EXPECT_THAT(module("af"), HasSubstr("'restored':true"));
    EXPECT_THAT(module("audio"), HasSubstr("'kept_bad':true"));
}

TEST_F(StatusCommand, OmitsRowsWithoutFiles)
{
    start_store();
    for (const char *row : {"msg_id", "json", "conf", "end"})
        EXPECT_EQ(module(row), "none") << row;
    EXPECT_EQ(module(PARA_ODM_ROW), "{'changes':0,'saved':0}");
}

class ChangesCommand : public StatusCommand {};

TEST_F(ChangesCommand, TellsCountsAndWhatIsUnsaved)
{
    start_store();
    EXPECT_THAT(ask("changes"),
                AllOf(HasSubstr("'af':0,"), HasSubstr("'netport':0"), HasSubstr("'unsaved':[]")));
    kind_named("Af").set(9);
    kind_named("Conf").set(9);
    kind_named("Conf").set(10);
    EXPECT_THAT(ask("changes"), AllOf(HasSubstr("'af':1,"), HasSubstr("'netport':2"),
                                      HasSubstr("'unsaved':['af','netport']")));
    platformparam_save();
    EXPECT_THAT(ask("changes"), HasSubstr("'unsaved':[]"));
}

TEST_F(ChangesCommand, HasTheStartOfTheRun)
{
    start_store();
    const std::string answer = ask("changes");
    EXPECT_THAT(answer, MatchesRegex("\\{'started':[0-9]{13},.*"));
    const std::string started = answer.substr(1, answer.find(',') - 1);
    EXPECT_THAT(ask("status"), HasSubstr(started));
    EXPECT_THAT(ask("log"), HasSubstr(started));
}

TEST_F(ChangesCommand, AreOnlyAskedFor)
{
    start_store();
    for (const char *command : {"status", "changes", "log"})
        EXPECT_EQ(ask(command, "", "api_set"), invalid) << command;
    for (const char *command : {"statu", "s", "change", "lo", ""})
        EXPECT_EQ(ask(command), invalid) << command;
}
