// Files that are too large for their file system: what fflush does not see is a failure, too.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>

#include "modules/text/conf_fixture.h"
#include "modules/text/misc_fixture.h"
#include "modules/text/pattern_fixture.h"

namespace {

constexpr size_t limit = 8192;

// Lines of more than the limit, with many writes of the size of a buffer.
std::string many_lines()
{
    std::string lines;
    for (int i = 0; lines.size() < 2 * limit; i++)
        lines += "key" + std::to_string(i) + " = \"" + std::string(50, 'v') + "\"\n";
    return lines;
}

// From now on no file of this process grows beyond the limit.
void limit_files()
{
    signal(SIGXFSZ, SIG_IGN);
    const rlimit size = {limit, limit};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &size), 0);
}

} // namespace

using JsonShortWrite = JsonModule;
using MiscShortWrite = Misc;
using ConfShortWrite = ConfModule;

TEST_F(JsonShortWrite, IsAFailedSave)
{
    init(panel_range, many_lines());
    limit_files();
    EXPECT_NE(para_save_misc("panel"), 0);
}

TEST_F(MiscShortWrite, IsAFailedSave)
{
    write_home("misc_range.json", versioned_range);
    write_home("misc.conf", many_lines());
    init();
    limit_files();
    EXPECT_NE(para_save_misc("misc"), 0);
}

TEST_F(ConfShortWrite, IsAFailedUpdateOfALine)
{
    const std::string path = data + "/lines.conf";
    write_data("lines.conf", many_lines());
    limit_files();
    EXPECT_EQ(update_conf(path.c_str(), "key1", "key1 = \"changed\""), -1);
}
