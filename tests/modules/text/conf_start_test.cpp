// Settings in ".conf" files that other programs own: start-up and reload.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "modules/text/conf_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using ConfStart = ConfModule;
using ConfReload = ConfModule;

TEST_F(ConfStart, TheFirstCallStartsTheStoreAndLoadsNothing)
{
    write_home("netport.conf", port_defaults);
    EXPECT_EQ(para_init_conf("netport"), 0);
    EXPECT_THAT(traces(), IsEmpty());
    expect_nothing("netport");
    EXPECT_EQ(para_need_save_conf("netport"), -1);
    EXPECT_EQ(para_init_single_conf("netport"), -1);

    EXPECT_EQ(para_init_conf("netport"), 0);
    EXPECT_EQ(value("port"), "80");
}

TEST_F(ConfStart, RegistersTheNetportWorkOnce)
{
    init();
    para_init_conf("overlay");
    ASSERT_THAT(registered_work(), SizeIs(1));
    ASSERT_THAT(registered_work()[0], SizeIs(1));
    const fifo_work work = registered_work()[0][0];
    EXPECT_STREQ(work.name, "netport");
    EXPECT_EQ(work.type, nullptr);
    EXPECT_STREQ(static_cast<const char *>(work.argument), "netport");
    EXPECT_NE(work.handler, nullptr);
}

TEST_F(ConfStart, LoadsDefaultsAndCurrentValues)
{
    init(port_defaults, "port = '8080'\nmore=1\n");
    EXPECT_EQ(value("port"), "8080");
    EXPECT_EQ(default_value("port"), "80");
    EXPECT_EQ(value("rtsp"), "554") << "not in the current file";
    EXPECT_EQ(value("name"), "front door");
    EXPECT_EQ(value("empty"), "");
    EXPECT_EQ(value("more"), "1");
    EXPECT_EQ(default_value("more"), "none");
    EXPECT_FALSE(change_pending());
}

TEST_F(ConfStart, WithoutACurrentFileTheDefaultsStand)
{
    init();
    for (const char *key : {"port", "rtsp", "name", "empty"})
        EXPECT_EQ(value(key), default_value(key)) << key;
    EXPECT_FALSE(read_data("netport.conf"));
}

TEST_F(ConfStart, WithoutADefaultsFileThereIsNothing)
{
    write_data("netport.conf", "port = '8080'\n");
    init_without_files();
    expect_nothing("netport");
    EXPECT_EQ(para_need_save_conf("netport"), 0) << "the module is known";
    EXPECT_EQ(read_data("netport.conf"), "port = \"8080\"\n");
    EXPECT_EQ(para_init_single_conf("netport"), -1);
}

TEST_F(ConfStart, AFailedModuleKeepsItsRecord)
{
    write_home("overlay.conf", "text = 'hello'\n");
    init_without_files();
    para_init_conf("overlay");
    EXPECT_STREQ(para_conf_get_member("overlay", "text"), "hello");
    EXPECT_EQ(para_need_save_conf("netport"), 0);

    write_home("netport.conf", port_defaults);
    EXPECT_EQ(para_init_single_conf("netport"), 0);
    EXPECT_EQ(value("port"), "80");
    EXPECT_STREQ(para_conf_get_member("overlay", "text"), "hello");
}

TEST_F(ConfStart, ThereAreSixtyFourRecords)
{
    para_init_conf("conf");
    for (int i = 0; i < 65; i++) {
        const std::string name = "m" + std::to_string(i);
        if (i % 2 == 0)
            write_home(name + ".conf", "a = '" + std::to_string(i) + "'\n");
        EXPECT_EQ(para_init_conf(name.c_str()), 0) << name;
    }
    for (int i = 0; i < 64; i++) {
        const std::string name = "m" + std::to_string(i);
        EXPECT_EQ(para_need_save_conf(name.c_str()), 0) << name;
        EXPECT_EQ(text_or_none(para_conf_get_member(name.c_str(), "a")),
                  i % 2 == 0 ? std::to_string(i) : "none");
    }
    expect_nothing("m64");
    EXPECT_EQ(para_need_save_conf("m64"), -1);
}

TEST_F(ConfStart, NamesAreKeptToSixtyThreeCharacters)
{
    const std::string fits(63, 'f'), longer(64, 'l');
    write_home(fits + ".conf", port_defaults);
    write_home(longer + ".conf", port_defaults);
    para_init_conf("conf");
    para_init_conf(fits.c_str());
    para_init_conf(longer.c_str());
    EXPECT_STREQ(para_conf_get_member(fits.c_str(), "port"), "80");
    expect_nothing(longer.c_str());
}

TEST_F(ConfStart, APathThatDoesNotFitIsNoFile)
{
    write_home("netport.conf", port_defaults);
    const std::string long_home = home + "/" + std::string(115 - home.size(), 'h');
    std::filesystem::create_directory(long_home);
    write_file(long_home + "/netport.con", "port = 1\n"); // the path cut to 127 characters
    write_file(long_home + "/netport.conf", "port = 2\n");
    para_profile.home_dir = long_home.c_str();
    init_without_files();
    EXPECT_EQ(value("port"), "none");
    para_profile.home_dir = home.c_str();
}

TEST_F(ConfStart, TheDefaultListsHoldThreeModules)
{
    for (const char *name : {"netport", "overlay", "ndi_config", "devinfo"})
        write_home(std::string(name) + ".conf", std::string("name = ") + name + "\n");
    start_store();
    EXPECT_STREQ(para_get_netport_member("name"), "netport");
    EXPECT_STREQ(para_get_overlay_member("name"), "overlay");
    EXPECT_STREQ(para_get_ndi_config_member("name"), "ndi_config");
    EXPECT_EQ(para_need_save_conf("devinfo"), -1);
    const char *const keys[] = {"name"};
    EXPECT_EQ(para_key_IsChanged_netport(keys, 1), 0);
    EXPECT_EQ(para_key_IsChanged_ndi(keys, 1), 0);
    EXPECT_EQ(para_key_IsChanged_devinfo(keys, 1), -1);
}

TEST_F(ConfStart, TheWebNameFileMayListOthers)
{
    write_home("www2json.json", "{'conf_pattern_list':['devinfo']}");
    write_home("devinfo.conf", "name = one\n");
    write_home("netport.conf", port_defaults);
    start_store();
    const char *const keys[] = {"name"};
    EXPECT_EQ(para_key_IsChanged_devinfo(keys, 1), 0);
    para_conf_set_member("devinfo", "name", "two");
    EXPECT_EQ(para_key_IsChanged_devinfo(keys, 1), 1);
    EXPECT_EQ(para_get_netport_member("port"), nullptr);
    EXPECT_EQ(para_key_IsChanged_netport(keys, 1), -1);
    EXPECT_EQ(para_key_IsChanged_ndi(keys, 1), -1);
    EXPECT_EQ(para_get_overlay_member("port"), nullptr);
    EXPECT_EQ(para_get_ndi_config_member("port"), nullptr);
}

TEST_F(ConfReload, ReadsTheFilesAgain)
{
    init(port_defaults, "port = '8080'\n");
    write_home("netport.conf", "port = '81'\nadded = '1'\n");
    write_data("netport.conf", "rtsp = '555'\n");
    para_conf_need_update("netport");
    EXPECT_EQ(default_value("port"), "81");
    EXPECT_EQ(value("port"), "81") << "the current file does not have it any more";
    EXPECT_EQ(value("rtsp"), "555");
    EXPECT_EQ(default_value("rtsp"), "554") << "the objects are kept";
    EXPECT_EQ(value("added"), "1");
    EXPECT_EQ(value("name"), "front door");
    EXPECT_FALSE(change_pending());
}

TEST_F(ConfReload, TellsTheUpdateHook)
{
    init();
    forget_traces();
    para_conf_need_update("netport");
    EXPECT_THAT(updates_told, ElementsAre("netport"));
    EXPECT_THAT(traces_of("para_conf_need_update"), ElementsAre("enter\n", "leave\n"));
    EXPECT_THAT(members_told, IsEmpty());

    para_profile.conf_update_hook = nullptr;
    para_conf_need_update("netport");
    EXPECT_THAT(updates_told, SizeIs(1));
}

TEST_F(ConfReload, TellsTheUpdateHookAlsoWhenItFails)
{
    init();
    unlink((home + "/netport.conf").c_str());
    para_conf_need_update("netport");
    para_conf_need_update("never heard of");
    EXPECT_THAT(updates_told, ElementsAre("netport", "never heard of"));
}

TEST_F(ConfReload, TheHookSeesTheNewValues)
{
    init();
    static std::string seen;
    para_profile.conf_update_hook = [](const char *module) {
        seen = text_or_none(para_conf_get_member(module, "port"));
        para_conf_set_member(module, "rtsp", "1");
        return 0;
    };
    write_data("netport.conf", "port = '8080'\n");
    para_conf_need_update("netport");
    EXPECT_EQ(seen, "8080");
    EXPECT_EQ(value("rtsp"), "1") << "it may set values";
}

TEST_F(ConfReload, WithoutADefaultsFileTheValuesAreGoneUntilOneSucceeds)
{
    init(port_defaults, "port = '8080'\n");
    std::filesystem::rename(home + "/netport.conf", home + "/away.conf");
    EXPECT_EQ(para_init_single_conf("netport"), -1);
    expect_nothing("netport");

    std::filesystem::rename(home + "/away.conf", home + "/netport.conf");
    EXPECT_EQ(para_init_single_conf("netport"), 0);
    EXPECT_EQ(value("port"), "8080");
    EXPECT_EQ(default_value("port"), "80");
}

TEST_F(ConfReload, OverwritesWhatWasNotSaved)
{
    init(port_defaults, "port = '8080'\n");
    para_conf_set_member("netport", "port", "1");
    para_conf_set_member("netport", "added", "2");
    EXPECT_EQ(para_init_single_conf("netport"), 0);
    EXPECT_EQ(value("port"), "8080");
    EXPECT_EQ(value("added"), "2") << "no file has it";
}

TEST_F(ConfReload, TheNetportWorkReloadsNetport)
{
    init();
    write_data("netport.conf", "port = '8080'\n");
    const fifo_work work = registered_work().at(0).at(0);
    work.handler(work.argument);
    EXPECT_EQ(value("port"), "8080");
    EXPECT_THAT(updates_told, ElementsAre("netport"));

    write_data("netport.conf", "port = '8081'\n");
    para_need_update_netport();
    EXPECT_EQ(value("port"), "8081");
    EXPECT_THAT(updates_told, ElementsAre("netport", "netport"));
}

TEST_F(ConfReload, AnUnknownModuleCannotBeLoaded)
{
    init();
    for (const char *module : unknown_modules)
        EXPECT_EQ(para_init_single_conf(module), -1) << text_or_none(module);
}
