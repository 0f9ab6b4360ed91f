// With the guard on: backups of the current files, and what start-up makes of them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "base/guarded_module.h"

using testing::HasSubstr;

class GuardedKind : public GuardedModule {
protected:
    // Without the start-up of other modules, whose files are not there.
    static int errors_traced()
    {
        int count = 0;
        for (const trace_line &line : traces())
            count += line.level == 3 ? 1 : 0;
        return count;
    }

    // What a store in a process of its own makes of these bytes as the module's file: the number in
    // force. Without bytes, it saves the number that is given. 254 when it does not start.
    int number_in_child(const std::optional<std::string> &bytes, int number = 0)
    {
        const pid_t child = fork();
        if (child == 0) {
            if (bytes)
                write_file(path_of(kind), *bytes);
            platformparam_set_server_port(0);
            if (platformparam_init() != 0)
                _exit(254);
            if (!bytes)
                kind.set(number);
            platformparam_save();
            _exit(kind.get());
        }
        int ended = 0;
        waitpid(child, &ended, 0);
        return WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
    }

    void take_names_of_bad_files() const
    {
        for (const char *end : {"", ".1", ".2", ".3", ".4", ".5", ".6", ".7", ".8", ".9"})
            std::filesystem::create_directories(path_of(kind, ".bad") + end + "/in the way");
    }

    bool has_traced(const std::string &file, const std::string &text)
    {
        const std::vector<trace_line> all = traces();
        return std::any_of(all.begin(), all.end(), [&](const trace_line &line) {
            const std::string end = file + text + "\n";
            return line.level == 3 && line.text.size() >= end.size() &&
                   line.text.compare(line.text.size() - end.size(), end.size(), end) == 0;
        });
    }
};
INSTANTIATE_TEST_SUITE_P(, GuardedKind, testing::ValuesIn(all_kinds), name_of_kind);

namespace {

bool is_json(const module_kind &kind)
{
    return strchr(kind.text, '{') != nullptr;
}

template <typename condition> std::vector<module_kind> kinds_that(const condition &holds)
{
    std::vector<module_kind> kinds;
    std::copy_if(all_kinds.begin(), all_kinds.end(), std::back_inserter(kinds), holds);
    return kinds;
}

} // namespace

class GuardedJson : public GuardedKind {};
INSTANTIATE_TEST_SUITE_P(, GuardedJson, testing::ValuesIn(kinds_that(is_json)), name_of_kind);

class GuardedConf : public GuardedKind {};
INSTANTIATE_TEST_SUITE_P(, GuardedConf, testing::ValuesIn(kinds_that(std::not_fn(is_json))),
                         name_of_kind);

// Kinds that have a file with defaults.
class GuardedDefaults : public GuardedKind {};
INSTANTIATE_TEST_SUITE_P(, GuardedDefaults,
                         testing::ValuesIn(kinds_that([](const module_kind &kind) {
                             return kind.def != nullptr;
                         })),
                         name_of_kind);

TEST_P(GuardedKind, ASaveLeavesABackupOfTheSameBytes)
{
    start_store();
    kind.set(7);
    platformparam_save();
    ASSERT_TRUE(read());
    EXPECT_THAT(*read(), HasSubstr("7"));
    EXPECT_EQ(read(), read(".bak"));
    EXPECT_FALSE(read(".bak.tmp"));
    EXPECT_FALSE(read(".bad"));
}

TEST_P(GuardedKind, WithoutTheGuardASaveLeavesNoBackup)
{
    platformparam_set_guard(0);
    start_store();
    kind.set(7);
    platformparam_save();
    EXPECT_TRUE(read());
    EXPECT_FALSE(read(".bak"));
}

TEST_P(GuardedKind, AnEmptyFileIsRestored)
{
    write_file_with(7, ".bak");
    write_file(path_of(kind), "");
    start_store();
    EXPECT_EQ(kind.get(), 7);
    EXPECT_STREQ(read()->c_str(), read(".bak")->c_str());
    EXPECT_EQ(status().flags, unsigned{PARA_STATUS_RESTORED});
    EXPECT_TRUE(has_traced(kind.file, " is restored from its backup"));
    EXPECT_FALSE(read(".bad"));
}

TEST_P(GuardedKind, WithoutTheGuardAnEmptyFileLeavesTheDefaults)
{
    platformparam_set_guard(0);
    write_file_with(7, ".bak");
    write_file(path_of(kind), "");
    start_store();
    EXPECT_NE(kind.get(), 7);
    EXPECT_EQ(read(), "");
}

TEST_P(GuardedKind, AFileCutAtAnyLengthIsRestored)
{
    ASSERT_EQ(number_in_child({}, 77), 77);
    const std::string whole = *read();
    for (size_t length = 0; length < whole.size(); length++) {
        EXPECT_EQ(number_in_child(whole.substr(0, length)), 77) << length;
        EXPECT_EQ(read(), whole) << "and saved whole, cut at " << length;
    }
}

TEST_P(GuardedKind, AMissingFileStaysMissing)
{
    write_file_with(7, ".bak");
    start_store();
    EXPECT_NE(kind.get(), 7);
    EXPECT_FALSE(read());
    EXPECT_EQ(status().flags, 0U);
}

TEST_P(GuardedKind, AnEditedFileWins)
{
    write_file_with(7, ".bak");
    write_file_with(8);
    start_store();
    EXPECT_EQ(kind.get(), 8);
    EXPECT_EQ(status().flags, 0U);
    EXPECT_EQ(errors_traced(), 0);
}

TEST_P(GuardedKind, AFileThatCannotBeReadIsKeptAndTheBackupUsed)
{
    write_file_with(7, ".bak");
    std::filesystem::create_directory(path_of(kind));
    start_store();
    EXPECT_EQ(kind.get(), 7);
    EXPECT_TRUE(std::filesystem::is_directory(path_of(kind, ".bad")));
    EXPECT_STREQ(read()->c_str(), read(".bak")->c_str());
    EXPECT_EQ(status().flags, unsigned{PARA_STATUS_RESTORED | PARA_STATUS_KEPT_BAD});
    EXPECT_TRUE(has_traced(kind.file, ".bad")) << "cannot be used and is kept as";
}

TEST_P(GuardedKind, AFileThatCannotBeReadIsKeptWithoutABackupToo)
{
    std::filesystem::create_directory(path_of(kind));
    start_store();
    EXPECT_TRUE(std::filesystem::is_directory(path_of(kind, ".bad")));
    EXPECT_EQ(status().flags, unsigned{PARA_STATUS_KEPT_BAD});
    kind.set(9);
    platformparam_save();
    EXPECT_THAT(*read(), HasSubstr("9"));
}

TEST_P(GuardedKind, ALinkLoopIsKept)
{
    write_file_with(7, ".bak");
    std::filesystem::create_symlink(path_of(kind), path_of(kind));
    start_store();
    EXPECT_EQ(kind.get(), 7);
    EXPECT_TRUE(std::filesystem::is_symlink(path_of(kind, ".bad")));
}

TEST_P(GuardedKind, ALinkToAMissingFileIsAMissingFile)
{
    std::filesystem::create_symlink(data + "/elsewhere", path_of(kind));
    start_store();
    kind.set(9);
    platformparam_save();
    EXPECT_TRUE(std::filesystem::is_symlink(path_of(kind)));
    EXPECT_THAT(read_data("elsewhere").value_or(""), HasSubstr("9"));
}

TEST_P(GuardedJson, AFileThatIsNoJsonIsKeptAndTheBackupUsed)
{
    write_file_with(7, ".bak");
    write_data(kind.file, "#rubbish");
    start_store();
    EXPECT_EQ(kind.get(), 7);
    EXPECT_EQ(read(".bad"), "#rubbish");
    EXPECT_EQ(status().flags, unsigned{PARA_STATUS_RESTORED | PARA_STATUS_KEPT_BAD});
}

TEST_P(GuardedJson, ABackupThatIsNoJsonRestoresNothing)
{
    write_data(kind.file + std::string(".bak"), "#rubbish and more");
    write_data(kind.file, "#rubbish");
    start_store();
    EXPECT_FALSE(read());
    EXPECT_EQ(read(".bad"), "#rubbish");
    EXPECT_EQ(status().flags, unsigned{PARA_STATUS_KEPT_BAD});
}

// A line that is no entry is skipped, as always.
TEST_P(GuardedConf, AFileWithoutEntriesWasEdited)
{
    write_file_with(7, ".bak");
    write_data(kind.file, "#rubbish");
    start_store();
    EXPECT_EQ(kind.get(), default_number);
    EXPECT_EQ(read(), "#rubbish");
    EXPECT_FALSE(read(".bad"));
    EXPECT_EQ(status().flags, 0U);
}

TEST_P(GuardedKind, ABadFileTakesAFreeNameBesideAnOldOneOfAnotherKind)
{
    write_file_with(7, ".bak");
    write_data(kind.file + std::string(".bad"), "old");
    std::filesystem::create_symlink("nowhere", path_of(kind, ".bad.1"));
    std::filesystem::create_directory(path_of(kind));
    start_store();
    EXPECT_EQ(kind.get(), 7);
    EXPECT_EQ(read(".bad"), "old");
    EXPECT_TRUE(std::filesystem::is_symlink(path_of(kind, ".bad.1")));
    EXPECT_TRUE(std::filesystem::is_directory(path_of(kind, ".bad.2")));
    EXPECT_TRUE(has_traced(kind.file, ".bad.2")) << "the trace names it";
    EXPECT_EQ(status().flags, unsigned{PARA_STATUS_RESTORED | PARA_STATUS_KEPT_BAD});
    kind.set(9);
    platformparam_save();
    EXPECT_THAT(*read(), HasSubstr("9"));
}

TEST_P(GuardedJson, AFileThatIsNoJsonIsKeptBesideADirectory)
{
    write_file_with(7, ".bak");
    write_data(kind.file, "#rubbish");
    std::filesystem::create_directory(path_of(kind, ".bad"));
    start_store();
    EXPECT_EQ(kind.get(), 7);
    EXPECT_EQ(read(".bad.1"), "#rubbish");
    EXPECT_STREQ(read()->c_str(), read(".bak")->c_str());
}

TEST_P(GuardedKind, WhatCannotBeMovedAwayIsNotOverwritten)
{
    write_file_with(7, ".bak");
    std::filesystem::create_directory(path_of(kind));
    take_names_of_bad_files();
    start_store();
    EXPECT_EQ(kind.get(), 7) << "the backup is used";
    EXPECT_EQ(status().flags, unsigned{PARA_STATUS_RESTORED | PARA_STATUS_NOT_SAVED});
    kind.set(9);
    platformparam_save();
    EXPECT_TRUE(std::filesystem::is_directory(path_of(kind)));
    EXPECT_THAT(*read(".bak"), HasSubstr("7"));
    EXPECT_LT(status().saved, status().changes);
}

static int mode_of(const std::string &path)
{
    struct stat about = {};
    EXPECT_EQ(stat(path.c_str(), &about), 0) << path;
    return static_cast<int>(about.st_mode & 07777);
}

// The mode keeps a file from some users, and so its copy too.
TEST_P(GuardedKind, ABackupHasTheModeOfItsFile)
{
    for (const mode_t mode : {0600U, 0666U, 0440U}) {
        write_file_with(8);
        ASSERT_EQ(chmod(path_of(kind).c_str(), mode), 0);
        EXPECT_EQ(number_in_child({}, 9), 9);
        EXPECT_EQ(mode_of(path_of(kind, ".bak")), static_cast<int>(mode));
        EXPECT_EQ(mode_of(path_of(kind)), static_cast<int>(mode));
    }
}

TEST_P(GuardedKind, AFileRestoredInPlaceOfABadOneHasTheModeOfItsBackup)
{
    write_file_with(7, ".bak");
    ASSERT_EQ(chmod(path_of(kind, ".bak").c_str(), 0600), 0);
    std::filesystem::create_directory(path_of(kind));
    start_store();
    EXPECT_EQ(kind.get(), 7);
    EXPECT_EQ(mode_of(path_of(kind)), 0600);
}

TEST_P(GuardedDefaults, AModuleWithoutThemIsNotSaved)
{
    write_file_with(7);
    std::filesystem::remove(home + "/" + kind.def);
    start_store();
    const std::string before = *read();
    platformparam_save();
    EXPECT_EQ(read(), before);
    EXPECT_FALSE(read(".bak"));
    EXPECT_EQ(status().flags, unsigned{PARA_STATUS_LOAD_FAILED | PARA_STATUS_NOT_SAVED});
    EXPECT_GE(errors_traced(), 1);
}

TEST_P(GuardedDefaults, WithoutTheGuardTheStatusTellsOfTheFailureAlone)
{
    platformparam_set_guard(0);
    std::filesystem::remove(home + "/" + kind.def);
    start_store();
    EXPECT_EQ(status().flags, unsigned{PARA_STATUS_LOAD_FAILED});
}
