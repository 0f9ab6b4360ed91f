// Web names: the request for a page.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "server/www_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

using WwwGet = Www;

TEST_F(WwwGet, CarriesTheIdentifiersInFront)
{
    start_with(lens_file);
    EXPECT_EQ(page_request("none"),
              "{'msg_from':'www','msg_type':'get','msg_name':'none','msg_id':1}");
}

TEST_F(WwwGet, AsksEachModuleForTheKeysOfItsMembers)
{
    start_with("{'page':['b','a'],'a':{'two':['x'],'one':['y','S']},'b':{'three':['z']}}");
    EXPECT_EQ(asked("page"), "{'b':['three'],'a':['two','one']}");
}

TEST_F(WwwGet, AsksAModuleThatIsListedTwiceTwice)
{
    start_with("{'page':['a','b','a'],'a':{'one':['x']},'b':{'two':['y']}}");
    EXPECT_EQ(asked("page"), "{'a':['one'],'b':['two'],'a':['one']}");
}

TEST_F(WwwGet, FindsPagesAndModulesWithoutRegardToCase)
{
    start_with("{'Page':['LENS'],'lens':{'zoom':['z']}}");
    EXPECT_EQ(asked("pAGE"), "{'LENS':['zoom']}");
}

TEST_F(WwwGet, AsksAModuleWithoutMembersForAll)
{
    start_with("{'page':['bare','a'],'bare':{},'a':{'one':['x']}}");
    EXPECT_EQ(asked("page"), "{'bare':['all'],'a':['one']}");
}

TEST_F(WwwGet, SkipsNamesThatAreNotInTheFileAndWhatIsNoName)
{
    start_with("{'page':['ghost',5,null,true,['a'],{'a':1},'','a'],'a':{'one':['x']}}");
    EXPECT_EQ(asked("page"), "{'a':['one']}");
}

TEST_F(WwwGet, SkipsNamesOfWhatIsNoModule)
{
    start_with("{'page':['page','number','text','a'],'number':5,'text':'a','a':{'one':['x']}}");
    EXPECT_EQ(asked("page"), "{'a':['one']}");
}

TEST_F(WwwGet, AsksForTheKeysOfEntriesOfAnyForm)
{
    start_with("{'page':['a'],'a':{'one':['x'],'two':5,'three':[],'four':null}}");
    EXPECT_EQ(asked("page"), "{'a':['one','two','three','four']}");
}

TEST_F(WwwGet, RefusesAPageThatIsNoList)
{
    start_with(lens_file);
    for (const char *page : {"unknown", "lens", "number", "text", "flag", "bare", "", "%s%n"}) {
        forget_traces();
        EXPECT_EQ(page_request(page), "none") << page;
        EXPECT_THAT(traces_of("get_http2json"),
                    ElementsAre(std::string("could not find ") + page + " in json\n"));
    }
}

TEST_F(WwwGet, RefusesARequestWithoutAName)
{
    start_with(lens_file);
    EXPECT_EQ(text_of(get_http2json(parse("{}").get())), "none");
    EXPECT_EQ(text_of(get_http2json(parse("{'msg_name':5}").get())), "none");
    EXPECT_THAT(traces_of("get_http2json"), IsEmpty());
    EXPECT_EQ(page_request("none"),
              "{'msg_from':'www','msg_type':'get','msg_name':'none','msg_id':1}");
}

TEST_F(WwwGet, FindsNoPageInAFileThatIsNoObject)
{
    start_with("[['image'],'image',{'image':['a']}]");
    EXPECT_EQ(page_request("image"), "none");
}
