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

TEST_F(SetCommand, SendsNothingThatIsOutOfRange)
{
    start_host();

    const run_result set = run({"set", "af.zoom_value=1001", "af.focus_mode=2"});

    EXPECT_EQ(set.status, 4);
    EXPECT_EQ(set.output, "");
    EXPECT_EQ(set.errors, "camparam: af.zoom_value: \"1001\" is out of range (number, -100 to "
                          "1000)\ncamparam: nothing was set\n");
    EXPECT_FALSE(host_has_logged("af_set_notify"));
    EXPECT_EQ(run({"set", "af.zoom_value=-101"}).status, 4);
}

TEST_F(SetCommand, SetsWhatItCanWhenAsked)
{
    start_host();

    const run_result set = run({"set", "--partly", "af.zoom_value=1001", "af.focus_mode=2"});

    EXPECT_EQ(set.status, 6);
    EXPECT_EQ(set.output, "af.focus_mode=2\n");
    EXPECT_NE(set.errors.find("af.zoom_value: \"1001\""), std::string::npos) << set.errors;
    EXPECT_EQ(run({"set", "--partly", "af.zoom_value=1001", "af.none=2"}).status, 4)
        << "nothing could be set";
}

TEST_F(SetCommand, PrintsValuesAndMessagesInOrder)
{
    start_host();

    process client({"sh", "-c",
                    CAMPARAM " --timeout 20 set --partly af.focus_mode=2 af.zoom_value=1001 2>&1"});

    EXPECT_EQ(client.wait_for_end(), 6);
    EXPECT_EQ(client.output().find("camparam: af.zoom_value: "), 0u) << client.output();
    EXPECT_NE(client.output().find("\naf.focus_mode=2\n"), std::string::npos);
}

TEST_F(SetCommand, TakesNamesOfNumbers)
{
    write_home("descriptions.json", "{'af':{'focus_mode':{'names':{'0':'auto','2':'manual'}}}}");
    start_host();

    EXPECT_EQ(run({"set", "af.focus_mode=manual"}).output, "af.focus_mode=2\n");
    EXPECT_EQ(run({"set", "af.focus_mode=man"}).status, 4);
}

TEST_F(SetCommand, ReturnsWhenTheChangeIsSaved)
{
    start_host();

    const run_result set = run({"set", "af.focus_mode=2", "--wait-saved"});

    EXPECT_EQ(set.status, 0);
    EXPECT_EQ(set.errors, "");
    EXPECT_NE(read_data("af_cur.json").value_or("").find("2"), std::string::npos);
}

TEST_F(SetCommand, TellsWhyAChangeIsNotSaved)
{
    write_home("netport.conf", "http_port = '80'\n");
    start_host({"--no-write-conf"});

    const run_result set = run({"set", "netport.http_port=81", "--wait-saved"});
    EXPECT_EQ(set.status, 8);
    EXPECT_EQ(set.output, "netport.http_port=81\n");
    EXPECT_EQ(set.errors, "camparam: netport is not saved: writing is off\n");

    EXPECT_EQ(run({"set", "af.focus_mode=2", "--wait-saved", "0.01"}).errors,
              "camparam: af is not saved: not yet\n");
    const run_result at_once = run({"set", "af.focus_mode=3", "--wait-saved", "0"});
    EXPECT_EQ(at_once.status, 8);
    EXPECT_EQ(at_once.errors, "camparam: af is not saved: not yet\n");
}

TEST_F(SetCommand, HasValuesTakenBackThatAreNotConfirmed)
{
    start_host();

    const run_result set = run({"set", "af.focus_mode=2", "--confirm", "1"});
    EXPECT_EQ(set.status, 0);
    EXPECT_EQ(set.errors, "camparam: set for 1 s; \"camparam confirm\" keeps it\n");
    EXPECT_EQ(run({"get", "af.focus_mode"}).output, "af.focus_mode=2\n");
    EXPECT_TRUE(wait_until([] {
        return run({"get", "af.focus_mode"}).output == "af.focus_mode=1\n";
    }));
}

TEST_F(SetCommand, ForATimeShowsTheValuesThatTheHostHasTaken)
{
    const fake_server camera([](const std::string &request) {
        const bool sets = is_for(request, "confirm");
        return std::vector<std::string>{
            reply_to(request, sets ? "'accepted':['af.zoom_value'],'refused':{'panel.level':'busy'}"
                                   : "'err':'Invalid API command'")};
    });

    const run_result set =
        run({"set", "--number", "af.zoom_value=3", "panel.level=4", "--confirm", "5"});
    EXPECT_EQ(set.status, 6);
    EXPECT_EQ(set.output, "af.zoom_value=3\n");
    EXPECT_EQ(set.errors, "camparam: panel.level: busy\n"
                          "camparam: set for 5 s; \"camparam confirm\" keeps it\n");
}

TEST_F(SetCommand, ListsWhatThereIs)
{
    start_host();

    const std::string modules = run({"set"}).output;
    EXPECT_EQ(modules.find("MODULE      SETTINGS\nisp0        0\naf          2\n"), 0U) << modules;
    EXPECT_EQ(run({"get"}).output, modules);
    EXPECT_EQ(run({"set", "af"}).output, run({"list", "af"}).output);
}

TEST_F(SetCommand, AMissingNameHidesNoRefusal)
{
    start_host();
    const std::string refused = "af.zoom_value=1001", missing = "af.nosuch=1";

    EXPECT_EQ(run({"set", refused, missing}).status, 4);
    EXPECT_EQ(run({"set", missing, refused}).status, 4);
    EXPECT_EQ(run({"set", missing, "lens.zoom_value=1"}).status, 5);
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

TEST_F(SetCommand, AModuleItselfTakesNoValue)
{
    start_host();

    const run_result set = run({"set", "af=5"});
    EXPECT_EQ(set.status, 2);
    EXPECT_EQ(set.errors, "camparam: \"af\" is a module; name a setting of it, as in "
                          "\"af.MEMBER=VALUE\"\n");
    EXPECT_EQ(run({"set", "fa=5"}).status, 5);
}

TEST_F(SetCommand, MessagesShowNoSecrets)
{
    write_home("netport.conf", "key = 'hush'\n");
    write_home("descriptions.json", "{'netport':{'key':{'secret':true}}}");
    start_host();

    const std::string longer(256, 's');
    const run_result set = run({"set", "netport.key=" + longer});
    EXPECT_EQ(set.status, 4);
    EXPECT_EQ(set.errors.find(longer), std::string::npos) << set.errors;
}

TEST(ClientMessages, ShowNoSecretThatTheHostKeeps)
{
    const fake_server camera(describing("'net':{'members':{'key':{'kind':'text','secret':true}}}",
                                        "'net':{'key':'hush'}"));

    for (const std::vector<std::string> &words :
         std::vector<std::vector<std::string>>{{"set", "net.key=other"}, {"load", "-"}}) {
        const run_result set = run(words, R"({"net":{"key":"other"}})");
        EXPECT_EQ(set.status, 4);
        EXPECT_EQ(set.errors, "camparam: net.key: the value was not taken (text)\n");
    }
}

} // namespace
