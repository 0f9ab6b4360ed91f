// Web names: the request that a query makes.
#include <gtest/gtest.h>

#include <string>

#include "server/www_fixture.h"

using WwwSet = Www;

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
