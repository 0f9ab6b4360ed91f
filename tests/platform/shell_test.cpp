#include <sys/wait.h>

#include "tests/platform/folder.h"

class ShellCommand : public Folder {};

TEST_F(ShellCommand, IsRunByAShellAndWaitedFor)
{
    const std::string command = "x=done && echo $x | tr d D > '" + path("out") + "'";
    EXPECT_EQ(lib_system(command.c_str()), 0);
    EXPECT_EQ(read("out"), "Done\n");
}

TEST_F(ShellCommand, ReturnsTheExitStatus)
{
    const int status = lib_system("exit 3");
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 3);
}
