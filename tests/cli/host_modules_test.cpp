// Modules of a host's own, of whatever type they answer: the client reads and sets them as it does
// the store's.
#include <map>

#include "camparam/commands.h"
#include "cli/run.h"
#include "support/own_module.h"
#include "support/store.h"

namespace {

// What each module holds: compact JSON, an apostrophe for a quote.
std::map<std::string, shared_text> held;

int answer_held(const char *, const cJSON *, cJSON **answer, const char *name)
{
    *answer = parse(held.at(name)).release();
    return 0;
}

// Members are taken one by one, a bare value as it is.
int take(const char *, const cJSON *item, const char *name)
{
    const json whole = parse(held.at(name));
    if (!cJSON_IsObject(item)) {
        held.at(name) = compact(item);
        return 0;
    }
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, item)
    {
        cJSON_ReplaceItemInObjectCaseSensitive(whole.get(), member->string,
                                               cJSON_Duplicate(member, 1));
    }
    held.at(name) = compact(whole.get());
    return 0;
}

} // namespace

class ClientOfHostModules : public Store {
protected:
    ClientOfHostModules()
    {
        EXPECT_EQ(para_commands_register(), 0);
        add("count", "3");
        add("gain", "0.25");
        add("label", "'door'");
        add("tags", "{'list':[1,'two'],'on':true,'ratio':1.5,'big':4294967296,'name':'7'}");
        start_store();
    }

private:
    static void add(const char *name, const char *value)
    {
        held[name] = value;
        add_own_module(name, answer_held, take);
    }
};

TEST_F(ClientOfHostModules, AreSetByTheirType)
{
    const run_result got =
        run({"set", "count=4", "gain=0.5", "label=gate", "tags.list=[2]", "tags.on=false",
             "tags.ratio=2.25", "tags.big=8589934592", "tags.name=8"});

    EXPECT_EQ(got.errors, "");
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.output, "count=4\ngain=0.5\nlabel=gate\ntags.list=[2]\ntags.on=false\n"
                          "tags.ratio=2.25\ntags.big=8589934592\ntags.name=8\n");
    EXPECT_EQ(std::string(held["count"]), "4");
    EXPECT_EQ(std::string(held["gain"]), "0.5");
    EXPECT_EQ(std::string(held["label"]), "'gate'");
    EXPECT_EQ(std::string(held["tags"]),
              "{'list':[2],'on':false,'ratio':2.25,'big':8589934592,'name':'8'}");
}

TEST_F(ClientOfHostModules, ValuesOfAnotherTypeAreRefused)
{
    const run_result got = run({"set", "count=four", "tags.list=[2", "tags.ratio=1.5x"});

    EXPECT_EQ(got.status, 4);
    EXPECT_EQ(got.errors, "camparam: count: \"four\" is no number\n"
                          "camparam: tags.list: \"[2\" is no JSON\n"
                          "camparam: tags.ratio: \"1.5x\" is no number\n"
                          "camparam: nothing was set\n");
    EXPECT_EQ(std::string(held["count"]), "3");
}

TEST_F(ClientOfHostModules, AModuleWithMembersTakesNoValueItself)
{
    const run_result got = run({"set", "tags=5"});

    EXPECT_EQ(got.status, 2);
    EXPECT_EQ(got.errors, "camparam: \"tags\" is a module; name a setting of it, as in "
                          "\"tags.MEMBER=VALUE\"\n");
}

TEST_F(ClientOfHostModules, JsonShowsBareValuesAsTheyAre)
{
    EXPECT_EQ(squeeze(run({"--json", "get", "count", "tags.on"}).output),
              "{'count':3,'tags':{'list':[1,'two'],'on':true,'ratio':1.5,'big':4294967296,"
              "'name':'7'}}");
    EXPECT_EQ(squeeze(run({"--json", "set", "gain=0.5"}).output), "{'gain':0.5}");
}

TEST_F(ClientOfHostModules, ADumpBringsAllBack)
{
    const std::string before = run({"dump"}).output;
    const std::map<std::string, std::string> values(held.begin(), held.end());
    ASSERT_EQ(run({"set", "count=9", "gain=9.5", "label=x", "tags.list={}", "tags.on=false",
                   "tags.ratio=0", "tags.big=1", "tags.name=x"})
                  .status,
              0);

    const run_result loaded = run({"load", "-"}, before);

    EXPECT_EQ(loaded.errors, "");
    EXPECT_NE(loaded.output.find("8 changed, "), std::string::npos) << loaded.output;
    for (const auto &[name, value] : values)
        EXPECT_EQ(std::string(held[name]), value) << name;
    EXPECT_EQ(run({"dump"}).output, before);
    EXPECT_NE(run({"load", "-"}, before).output.find(" 0 changed, "), std::string::npos);
}

TEST_F(ClientOfHostModules, ATestAsksTheHostForABareValue)
{
    const run_result got = run({"test", "gain", "0.75"});

    EXPECT_EQ(got.errors, "");
    EXPECT_EQ(got.output, "gain=0.75 would be taken\n");
    EXPECT_EQ(run({"test", "gain", "[]"}).status, 4);
}
