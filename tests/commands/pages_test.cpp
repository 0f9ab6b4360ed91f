// The command "pages".
#include "commands/kit.h"

class PagesCommand : public Kit {
protected:
    std::string pages_with(const std::string &names)
    {
        write_home("www2json.json", names);
        start_store();
        return ask("pages");
    }
};

TEST_F(PagesCommand, NamesThePagesAlone)
{
    EXPECT_EQ(pages_with("{'json_pattern_list':[],'image':['isp0'],'conf_pattern_list':[],"
                         "'isp0':{'hue':['hue','N']},'zoom':['af']}"),
              "{'pages':['image','zoom']}");
}

TEST_F(PagesCommand, ThereAreNoneOfAFaultyFile)
{
    EXPECT_EQ(pages_with("{'image':['isp0'"), "{'pages':[]}");
}

TEST_F(PagesCommand, ThereAreNoneWithoutTheFile)
{
    remove((home + "/www2json.json").c_str());
    start_store();

    EXPECT_EQ(ask("pages"), "{'pages':[]}");
}

TEST_F(PagesCommand, TellsTheNamesOnAPage)
{
    write_home("www2json.json",
               "{'image':['isp0','none',5,'af','list'],'list':['af'],"
               "'isp0':{'hue':['hue','N'],'bad':'x','empty':[],'temperature':['ct','N','K','more'],"
               "'number':[5,'N']},'af':{'zoom_value':['zoom'],'x':['y',7,'P']}}");
    start_store();

    EXPECT_EQ(ask("pages", "{'page':'image'}"),
              "{'names':[{'name':'hue','type':'N','module':'isp0','member':'hue'},"
              "{'name':'ct','type':'N','modifier':'K','module':'isp0','member':'temperature'},"
              "{'name':'zoom','module':'af','member':'zoom_value'},"
              "{'name':'y','modifier':'P','module':'af','member':'x'}]}");
    EXPECT_EQ(ask("pages", "{'page':'none'}"), "{'names':[]}");
    EXPECT_EQ(ask("pages", "{'page':'isp0'}"), "{'names':[]}");
    EXPECT_EQ(ask("pages", "{'page':5}"), invalid);
}
