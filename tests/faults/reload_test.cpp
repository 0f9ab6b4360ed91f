// Conf files that are read again while memory runs out.
#include <gtest/gtest.h>

#include <string>

#include "faults/faulted_store.h"

class StarvedReload : public FaultedStore {
protected:
    static std::string value(const char *key)
    {
        char text[64] = "none";
        para_conf_get_member_safe("netport", key, text, sizeof text);
        return text;
    }

    // Keys of each file alone, and of both.
    void write_files(const std::string &port)
    {
        write_home("netport.conf", "http_port = '80'\nrtsp_port = '" + port + "'\n");
        write_data("netport.conf", "http_port = '" + port + "'\nother = '" + port + "'\n");
    }

    // Leaves files of the values "2" where those of "1" were read, and reads them while memory
    // fails.
    int reload_starved(long failing, shortage lasting)
    {
        write_files("1");
        EXPECT_EQ(para_init_single_conf("netport"), 0);
        EXPECT_TRUE(all_are("1"));
        write_files("2");
        const Allocations allocations(failing, lasting);
        return para_init_single_conf("netport");
    }
    void expect_success_when_memory_is_back()
    {
        EXPECT_EQ(para_init_single_conf("netport"), 0);
        EXPECT_TRUE(all_are("2"));
    }

    static long allocations_of_a_reload()
    {
        const Allocations allocations;
        para_init_single_conf("netport");
        return allocations.tried();
    }

    static bool all_are(const std::string &text)
    {
        return value("http_port") == text && value("rtsp_port") == text && value("other") == text;
    }
};

TEST_F(StarvedReload, GivesTheNewValuesOrNone)
{
    for_each_failure(allocations_of_a_reload(), [&](long failing, shortage lasting) {
        const int result = reload_starved(failing, lasting);
        EXPECT_TRUE(all_are(result == 0 ? "2" : "none")) << value("http_port") << value("other");
        expect_success_when_memory_is_back();
    });
}

TEST_F(StarvedReload, WithTheGuardGivesTheNewValuesOrKeepsTheOld)
{
    platformparam_set_guard(1);
    para_init_single_conf("netport");
    for_each_failure(allocations_of_a_reload(), [&](long failing, shortage lasting) {
        const int result = reload_starved(failing, lasting);
        if (result == 0)
            EXPECT_TRUE(all_are("2")) << value("http_port") << value("other");
        else if (lasting == shortage::once)
            EXPECT_TRUE(all_are("1")) << value("http_port") << value("other");
        else // for the old ones there may be no memory either
            EXPECT_TRUE(all_are("1") || all_are("none")) << value("http_port") << value("other");
        expect_success_when_memory_is_back();
    });
}
