// Web names: the conversion functions, one by one.
#include "camparam/www.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "support/store.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const char lens_file[] =
    "{'json_pattern_list':[],'conf_pattern_list':[],"
    "'image':['lens','stream','lists','ghost','bare',5,null,['lens'],'number','image','lens'],"
    "'none':[],'number':5,'text':'lens','flag':true,"
    "'bare':{},"
    "'lens':{'zoom':['z','N'],'position':['p','N','P'],'rate':['k','N','K'],"
    "'gain':['f','N','F'],'every':['g','N','Greedy'],'odd':['o','N','Z'],'lower':['l','N','k'],"
    "'kilo':['kk','N','KK'],'mode':['m','S'],'scaled':['sk','S','K'],'untyped':['u'],"
    "'wide':['w','N','K','more']},"
    "'stream':{'bit_rate':['br','N','K'],'name':['n','S']},"
    "'lists':{'void':[],'number':[5,'N'],'text':'z','object':{'0':'z'},'last':['x','N']}}";

std::string or_null(const char *text)
{
    return text != nullptr ? text : "null";
}

} // namespace

class Www : public Store {
protected:
    // No request is sent by these tests, so the functions run while the store's thread has nothing
    // to convert.
    void start_with(const std::string &web_names)
    {
        write_home("www2json.json", web_names);
        start_store();
        forget_traces();
    }

    // The request for a page without blanks, "none" for null.
    static std::string page_request(const std::string &page)
    {
        return text_of(get_http2json(parse("{'msg_name':'" + page + "'}").get()));
    }

    // The modules' part of that request.
    static std::string asked(const std::string &page)
    {
        return modules_of(get_http2json(parse("{'msg_name':'" + page + "'}").get()));
    }

    static cJSON *query_request(const std::string &query)
    {
        const json request(cJSON_CreateObject());
        cJSON_AddStringToObject(request.get(), "msg_name", "page");
        cJSON_AddStringToObject(request.get(), "data", query.c_str());
        return set_http2json(request.get());
    }

    // The modules' part of the request that a query makes.
    static std::string assigned(const std::string &query)
    {
        return modules_of(query_request(query));
    }

    // What one web name's value is stored as, in a module with no more than that.
    static std::string stored(const std::string &web_name, const std::string &value)
    {
        const json request(query_request(web_name + "=" + value));
        const cJSON *const module = cJSON_GetObjectItem(request.get(), "lens");
        return module != nullptr ? compact(module->child) : "none";
    }

    // A reply in web names.
    static std::string shown(const cJSON *reply)
    {
        char *const text = get_json2http(const_cast<cJSON *>(reply));
        const std::string result = or_null(text);
        free(text);
        return result;
    }

    static std::string shown(const std::string &reply) { return shown(parse(reply).get()); }

    static std::string text_of(cJSON *tree)
    {
        const json owner(tree);
        return tree != nullptr ? compact(tree) : "none";
    }

    static std::string modules_of(cJSON *tree)
    {
        for (const char *key : {"msg_from", "msg_type", "msg_name", "msg_id"})
            cJSON_DeleteItemFromObject(tree, key);
        return text_of(tree);
    }

    static std::string found(const std::string &web_name, int next, const char *modifier = "same")
    {
        www_json_name name = {"-", "-", "-"};
        get_json_name(&name, web_name.c_str(), &modifier, next);
        return or_null(name.module) + "." + or_null(name.member) + " " + or_null(name.type) + " " +
               or_null(modifier);
    }

    static std::string web_name(const char *module, const char *member)
    {
        const char *type = "same";
        const char *modifier = "same";
        const char *const name = get_http_name(module, member, &type, &modifier);
        return or_null(name) + " " + or_null(type) + " " + or_null(modifier);
    }
};

using WwwName = Www;
using WwwSearch = Www;
using WwwGet = Www;
using WwwSet = Www;
using WwwReply = Www;

TEST_F(Www, StartAndEndDoNothing)
{
    EXPECT_EQ(para_init_www(), 0);
    para_exit_www();
    EXPECT_THAT(traces(), IsEmpty());
}

// --- The web name of a member ---

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

TEST_F(WwwName, IsUnknownWithoutAFile)
{
    start_store();
    EXPECT_EQ(web_name("lens", "zoom"), "null same same");
    EXPECT_EQ(count_traces("can not find lens.zoom", "get_http_name"), 1);
}

// --- The member of a web name ---

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

// --- Get ---

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

// --- Set ---

TEST_F(WwwSet, CarriesTheIdentifiersInFront)
{
    start_with(lens_file);
    EXPECT_EQ(text_of(query_request("z=5")), "{'msg_from':'www','msg_type':'set','msg_name':'page',"
                                             "'msg_id':1,'lens':{'zoom':5}}");
}

TEST_F(WwwSet, CountsGetAndSetRequestsTogether)
{
    start_with(lens_file);
    page_request("none");
    assigned("z=1");
    EXPECT_NE(page_request("none").find("'msg_id':3}"), std::string::npos);
}

TEST_F(WwwSet, GathersTheMembersOfAModule)
{
    start_with(lens_file);
    EXPECT_EQ(assigned("z=1&br=2&f=3&n=x"),
              "{'lens':{'zoom':1,'gain':3},'stream':{'bit_rate':2000,'name':'x'}}");
}

TEST_F(WwwSet, AddsAMemberThatIsGivenTwiceTwice)
{
    start_with(lens_file);
    EXPECT_EQ(assigned("z=1&z=2&m=a&m=a"), "{'lens':{'zoom':1,'zoom':2,'mode':'a','mode':'a'}}");
}

TEST_F(WwwSet, SkipsUnknownNames)
{
    start_with(lens_file);
    EXPECT_EQ(assigned("unknown=1&z=2&zoom=3&Z=4&lens=5"), "{'lens':{'zoom':2}}");
    EXPECT_EQ(assigned("unknown=1"), "{}");
}

TEST_F(WwwSet, RefusesAQueryWithoutAPair)
{
    start_with(lens_file);
    for (const char *query : {"", "z", "&", "z&m&", "%3D"})
        EXPECT_EQ(assigned(query), "none") << query;
}

TEST_F(WwwSet, RefusesARequestWithoutDataOrName)
{
    start_with(lens_file);
    EXPECT_EQ(text_of(set_http2json(parse("{'msg_name':'page'}").get())), "none");
    EXPECT_EQ(text_of(set_http2json(parse("{'data':'z=1'}").get())), "none");
    EXPECT_EQ(text_of(set_http2json(parse("{'data':'z=1','msg_name':5}").get())), "none");
    EXPECT_NE(text_of(query_request("z=5")).find("'msg_id':1,"), std::string::npos)
        << "a refused request is not counted";
}

TEST_F(WwwSet, CountsAQueryWithoutAPair)
{
    start_with(lens_file);
    EXPECT_EQ(text_of(query_request("z")), "none");
    EXPECT_NE(text_of(query_request("z=5")).find("'msg_id':2,"), std::string::npos);
}

TEST_F(WwwSet, SetsNothingByDataThatIsNoText)
{
    start_with(lens_file);
    for (const char *value : {"5", "null", "true", "['z=1']", "{'z':1}"}) {
        const std::string request = std::string("{'msg_name':'page','data':") + value + "}";
        EXPECT_EQ(modules_of(set_http2json(parse(request).get())), "{}") << value;
    }
}

TEST_F(WwwSet, IgnoresWhatFollowsTheLastPair)
{
    start_with(lens_file);
    EXPECT_EQ(assigned("z=1&m=b&rest"), "{'lens':{'zoom':1,'mode':'b'}}");
    EXPECT_EQ(assigned("z=1&m=b&"), "{'lens':{'zoom':1,'mode':'b'}}");
    EXPECT_EQ(assigned("z=1&m=b&&&"), "{'lens':{'zoom':1,'mode':'b'}}");
}

TEST_F(WwwSet, AKeyIsAllThatStandsInFrontOfTheEqualsSign)
{
    start_with("{'lens':{'one':['a&b','N'],'two':['b','N'],'three':['','N'],'four':['&c','N'],"
               "'five':[' d','N']}}");
    EXPECT_EQ(assigned("a&b=1"), "{'lens':{'one':1}}");
    EXPECT_EQ(assigned("b=2&a&b=3"), "{'lens':{'two':2,'one':3}}");
    EXPECT_EQ(assigned("=4&=5"), "{'lens':{'three':4,'three':5}}");
    EXPECT_EQ(assigned("b=1&&c=6"), "{'lens':{'two':1,'four':6}}");
    EXPECT_EQ(assigned(" d=7&d=8"), "{'lens':{'five':7}}");
}

TEST_F(WwwSet, AValueGoesOnToTheNextAmpersand)
{
    start_with(lens_file);
    EXPECT_EQ(assigned("m=a=b==&n=x y+z;#?"),
              "{'lens':{'mode':'a=b=='},'stream':{'name':'x y+z;#?'}}");
    EXPECT_EQ(assigned("m=&z=&n="), "{'lens':{'mode':'','zoom':0},'stream':{'name':''}}");
}

TEST_F(WwwSet, PercentSignsAreTextLikeAnyOther)
{
    start_with("{'lens':{'one':['a%sb','S'],'two':['%n','S'],'three':['a','N']}}");
    EXPECT_EQ(assigned("a%sb=50%25%s%n&%n=%d&a=%35"),
              "{'lens':{'one':'50%25%s%n','two':'%d','three':0}}");
}

TEST_F(WwwSet, KeysOfUpTo31CharactersAreWhole)
{
    const std::string key(31, 'k');
    start_with("{'lens':{'one':['" + key + "','N'],'two':['" + key + "k','N']}}");
    EXPECT_EQ(assigned(key + "=1"), "{'lens':{'one':1}}");
    EXPECT_EQ(assigned(key.substr(1) + "=1"), "{}");
}

TEST_F(WwwSet, LongerKeysAreCut)
{
    const std::string key(31, 'k');
    start_with("{'lens':{'one':['" + key + "','N'],'two':['" + key + "k','N']}}");
    EXPECT_EQ(assigned(key + "k=1"), "{'lens':{'one':1}}");
    EXPECT_EQ(assigned(key + std::string(269, 'x') + "=2&" + key + "=3"),
              "{'lens':{'one':2,'one':3}}");
}

TEST_F(WwwSet, ValuesOf32CharactersAndMoreAreCut)
{
    start_with(lens_file);
    const std::string whole(31, 'v');
    EXPECT_EQ(assigned("m=" + whole), "{'lens':{'mode':'" + whole + "'}}");
    EXPECT_EQ(assigned("m=" + whole + "w"), "{'lens':{'mode':'" + whole + "'}}");
    EXPECT_EQ(assigned("m=" + whole + std::string(269, 'w') + "&z=1"),
              "{'lens':{'mode':'" + whole + "','zoom':1}}");
}

TEST_F(WwwSet, AValueHoldsNothingOfTheOneBefore)
{
    start_with(lens_file);
    EXPECT_EQ(assigned("m=" + std::string(31, 'v') + "&m=w&z=1234567&z=8"),
              "{'lens':{'mode':'" + std::string(31, 'v') +
                  "','mode':'w','zoom':1234567,'zoom':8}}");
}

TEST_F(WwwSet, ANumberWithoutModifierIsItsLeadingDigits)
{
    start_with(lens_file);
    for (const char *name : {"z", "u", "o", "l", "kk", "f", "g"}) {
        EXPECT_EQ(stored(name, "50"), "50") << name;
        EXPECT_EQ(stored(name, "-50"), "-50") << name;
        EXPECT_EQ(stored(name, "+7"), "7") << name;
        EXPECT_EQ(stored(name, " 12abc"), "12") << name;
        EXPECT_EQ(stored(name, "3.99"), "3") << name;
        EXPECT_EQ(stored(name, "1e3"), "1") << name;
        EXPECT_EQ(stored(name, "0x10"), "0") << name;
        EXPECT_EQ(stored(name, ""), "0") << name;
        EXPECT_EQ(stored(name, "abc"), "0") << name;
        EXPECT_EQ(stored(name, "-"), "0") << name;
        EXPECT_EQ(stored(name, "2147483647"), "2147483647") << name;
        EXPECT_EQ(stored(name, "-2147483648"), "-2147483648") << name;
    }
}

TEST_F(WwwSet, ANumberBeyond32BitsSaturates)
{
    start_with(lens_file);
    for (const char *name : {"z", "u", "o", "f", "g"}) {
        EXPECT_EQ(stored(name, "2147483648"), "2147483647") << name;
        EXPECT_EQ(stored(name, "-2147483649"), "-2147483648") << name;
        EXPECT_EQ(stored(name, "99999999999999999999999999999"), "2147483647") << name;
        EXPECT_EQ(stored(name, "-99999999999999999999999999999"), "-2147483648") << name;
        EXPECT_EQ(stored(name, "1e300"), "1") << name;
    }
}

TEST_F(WwwSet, ThousandsAreARealNumberTimesAThousand)
{
    start_with(lens_file);
    EXPECT_EQ(stored("k", "4096"), "4096000");
    EXPECT_EQ(stored("k", "4096.5"), "4096500");
    EXPECT_EQ(stored("k", "-2"), "-2000");
    EXPECT_EQ(stored("k", "-0.25"), "-250");
    EXPECT_EQ(stored("k", " 1.5kbit"), "1500");
    EXPECT_EQ(stored("k", "1e3"), "1000000");
    EXPECT_EQ(stored("k", ""), "0");
    EXPECT_EQ(stored("k", "abc"), "0");
    EXPECT_EQ(stored("k", "."), "0");
}

TEST_F(WwwSet, ThousandsAreCutTowardsZero)
{
    start_with(lens_file);
    EXPECT_EQ(stored("k", "0.0019"), "1");
    EXPECT_EQ(stored("k", "-0.0019"), "-1");
    EXPECT_EQ(stored("k", "0.0009"), "0");
    EXPECT_EQ(stored("k", "-0.0009"), "0");
    EXPECT_EQ(stored("k", "1.001"), "1000") << "in double precision a little less than 1001";
}

TEST_F(WwwSet, ThousandsBeyond32BitsSaturate)
{
    start_with(lens_file);
    EXPECT_EQ(stored("k", "2147483.647"), "2147483647");
    EXPECT_EQ(stored("k", "2147483.648"), "2147483647");
    EXPECT_EQ(stored("k", "-2147483.648"), "-2147483648");
    EXPECT_EQ(stored("k", "-2147483.649"), "-2147483648");
    EXPECT_EQ(stored("k", "1e300"), "2147483647");
    EXPECT_EQ(stored("k", "-1e300"), "-2147483648");
    EXPECT_EQ(stored("k", "1e999"), "2147483647");
    EXPECT_EQ(stored("k", "-inf"), "-2147483648");
    EXPECT_EQ(stored("k", "nan"), "0");
}

TEST_F(WwwSet, ACountedNumberIsStoredAsZero)
{
    start_with(lens_file);
    for (const char *value : {"1", "5", "-5", "99999999999", "1e300", "", "abc", "0"})
        EXPECT_EQ(stored("p", value), "0") << value;
    EXPECT_EQ(assigned("z=77&p=5"), "{'lens':{'zoom':77,'position':0}}");
}

TEST_F(WwwSet, ATextIsStoredAsItIsWhateverItsModifier)
{
    start_with(lens_file);
    for (const char *value : {"50", "-50", "", "abc", "1e300", "4096.5"}) {
        EXPECT_EQ(stored("m", value), std::string("'") + value + "'");
        EXPECT_EQ(stored("sk", value), std::string("'") + value + "'");
    }
}

TEST_F(WwwSet, OnlyTheTypeSIsAText)
{
    start_with("{'lens':{'a':['a','s'],'b':['b','SS'],'c':['c',''],'d':['d',5],'e':['e',null],"
               "'f':['f'],'g':['g','S']}}");
    EXPECT_EQ(assigned("a=1&b=1&c=1&d=1&e=1&f=1&g=1"),
              "{'lens':{'a':1,'b':1,'c':1,'d':1,'e':1,'f':1,'g':'1'}}");
}

TEST_F(WwwSet, OnlyTheFirstModuleTakesANameThatIsNotGreedy)
{
    start_with("{'a':{'one':['x','N']},'b':{'two':['x','N','Greedy']},'c':{'three':['y','N']}}");
    EXPECT_EQ(assigned("x=1"), "{'a':{'one':1}}");
}

TEST_F(WwwSet, AGreedyNameGoesToEveryModule)
{
    start_with("{'a':{'one':['x','N','Greedy'],'more':['x','N','Greedy']},'list':['x'],"
               "'b':{'two':['x','N','Greedy']},'c':{'three':['y','N']},"
               "'d':{'four':['x','N','Greedy']}}");
    EXPECT_EQ(assigned("x=-7&y=1"), "{'a':{'one':-7},'b':{'two':-7},'d':{'four':-7},"
                                    "'c':{'three':1}}")
        << "one member a module";
}

TEST_F(WwwSet, EveryModuleOfAGreedyNameHasItsOwnTypeAndModifier)
{
    start_with("{'a':{'one':['x','N','Greedy']},'b':{'two':['x','S','Greedy']},"
               "'c':{'three':['x','N','K']},'d':{'four':['x','N','P']},'e':{'five':['x','N','F']},"
               "'f':{'six':['x','S']},'g':{'seven':['x','N','Greedy']}}");
    EXPECT_EQ(assigned("x=2.5"), "{'a':{'one':2},'b':{'two':'2.5'},'c':{'three':2500},"
                                 "'d':{'four':0},'e':{'five':2},'f':{'six':'2.5'},"
                                 "'g':{'seven':2}}");
}

TEST_F(WwwSet, AGreedyTextGoesToEveryModule)
{
    start_with("{'a':{'one':['x','S','Greedy']},'b':{'two':['x','S','Greedy']}}");
    EXPECT_EQ(assigned("x=y"), "{'a':{'one':'y'},'b':{'two':'y'}}");
}

TEST_F(WwwSet, OnlyTheWordGreedyIsGreedy)
{
    start_with("{'a':{'1':['v','N','greedy'],'2':['w','N','Greed'],'3':['x','N','Greedy2'],"
               "'4':['y','N','G']},"
               "'b':{'1':['v','N'],'2':['w','N'],'3':['x','N'],'4':['y','N']}}");
    EXPECT_EQ(assigned("v=1&w=2&x=3&y=4"), "{'a':{'1':1,'2':2,'3':3,'4':4}}");
}

// --- Reply ---

TEST_F(WwwReply, WithoutWebNamesIsSuccess)
{
    start_with(lens_file);
    EXPECT_EQ(shown("{}"), "result=success");
    EXPECT_EQ(shown("{'msg_name':'page','msg_id':5}"), "result=success");
    EXPECT_EQ(shown("{'lens':{},'stream':{'unknown':1},'nobody':{'zoom':1}}"), "result=success");
}

TEST_F(WwwReply, IsTheSameFromBothFunctions)
{
    start_with(lens_file);
    const json reply = parse("{'msg_id':5,'lens':{'zoom':7,'mode':'auto'}}");
    char *const text = para_reverse_convert_www_opt(reply.get());
    EXPECT_STREQ(text, "z=7&m=auto");
    free(text);
    EXPECT_EQ(shown(reply.get()), "z=7&m=auto");
    EXPECT_EQ(compact(reply.get()), "{'msg_id':5,'lens':{'zoom':7,'mode':'auto'}}")
        << "the reply stays the caller's";
}

TEST_F(WwwReply, JoinsMembersOfAllModulesInOrder)
{
    start_with(lens_file);
    EXPECT_EQ(shown("{'stream':{'name':'cam','bit_rate':4096000},'msg_id':1,"
                    "'lens':{'mode':'auto','zoom':7,'gain':1.5,'position':3}}"),
              "n=cam&br=4096&m=auto&z=7&f=1.50&p=4");
}

TEST_F(WwwReply, SkipsWhatHasNoWebName)
{
    start_with(lens_file);
    EXPECT_EQ(shown("{'nobody':{'zoom':1},'lens':{'x':1,'zoom':2,'Zoom':3},'bare':{'zoom':4},"
                    "'lists':{'void':5,'number':6,'text':7,'object':8,'last':9},'number':{'a':1}}"),
              "z=2&x=9");
    EXPECT_EQ(count_traces("can not find nobody.zoom", "get_http_name"), 1);
    EXPECT_EQ(count_traces("can not find lens.x", "get_http_name"), 1);
}

TEST_F(WwwReply, SkipsMembersThatAreNeitherTextNorNumber)
{
    start_with(lens_file);
    EXPECT_EQ(shown("{'lens':{'zoom':null,'rate':true,'gain':[1],'mode':{'a':1}}}"),
              "result=success");
    EXPECT_EQ(shown("{'lens':{'zoom':null,'odd':1,'rate':false,'mode':'x'}}"), "o=1&m=x");
}

TEST_F(WwwReply, SkipsAnswersThatAreNoObject)
{
    start_with(lens_file);
    EXPECT_EQ(shown("{'lens':'zoom','stream':5,'lists':[{'last':1}]}"), "result=success");
}

TEST_F(WwwReply, TheFirstPieceIsJoinedByThousandsCountedAndFraction)
{
    start_with(lens_file);
    EXPECT_EQ(shown("{'lens':{'rate':4096000}}"), "&k=4096");
    EXPECT_EQ(shown("{'lens':{'rate':4096500}}"), "&k=4096.5");
    EXPECT_EQ(shown("{'lens':{'position':1}}"), "&p=2");
    EXPECT_EQ(shown("{'lens':{'gain':1}}"), "&f=1.00");
    EXPECT_EQ(shown("{'lens':{'rate':1000,'zoom':2,'mode':'x'}}"), "&k=1&z=2&m=x");
}

TEST_F(WwwReply, TheFirstPieceIsNotJoinedOtherwise)
{
    start_with(lens_file);
    EXPECT_EQ(shown("{'lens':{'zoom':5}}"), "z=5");
    EXPECT_EQ(shown("{'lens':{'every':5}}"), "g=5");
    EXPECT_EQ(shown("{'lens':{'odd':5}}"), "o=5");
    EXPECT_EQ(shown("{'lens':{'untyped':5}}"), "u=5");
    EXPECT_EQ(shown("{'lens':{'mode':'5'}}"), "m=5");
    for (const char *member : {"rate", "position", "gain", "every"}) {
        const std::string reply = std::string("{'lens':{'") + member + "':'text'}}";
        EXPECT_NE(shown(reply)[0], '&') << "texts have no modifier: " << member;
    }
}

TEST_F(WwwReply, AnUnknownMemberInFrontLeavesTheFirstPieceFirst)
{
    start_with(lens_file);
    EXPECT_EQ(shown("{'lens':{'unknown':1,'mode':null,'zoom':5}}"), "z=5");
}

TEST_F(WwwReply, ANumberWithoutModifierIsItsIntegerForm)
{
    start_with(lens_file);
    for (const char *key : {"zoom", "every", "odd", "lower", "kilo", "untyped", "mode"}) {
        const auto value = [key](const std::string &number) {
            const std::string text = shown(std::string("{'lens':{'") + key + "':" + number + "}}");
            return text.substr(text.find('=') + 1);
        };
        EXPECT_EQ(value("0"), "0") << key;
        EXPECT_EQ(value("-5"), "-5") << key;
        EXPECT_EQ(value("3.99"), "3") << key;
        EXPECT_EQ(value("-3.99"), "-3") << key;
        EXPECT_EQ(value("2147483647"), "2147483647") << key;
        EXPECT_EQ(value("-2147483648"), "-2147483648") << key;
        EXPECT_EQ(value("4294967296"), "2147483647") << key;
        EXPECT_EQ(value("1e300"), "2147483647") << key;
        EXPECT_EQ(value("-1e300"), "-2147483648") << key;
    }
}

TEST_F(WwwReply, ThousandsAreShownWholeOrWithOneDigit)
{
    start_with(lens_file);
    const auto thousands = [](const std::string &number) {
        return shown("{'lens':{'rate':" + number + "}}");
    };
    EXPECT_EQ(thousands("0"), "&k=0");
    EXPECT_EQ(thousands("-1000"), "&k=-1");
    EXPECT_EQ(thousands("-4096500"), "&k=-4096.5");
    EXPECT_EQ(thousands("1"), "&k=0.0");
    EXPECT_EQ(thousands("-1"), "&k=-0.0");
    EXPECT_EQ(thousands("999"), "&k=1.0");
    EXPECT_EQ(thousands("1250"), "&k=1.2") << "halfway to the even digit";
    EXPECT_EQ(thousands("4096000.75"), "&k=4096") << "the integer form";
    EXPECT_EQ(thousands("-2147483648"), "&k=-2147483.8");
    EXPECT_EQ(thousands("1e300"), "&k=2147483.8");
}

TEST_F(WwwReply, ThousandsAreComputedInSinglePrecision)
{
    start_with(lens_file);
    // In double precision they would be 2147483.6 and 1073741.8.
    EXPECT_EQ(shown("{'lens':{'rate':2147483647}}"), "&k=2147483.8");
    EXPECT_EQ(shown("{'lens':{'rate':1073741801}}"), "&k=1073741.9");
}

TEST_F(WwwReply, ACountedNumberIsOneMore)
{
    start_with(lens_file);
    const auto counted = [](const std::string &number) {
        return shown("{'lens':{'position':" + number + "}}");
    };
    EXPECT_EQ(counted("0"), "&p=1");
    EXPECT_EQ(counted("-1"), "&p=0");
    EXPECT_EQ(counted("-5"), "&p=-4");
    EXPECT_EQ(counted("1.9"), "&p=2");
    EXPECT_EQ(counted("2147483646"), "&p=2147483647");
    EXPECT_EQ(counted("2147483647"), "&p=2147483648") << "one more, even here";
    EXPECT_EQ(counted("-1e300"), "&p=-2147483647");
}

TEST_F(WwwReply, AFractionHasTwoDigits)
{
    start_with(lens_file);
    const auto fraction = [](const std::string &number) {
        return shown("{'lens':{'gain':" + number + "}}");
    };
    EXPECT_EQ(fraction("0"), "&f=0.00");
    EXPECT_EQ(fraction("3.14159"), "&f=3.14");
    EXPECT_EQ(fraction("-2.5"), "&f=-2.50");
    EXPECT_EQ(fraction("0.005001"), "&f=0.01");
    EXPECT_EQ(fraction("4294967296.75"), "&f=4294967296.75") << "beyond the integer form";
}

TEST_F(WwwReply, AHugeFractionIsCutWithItsPiece)
{
    start_with(lens_file);
    char digits[400];
    snprintf(digits, sizeof digits, "&f=%.2f", 1e300);
    EXPECT_EQ(shown("{'lens':{'gain':1e300}}"), std::string(digits, 63));
}

TEST_F(WwwReply, TextsPassUnchanged)
{
    start_with(lens_file);
    EXPECT_EQ(shown("{'lens':{'mode':'','scaled':'50%s%n &=\xC3\xA4','rate':'4096000'}}"),
              "m=&sk=50%s%n &=\xC3\xA4&k=4096000");
}

TEST_F(WwwReply, PercentSignsInWebNamesAreKept)
{
    start_with("{'lens':{'a':['%s%n','S'],'b':['%d','N'],'c':['100%','N','K']}}");
    EXPECT_EQ(shown("{'lens':{'a':'x','b':1,'c':2000}}"), "%s%n=x&%d=1&100%=2");
}

TEST_F(WwwReply, APieceIsCutAt63Characters)
{
    start_with(lens_file);
    const std::string letters(200, 'a');
    EXPECT_EQ(shown("{'lens':{'mode':'" + letters.substr(0, 60) + "','zoom':1}}"),
              "m=" + letters.substr(0, 60) + "&z=1");
    EXPECT_EQ(shown("{'lens':{'mode':'" + letters.substr(0, 61) + "','zoom':1}}"),
              "m=" + letters.substr(0, 61) + "&z=1");
    EXPECT_EQ(shown("{'lens':{'mode':'" + letters.substr(0, 62) + "','zoom':1}}"),
              "m=" + letters.substr(0, 61) + "&z=1");
    EXPECT_EQ(shown("{'lens':{'zoom':1,'mode':'" + letters + "','odd':2}}"),
              "z=1&m=" + letters.substr(0, 60) + "&o=2");
}

TEST_F(WwwReply, ALongWebNameIsCutWithItsValue)
{
    const std::string name(300, 'n');
    start_with("{'lens':{'a':['" + name + "','N'],'b':['" + name +
               "','N','K'],'c':['c','N'],"
               "'d':['" +
               name.substr(0, 60) + "','N']}}");
    EXPECT_EQ(shown("{'lens':{'a':1,'b':2,'c':3,'d':45}}"),
              name.substr(0, 63) + "&" + name.substr(0, 62) + "&c=3&" + name.substr(0, 60) + "=4");
}

TEST_F(WwwReply, GrowsWithEveryLengthOfPiece)
{
    start_with(lens_file);
    for (size_t letters = 0; letters <= 60; letters++) {
        json reply(cJSON_CreateObject());
        cJSON *const lens = cJSON_AddObjectToObject(reply.get(), "lens");
        std::string expected;
        for (int i = 0; i < 90; i++) {
            const std::string value(letters, static_cast<char>('a' + i % 26));
            cJSON_AddItemToObject(lens, "mode", cJSON_CreateString(value.c_str()));
            expected += (i == 0 ? "m=" : "&m=") + value;
        }
        ASSERT_EQ(shown(reply.get()), expected) << letters;
    }
}

TEST_F(WwwReply, MayBeLongerThanADatagramOfRequests)
{
    std::string file = "{'lens':{";
    std::string reply = "{'lens':{";
    std::string expected;
    for (int i = 0; i < 500; i++) {
        const std::string number = std::to_string(i);
        file += (i == 0 ? "'m" : ",'m") + number + "':['name" + number + "','N','K']";
        reply += (i == 0 ? "'m" : ",'m") + number + "':" + number + "000";
        expected += "&name" + number + "=" + number;
    }
    start_with(file + "}}");
    ASSERT_GT(expected.size(), 4096U);
    EXPECT_EQ(shown(reply + "}}"), expected);
}

// --- Conversion of a datagram's text ---

class WwwConverter : public Www {
protected:
    // The converted request, or the error text in brackets; the area is as large as the caller's.
    static std::string convert(const std::string &request, int size = 1024)
    {
        std::string error(1024, '\0');
        const json tree(para_convert_www_opt(swapped(request).c_str(), error.data(), size));
        if (!tree)
            return "[" + std::string(error.c_str()) + "]";
        EXPECT_STREQ(error.c_str(), "");
        return compact(tree.get());
    }

    static std::string swapped(std::string text)
    {
        for (char &letter : text)
            letter = letter == '\'' ? '"' : letter;
        return text;
    }
};

TEST_F(WwwConverter, NeedsAWebNameFile)
{
    start_store();
    EXPECT_EQ(convert("{'msg_type':'get','msg_name':'image'}"), "[para_config=null]");
    EXPECT_EQ(convert("{'msg_type':'set','msg_name':'p','data':'z=1'}"), "[para_config=null]");
    EXPECT_EQ(convert("{'msg_type':'other'}"), "[para_config=null]");
    EXPECT_EQ(convert("no JSON"), "[para_config=null]");
}

TEST_F(WwwConverter, NeedsAWebNameFileThatIsJson)
{
    start_with("{'image':['lens'],");
    EXPECT_EQ(convert("{'msg_type':'get','msg_name':'image'}"), "[para_config=null]");
}

TEST_F(WwwConverter, NeedsARequestThatIsJson)
{
    start_with(lens_file);
    EXPECT_EQ(convert("no JSON"), "[cJSON_Parse=null]");
    EXPECT_EQ(convert(""), "[cJSON_Parse=null]");
    EXPECT_EQ(convert("{'msg_type':'get'"), "[cJSON_Parse=null]");
}

TEST_F(WwwConverter, ConvertsGetAndSet)
{
    start_with("{'page':['lens'],'lens':{'zoom':['z','N']}}");
    EXPECT_EQ(convert("{'msg_type':'get','msg_name':'page','msg_id':77,'data':'z=1','lens':1}"),
              "{'msg_from':'www','msg_type':'get','msg_name':'page','msg_id':1,'lens':['zoom']}");
    EXPECT_EQ(convert("{'msg_type':'set','msg_name':'any','msg_id':77,'data':'z=1','lens':1}"),
              "{'msg_from':'www','msg_type':'set','msg_name':'any','msg_id':2,'lens':{'zoom':1}}");
}

TEST_F(WwwConverter, NamesThePageThatIsUnknown)
{
    start_with(lens_file);
    EXPECT_EQ(convert("{'msg_type':'get','msg_name':'other'}"), "[other=null]");
    EXPECT_EQ(convert("{'msg_type':'get','msg_name':'lens'}"), "[lens=null]");
    EXPECT_EQ(convert("{'msg_type':'get','msg_name':''}"), "[=null]");
    EXPECT_EQ(convert("{'msg_type':'get','msg_name':'%s%n%d'}"), "[%s%n%d=null]");
}

TEST_F(WwwConverter, AnUnknownPageIsCounted)
{
    start_with(lens_file);
    convert("{'msg_type':'get','msg_name':'other'}");
    EXPECT_EQ(convert("{'msg_type':'get','msg_name':'none'}"),
              "{'msg_from':'www','msg_type':'get','msg_name':'none','msg_id':2}");
}

TEST_F(WwwConverter, AGetWithoutANameIsAnError)
{
    start_with(lens_file);
    EXPECT_THAT(convert("{'msg_type':'get'}"), testing::EndsWith("=null]"));
    EXPECT_THAT(convert("{'msg_type':'get','msg_name':5}"), testing::EndsWith("=null]"));
}

TEST_F(WwwConverter, ARefusedSetHasNoErrorText)
{
    start_with(lens_file);
    EXPECT_EQ(convert("{'msg_type':'set','msg_name':'page'}"), "[]");
    EXPECT_EQ(convert("{'msg_type':'set','data':'z=1'}"), "[]");
    EXPECT_EQ(convert("{'msg_type':'set','msg_name':'page','data':'z'}"), "[]");
    EXPECT_EQ(convert("{'msg_type':'set','msg_name':'page','data':''}"), "[]");
}

TEST_F(WwwConverter, OtherTypesAreRefusedWithoutAnErrorText)
{
    start_with(lens_file);
    for (const char *type : {"'g'", "'ge'", "''", "'s'", "'se'", "'gets'", "'Get'", "5", "null"}) {
        const std::string request =
            std::string("{'msg_type':") + type + ",'msg_name':'image','data':'z=1'}";
        EXPECT_EQ(convert(request), "[]") << type;
    }
    EXPECT_EQ(convert("{'msg_name':'image','data':'z=1'}"), "[]");
    EXPECT_EQ(convert("[]"), "[]");
    EXPECT_EQ(convert("5"), "[]");
}

TEST_F(WwwConverter, AnErrorTextIsCutToItsArea)
{
    start_with(lens_file);
    EXPECT_EQ(convert("{'msg_type':'get','msg_name':'other'}", 11), "[other=null]");
    EXPECT_EQ(convert("{'msg_type':'get','msg_name':'other'}", 10), "[other=nul]");
    EXPECT_EQ(convert("{'msg_type':'get','msg_name':'other'}", 1), "[]");
    EXPECT_EQ(convert("no JSON", 6), "[cJSON]");
    const std::string page(3000, 'p');
    EXPECT_EQ(convert("{'msg_type':'get','msg_name':'" + page + "'}"),
              "[" + page.substr(0, 1023) + "]");
}

TEST_F(WwwConverter, AListInsteadOfWebNamesHasNoPagesAndNoNames)
{
    start_with("[['image'],{'zoom':['z','N']},'image']");
    EXPECT_EQ(convert("{'msg_type':'get','msg_name':'image'}"), "[image=null]");
    EXPECT_EQ(convert("{'msg_type':'set','msg_name':'p','data':'z=1'}"),
              "{'msg_from':'www','msg_type':'set','msg_name':'p','msg_id':2}");
}

TEST_F(WwwConverter, ATextInsteadOfWebNamesHasNoPagesAndNoNames)
{
    start_with("'image'");
    EXPECT_EQ(convert("{'msg_type':'get','msg_name':'image'}"), "[image=null]");
    EXPECT_EQ(convert("{'msg_type':'set','msg_name':'p','data':'z=1'}"),
              "{'msg_from':'www','msg_type':'set','msg_name':'p','msg_id':2}");
    EXPECT_EQ(shown("{'lens':{'zoom':1}}"), "result=success");
}
