// para_commands_reload(): what a host's main process gets.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "camparam/commands.h"
#include "support/store.h"

using testing::ElementsAre;
using testing::IsEmpty;

class HostReload : public Store {
protected:
    static inline std::vector<std::string> told;
    static int tell(const char *module)
    {
        told.emplace_back(module);
        return 0;
    }

    HostReload()
    {
        write_home("netport.conf", "port = '80'\n");
        write_data("netport.conf", "port = '81'\n");
        stop_clock(); // changes stay unsaved
        start_store();
        EXPECT_STREQ(port(), "81");
        para_profile.conf_save_hook = [] {};
        para_profile.conf_update_hook = tell;
    }

    static const char *port() { return para_conf_get_member("netport", "port"); }

    char reason[PARA_REASON_SIZE] = "none";
};

TEST_F(HostReload, TakesAndTellsWhatIsInTheFiles)
{
    write_data("netport.conf", "port = '82'\n");
    EXPECT_EQ(para_commands_reload("netport", reason), 0);
    EXPECT_STREQ(reason, "");
    EXPECT_STREQ(port(), "82");
    EXPECT_THAT(told, ElementsAre("netport"));
}

TEST_F(HostReload, NeedsNoHook)
{
    para_profile.conf_update_hook = nullptr;
    write_data("netport.conf", "port = '82'\n");
    EXPECT_EQ(para_commands_reload("netport", reason), 0);
    EXPECT_STREQ(port(), "82");
}

TEST_F(HostReload, LosesNoUnsavedChange)
{
    EXPECT_EQ(para_conf_set_member("netport", "port", "90"), 1);
    write_data("netport.conf", "port = '82'\n");
    EXPECT_EQ(para_commands_reload("netport", reason), 1);
    EXPECT_STREQ(reason, "changes are still to be saved");
    EXPECT_STREQ(port(), "90");
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(HostReload, OfWhatIsNoConfModuleFails)
{
    for (const char *module : {"none", "", "isp0", "Netport", "netports"}) {
        EXPECT_EQ(para_commands_reload(module, reason), -1) << module;
        EXPECT_STREQ(reason, "no such conf module");
    }
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(HostReload, OfFilesThatCannotBeReadKeepsTheValues)
{
    const std::string file = home + "/netport.conf";
    ASSERT_EQ(remove(file.c_str()), 0);
    EXPECT_EQ(para_commands_reload("netport", reason), -1);
    EXPECT_EQ(reason, "cannot reread \"" + file + "\": No such file or directory");
    EXPECT_STREQ(port(), "81");
    EXPECT_THAT(told, IsEmpty());
}
