// The files that the store makes, of every kind: their modes, and what becomes of older ones.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <string>

#include "support/store.h"

using testing::ElementsAre;
using testing::EndsWith;
using testing::Not;
using testing::Pair;

class SavedFiles : public Store {
protected:
    SavedFiles()
    {
        for (const char *module : {"af", "audio", "video", "isp"}) {
            write_home(module + std::string("_range.json"), "{}");
            write_home(module + std::string("_def.json"), "{}");
        }
        write_home("www2json.json",
                   "{'json_pattern_list':['misc','panel'],'conf_pattern_list':['netport']}");
        write_home("panel_range.json", "{'brightness':[0,100]}");
        write_home("panel.conf", "brightness = '50'\n");
        write_home("netport.conf", "port = '80'\n");
        write_home("misc_range.json", "{'version':2,'mirror':[0,1]}");
        write_home("misc.conf", "mirror = '1'\n");
        write_home("misc_def.json", "{'mirror':1}");
        para_profile.conf_save_hook = [] {};
    }

    void save_everything()
    {
        start_store();
        para_set_odm_int("mine", 5);
        platformparam_save();
    }

    // Of everything below the data folder: path and mode, in octal digits.
    std::map<std::string, std::string> modes()
    {
        std::map<std::string, std::string> found;
        for (const auto &entry : std::filesystem::recursive_directory_iterator(data)) {
            char digits[16];
            snprintf(digits, sizeof digits, "%o",
                     static_cast<unsigned>(entry.status().permissions()));
            found[entry.path().lexically_relative(data).string()] = digits;
        }
        return found;
    }
};

TEST_F(SavedFiles, MayBeReadAndWrittenByEveryoneAsFarAsTheUmaskLets)
{
    umask(0);
    save_everything();
    EXPECT_THAT(modes(), ElementsAre(Pair("af_cur.json", "666"), Pair("audio_cur.json", "666"),
                                     Pair("isp_cur.json", "666"), Pair("misc.conf", "666"),
                                     Pair("netport.conf", "666"), Pair("panel.conf", "666"),
                                     Pair("persist", "775"), Pair("persist/odm.json", "666"),
                                     Pair("video_cur.json", "666")));
}

TEST_F(SavedFiles, KeepWhatTheUmaskForbids)
{
    umask(0027);
    write_home("misc_range.json", "{'mirror':[0,1]}");
    save_everything();
    EXPECT_THAT(modes(), ElementsAre(Pair("af_cur.json", "640"), Pair("audio_cur.json", "640"),
                                     Pair("isp_cur.json", "640"), Pair("misc_cur.json", "640"),
                                     Pair("netport.conf", "640"), Pair("panel.conf", "640"),
                                     Pair("persist", "750"), Pair("persist/odm.json", "640"),
                                     Pair("video_cur.json", "640")));
}

TEST_F(SavedFiles, HoldNothingOfALongerOneThatStoodThere)
{
    const std::string blanks(5000, ' '), lines(5000, '\n');
    std::filesystem::create_directory(data + "/persist");
    for (const char *name :
         {"af_cur.json", "audio_cur.json", "isp_cur.json", "video_cur.json", "persist/odm.json"})
        write_data(name, "{" + blanks + "}");
    for (const char *name : {"misc.conf", "netport.conf", "panel.conf"})
        write_data(name, lines);
    save_everything();
    for (const auto &[name, mode] : modes()) {
        if (name == "persist")
            continue;
        const std::string bytes = read_data(name).value_or("none");
        EXPECT_LT(bytes.size(), 200U) << name;
        EXPECT_THAT(bytes, EndsWith(name.find(".json") != std::string::npos ? std::string("}\0", 2)
                                                                            : "\"\n"))
            << name;
    }
}

TEST_F(SavedFiles, OfTheLegacySetHoldNothingOfALongerOneEither)
{
    write_home("misc_range.json", "{'mirror':[0,1]}");
    write_data("misc_cur.json", "{" + std::string(5000, ' ') + "}");
    save_everything();
    EXPECT_EQ(read_data("misc_cur.json"), std::string("{\n\t\"mirror\":\t1\n}") + '\0');
}
