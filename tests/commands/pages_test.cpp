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
