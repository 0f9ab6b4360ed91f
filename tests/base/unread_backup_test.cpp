// With the guard on: backups that are there and cannot be read, beside files of no use.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "base/guarded_module.h"
#include "camparam/camparam.h"

using testing::HasSubstr;

class UnreadBackup : public GuardedModule {
protected:
    UnreadBackup()
    {
        const std::string path = path_of(kind, ".bak");
        std::filesystem::create_symlink(path, path);
    }

    bool has_traced(const std::string &text) const
    {
        const std::vector<trace_line> all = traces();
        return std::any_of(all.begin(), all.end(), [&](const trace_line &line) {
            return line.level == 3 && line.text.find(kind.file + text) != std::string::npos;
        });
    }

    // As the next start may be able to read the backup.
    void expect_no_save()
    {
        EXPECT_EQ(status().flags, unsigned{PARA_STATUS_LOAD_FAILED | PARA_STATUS_NOT_SAVED});
        EXPECT_TRUE(has_traced(".bak cannot be read, errno:40"));
        kind.set(9);
        platformparam_save();
        EXPECT_FALSE(
            std::filesystem::exists(std::filesystem::symlink_status(path_of(kind, ".bad"))));
        EXPECT_TRUE(std::filesystem::is_symlink(path_of(kind, ".bak")));
    }
};
INSTANTIATE_TEST_SUITE_P(, UnreadBackup, testing::ValuesIn(all_kinds), name_of_kind);

TEST_P(UnreadBackup, OfAnEmptyFileKeepsBothFromBeingOverwritten)
{
    write_file(path_of(kind), "");
    start_store();
    expect_no_save();
    EXPECT_EQ(read(), "");
}

TEST_P(UnreadBackup, OfAFileThatCannotBeReadKeepsBothFromBeingOverwritten)
{
    std::filesystem::create_directory(path_of(kind));
    start_store();
    expect_no_save();
    EXPECT_TRUE(std::filesystem::is_directory(path_of(kind)));
}

TEST_P(UnreadBackup, OfAGoodFileIsNoMatter)
{
    write_file_with(8);
    start_store();
    EXPECT_EQ(kind.get(), 8);
    EXPECT_EQ(status().flags, 0U);
    kind.set(9);
    platformparam_save();
    EXPECT_THAT(read(".bak").value_or(""), HasSubstr("9"));
}

TEST_P(UnreadBackup, OfAMissingFileIsNoMatter)
{
    start_store();
    EXPECT_EQ(status().flags, 0U);
    kind.set(9);
    platformparam_save();
    EXPECT_THAT(read().value_or(""), HasSubstr("9"));
}

namespace {

std::vector<module_kind> kinds_of_json()
{
    std::vector<module_kind> kinds;
    std::copy_if(all_kinds.begin(), all_kinds.end(), std::back_inserter(kinds),
                 [](const module_kind &kind) { return strchr(kind.text, '{') != nullptr; });
    return kinds;
}

} // namespace

class UnreadBackupOfJson : public UnreadBackup {};
INSTANTIATE_TEST_SUITE_P(, UnreadBackupOfJson, testing::ValuesIn(kinds_of_json()), name_of_kind);

TEST_P(UnreadBackupOfJson, OfRubbishKeepsBothFromBeingOverwritten)
{
    write_data(kind.file, "#rubbish");
    start_store();
    expect_no_save();
    EXPECT_EQ(read(), "#rubbish");
}

class UnreadBackupOfConf : public UnreadBackup {};
INSTANTIATE_TEST_SUITE_P(, UnreadBackupOfConf, testing::Values(kind_named("Conf")), name_of_kind);

TEST_P(UnreadBackupOfConf, OfAnEmptyFileKeepsTheValuesWhenReadAgain)
{
    write_file_with(8);
    start_store();
    write_file(path_of(kind), "");
    para_conf_need_update(kind.row);
    EXPECT_EQ(kind.get(), 8);
    EXPECT_TRUE(has_traced(".bak cannot be read, errno:40"));
}
