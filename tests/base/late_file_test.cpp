// With the guard on: files in a folder that comes after the store has looked for them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "base/guarded_module.h"

using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;

class LateFile : public GuardedModule {
protected:
    // A start without the data folder, as before a file system is mounted there.
    void start_without_folder()
    {
        write_file_with(7);
        good = *read();
        lose_folder();
        start_store();
        EXPECT_NE(kind.get(), 7);
    }
    void lose_folder() { std::filesystem::rename(data, data + "-away"); }
    void find_folder() { std::filesystem::rename(data + "-away", data); }

    std::string good;
};
INSTANTIATE_TEST_SUITE_P(, LateFile, testing::ValuesIn(all_kinds), name_of_kind);

TEST_P(LateFile, OfAFolderThatComesLateIsNotOverwritten)
{
    start_without_folder();
    platformparam_save();
    find_folder();
    kind.set(9);
    platformparam_save();
    EXPECT_EQ(read(), good);
    EXPECT_FALSE(read(".bak")) << "which would outlive the file";
    EXPECT_FALSE(read(".bad"));
    EXPECT_EQ(status().error, EEXIST);
    EXPECT_LT(status().saved, status().changes);
    EXPECT_THAT(traces_of("write_guarded"),
                Contains(EndsWith(kind.file + std::string(" is not written, errno:17\n"))));
    stop_store();
    EXPECT_EQ(read(), good) << "nor at the stop";
}

TEST_P(LateFile, IsMadeWayFor)
{
    start_without_folder();
    find_folder();
    kind.set(9);
    platformparam_save();
    std::filesystem::remove(path_of(kind));
    platformparam_save();
    EXPECT_EQ(status().error, 0);
    EXPECT_EQ(status().saved, status().changes);
    EXPECT_THAT(read().value_or(""), HasSubstr("9"));
}

TEST_P(LateFile, WithoutTheGuardIsOverwritten)
{
    platformparam_set_guard(0);
    start_without_folder();
    find_folder();
    kind.set(9);
    platformparam_save();
    EXPECT_THAT(read().value_or(""), HasSubstr("9"));
    EXPECT_EQ(status().error, 0);
}

TEST_P(LateFile, IsNotOneThatIsPutIntoTheFolder)
{
    start_store();
    write_file_with(7);
    kind.set(9);
    platformparam_save();
    EXPECT_EQ(status().error, 0);
    EXPECT_THAT(read().value_or(""), HasSubstr("9"));
}

TEST_P(LateFile, IsNotOneThatTheStoreHasWritten)
{
    start_store();
    kind.set(8);
    platformparam_save();
    lose_folder();
    kind.set(9);
    platformparam_save();
    EXPECT_EQ(status().error, ENOENT);
    find_folder();
    platformparam_save();
    EXPECT_EQ(status().error, 0);
    EXPECT_THAT(read().value_or(""), HasSubstr("9"));
}

// The first write may have made the file, and no more.
TEST_P(LateFile, IsNotWhatAFailedWriteLeft)
{
    start_store();
    kind.set(9);
    std::filesystem::create_directory(path_of(kind));
    platformparam_save();
    EXPECT_EQ(status().error, EISDIR);
    std::filesystem::remove(path_of(kind));
    write_file(path_of(kind), "");
    platformparam_save();
    EXPECT_EQ(status().error, 0);
    EXPECT_THAT(read().value_or(""), HasSubstr("9"));
}

class LateConf : public GuardedModule {};
INSTANTIATE_TEST_SUITE_P(, LateConf, testing::Values(kind_named("Conf")), name_of_kind);

TEST_P(LateConf, IsSeenByAReload)
{
    start_store();
    write_file_with(7);
    para_conf_need_update(kind.row);
    EXPECT_EQ(kind.get(), 7);
    kind.set(9);
    platformparam_save();
    EXPECT_EQ(status().error, 0);
    EXPECT_THAT(read().value_or(""), HasSubstr("9"));
}

TEST_P(LateConf, IsTheOneThatAReloadDidNotFind)
{
    write_file_with(7);
    start_store();
    std::filesystem::rename(data, data + "-away");
    para_conf_need_update(kind.row);
    EXPECT_EQ(kind.get(), default_number);
    std::filesystem::rename(data + "-away", data);
    kind.set(9);
    platformparam_save();
    EXPECT_EQ(status().error, EEXIST);
    EXPECT_THAT(read().value_or(""), HasSubstr("7"));
}
