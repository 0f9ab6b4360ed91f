#include <fstream>
#include <iterator>
#include <regex>
#include <set>

#include "tests/platform/folder.h"

static void add_declared_names(const std::string &header, std::set<std::string> &names)
{
    std::ifstream file(std::string(PLATFORM_HEADERS "/") + header);
    ASSERT_TRUE(file) << header;
    const std::string text(std::istreambuf_iterator<char>(file), {});
    const std::regex declaration("PARA_API [^(\\[;]*?(\\w+)[(\\[]");
    for (std::sregex_iterator match(text.begin(), text.end(), declaration), end; match != end;
         ++match)
        names.insert((*match)[1]);
}

static std::set<std::string> exported_names()
{
    std::set<std::string> names;
    FILE *const symbols = popen("nm --dynamic --defined-only '" PLATFORM_LIBRARY "'", "re");
    char line[1024];
    char name[1024];
    while (symbols != nullptr && fgets(line, sizeof line, symbols) != nullptr) {
        if (sscanf(line, "%*s %*s %1023s", name) == 1)
            names.insert(name);
    }
    EXPECT_EQ(pclose(symbols), 0);
    return names;
}

TEST(PlatformExports, AreTheDeclaredNames)
{
    std::set<std::string> declared;
    add_declared_names("platform.h", declared);
    add_declared_names("platform_queue.h", declared);
    add_declared_names("platform_trace.h", declared);
    EXPECT_THAT(declared, testing::IsSupersetOf({"dbgout_profile", "add_fifo_work"}));
    EXPECT_EQ(exported_names(), declared);
}
