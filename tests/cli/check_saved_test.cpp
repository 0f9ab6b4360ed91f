#include <sys/stat.h>

#include <filesystem>
#include <random>

#include "cli/check_files.h"

namespace {

// --- Saved files ---

using CheckOfSavedFiles = CheckOfFiles;

TEST_F(CheckOfSavedFiles, GoodOnesPass)
{
    write_data("af_cur.json", std::string("{'focus_mode':2,'zoom_value':100}\0", 34));
    write_data("video_cur.json", "{'video0':{'size':'PIC_HD1080','gop':300}}");
    write_data("isp_cur.json", "{'isp0':{'style':1,'hue':10},'isp1':{}}");
    write_data("misc.conf", "mirror = '1'\nndi_mode = 'high'\n");
    write_data("netport.conf", "http_port = '8080'\nnew_key = 'x'\n");
    std::filesystem::create_directory(data + "/persist");
    write_data("persist/odm.json", "{'version':1,'isp0_style_def':1,'maker':'x'}");
    write_data("af_cur.json.bak", "anything");

    EXPECT_EQ(saved_faults(0), "");
}

TEST_F(CheckOfSavedFiles, NamesValuesOutsideTheirRange)
{
    write_data("af_cur.json", "{\n\t'focus_mode':\t3,\n\t'zoom_value':\t-1\n}");
    write_data("video_cur.json", "{'video1':{\n'gop':61}}");
    write_data("isp_cur.json", "{'isp0':{'style':2,\n'hue':11}}");
    write_data("misc.conf", "mirror = '7'\nndi_mode = 'low'\n");

    EXPECT_EQ(saved_faults(), "af_cur.json:2: focus_mode: 3 is outside the range, 0 to 2\n"
                              "af_cur.json:3: zoom_value: -1 is outside the range, 0 to 100\n"
                              "isp_cur.json:1: isp0.style: 2 is outside the range, 0 to 1\n"
                              "isp_cur.json:2: isp0.hue: 11 is outside the range, 0 to 10\n"
                              "misc.conf:1: mirror: 7 is outside the range, 0 to 1\n"
                              "misc.conf:2: ndi_mode: \"low\" is none of its texts\n"
                              "video_cur.json:2: video1.gop: 61 is outside the range, 1 to 60\n");
}

TEST_F(CheckOfSavedFiles, NamesNamesThatAreNotInTheTable)
{
    EXPECT_EQ(with_saved("audio_cur.json", "{'aeFormat':'OPUS',\n'loud':1}"),
              "audio_cur.json:1: aeFormat: \"OPUS\" is none of its names\n"
              "audio_cur.json:2: loud: is no member of audio\n");
    write_data("audio_cur.json", "{}");
    EXPECT_EQ(with_saved("video_cur.json", "{'video0':5,\n'video2':{}}"),
              "video_cur.json:1: video0: is no object of a module's values\n"
              "video_cur.json:2: video2: is no module of the device\n");
}

TEST_F(CheckOfSavedFiles, NamesBrokenAndEmptyOnes)
{
    write_data("af_cur.json", "{'focus_mode':2,\n'zoom_va");
    write_data("isp_cur.json", "");
    write_data("netport.conf", "");

    EXPECT_EQ(saved_faults(), "af_cur.json:2: is no JSON from column 2 on\n"
                              "isp_cur.json: is empty\nnetport.conf: is empty\n");
}

TEST_F(CheckOfSavedFiles, NamesOverridesThatCannotBe)
{
    write_home("isp_range.json", "{'isp0':{'style':[0,1],'hue':[0,10],'antiflicker':[0,2]}}");
    write_home("isp_def.json", "{'isp0_style_list':['day'],'day':{'hue':5,'antiflicker':0}}");
    std::filesystem::create_directory(data + "/persist");

    EXPECT_EQ(with_saved("persist/odm.json", "{'isp0_style_def':1,\n'isp0_antiflicker_def':3,\n"
                                             "'maker':[]}"),
              "persist/odm.json:1: isp0_style_def: 1 is no picture style\n"
              "persist/odm.json:2: isp0_antiflicker_def: 3 is outside the range, 0 to 2\n"
              "persist/odm.json:3: maker: is neither a number nor a text\n");
}

TEST_F(CheckOfSavedFiles, NamesWhatWasSetAside)
{
    std::filesystem::create_directory(data + "/persist");
    for (const char *name : {"af_cur.json.bad", "misc.conf.bad.3", "persist/odm.json.bad",
                             "af_cur.json.bak.tmp", "bad", ".bad.x"})
        write_data(name, "x");

    EXPECT_EQ(saved_faults(),
              "af_cur.json.bad: was set aside at a start, as it could not be used\n"
              "af_cur.json.bak.tmp: warning: is what an interrupted save left\n"
              "misc.conf.bad.3: was set aside at a start, as it could not be used\n"
              "persist/odm.json.bad: was set aside at a start, as it could not be used\n");
}

TEST_F(CheckOfSavedFiles, KnowsTheLegacySetOfMisc)
{
    std::filesystem::remove(home + "/misc.conf");
    write_home("misc_range.json", "{'ViStrategy':['50','osd'],'mirror':[0,1]}");
    write_home("misc_def.json", "{'ViStrategy':'60','mirror':0}");
    EXPECT_EQ(with_saved("misc_cur.json", "{'ViStrategy':'none',\n'mirror':2,\n'flip':true}"),
              "misc_cur.json:1: ViStrategy: \"none\" is none of its texts\n"
              "misc_cur.json:2: mirror: 2 is outside the range, 0 to 1\n"
              "misc_cur.json:3: flip: is neither a number nor a text\n");
}

// --- The command ---

TEST_F(CheckOfFiles, PrintsJson)
{
    const run_result none = run({"check", home, "--json"});
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(squeeze(none.output), "[]");

    write_home("af_def.json", "{'focus_mode':0,\n'zoom_value':101,\n'focus_lock':0}");
    const run_result some = run({"--json", "check", home});
    EXPECT_EQ(some.status, 4);
    EXPECT_EQ(shortened(squeeze(some.output)),
              "[{'file':'af_def.json','line':2,'member':'zoom_value',"
              "'reason':'101 is outside the range, 0 to 100','warning':false},"
              "{'file':'af_def.json','line':3,'member':'focus_lock',"
              "'reason':'has no range, and takes 0 alone','warning':true}]");
}

TEST_F(CheckOfFiles, JsonIsUtf8WhateverTheFilesHold)
{
    write_home("af_def.json", "{'focus_mode':0,\n'zoom_value':0,\n'z\xff\xc3\xa9\xed\xa0\x80':0}");
    const run_result got = run({"check", home, "--json"});
    EXPECT_EQ(got.status, 4);
    EXPECT_NE(got.output.find("\"z\xef\xbf\xbd\xc3\xa9\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\""),
              std::string::npos)
        << got.output;
}

TEST_F(CheckOfFiles, ControlCharactersAreEscaped)
{
    EXPECT_EQ(with_file("netport.conf", "a = 1\n\x1b[31mb = 2\n\x1b[31mb = 3\n"),
              "netport.conf:3: \\x1b[31mb: comes again, in place of the one on line 2\n");
}

TEST_F(CheckOfFiles, FoldersThatAreMissingAreTold)
{
    const std::string nowhere = home + "/nowhere";
    for (const std::vector<std::string> &words : std::vector<std::vector<std::string>>{
             {"check", nowhere}, {"check", home, "--data", nowhere}}) {
        const run_result got = run(words);
        EXPECT_EQ(got.status, 5);
        EXPECT_EQ(got.output, "");
        EXPECT_EQ(got.errors, "camparam: cannot read the folder \"" + nowhere +
                                  "\": No such file or directory\n");
    }
    EXPECT_EQ(run({"check", home + "/af_def.json"}).status, 1);
}

// The bytes of a file, spoiled in some places.
std::string spoiled(std::string bytes, std::mt19937 &chance)
{
    static const char letters[] = "{}[]\",:=#0-9.eE\\n\0\n\xff tfS*";
    static const std::string replacements(letters, sizeof letters - 1);
    for (unsigned times = 1 + chance() % 8; times > 0 && !bytes.empty(); times--) {
        const size_t place = chance() % bytes.size();
        switch (chance() % 4) {
        case 0:
            bytes.erase(place, chance() % 20);
            break;
        case 1:
            bytes.insert(place, bytes.substr(chance() % bytes.size(), chance() % 40));
            break;
        default:
            bytes[place] = replacements[chance() % replacements.size()];
        }
    }
    return bytes;
}

// Of each file in turn, and of all at once.
TEST_F(CheckOfFiles, GarbageIsToldAndEndsNothing)
{
    std::filesystem::create_directory(data + "/persist");
    write_data("persist/odm.json", "{'isp0_style_def':0,'isp0_antiflicker_def':1}");
    write_data("isp_cur.json", "{'isp0':{'style':1,'hue':10}}");
    write_data("misc.conf", "mirror = '1'\n");
    std::mt19937 chance(20240229);
    for (int round = 0; round < 150; round++) {
        const std::string sample = SAMPLE_HOME;
        for (const auto &entry : std::filesystem::directory_iterator(sample)) {
            const std::string name = entry.path().filename().string();
            const std::string bytes = read_file(entry.path().string()).value();
            write_file(home + "/" + name, round % 2 == 0 ? spoiled(bytes, chance) : bytes);
        }
        const std::vector<std::string> names = {"www2json.json", "isp_def.json", "misc_range.json",
                                                "descriptions.json", "video_range.json"};
        const std::string &one = names[static_cast<size_t>(round) % names.size()];
        write_file(home + "/" + one, spoiled(read_file(sample + "/" + one).value(), chance));
        const run_result got = run({"check", home, "--data", data, "--json"});
        ASSERT_TRUE(got.status == 0 || got.status == 4) << round << got.errors;
        ASSERT_EQ(squeeze(got.output).front(), '[') << round;
    }
}

TEST_F(CheckOfFiles, DeepAndLongFilesEnd)
{
    std::string many = "{'version':1";
    for (int i = 0; i < 20000; i++)
        many += ",'m" + std::to_string(i) + "':[1,0]";
    write_home("misc_range.json", many + "}");
    write_home("af_def.json", std::string(5000, '[') + std::string(5000, ']'));
    write_home("descriptions.json", "{'af':{'zoom_value':{'names':" + std::string(900, '[') +
                                        std::string(900, ']') + "}}}");
    const run_result got = run({"check", home});
    EXPECT_EQ(got.status, 4);
    EXPECT_NE(got.output.find("m19999: the minimum, 1, is above the maximum, 0"),
              std::string::npos);
    EXPECT_NE(got.output.find("names: is no object of names for numbers"), std::string::npos);
    EXPECT_NE(got.output.find("is no JSON from column 1001 on"), std::string::npos);
}

} // namespace
