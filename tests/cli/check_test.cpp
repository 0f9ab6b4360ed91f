#include <filesystem>

#include "cli/check_files.h"

namespace {

TEST_F(CheckOfFiles, FindsNothingInAGoodDevice)
{
    EXPECT_EQ(faults(0), "");
    EXPECT_EQ(saved_faults(0), "");
}

TEST_F(CheckOfFiles, FindsNothingInTheSampleDevices)
{
    const std::string sample = SAMPLE_HOME;
    for (const std::string &device : {sample, sample + "/../../camera-legacy/home"}) {
        ASSERT_TRUE(std::filesystem::exists(device + "/af_range.json"));
        EXPECT_EQ(checked({"check", device}, 0), "");
    }
}

// --- Files as a whole ---

TEST_F(CheckOfFiles, NamesThePlaceWhereJsonEnds)
{
    EXPECT_EQ(with_file("af_range.json", "{'zoom_value':\n[0, 1}}"),
              "af_range.json:2: is no JSON from column 6 on\n");
    EXPECT_EQ(with_file("af_range.json", ""), "af_range.json: is empty\n");
    EXPECT_EQ(with_file("af_range.json", "[1]"), "af_range.json:1: holds no JSON object\n");
}

TEST_F(CheckOfFiles, ABrokenFileIsToldOnce)
{
    write_home("www2json.json", "{'conf_pattern_list':['netport'],'af':{'zoom_value':['z','N']},\n"
                                "'audio':{'aeFormat':['f','S']},'video1':{'gop':['g','N']},\n"
                                "'isp0':{'hue':['h','N']},'misc':{'mirror':['m','N']}}");
    write_home("descriptions.json", "{'af':{'zoom_value':{}},'audio':{'mute':{}},'video*':{'gop':"
                                    "{}},'isp0':{'hue':{}},'misc':{'ndi_mode':{}}}");
    write_data("misc.conf", "mirror = '1'\n");
    write_data("video_cur.json", "{'video1':{'gop':5}}");
    EXPECT_EQ(saved_faults(0), "");
    for (const char *name :
         {"af_def.json", "audio_range.json", "video_range.json", "video_def.json", "isp_range.json",
          "isp_def.json", "misc_range.json", "descriptions.json"}) {
        const std::string good = read_file(home + "/" + name).value();
        write_home(name, "{");
        EXPECT_EQ(saved_faults(), std::string(name) + ":1: is no JSON from column 2 on\n");
        write_home(name, good);
    }
}

TEST_F(CheckOfFiles, NamesFilesThatCannotBeRead)
{
    std::filesystem::remove(home + "/af_range.json");
    std::filesystem::create_directory(home + "/af_range.json");

    EXPECT_EQ(faults(), "af_range.json: is no regular file\n");
}

TEST_F(CheckOfFiles, NamesFilesThatAreMissing)
{
    for (const char *name : {"af_def.json", "misc.conf", "netport.conf"})
        std::filesystem::remove(home + "/" + name);
    EXPECT_EQ(faults(), "af_def.json: is missing, so that the module af does not start\n"
                        "misc.conf: is missing, so that the module misc does not start\n"
                        "netport.conf: is missing, so that the module netport does not start\n");
}

TEST_F(CheckOfFiles, OnlyWarnsOfModulesThatTheDeviceDoesNotHave)
{
    for (const char *name : {"af_range.json", "af_def.json", "www2json.json"})
        std::filesystem::remove(home + "/" + name);
    EXPECT_EQ(faults(0),
              "af_range.json: warning: is missing, as are its defaults: the device has no af\n"
              "ndi_config.conf: warning: is missing: the device has no ndi_config\n"
              "overlay.conf: warning: is missing: the device has no overlay\n");
}

TEST_F(CheckOfFiles, WarnsOfFilesThatNothingReads)
{
    write_home("notes.txt", "x");
    write_home("misc_def.json", "{}"); // of the legacy set
    EXPECT_EQ(faults(0), "misc_def.json: warning: is read by no module\n");

    std::filesystem::rename(home + "/af_range.json", home + "/af_rang.json");
    EXPECT_EQ(faults(), "af_rang.json: warning: is read by no module; did you mean "
                        "\"af_range.json\"?\n"
                        "af_range.json: is missing, so that the module af does not start\n"
                        "misc_def.json: warning: is read by no module\n");
}

TEST_F(CheckOfFiles, AnEmptyFolderIsNoDevice)
{
    std::filesystem::remove_all(home);
    std::filesystem::create_directory(home);
    const run_result got = run({"check", home});
    EXPECT_EQ(got.status, 4);
    EXPECT_NE(got.output.find(home + ": holds the settings of no module\n"), std::string::npos);
}

// --- Ranges and defaults ---

TEST_F(CheckOfFiles, NamesKeysThatNoModuleHas)
{
    EXPECT_EQ(with_file("af_range.json", "{'focus_mode':[0,2],\n'zoom_valu':[0,1],\n"
                                         "'ZOOM_VALUE':[0,100]}"),
              "af_range.json:2: zoom_valu: is no member of af; did you mean \"zoom_value\"?\n");
}

TEST_F(CheckOfFiles, NamesKeysThatComeTwice)
{
    EXPECT_EQ(with_file("af_def.json", "{'focus_mode':0,\n'zoom_value':5,\n'Zoom_Value':500}"),
              "af_def.json:3: Zoom_Value: comes again, and is not read; the first one is on "
              "line 2\n");
}

TEST_F(CheckOfFiles, NamesRangesOfTheWrongForm)
{
    EXPECT_EQ(with_file("af_range.json", "{'focus_mode':[0],\n'zoom_value':[0,'x']}"),
              "af_range.json:1: focus_mode: is no range: an array of the minimum and the maximum\n"
              "af_range.json:2: zoom_value: is no number\n");
    EXPECT_EQ(with_file("af_range.json", "{'focus_mode':[0,1,2],\n'zoom_value':7}"),
              "af_range.json:1: focus_mode: is no range: an array of the minimum and the maximum\n"
              "af_range.json:2: zoom_value: is no range: an array of the minimum and the "
              "maximum\n");
    EXPECT_EQ(with_file("af_range.json", "{'focus_mode':[false,true],\n'zoom_value':[0.5,1e10]}"),
              "af_range.json:2: zoom_value: 0.5 is no whole number of 32 bits\n"
              "af_range.json:2: zoom_value: 10000000000 is no whole number of 32 bits\n");
}

TEST_F(CheckOfFiles, NamesMinimaAboveTheirMaxima)
{
    EXPECT_EQ(with_file("af_range.json", "{'focus_mode':[0,2],\n'zoom_value':[100,0]}"),
              "af_range.json:2: zoom_value: the minimum, 100, is above the maximum, 0\n");
    write_home("af_range.json", "{'focus_mode':[0,2],'zoom_value':[0,100]}");
    EXPECT_EQ(with_file("audio_range.json", "{'aeFormat':['G711A','AAC'],'mute':[0,1]}"),
              "audio_range.json:1: aeFormat: the minimum, G711A, is above the maximum, AAC\n");
}

TEST_F(CheckOfFiles, NamesDefaultsOutsideTheirRange)
{
    EXPECT_EQ(with_file("af_def.json", "{'focus_mode':0,\n'zoom_value':101}"),
              "af_def.json:2: zoom_value: 101 is outside the range, 0 to 100\n");
    write_home("af_def.json", "{'focus_mode':0,'zoom_value':100}");
    EXPECT_EQ(with_file("video_def.json", "{'video0':{'size':'PIC_5M',\n'gop':0},\n"
                                          "'video1':{\n'gop':61}}"),
              "video_def.json:1: video0.size: PIC_5M is outside the range, PIC_QCIF to "
              "PIC_HD1080\n"
              "video_def.json:2: video0.gop: 0 is outside the range, 1 to 300\n"
              "video_def.json:4: video1.gop: 61 is outside the range, 1 to 60\n");
}

TEST_F(CheckOfFiles, NamesNamesThatTheMemberDoesNotHave)
{
    EXPECT_EQ(with_file("audio_def.json", "{'aeFormat':'ACC',\n'mute':'off'}"),
              "audio_def.json:1: aeFormat: \"ACC\" is none of its names; did you mean \"AAC\"?\n"
              "audio_def.json:2: mute: is no number\n");
    EXPECT_EQ(with_file("audio_def.json", "{'aeFormat':true,\n'mute':0}"),
              "audio_def.json:1: aeFormat: is neither a number nor a name\n");
}

TEST_F(CheckOfFiles, NamesNamesThatAreReadAsOthers)
{
    EXPECT_EQ(with_file("video_range.json", "{'video0':{'size':['PIC_QCIF','PIC_HD1'],\n"
                                            "'gop':[1,300]},'video1':{'gop':[1,60]}}"),
              "video_range.json:1: video0.size: \"PIC_HD1\" is read as \"PIC_HD1080\"; write the "
              "number, 3\n");
    EXPECT_EQ(with_file("video_range.json",
                        "{'video0':{'size':['PIC_QC','PIC_HD'],\n"
                        "'gop':[1,300]},'video1':{'gop':[1,60]}}",
                        0),
              "video_range.json:1: video0.size: warning: \"PIC_HD\" is cut short, and read as "
              "\"PIC_HD576\"\n");
}

TEST_F(CheckOfFiles, WarnsOfRangesAndDefaultsThatStandAlone)
{
    EXPECT_EQ(with_file("af_def.json", "{'zoom_value':5,\n'focus_lock':0}", 0),
              "af_def.json:2: focus_lock: warning: has no range, and takes 0 alone\n"
              "af_range.json:1: focus_mode: warning: has no default, and is neither reported nor "
              "saved\n");
}

TEST_F(CheckOfFiles, WarnsOfNamesThatAreGivenAsNumbers)
{
    EXPECT_EQ(with_file("audio_def.json", "{'aeFormat':0,'mute':0}", 0),
              "audio_def.json:1: aeFormat: warning: is given as a number, so that requests cannot "
              "set it; give the name\n");
}

TEST_F(CheckOfFiles, NamesStreamsThatAreNone)
{
    write_home("video_range.json", "{'video0':{'gop':[1,9]},\n'video2':{'gop':[1,9]},\n"
                                   "'video6':{}}");
    EXPECT_EQ(with_file("video_def.json", "{'video0':{'gop':1},\n'video1':3}"),
              "video_def.json:2: video1: is no object of a stream's members\n"
              "video_range.json:2: video2: is no stream: they are video0 to video5, without a "
              "gap\n"
              "video_range.json:3: video6: is no stream: they are video0 to video5, without a "
              "gap\n");
}

// --- Picture styles ---

TEST_F(CheckOfFiles, NamesStylesThatAreListedAndMissing)
{
    EXPECT_EQ(with_file("isp_def.json", "{'isp0_style_list':['day',\n'nihgt'],'day':{'hue':5},\n"
                                        "'night':{'hue':6}}"),
              "isp_def.json:2: isp0_style_list: names the style \"nihgt\", which is missing\n"
              "isp_def.json:3: night: is no style of isp0_style_list\n");
    EXPECT_EQ(with_file("isp_def.json", "{'day':{'hue':5}}"),
              "isp_def.json:1: isp0_style_list: is missing\n"
              "isp_def.json:1: day: is no style of isp0_style_list\n");
}

TEST_F(CheckOfFiles, NamesValuesOfStylesOutsideTheirRange)
{
    EXPECT_EQ(with_file("isp_def.json", "{'isp0_style_list':['day','night'],'day':{'hue':5},\n"
                                        "'night':{'hue':11,\n'heu':1}}"),
              "isp_def.json:2: night.hue: 11 is outside the range, 0 to 10\n"
              "isp_def.json:3: night.heu: is no member of isp0; did you mean \"hue\"?\n");
}

TEST_F(CheckOfFiles, TheNumberOfAStyleIsItsPlace)
{
    EXPECT_EQ(with_file("isp_def.json",
                        "{'isp0_style_list':['day','night','dusk'],'day':{'style':7,'hue':5},\n"
                        "'night':{'hue':6},\n'dusk':{'hue':7}}"),
              "isp_def.json:1: day.style: warning: is read as 0, its place in the list\n"
              "isp_def.json:3: dusk.style: 2 is outside the range, 0 to 1\n");
}

TEST_F(CheckOfFiles, NamesADefaultStyleThatIsNone)
{
    EXPECT_EQ(with_file("isp_def.json", "{'isp0_style_list':['day','day'],\n'isp0_style_def':2,\n"
                                        "'day':{'hue':5}}"),
              "isp_def.json:1: isp0_style_list: names the style \"day\" twice\n"
              "isp_def.json:2: isp0_style_def: is no place in the list, 0 to 1\n");
}

TEST_F(CheckOfFiles, NamesImageProcessorsThatAreNone)
{
    EXPECT_EQ(with_file("isp_range.json", "{'isp1':{},\n'isp2':{}}"),
              "isp_range.json:1: isp0: is missing\n"
              "isp_range.json:2: isp2: is no image processor: they are isp0 and isp1\n");
}

// --- Modules with members from files ---

TEST_F(CheckOfFiles, NamesPatternRangesOfTheWrongForm)
{
    EXPECT_EQ(with_file("misc_range.json", "{'version':1,\n'mirror':[1,0],\n"
                                           "'ndi_mode':['off',3]}"),
              "misc_range.json:2: mirror: the minimum, 1, is above the maximum, 0\n"
              "misc_range.json:3: ndi_mode: holds texts and others; it may hold texts alone\n");
    EXPECT_EQ(with_file("misc_range.json", "{'version':1,\n'mirror':[],\n"
                                           "'ndi_mode':['off','off']}"),
              "misc_range.json:2: mirror: is no range: an array of the minimum and the maximum\n"
              "misc_range.json:3: ndi_mode: has the text \"off\" twice\n");
}

TEST_F(CheckOfFiles, NamesPatternDefaultsThatTheRangeDoesNotHave)
{
    EXPECT_EQ(with_file("misc.conf", "mirror = '2'\nndi_mode = 'hihg'\n"),
              "misc.conf:1: mirror: 2 is outside the range, 0 to 1\n"
              "misc.conf:2: ndi_mode: \"hihg\" is none of its texts; did you mean \"high\"?\n");
    EXPECT_EQ(with_file("misc.conf", "mirror = '1x'\nndi_mode = 'off'\nflip = '0'\n"),
              "misc.conf:1: mirror: \"1x\" is no whole number of 32 bits\n"
              "misc.conf:3: flip: warning: has no range, and cannot be set\n");
}

TEST_F(CheckOfFiles, KnowsTheLegacySetOfMisc)
{
    std::filesystem::remove(home + "/misc.conf");
    write_home("misc_range.json", "{'ViStrategy':['50','osd'],\n'ndi_mode':['high','off'],\n"
                                  "'hdmivideoformat':['1080P60','8K'],\n'mirror':[0,1]}");
    write_home("misc_def.json", "{'ViStrategy':'60',\n'ndi_mode':'off','hdmivideoformat':'4KP25',"
                                "\n'mirror':2}");

    EXPECT_EQ(faults(), "misc_def.json:3: mirror: 2 is outside the range, 0 to 1\n"
                        "misc_range.json:2: ndi_mode: has the last text before the first\n"
                        "misc_range.json:3: hdmivideoformat: \"8K\" is none of its texts\n");
}

// --- Conf text ---

TEST_F(CheckOfFiles, NamesLinesThatAreNotRead)
{
    EXPECT_EQ(with_file("netport.conf", "# fine\n\nhttp_port 80\nhttp port = 80\nip = '10\n = 5\n"
                                        "dns = 1 # all of it\ngw = '1' # not read\n"),
              "netport.conf:3: has no \"=\", and is not read\n"
              "netport.conf:4: has no key of one word, and is not read\n"
              "netport.conf:5: has no closing quote, and is not read\n"
              "netport.conf:6: has no key of one word, and is not read\n"
              "netport.conf:8: gw: has text behind the closing quote, which is not read\n");
    EXPECT_EQ(with_file("netport.conf", std::string("a = 1\0\nb = 2\n", 13)),
              "netport.conf:1: holds a zero byte, and is not read\n");
}

TEST_F(CheckOfFiles, NamesKeysOfConfTextThatComeAgain)
{
    EXPECT_EQ(with_file("netport.conf", "ip = 1\nport = 2\nip = 3\n"),
              "netport.conf:3: ip: comes again, in place of the one on line 1\n");
}

TEST_F(CheckOfFiles, NamesTextsThatAreTooLong)
{
    const std::string longest(255, 'x');
    EXPECT_EQ(with_file("netport.conf", "ip = '" + longest + "'\n", 0), "");
    EXPECT_EQ(with_file("netport.conf", "ip = '" + longest + "x'\n"),
              "netport.conf:1: ip: has more than 255 bytes, and cannot be read\n");
    write_home("netport.conf", "ip = 1\n");
    EXPECT_EQ(with_file("misc_range.json",
                        "{'version':1,'mirror':[0,1],'ndi_mode':['off','" + longest + "x']}"),
              "misc_range.json:1: ndi_mode: has a text of more than 255 bytes, which cannot be "
              "read\n");
}

// --- Web names ---

TEST_F(CheckOfFiles, NamesListsThatCannotBe)
{
    EXPECT_EQ(with_file("www2json.json", "{'conf_pattern_list':['netport',\n7,\n'netport',\n"
                                         "'audio_extra',\n'../x'],\n'json_pattern_list':3}"),
              "misc.conf: warning: is read by no module\n"
              "misc_range.json: warning: is read by no module\n"
              "www2json.json:2: conf_pattern_list: holds an entry that is no text\n"
              "www2json.json:3: conf_pattern_list: \"netport\" is the name of a module already\n"
              "www2json.json:4: conf_pattern_list: \"audio_extra\" cannot be reached: requests for "
              "it go to \"audio\"\n"
              "www2json.json:5: conf_pattern_list: \"../x\" is no name of a module\n"
              "www2json.json:6: json_pattern_list: is no array of texts\n");
}

TEST_F(CheckOfFiles, NamesModulesThatDoNotFitTheTable)
{
    std::string list;
    for (int i = 0; i < 47; i++) {
        list += ",'own" + std::to_string(100 + i) + "'";
        write_home("own" + std::to_string(100 + i) + ".conf", "a = 1\n");
    }
    EXPECT_EQ(with_file("www2json.json", "{'conf_pattern_list':['netport'" + list + "]}"),
              "www2json.json:1: lists 2 modules more than the module table has rows for\n");
}

TEST_F(CheckOfFiles, NamesWebNamesThatComeTwiceOnAPage)
{
    const std::string head = "{'conf_pattern_list':['netport'],\n'page':['video0','video1'],\n";
    const std::string first = "'video0':{'gop':['gop','N','Greedy']},\n";
    EXPECT_EQ(
        with_file("www2json.json", head + first + "'video1':{'gop':['gop','N','Greedy']}}", 0), "");
    EXPECT_EQ(with_file("www2json.json", head + first + "'video1':{'gop':['gop','N']}}"),
              "www2json.json:4: video1.gop: \"gop\" is video0.gop on the page \"page\", too; only "
              "Greedy ones may be the same\n");
    EXPECT_EQ(with_file("www2json.json", "{'conf_pattern_list':['netport'],\n'page':['netport'],\n"
                                         "'netport':{'ip':['x','S'],\n'http_port':['x','S']}}"),
              "www2json.json:4: netport.http_port: \"x\" is netport.ip on the page \"page\", too; "
              "only Greedy ones may be the same\n");
}

TEST_F(CheckOfFiles, WarnsOfWebNamesThatMeanAnotherSetting)
{
    EXPECT_EQ(with_file("www2json.json",
                        "{'conf_pattern_list':['netport'],'one':['video0'],\n"
                        "'two':['video1'],'video0':{'gop':['gop','N']},\n"
                        "'video1':{'gop':['gop','N']}}",
                        0),
              "www2json.json:3: video1.gop: warning: \"gop\" means video0.gop when a page sets "
              "it\n");
}

TEST_F(CheckOfFiles, NamesEntriesForMembersThatDoNotExist)
{
    EXPECT_EQ(with_file("www2json.json", "{'conf_pattern_list':['netport'],\n"
                                         "'isp0':{'heu':['a','N'],\n'contrast':['b','N'],\n"
                                         "'Hue':['c','N']},\n'video4':{'gop':['d','N']}}"),
              "www2json.json:2: isp0.heu: is no member of isp0; did you mean \"hue\"?\n"
              "www2json.json:3: isp0.contrast: is no setting of the device, as it has no default\n"
              "www2json.json:4: isp0.Hue: is no member of isp0; did you mean \"hue\"?\n"
              "www2json.json:5: video4: is no module of the device; did you mean \"video0\"?\n");
}

TEST_F(CheckOfFiles, NamesPagesOfModulesThatDoNotExist)
{
    EXPECT_EQ(with_file("www2json.json", "{'conf_pattern_list':['netport'],\n'page':['isp0',\n"
                                         "'isp9', 4],'isp0':{'hue':['a']},'other':7}"),
              "www2json.json:3: other: is neither a page nor a module's names\n"
              "www2json.json:3: page: lists \"isp9\", which has no web names here\n"
              "www2json.json:3: page: holds an entry that is no text\n");
}

TEST_F(CheckOfFiles, NamesEntriesOfTheWrongForm)
{
    EXPECT_EQ(
        with_file("www2json.json",
                  "{'conf_pattern_list':['netport'],\n'isp0':{'hue':['a','X']},\n"
                  "'af':{'zoom_value':[],\n'focus_mode':['" +
                      std::string(32, 'm') +
                      "','N']},\n'audio':{'mute':['m','N','Loud'],\n'aeFormat':['f','N']},\n"
                      "'netport':{'ip':['ip','S','K',5]}}"),
        "www2json.json:2: isp0.hue: X is no type: they are S and N\n"
        "www2json.json:3: af.zoom_value: is no array of a web name, a type and a modifier\n"
        "www2json.json:4: af.focus_mode: has a web name of more than 31 bytes, which requests "
        "cut\n"
        "www2json.json:5: audio.mute: warning: Loud is no modifier, and changes nothing\n"
        "www2json.json:6: audio.aeFormat: warning: is a text, which pages can set with the "
        "type S alone\n"
        "www2json.json:7: netport.ip: has more than a web name, a type and a modifier\n");
}

// --- Descriptions ---

TEST_F(CheckOfFiles, NamesDescriptionsOfSettingsThatTheDeviceDoesNotHave)
{
    EXPECT_EQ(with_file("descriptions.json",
                        "{'af':{'zoom_value':{'label':'Zoom'},\n'zoom':{},\n'focus_lock':{}},\n"
                        "'video*':{'size':{}},\n'isp1':{},\n'audio0':{}}"),
              "descriptions.json:2: af.zoom: is no member of af; did you mean \"zoom_value\"?\n"
              "descriptions.json:3: af.focus_lock: is no setting of the device, as it has no "
              "default\n"
              "descriptions.json:5: isp1: is no module of the device; did you mean \"isp0\"?\n"
              "descriptions.json:6: audio0: is no module of the device; did you mean "
              "\"audio\"?\n");
}

TEST_F(CheckOfFiles, NamesDescriptionsOfTheWrongForm)
{
    EXPECT_EQ(with_file("descriptions.json",
                        "{'af':{'zoom_value':{'label':1,\n'secret':'yes',\n'names':{'one':'x',\n"
                        "'2':3},\n'lable':'Zoom'},\n'focus_mode':[]}}"),
              "descriptions.json:1: af.zoom_value.label: is no text\n"
              "descriptions.json:2: af.zoom_value.secret: is neither true nor false\n"
              "descriptions.json:3: af.zoom_value.names.one: is no number\n"
              "descriptions.json:4: af.zoom_value.names.2: is no text\n"
              "descriptions.json:5: af.zoom_value.lable: warning: is not read; did you mean "
              "\"label\"?\n"
              "descriptions.json:6: af.focus_mode: is no object of label, unit, help, names and "
              "secret\n");
}

} // namespace
