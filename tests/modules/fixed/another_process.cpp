#include "modules/fixed/another_process.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

void in_another_process(const std::function<void()> &work)
{
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        work();
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}
