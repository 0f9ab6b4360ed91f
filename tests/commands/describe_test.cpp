// What "describe" tells beside ranges and values: the texts of the device, and the host's own
// modules.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <string>

#include "commands/kit.h"
#include "host/fake_server.h"
#include "support/own_module.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class DescribedTexts : public Kit {
protected:
    // The members of a module.
    std::string members(const std::string &module, const std::string &more = "")
    {
        const json answer = asked("describe", "{'modules':['" + module + "']" + more + "}");
        const cJSON *const found = cJSON_GetObjectItem(
            cJSON_GetObjectItem(cJSON_GetObjectItem(answer.get(), "modules"), module.c_str()),
            "members");
        return found != nullptr ? compact(found) : "none";
    }

    int revision()
    {
        const json answer = asked("describe");
        const cJSON *const found = cJSON_GetObjectItem(answer.get(), "revision");
        return found != nullptr ? found->valueint : 0;
    }
};

constexpr const char *plain_zoom =
    "{'zoom_value':{'kind':'number','min':0,'max':100,'default':40,'start':40,'current':40}}";
constexpr const char *plain_port = "{'port':{'kind':'text','default':'40','current':'40'}}";

TEST_F(DescribedTexts, NeedNoFile)
{
    start_store();
    EXPECT_EQ(members("af"), plain_zoom);
    EXPECT_EQ(members("netport"), plain_port);
    EXPECT_THAT(ask("status"), Not(HasSubstr("descriptions")));
}

TEST_F(DescribedTexts, ComeFromTheHomeFolder)
{
    write_home("descriptions.json",
               "{'af':{'zoom_value':{'unit':'steps','label':'Zoom','help':'Where the lens is.',"
               "'names':{'0':'wide','100':'tele'},'other':1}},"
               "'netport':{'port':{'label':'Port','names':{'80':'usual'}}}}");
    start_store();
    EXPECT_EQ(members("af"),
              "{'zoom_value':{'kind':'number','min':0,'max':100,'default':40,'start':40,"
              "'current':40,'unit':'steps','label':'Zoom','help':'Where the lens is.',"
              "'names':{'0':'wide','100':'tele'}}}");
    EXPECT_EQ(members("netport"),
              "{'port':{'kind':'text','default':'40','current':'40','label':'Port'}}")
        << "a text needs no names";
}

TEST_F(DescribedTexts, OfOtherTypesAreIgnored)
{
    write_home("descriptions.json",
               "{'af':{'zoom_value':{'unit':5,'label':null,'help':[],'names':['a'],"
               "'secret':1}},'netport':{'port':'text'},'audio':[],'panel':7}");
    start_store();
    EXPECT_EQ(members("af"), plain_zoom);
    EXPECT_EQ(members("netport"), plain_port);
}

TEST_F(DescribedTexts, MayBeOfAllModulesThatBeginAlike)
{
    write_home("descriptions.json", "{'video*':{'gop':{'unit':'pictures'}},"
                                    "'video0':{'frameRate':{'unit':'Hz'}},"
                                    "'video1':{'gop':{'unit':'frames'}}}");
    start_store();
    EXPECT_THAT(members("video0"), HasSubstr("'unit':'pictures'")) << "besides its own";
    EXPECT_THAT(members("video1"), HasSubstr("'unit':'frames'"));
}

TEST_F(DescribedTexts, MakeAnotherRevision)
{
    start_store();
    const int before = revision();
    EXPECT_EQ(revision(), before);
    write_home("descriptions.json", "{'af':{'zoom_value':{'unit':'steps'}}}");
    const int with_unit = revision();
    EXPECT_NE(with_unit, before);
    kind_named("Af").set(9);
    EXPECT_EQ(revision(), with_unit) << "values are not a part of it";
}

TEST_F(DescribedTexts, OfASecretHideItsValues)
{
    write_home("descriptions.json", "{'netport':{'port':{'secret':true}},"
                                    "'af':{'zoom_value':{'secret':true}}}");
    start_store();
    EXPECT_EQ(members("netport"), "{'port':{'kind':'text','secret':true}}");
    EXPECT_EQ(members("af"), "{'zoom_value':{'kind':'number','min':0,'max':100,'secret':true}}");
    EXPECT_EQ(members("netport", ",'secrets':0"), members("netport"));
    for (const char *shown : {",'secrets':1", ",'secrets':true"})
        EXPECT_EQ(members("netport", shown),
                  "{'port':{'kind':'text','default':'40','current':'40','secret':true}}");

    kind_named("Conf").set(9);
    const std::string log = ask("log");
    EXPECT_THAT(log, HasSubstr("'module':'netport','member':'port','secret':true,'by':'host'}"));
    EXPECT_THAT(log, Not(HasSubstr("'9'")));
}

class UnusableDescriptions : public DescribedTexts {
protected:
    // Then every text may be a secret, and nothing else.
    void hide_texts(const std::string &why)
    {
        start_store();
        EXPECT_THAT(ask("status"), HasSubstr("'descriptions':'descriptions.json " + why + "'"));
        EXPECT_EQ(members("netport"), "{'port':{'kind':'text','secret':true}}");
        EXPECT_EQ(members("af"), plain_zoom);
        kind_named("Conf").set(9);
        kind_named("Af").set(9);
        EXPECT_THAT(ask("log"), AllOf(HasSubstr("'port','secret':true"),
                                      HasSubstr("'zoom_value','old':40,'new':9")));
    }
};

TEST_F(UnusableDescriptions, HideTextsWhenTheyAreNoJson)
{
    write_home("descriptions.json", "{'netport':");
    hide_texts("is no JSON");
}

TEST_F(UnusableDescriptions, HideTextsWhenTheyAreNoObject)
{
    write_home("descriptions.json", "[]");
    hide_texts("holds no JSON object");
}

TEST_F(UnusableDescriptions, HideTextsWhenTheyAreAFolder)
{
    ASSERT_EQ(mkdir((home + "/descriptions.json").c_str(), 0755), 0);
    hide_texts("is not a regular file");
}

TEST_F(UnusableDescriptions, HideTextsWhenNobodyWritesTheFifo)
{
    ASSERT_EQ(mkfifo((home + "/descriptions.json").c_str(), 0644), 0);
    hide_texts("is not a regular file");
}

TEST_F(UnusableDescriptions, HideTextsWhenTheyAreALinkLoop)
{
    ASSERT_EQ(symlink("descriptions.json", (home + "/descriptions.json").c_str()), 0);
    hide_texts("cannot be opened");
}

TEST_F(UnusableDescriptions, HideTextsWhenTheyAreTooLong)
{
    write_home("descriptions.json", "{}" + std::string(1 << 20, ' '));
    hide_texts("has more than 1 MiB");
}

// --- Modules of the host's own ---

namespace {

shared_text host_answer; // JSON, an apostrophe for a quote

int answer_of_host(const char *, const cJSON *item, cJSON **answer, const char *)
{
    const std::string text = host_answer;
    if (cJSON_IsArray(item) && !text.empty())
        *answer = parse(text).release();
    return 0;
}

int take_nothing(const char *, const cJSON *, const char *)
{
    return 0;
}

} // namespace

class DescribedHostModule : public DescribedTexts {
protected:
    DescribedHostModule()
    {
        add_own_module("battery", answer_of_host, nullptr);
        add_own_module("lamp", answer_of_host, take_nothing);
        add_own_module("silent", nullptr, take_nothing);
        start_store();
    }
};

TEST_F(DescribedHostModule, IsToldByWhatItAnswers)
{
    host_answer = "{'level':87,'state':'full','cells':[1,2],'more':{'a':null},'on':true,'x':1.5}";
    EXPECT_EQ(members("lamp"),
              "{'level':{'kind':'number','current':87},'state':{'kind':'text','current':'full'},"
              "'cells':{'kind':'json','current':[1,2]},"
              "'more':{'kind':'json','current':{'a':null}},'on':{'kind':'json','current':true},"
              "'x':{'kind':'number','current':1.5}}");
    EXPECT_EQ(members("silent"), "none");
}

TEST_F(DescribedHostModule, ThatCannotBeSetIsReadOnly)
{
    host_answer = "{'level':87}";
    EXPECT_EQ(members("battery"), "{'level':{'kind':'number','current':87,'read_only':true}}");
    EXPECT_EQ(members("lamp"), "{'level':{'kind':'number','current':87}}");
}

TEST_F(DescribedHostModule, MayBeItsOnlySetting)
{
    for (const char *value : {"87", "-1.25"}) {
        host_answer = value;
        EXPECT_EQ(members("lamp"), "{'':{'kind':'number','current':" + std::string(value) + "}}");
    }
    host_answer = "'full'";
    EXPECT_EQ(members("lamp"), "{'':{'kind':'text','current':'full'}}");
    host_answer = "[1]";
    EXPECT_EQ(members("lamp"), "{'':{'kind':'json','current':[1]}}");
    host_answer = "false";
    EXPECT_EQ(members("lamp"), "{'':{'kind':'json','current':false}}");
}

TEST_F(DescribedHostModule, ThatAnswersNothingHasNoMembers)
{
    EXPECT_EQ(members("lamp"), "{}");
    host_answer = "{}";
    EXPECT_EQ(members("lamp"), "{}");
}

TEST_F(DescribedHostModule, HasTextsToo)
{
    write_home("descriptions.json", "{'lamp':{'':{'unit':'%'},'pin':{'secret':true}}}");
    host_answer = "87";
    EXPECT_EQ(members("lamp"), "{'':{'kind':'number','current':87,'unit':'%'}}");
    host_answer = "{'pin':[1,2]}";
    EXPECT_EQ(members("lamp"), "{'pin':{'kind':'json','secret':true}}");
}

TEST_F(DescribedHostModule, MayHaveSecretsWhereNothingIsToldOfThem)
{
    write_home("descriptions.json", "{'lamp':");
    host_answer = "{'accounts':[{'password':'x'}],'state':'full','level':87}";
    EXPECT_EQ(members("lamp"), "{'accounts':{'kind':'json','secret':true},"
                               "'state':{'kind':'text','secret':true},"
                               "'level':{'kind':'number','current':87}}");
}

TEST_F(DescribedHostModule, WithAValueThatIsTooLongIsToldWithoutIt)
{
    host_answer = "{'a':['" + std::string(70000, 'x') + "'],'b':1}";
    EXPECT_EQ(members("lamp"), "{'a':{'kind':'json'},'b':{'kind':'number','current':1}}");
}
