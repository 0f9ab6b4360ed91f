#include "cli/run.h"
#include "host/host_process.h"

namespace {

class SetCommand : public HostProcess {};

TEST_F(SetCommand, ChangesASettingAndReadsItBack)
{
    start_host();

    const run_result set = run({"set", "af.zoom_value=-100"});

    EXPECT_EQ(set.status, 0);
    EXPECT_EQ(set.output, "af.zoom_value=-100\n");
    EXPECT_EQ(set.errors, "");
    EXPECT_EQ(run({"get", "af"}).output, "af.focus_mode=1\naf.zoom_value=-100\n");
    EXPECT_TRUE(saves("af_cur.json", "{\n\t'focus_mode':\t1,\n\t'zoom_value':\t-100\n}"));
}

TEST_F(SetCommand, ChangesSeveralSettings)
{
    start_host();

    EXPECT_EQ(run({"set", "af.zoom_value=7", "af.focus_mode=3"}).output,
              "af.zoom_value=7\naf.focus_mode=3\n");
}

TEST_F(SetCommand, PrintsJson)
{
    start_host();

    EXPECT_EQ(squeeze(run({"set", "af.zoom_value=7", "--json"}).output), "{'af':{'zoom_value':7}}");
}

TEST_F(SetCommand, NamesAValueThatWasNotTaken)
{
    start_host();

    const run_result set = run({"set", "af.zoom_value=1001"});

    EXPECT_EQ(set.status, 4);
    EXPECT_EQ(set.output, "");
    EXPECT_EQ(set.errors, "camparam: af.zoom_value: \"1001\" was not taken, the value is \"0\" "
                          "(number, -100 to 1000)\n");
}

TEST_F(SetCommand, TellsWhenOnlySomeWereTaken)
{
    start_host();

    const run_result set = run({"set", "af.zoom_value=1001", "af.focus_mode=2"});

    EXPECT_EQ(set.status, 6);
    EXPECT_EQ(set.output, "af.focus_mode=2\n");
    EXPECT_NE(set.errors.find("af.zoom_value: \"1001\""), std::string::npos) << set.errors;
}

TEST_F(SetCommand, PrintsValuesAndMessagesInOrder)
{
    start_host();

    process client(
        {"sh", "-c", CAMPARAM " --timeout 20 set af.focus_mode=2 af.zoom_value=1001 2>&1"});

    EXPECT_EQ(client.wait_for_end(), 6);
    EXPECT_EQ(client.output().find("af.focus_mode=2\ncamparam: af.zoom_value: "), 0u)
        << client.output();
}

TEST_F(SetCommand, AMissingNameHidesNoRefusal)
{
    start_host();
    const std::string refused = "af.zoom_value=1001", missing = "af.nosuch=1";

    EXPECT_EQ(run({"set", "--number", refused, missing}).status, 4);
    EXPECT_EQ(run({"set", "--number", missing, refused}).status, 4);
    EXPECT_EQ(run({"set", "--number", missing, "lens.zoom_value=1"}).status, 5);
}

TEST_F(SetCommand, AMissingNameHidesNoValueThatCannotBeSent)
{
    start_host();
    const std::string unfit = "af.zoom_value=fast", missing = "af.nosuch=1";

    EXPECT_EQ(run({"set", unfit, missing}).status, 4);
    EXPECT_EQ(run({"set", missing, unfit}).status, 4);
    EXPECT_EQ(run({"set", missing, "af.focus_mode=2"}).status, 5);
}

TEST_F(SetCommand, SendsAll32Bits)
{
    write_home("af_range.json", "{'focus_mode':[0,3],'zoom_value':[-2147483648,2147483647]}");
    start_host();

    for (const char *value : {"2147483647", "-2147483648"})
        EXPECT_EQ(run({"set", "af.zoom_value=" + std::string(value)}).output,
                  "af.zoom_value=" + std::string(value) + "\n");
}

TEST_F(SetCommand, SendsNothingThatIsNoNumberForANumber)
{
    start_host();

    for (const char *value : {"fast", "", "1.5", "12x", " 1", "0x10", "2147483648", "-2147483649",
                              "99999999999999999999"}) {
        const run_result set =
            run({"set", "af.focus_mode=2", "af.zoom_value=" + std::string(value)});
        EXPECT_EQ(set.status, 4) << value;
        EXPECT_EQ(set.output, "");
        EXPECT_EQ(set.errors, "camparam: af.zoom_value: \"" + std::string(value) +
                                  "\" is no 32-bit integer (number, -100 to 1000)\n"
                                  "camparam: nothing was set\n");
    }
    EXPECT_FALSE(host_has_logged("af_set_notify"));
}

TEST_F(SetCommand, OffersASimilarName)
{
    start_host();

    const run_result member = run({"set", "af.zoom=5", "af.focus_mode=2"});
    EXPECT_EQ(member.status, 5);
    EXPECT_EQ(member.errors, "camparam: no setting \"af.zoom\"; did you mean \"af.zoom_value\"?\n"
                             "camparam: nothing was set\n");
    EXPECT_FALSE(host_has_logged("af_set_notify"));

    const run_result module = run({"set", "fa.zoom_value=5"});
    EXPECT_EQ(module.status, 5);
    EXPECT_EQ(module.errors.find("camparam: no module \"fa\""), 0u) << module.errors;
}

TEST_F(SetCommand, RefusesTheSameSettingTwice)
{
    start_host();

    const run_result set = run({"set", "af.zoom_value=5", "af.zoom_value=6"});

    EXPECT_EQ(set.status, 2);
    EXPECT_EQ(set.errors, "camparam: af.zoom_value is given twice\n");
    EXPECT_FALSE(host_has_logged("af_set_notify"));
}

} // namespace
