// Directories, FIFOs, devices and loops of links in place of files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include "camparam/camparam.h"
#include "support/every_kind.h"

using testing::HasSubstr;

struct replacement {
    std::string name;
    void (*put)(const std::string &path);
    int guarded_error; // of a save to it
    int error;         // without the guard; waits_for_ever: for a reader
    int locked_error;  // of the modules whose files are written under a lock
};

static std::ostream &operator<<(std::ostream &stream, const replacement &chosen)
{
    return stream << chosen.name;
}

namespace {

constexpr int waits_for_ever = -1;

const std::vector<replacement> replacements = {
    {"Directory", [](const std::string &path) { std::filesystem::create_directory(path); }, EISDIR,
     EISDIR, EISDIR},
    {"Fifo", [](const std::string &path) { mkfifo(path.c_str(), 0600); }, ENXIO, waits_for_ever,
     waits_for_ever},
    {"DeviceWithoutEnd",
     [](const std::string &path) { std::filesystem::create_symlink("/dev/zero", path); }, EINVAL, 0,
     EINVAL},
    {"FullDevice",
     [](const std::string &path) { std::filesystem::create_symlink("/dev/full", path); }, EINVAL,
     ENOSPC, EINVAL},
    {"LinkLoop", [](const std::string &path) { std::filesystem::create_symlink(path, path); },
     ELOOP, ELOOP, ELOOP},
};

// The files in the home folder without which a module cannot be loaded.
struct home_file {
    std::string name;
    std::vector<std::string> kinds; // that need it
};
const std::vector<home_file> home_files = {
    {"af_range.json", {"Af"}},         {"af_def.json", {"Af"}},
    {"audio_range.json", {"Audio"}},   {"audio_def.json", {"Audio"}},
    {"video_range.json", {"Video"}},   {"video_def.json", {"Video"}},
    {"isp_range.json", {"Isp"}},       {"isp_def.json", {"Isp"}},
    {"misc_range.json", {"Misc"}},     {"misc.conf", {"Misc"}},
    {"panel_range.json", {"Pattern"}}, {"panel.conf", {"Pattern"}},
    {"netport.conf", {"Conf"}},        {"www2json.json", {"Misc", "Pattern", "Conf"}},
};

} // namespace

class Replaced : public EveryKind, public testing::WithParamInterface<replacement> {
protected:
    static void start(bool guarded)
    {
        platformparam_set_guard(guarded ? 1 : 0);
        platformparam_set_server_port(0);
        ASSERT_EQ(platformparam_init(), 0);
    }

    void put(const std::string &path) const
    {
        std::filesystem::remove_all(path);
        replaced.put(path);
    }
    // Whether what was put there still is.
    static std::filesystem::file_type type_of(const std::string &path)
    {
        return std::filesystem::symlink_status(path).type();
    }

    int error_of_save(const module_kind &kind, bool guarded) const
    {
        const bool locked = kind.name == "Pattern" || kind.name == "Conf";
        const int unguarded = locked ? replaced.locked_error : replaced.error;
        return guarded ? replaced.guarded_error : unguarded;
    }
    static void expect_error(const module_kind &kind, int error)
    {
        EXPECT_EQ(status_of(kind.row).error, error) << kind;
        EXPECT_EQ(status_of(kind.row).saved == status_of(kind.row).changes, error == 0) << kind;
    }

    static const std::vector<module_kind> &kinds()
    {
        static const auto *const all = new std::vector<module_kind>([] {
            std::vector<module_kind> chosen = all_kinds;
            const auto legacy = [](const module_kind &kind) { return kind.name == "LegacyMisc"; };
            chosen.erase(std::remove_if(chosen.begin(), chosen.end(), legacy), chosen.end());
            return chosen;
        }());
        return *all;
    }

    void lose_home_file(const home_file &lost, bool guarded)
    {
        const std::string path = home + "/" + lost.name;
        const std::string before = read_file(path).value_or("");
        put(path);
        const auto type = type_of(path);
        in_child([&] {
            start(guarded);
            for (const module_kind &kind : kinds()) {
                if (std::count(lost.kinds.begin(), lost.kinds.end(), kind.name) == 0) {
                    EXPECT_EQ(kind.get(), 7) << kind;
                }
            }
            platformparam_save();
        });
        EXPECT_EQ(type_of(path), type) << "nothing is written to it";
        std::filesystem::remove_all(path);
        write_file(path, before);
    }

    void write_all(int number)
    {
        for (const module_kind &kind : kinds())
            write_data(kind.file, text_with(kind, number));
    }

    const replacement &replaced = GetParam();
};
INSTANTIATE_TEST_SUITE_P(, Replaced, testing::ValuesIn(replacements),
                         [](const auto &tested) { return tested.param.name; });

TEST_P(Replaced, HomeFileLeavesTheOtherModulesAlone)
{
    for (const home_file &lost : home_files) {
        for (const bool guarded : {true, false}) {
            SCOPED_TRACE(lost.name + (guarded ? " with" : " without") + " the guard");
            write_all(7);
            lose_home_file(lost, guarded);
            for (const module_kind &kind : kinds()) {
                if (guarded) {
                    EXPECT_THAT(read_data(kind.file).value_or(""), HasSubstr("7")) << kind;
                }
            }
        }
    }
}

TEST_P(Replaced, CurrentFileAtTheStartIsKeptWithTheGuard)
{
    for (const module_kind &kind : kinds()) {
        SCOPED_TRACE(kind.name);
        write_all(7);
        put(path_of(kind));
        std::filesystem::remove_all(path_of(kind, ".bad"));
        write_data(kind.file + std::string(".bak"), text_with(kind, 8));
        const auto type = type_of(path_of(kind));
        in_child([&] {
            start(true);
            for (const module_kind &other : kinds())
                EXPECT_EQ(other.get(), other.name == kind.name ? 8 : 7) << other;
            EXPECT_EQ(status_of(kind.row).flags, PARA_STATUS_RESTORED | PARA_STATUS_KEPT_BAD);
            platformparam_save();
        });
        EXPECT_EQ(type_of(path_of(kind, ".bad")), type);
        EXPECT_THAT(read_data(kind.file).value_or(""), HasSubstr("8"));
    }
}

TEST_P(Replaced, CurrentFileAtTheStartLeavesTheDefaultsWithoutTheGuard)
{
    for (const module_kind &kind : kinds()) {
        SCOPED_TRACE(kind.name);
        write_all(7);
        put(path_of(kind));
        in_child([&] {
            start(false);
            for (const module_kind &other : kinds()) {
                if (other.name != kind.name) {
                    EXPECT_EQ(other.get(), 7) << other;
                }
            }
            EXPECT_THAT(kind.get(), testing::AnyOf(default_number, -1));
        });
        std::filesystem::remove_all(path_of(kind));
    }
}

TEST_P(Replaced, CurrentFileAtASaveIsToldAndWrittenWhenItIsGone)
{
    for (const bool guarded : {true, false}) {
        SCOPED_TRACE(guarded);
        if (!guarded && replaced.error == waits_for_ever)
            continue;
        write_all(7);
        in_child([&] {
            start(guarded);
            for (const module_kind &kind : kinds()) {
                kind.set(9);
                put(path_of(kind));
            }
            platformparam_save();
            for (const module_kind &kind : kinds()) {
                expect_error(kind, error_of_save(kind, guarded));
                std::filesystem::remove_all(path_of(kind));
            }
            platformparam_save();
            for (const module_kind &kind : kinds()) {
                expect_error(kind, 0);
                EXPECT_THAT(read_data(kind.file).value_or(""), HasSubstr("9")) << kind;
            }
        });
    }
}
