// Data folders on a file system that is full, read-only, or comes late.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "calls/lives.h"
#include "camparam/camparam.h"

using testing::AnyOf;
using testing::Each;

namespace {

constexpr int old_number = 7, new_number = 9;
constexpr long page = 4096;

} // namespace

// The data folder is a file system of its own, with a page for each file that is small.
class DataFolder : public Lives, public testing::WithParamInterface<bool> {
protected:
    DataFolder() { guarded = GetParam(); }
    ~DataFolder() override
    {
        if (entered) {
            EXPECT_EQ(umount2(data.c_str(), MNT_DETACH), 0) << errno;
        }
    }

    void enter_folder()
    {
        ASSERT_EQ(mount("tmpfs", data.c_str(), "tmpfs", 0, "size=256k"), 0) << errno;
        entered = true;
    }
    void make_read_only(bool on)
    {
        const unsigned long flags = MS_REMOUNT | (on ? 1UL * MS_RDONLY : 0UL);
        EXPECT_EQ(mount("tmpfs", data.c_str(), "tmpfs", flags, nullptr), 0) << errno;
    }

    // Leaves so many pages free.
    void fill_up(long pages)
    {
        const long free = static_cast<long>(std::filesystem::space(data).available) / page;
        write_file(data + "/filler", std::string(static_cast<size_t>((free - pages) * page), 'f'));
    }
    void make_room() { std::filesystem::remove(data + "/filler"); }

    void start_and_save(int number) const
    {
        platformparam_set_guard(guarded ? 1 : 0);
        start();
        set_all(number);
        platformparam_save();
    }
    // Files of that number.
    void leave(int number)
    {
        std::filesystem::create_directories(data + "/persist");
        in_child([&] {
            start_and_save(number);
            expect_saved();
        });
    }

    static void expect_saved()
    {
        for (const module_kind &kind : kinds()) {
            EXPECT_EQ(status_of(kind.row).error, 0) << kind;
            EXPECT_EQ(status_of(kind.row).saved, status_of(kind.row).changes) << kind;
        }
    }
    static void expect_failed(int error)
    {
        for (const module_kind &kind : kinds()) {
            EXPECT_EQ(status_of(kind.row).error, error) << kind;
            EXPECT_LT(status_of(kind.row).saved, status_of(kind.row).changes) << kind;
        }
    }

    // Saves the new number twice: it fails, the reason goes, and it succeeds.
    void expect_failure_until(int error, const std::function<void()> &remedy)
    {
        in_child([&] {
            start_and_save(new_number);
            expect_failed(error);
            remedy();
            platformparam_save();
            expect_saved();
        });
        EXPECT_THAT(numbers_after_start(), Each(new_number));
    }

    // The medium holds files of the old number, and is mounted between start and save.
    void expect_kept_when_mounted_late(const std::string &medium)
    {
        in_child([&] {
            platformparam_set_guard(guarded ? 1 : 0);
            start();
            EXPECT_EQ(mount(medium.c_str(), data.c_str(), nullptr, MS_BIND, nullptr), 0) << errno;
            set_all(new_number);
            platformparam_save();
            if (guarded) {
                expect_failed(EEXIST);
            } else {
                expect_saved();
            }
            platformparam_stop(1);
        });
        EXPECT_THAT(numbers_after_start(), Each(guarded ? old_number : new_number));
        EXPECT_EQ(umount2(data.c_str(), MNT_DETACH), 0) << errno;
    }

    // Which modules are told as saved, of the new number.
    std::vector<bool> saved_by_child()
    {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        in_child([&] {
            start_and_save(new_number);
            for (const module_kind &kind : kinds()) {
                const char told =
                    status_of(kind.row).saved == status_of(kind.row).changes ? 'y' : 'n';
                EXPECT_EQ(write(ends[1], &told, 1), 1);
            }
        });
        std::string all(kinds().size(), '\0');
        EXPECT_EQ(read(ends[0], all.data(), all.size()), static_cast<ssize_t>(all.size()));
        close(ends[0]);
        close(ends[1]);
        std::vector<bool> told;
        for (const char each : all)
            told.push_back(each == 'y');
        return told;
    }

private:
    bool entered = false;
};
INSTANTIATE_TEST_SUITE_P(, DataFolder, testing::Bool(), [](const auto &with) {
    return std::string(with.param ? "WithTheGuard" : "WithoutTheGuard");
});

TEST_P(DataFolder, ThatIsFullIsToldAndWrittenWhenThereIsRoom)
{
    enter_folder();
    std::filesystem::create_directory(data + "/persist");
    fill_up(0);
    expect_failure_until(ENOSPC, [this] { make_room(); });
}

TEST_P(DataFolder, ThatIsFullKeepsWhatItHolds)
{
    enter_folder();
    leave(old_number);
    fill_up(0);
    EXPECT_THAT(numbers_after_start(), Each(old_number)) << "a start needs no room";
    in_child([&] {
        start_and_save(new_number);
        if (guarded) {
            expect_failed(ENOSPC);
        } else {
            expect_saved(); // into the room of the text before
        }
        platformparam_stop(1);
    });
    EXPECT_THAT(numbers_after_start(), Each(guarded ? old_number : new_number));
}

// Each file needs a page, and its backup another one meanwhile.
TEST_P(DataFolder, WithAnyRoomTellsWhatIsSaved)
{
    enter_folder();
    for (long pages = 0; pages < 20; pages++) {
        SCOPED_TRACE(pages);
        std::filesystem::remove_all(data + "/persist");
        for (const module_kind &kind : kinds())
            std::filesystem::remove(path_of(kind));
        leave(old_number);
        fill_up(pages);
        const std::vector<bool> told = saved_by_child();
        const std::vector<int> numbers = numbers_after_start();
        for (size_t i = 0; i < kinds().size(); i++) {
            if (told[i]) {
                EXPECT_EQ(numbers[i], new_number) << kinds()[i];
            } else if (guarded) {
                EXPECT_THAT(numbers[i], AnyOf(old_number, new_number)) << kinds()[i];
            }
        }
        make_room();
    }
}

TEST_P(DataFolder, ThatIsReadOnlyIsToldAndWrittenWhenItIsNot)
{
    enter_folder();
    leave(old_number);
    make_read_only(true);
    in_child([&] {
        start_and_save(new_number);
        expect_failed(EROFS);
    });
    EXPECT_THAT(numbers_after_start(), Each(old_number));
    expect_failure_until(EROFS, [this] { make_read_only(false); });
}

TEST_P(DataFolder, ThatIsMissingAtTheStartIsWrittenWhenItIsThere)
{
    std::filesystem::remove_all(data);
    expect_failure_until(ENOENT,
                         [this] { std::filesystem::create_directories(data + "/persist"); });
}

// The empty folder below it can be written, too.
TEST_P(DataFolder, ThatIsMountedLateKeepsItsFilesWithTheGuard)
{
    leave(old_number);
    const std::string medium = data + "-medium";
    std::filesystem::rename(data, medium);
    std::filesystem::create_directory(data);
    expect_kept_when_mounted_late(medium);
}

// The roots of both have the same number, as the first object of each.
TEST_P(DataFolder, ThatIsMountedLateOverAnotherFileSystemKeepsItsFilesToo)
{
    leave(old_number);
    const std::string medium = data + "-medium";
    std::filesystem::create_directory(medium);
    ASSERT_EQ(mount("tmpfs", medium.c_str(), "tmpfs", 0, "size=256k"), 0) << errno;
    std::filesystem::copy(data, medium, std::filesystem::copy_options::recursive);
    enter_folder();
    expect_kept_when_mounted_late(medium);
    EXPECT_EQ(umount2(medium.c_str(), MNT_DETACH), 0) << errno;
}
