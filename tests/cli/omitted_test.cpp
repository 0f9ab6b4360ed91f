#include "cli/run.h"
#include "host/host_process.h"

namespace {

// Answers that list fewer names than there are.
class OmittedNames : public HostProcess {
protected:
    // A host with two settings, that answers a command with this.
    static fake_server::answerer answering(const std::string &command, const std::string &answer)
    {
        const std::string level =
            "{'kind':'number','min':0,'max':9,'default':5,'start':5,'current':7}";
        const std::string described =
            "'modules':{'panel':{'members':{'level':" + level + ",'mode':" + level + "}}}";
        return [=](const std::string &request) {
            return std::vector<std::string>{
                reply_to(request, is_for(request, command) ? answer : described)};
        };
    }
};

TEST_F(OmittedNames, AreToldByReset)
{
    const fake_server camera(
        answering("reset", "'accepted':['panel.level'],'refused':{},'omitted':3"));

    const run_result reset = run({"reset", "--all"});
    EXPECT_EQ(reset.status, 0);
    EXPECT_EQ(reset.output, "panel.level\n");
    EXPECT_EQ(reset.errors, "camparam: and 3 more\n");
    EXPECT_EQ(squeeze(run({"reset", "--all", "--json"}).output),
              "{'accepted':['panel.level'],'refused':{},'omitted':3}");
}

TEST_F(OmittedNames, AreToldByValuesToBeConfirmed)
{
    const fake_server camera(
        answering("confirm", "'accepted':['panel.level'],'refused':{},'omitted':1"));

    const run_result set = run({"set", "panel.level=1", "panel.mode=1", "--confirm", "5"});
    EXPECT_EQ(set.status, 0);
    EXPECT_EQ(set.output, "panel.level=1\n");
    EXPECT_EQ(set.errors,
              "camparam: and 1 more\ncamparam: set for 5 s; \"camparam confirm\" keeps it\n");
}

TEST_F(OmittedNames, AreRefusedWhereAllThatAreToldAre)
{
    const fake_server camera(
        answering("confirm", "'accepted':[],'refused':{'panel.level':'read-only'},'omitted':1"));

    const run_result set = run({"set", "panel.level=1", "panel.mode=1", "--confirm", "5"});
    EXPECT_EQ(set.status, 4);
    EXPECT_EQ(set.output, "");
    EXPECT_EQ(set.errors, "camparam: panel.level: read-only\ncamparam: and 1 more\n"
                          "camparam: nothing was set\n");
}

TEST_F(OmittedNames, AreToldByTest)
{
    const fake_server camera(
        answering("check", "'accepted':[],'refused':{'panel.level':'read-only'},'omitted':2"));

    const run_result tested = run({"test", "panel.level", "1"});
    EXPECT_EQ(tested.status, 4);
    EXPECT_EQ(tested.errors, "camparam: panel.level: read-only, and 2 more\n");
}

TEST_F(OmittedNames, AreNotTakenForAccepted)
{
    const fake_server camera(answering("check", "'accepted':[],'refused':{},'omitted':1"));

    const run_result tested = run({"test", "panel.level", "1"});
    EXPECT_EQ(tested.status, 1);
    EXPECT_EQ(tested.output, "");
    EXPECT_EQ(tested.errors,
              "camparam: the host's answer leaves out what it says of panel.level\n");
}

} // namespace
