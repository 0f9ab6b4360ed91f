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

    static bool all_are(const std::string &text)
    {
        return value("http_port") == text && value("rtsp_port") == text && value("other") == text;
    }
};

TEST_F(StarvedReload, GivesTheNewValuesOrNone)
{
    long tried = 0;
    {
        const Allocations allocations;
        para_init_single_conf("netport");
        tried = allocations.tried();
    }
    for_each_failure(tried, [&](long failing, shortage lasting) {
        write_files("1");
        ASSERT_EQ(para_init_single_conf("netport"), 0);
        ASSERT_TRUE(all_are("1"));
        write_files("2");
        int result = 0;
        {
            const Allocations allocations(failing, lasting);
            result = para_init_single_conf("netport");
        }
        EXPECT_TRUE(all_are(result == 0 ? "2" : "none")) << value("http_port") << value("other");
        EXPECT_EQ(para_init_single_conf("netport"), 0) << "memory is back";
        EXPECT_TRUE(all_are("2"));
    });
}
