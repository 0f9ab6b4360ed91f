// Whether the client sends a value as a number or as a string.
#include "cli/run.h"
#include "host/host_process.h"

namespace {

class ValueForm : public HostProcess {
protected:
    // The last set request that the server received, without "msg_id".
    static std::string last_set(const fake_server &camera)
    {
        std::string last = "none";
        for (const std::string &request : camera.requests()) {
            if (!is_for(request, "set"))
                continue;
            const json tree(cJSON_Parse(request.c_str()));
            cJSON_DeleteItemFromObject(tree.get(), "msg_id");
            last = compact(tree.get());
        }
        return last;
    }
};

const char *const modules =
    "'video0':{'members':{"
    "'gop':{'kind':'number','min':1,'max':400,'default':50,'current':50},"
    "'rcMode':{'kind':'enum','names':['CBR','VBR'],'default':'CBR','current':'VBR'}}},"
    "'netport':{'members':{'http':{'kind':'text','default':'80','current':'80'}}}";
const char *const values = "'video0':{'gop':60,'rcMode':'VBR'},'netport':{'http':'81'}";

TEST_F(ValueForm, FollowsTheDescription)
{
    const fake_server camera(describing(modules, values));

    EXPECT_EQ(run({"set", "video0.gop=60", "video0.rcMode=VBR"}).status, 0);
    EXPECT_EQ(last_set(camera),
              "{'msg_type':'set','msg_name':'camparam','video0':{'gop':60,'rcMode':'VBR'}}");

    EXPECT_EQ(run({"set", "netport.http=81"}).status, 0);
    EXPECT_EQ(last_set(camera), "{'msg_type':'set','msg_name':'camparam','netport':{'http':'81'}}");
}

TEST_F(ValueForm, NamesOfAnEnumAreCheckedBeforeSending)
{
    const fake_server camera(describing(modules, values));

    const run_result set = run({"set", "video0.rcMode=V"});

    EXPECT_EQ(set.status, 4);
    EXPECT_EQ(set.errors, "camparam: video0.rcMode: no \"V\" here (one of CBR, VBR)\n"
                          "camparam: nothing was set\n");
    EXPECT_EQ(last_set(camera), "none");
}

TEST_F(ValueForm, AnEnumThatWasNotTakenIsNamedWithItsNames)
{
    const fake_server camera(describing(modules, values));

    const run_result set = run({"set", "video0.rcMode=CBR"});

    EXPECT_EQ(set.status, 4);
    EXPECT_EQ(set.errors, "camparam: video0.rcMode: \"CBR\" was not taken, the value is \"VBR\" "
                          "(one of CBR, VBR)\n");
}

TEST_F(ValueForm, OptionsGoBeforeTheDescription)
{
    const fake_server camera(describing(modules, values));

    run({"set", "--text", "video0.gop=60"});
    EXPECT_EQ(last_set(camera), "{'msg_type':'set','msg_name':'camparam','video0':{'gop':'60'}}");

    run({"set", "netport.http=81", "--number"});
    EXPECT_EQ(last_set(camera), "{'msg_type':'set','msg_name':'camparam','netport':{'http':81}}");
}

TEST_F(ValueForm, AValueMayHoldEqualsSignsAndBeEmpty)
{
    const fake_server camera(describing(modules, "'netport':{'http':'a=b'}"));

    EXPECT_EQ(run({"set", "netport.http=a=b"}).status, 0);
    EXPECT_EQ(last_set(camera),
              "{'msg_type':'set','msg_name':'camparam','netport':{'http':'a=b'}}");

    run({"set", "netport.http="});
    EXPECT_EQ(last_set(camera), "{'msg_type':'set','msg_name':'camparam','netport':{'http':''}}");
}

TEST_F(ValueForm, MustBeSaidWhenTheHostDescribesNothing)
{
    start_store();

    const run_result set = run({"set", "af.zoom_value=5"});

    EXPECT_EQ(set.status, 2);
    EXPECT_EQ(set.errors, "camparam: the host does not describe its settings; say with --number or "
                          "--text how their values are sent\n");
}

TEST_F(ValueForm, AHostThatDescribesNothingIsSetWithAnOption)
{
    const fake_server camera([](const std::string &request) {
        const bool is_api = request.find("\"api_") != std::string::npos;
        return std::vector<std::string>{
            is_api ? quoted("{'err':'Invalid API command'}")
                   : reply_to(request, "'video0':{'gop':60,'title':'50'}")};
    });

    EXPECT_EQ(run({"set", "--number", "video0.gop=60"}).output, "video0.gop=60\n");
    EXPECT_EQ(last_set(camera), "{'msg_type':'set','msg_name':'camparam','video0':{'gop':60}}");
    EXPECT_EQ(run({"set", "--text", "video0.title=50"}).output, "video0.title=50\n");
    EXPECT_EQ(last_set(camera), "{'msg_type':'set','msg_name':'camparam','video0':{'title':'50'}}");

    EXPECT_EQ(run({"set", "--text", "video0.gop=60"}).status, 4);
    EXPECT_EQ(run({"set", "--number", "video0.gop=fast"}).status, 4);
    EXPECT_EQ(run({"set", "--number", "video0.nosuch=1"}).status, 5);
    EXPECT_EQ(run({"set", "--number", "video0.nosuch=1", "video0.gop=60"}).status, 6);
}

TEST_F(ValueForm, TheStoreItselfIgnoresASetOfTheLens)
{
    start_store();

    const run_result set = run({"set", "--number", "af.zoom_value=5"});

    EXPECT_EQ(set.status, 4);
    EXPECT_EQ(set.errors, "camparam: af.zoom_value: \"5\" was not taken, the value is \"0\"\n");
}

TEST_F(ValueForm, ManyValuesTravelInSeveralDatagrams)
{
    std::string members, answers;
    std::vector<std::string> words = {"set"};
    for (int i = 0; i < 60; i++) {
        const std::string name = "line" + std::to_string(i), value(200, 'x');
        const std::string comma = i == 0 ? "" : ",";
        members += comma + "'" + name + "':{'kind':'text','default':'','current':''}";
        answers += comma + "'" + name + "':'" + value + "'";
        words.push_back("overlay." + name + "=" + value);
    }
    const fake_server camera(
        describing("'overlay':{'members':{" + members + "}}", "'overlay':{" + answers + "}"));

    EXPECT_EQ(run(words).status, 0);

    int sets = 0;
    for (const std::string &request : camera.requests()) {
        EXPECT_LE(request.size(), size_t{PARA_MESSAGE_MAX});
        sets += is_for(request, "set") ? 1 : 0;
    }
    EXPECT_GE(sets, 60 * 200 / PARA_MESSAGE_MAX + 1);
}

TEST_F(ValueForm, ValuesThatJustExceedADatagramTravelInTwo)
{
    const fake_server camera([](const std::string &request) {
        return std::vector<std::string>{reply_to(request, "'overlay':{}")};
    });
    const auto set = [](size_t length) {
        std::vector<std::string> words = {"set", "--text"};
        for (char member = 'a'; member < 'p'; member++)
            words.push_back(std::string("overlay.") + member + "=" + std::string(255, 'x'));
        words.push_back("overlay.z=" + std::string(length, 'x'));
        return run(words);
    };

    set(0);
    size_t shortest = 0;
    for (const std::string &request : camera.requests())
        shortest = is_for(request, "set") ? request.size() - id_of(request).size() : shortest;
    const size_t usual_digits = 9; // of identifiers, which are random
    const size_t longest = PARA_MESSAGE_MAX - shortest - usual_digits;
    ASSERT_LT(longest + 3, 256U);
    size_t largest = 0;
    for (size_t length = longest - 1; length <= longest + 3; length++)
        set(length);
    for (const std::string &request : camera.requests())
        largest = std::max(largest, request.size());
    EXPECT_LE(largest, size_t{PARA_MESSAGE_MAX});
    EXPECT_GT(largest, size_t{PARA_MESSAGE_MAX - 4});
}

TEST_F(ValueForm, ATextThatTheHostCannotKeepIsNotSent)
{
    const std::string longest(255, 'x');
    const fake_server camera(describing(modules, "'netport':{'http':'" + longest + "'}"));

    EXPECT_EQ(run({"set", "netport.http=" + longest}).status, 0);
    EXPECT_NE(last_set(camera), "none");

    const run_result set = run({"set", "netport.http=" + longest + "x"});
    EXPECT_EQ(set.status, 4);
    EXPECT_EQ(set.errors, "camparam: netport.http: a text of 256 bytes, and the host keeps at most "
                          "255\ncamparam: nothing was set\n");
    EXPECT_EQ(run({"set", "--text", "netport.http=" + longest + "x"}).status, 4);
}

TEST_F(ValueForm, OfATypeThatIsNotTakenIsNamed)
{
    const fake_server camera(describing(modules, "'video0':{'gop':60}"));

    EXPECT_EQ(run({"set", "--text", "video0.gop=60"}).errors,
              "camparam: video0.gop: \"60\" was not taken as a text, the value is the number 60 "
              "(number, 1 to 400)\n");
}

TEST_F(ValueForm, OfASettingThatIsNotDescribedNeedsAnOption)
{
    const fake_server camera(describing(modules, "'netport':{'new':'5'}"));

    EXPECT_EQ(run({"set", "--text", "netport.new=5"}).status, 5);
    EXPECT_EQ(last_set(camera), "none");
    EXPECT_EQ(run({"set", "--create", "netport.new=5"}).status, 0);
    EXPECT_EQ(last_set(camera), "{'msg_type':'set','msg_name':'camparam','netport':{'new':'5'}}");
}

} // namespace
