// Web names: the look-up of names and members.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "server/www_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

using WwwName = Www;
using WwwSearch = Www;

TEST_F(Www, StartAndEndDoNothing)
{
    EXPECT_EQ(para_init_www(), 0);
    para_exit_www();
    EXPECT_THAT(traces(), IsEmpty());
}

TEST_F(WwwName, IsFoundWithItsTypeAndModifier)
{
    start_with(lens_file);
    EXPECT_EQ(web_name("lens", "rate"), "k N K");
    EXPECT_EQ(web_name("lens", "mode"), "m S same");
    EXPECT_EQ(web_name("lens", "untyped"), "u same same");
    EXPECT_EQ(web_name("lens", "wide"), "w N K");
    EXPECT_THAT(traces_of("get_http_name"), IsEmpty());
}

TEST_F(WwwName, IsGivenToACallerThatWantsNothingElse)
{
    start_with(lens_file);
    EXPECT_STREQ(get_http_name("lens", "rate", nullptr, nullptr), "k");
}

TEST_F(WwwName, IsThatOfAModuleInAnyCase)
{
    start_with(lens_file);
    EXPECT_EQ(web_name("LENS", "rate"), "k N K");
    EXPECT_EQ(web_name("lens", "RATE"), "null same same") << "unlike the member";
}

TEST_F(WwwName, NeedsAModuleThatIsAnObject)
{
    start_with(lens_file);
    for (const char *module : {"nobody", "image", "number", "text", "flag", "", "lens2", "len"}) {
        forget_traces();
        EXPECT_EQ(web_name(module, "zoom"), "null same same") << module;
        EXPECT_THAT(traces_of("get_http_name"),
                    ElementsAre(std::string("can not find ") + module + ".zoom\n"));
    }
}

TEST_F(WwwName, NeedsAMemberOfExactlyThatKeyThatIsAFilledArray)
{
    start_with(lens_file);
    for (const char *member : {"void", "text", "object", "las", "last2", "Last", ""}) {
        forget_traces();
        EXPECT_EQ(web_name("lists", member), "null same same") << member;
        EXPECT_THAT(traces_of("get_http_name"),
                    ElementsAre(std::string("can not find lists.") + member + "\n"));
    }
}

TEST_F(WwwName, ComesFromTheFirstUsableEntryOfThatKey)
{
    start_with("{'lens':{'zoom':[],'zoom':'z','zoom':['first','N'],'zoom':['second','S','K']}}");
    EXPECT_EQ(web_name("lens", "zoom"), "first N same");
}

TEST_F(WwwName, OfAnEntryThatBeginsWithNoTextIsNone)
{
    start_with(lens_file);
    EXPECT_STREQ(get_http_name("lists", "number", nullptr, nullptr), nullptr);
}

TEST_F(WwwName, HasNoTypeOrModifierThatIsNoText)
{
    start_with("{'lens':{'zoom':['z',5,null],'rate':['k','N',['K']]}}");
    EXPECT_EQ(web_name("lens", "zoom"), "z null null");
    EXPECT_EQ(web_name("lens", "rate"), "k N null");
    EXPECT_EQ(found("k", 0), "lens.rate N null");
}

TEST_F(WwwName, IsUnknownWithoutAFile)
{
    start_store();
    EXPECT_EQ(web_name("lens", "zoom"), "null same same");
    EXPECT_EQ(count_traces("can not find lens.zoom", "get_http_name"), 1);
}

TEST_F(WwwSearch, GivesModuleMemberTypeAndModifier)
{
    start_with(lens_file);
    EXPECT_EQ(found("k", 0), "lens.rate N K");
    EXPECT_EQ(found("n", 0), "stream.name S same");
    EXPECT_EQ(found("u", 0), "lens.untyped null same");
    EXPECT_EQ(found("w", 0), "lens.wide N K");
}

TEST_F(WwwSearch, GivesNothingForAnUnknownName)
{
    start_with(lens_file);
    for (const char *name : {"", "unknown", "Z", "zz", "bare", "5", "zoom", "lens", "image"})
        EXPECT_EQ(found(name, 0), "null.null null same") << name;
}

TEST_F(WwwSearch, GoesOnBehindTheModuleOfTheMatch)
{
    start_with("{'a':{'one':['x','N'],'two':['x','S']},'list':['x'],'b':{'three':['y']},"
               "'c':{'four':['y'],'five':['x','S','K'],'six':['x']},'d':{'seven':['x']},'e':{}}");
    EXPECT_EQ(found("x", 0), "a.one N same");
    EXPECT_EQ(found("x", 1), "c.five S K");
    EXPECT_EQ(found("x", 1), "d.seven null same");
    EXPECT_EQ(found("x", 1), "null.null null same");
    EXPECT_EQ(found("x", 0), "a.one N same") << "a new search begins at the first module";
}

TEST_F(WwwSearch, TracesWhereItBegins)
{
    start_with("{'list':[],'a':{'one':['x']},'b':{'two':['x']},'c':{'three':['y']}}");
    found("x", 0);
    found("x", 1);
    found("x", 1);
    EXPECT_THAT(traces_of("get_json_name"),
                ElementsAre("search x in list\n", "search x in b\n", "search x in c\n"));
}

TEST_F(WwwSearch, DoesNotTraceBehindTheLastMember)
{
    start_with("{'a':{'one':['x']}}");
    found("x", 0);
    forget_traces();
    EXPECT_EQ(found("x", 1), "null.null null same");
    EXPECT_THAT(traces_of("get_json_name"), IsEmpty());
}

TEST_F(WwwSearch, SkipsEntriesOfOtherForms)
{
    start_with("{'x':'x','y':['x'],'z':[['x']],"
               "'a':{'t':'x','n':5,'o':{'0':'x'},'e':[],'l':[['x']],'f':[5,'x'],'b':[null,'x']},"
               "'b':{'good':['x','N']}}");
    EXPECT_EQ(found("x", 0), "b.good N same");
}

TEST_F(WwwSearch, FindsNothingWithoutAFile)
{
    start_store();
    forget_traces();
    EXPECT_EQ(found("x", 0), "null.null null same");
    EXPECT_EQ(found("x", 1), "null.null null same");
    EXPECT_THAT(traces_of("get_json_name"), IsEmpty());
}

TEST_F(WwwSearch, FindsNoModuleInAFileThatIsNoObject)
{
    start_with("[['x','N'],{'one':['x']},'x']");
    www_json_name name = {"-", "-", "-"};
    get_json_name(&name, "x", nullptr, 0);
    EXPECT_STREQ(name.module, nullptr);
}
