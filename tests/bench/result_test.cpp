// The table of results: a line for each, and what misses its goal is marked.
#include "bench/support/result.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "bench/support/median.h"
#include "support/folders.h"

namespace {

class ResultTable : public Folders {
protected:
    ResultTable() { setenv("CAMPARAM_BENCH_TABLE", path().c_str(), 1); }

    std::string path() const { return data + "/table"; }

    // The table without the spaces that align it.
    std::string table() const
    {
        std::ifstream file(path());
        std::string words;
        for (std::string line; getline(file, line); words += '\n') {
            std::istringstream rest(line);
            for (std::string word; rest >> word;)
                words += word + " ";
        }
        return words;
    }
};

TEST_F(ResultTable, MarksWhatIsAboveItsGoal)
{
    add_result("round trip", 0.86, 0.85);
    add_result("system calls", 2.5, 3);
    EXPECT_EQ(table(), "round trip 0.86 0.85 missed \nsystem calls 2.50 3.00 \n");
}

TEST_F(ResultTable, MeetsAGoalThatIsShownAsTheSame)
{
    add_result("getter", 1.1549, 1.15);
    add_result("setter", 1.1551, 1.15);
    EXPECT_EQ(table(), "getter 1.15 1.15 \nsetter 1.16 1.15 missed \n");
}

TEST_F(ResultTable, IsNotWrittenUnlessItIsAskedFor)
{
    unsetenv("CAMPARAM_BENCH_TABLE");
    add_result("getter", 1, 1.15);
    EXPECT_FALSE(std::ifstream(path()).is_open());
}

TEST(Median, IsTheMiddleOfUnsortedSamples)
{
    EXPECT_EQ(median({9, 1, 5, 100, 2}), 5);
    EXPECT_EQ(median({3}), 3);
}

} // namespace
