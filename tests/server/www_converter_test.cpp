// Web names: conversion of a datagram's text.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "server/www_fixture.h"

class WwwConverter : public Www {
protected:
    // The converted request, or the error text in brackets; the area is as large as the caller's.
    static std::string convert(const std::string &request, int size = 1024)
    {
        std::string error = "left by an earlier request";
        error.resize(1024);
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
