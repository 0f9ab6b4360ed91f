// Single lines of a conf file that are rewritten while memory runs out.
#include <gtest/gtest.h>

#include <string>

#include "faults/faulted_store.h"

class StarvedLine : public FaultedFolders {};

TEST_F(StarvedLine, IsRewrittenWithTheWholeFileOrNot)
{
    std::string rest;
    for (int line = 0; line < 2000; line++)
        rest += "key" + std::to_string(line) + " = \"value\"\n";
    const std::string old_text = "port = \"80\"\n" + rest;
    const std::string new_text = "port = \"8080\"\n" + rest;
    const std::string path = data + "/other.conf";
    const auto update = [&path] {
        return update_line_conf_str(path.c_str(), "port", "8080", "%s = \"%s\"");
    };

    write_file(path, old_text);
    long tried = 0;
    {
        const Allocations allocations;
        update();
        tried = allocations.tried();
    }
    EXPECT_EQ(read_file(path), new_text);
    for_each_failure(tried, [&](long failing, shortage lasting) {
        write_file(path, old_text);
        int result = 0;
        long kept = 0;
        {
            const Allocations allocations(failing, lasting);
            result = update();
            kept = allocations.kept();
        }
        EXPECT_TRUE(read_file(path) == (result == 0 ? new_text : old_text)) << result;
        EXPECT_EQ(kept, 0);
    });
}
