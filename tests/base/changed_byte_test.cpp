// Current files of which a byte is changed, or the end lost.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "base/guarded_module.h"

using testing::AllOf;
using testing::AnyOf;
using testing::Ge;
using testing::Le;

class ChangedByte : public GuardedModule {
protected:
    ChangedByte()
    {
        set_trace_level(0);
        after_start([this] {
            for (const module_kind &each : kinds())
                each.set(saved);
            platformparam_save();
        });
        whole = read().value_or("");
    }

    static constexpr int saved = 77;

    // The modules of the device, of which this is one.
    std::vector<module_kind> kinds() const
    {
        std::vector<module_kind> chosen;
        const std::string other = kind.name == "LegacyMisc" ? "Misc" : "LegacyMisc";
        for (const module_kind &each : all_kinds) {
            if (each.name != other)
                chosen.push_back(each);
        }
        return chosen;
    }

    static void after_start(const std::function<void()> &steps)
    {
        in_child([&] {
            platformparam_set_server_port(0);
            EXPECT_EQ(platformparam_init(), 0);
            steps();
        });
    }

    void expect_values() const
    {
        // A range is kept by what sets, and by a change of one bit of a digit.
        EXPECT_THAT(kind.get(), AnyOf(default_number, -1, AllOf(Ge(0), Le(100))));
        for (const module_kind &each : kinds()) {
            if (each.name != kind.name) {
                EXPECT_EQ(each.get(), saved) << each;
            }
        }
    }

    // Whether someone may have edited the file like that.
    bool may_be_edited(const std::string &changed) const
    {
        const std::string text = changed.c_str();
        const bool torn = text.size() < strlen(whole.c_str()) && whole.find(text) == 0;
        if (torn || kind.text[0] != '{')
            return !torn;
        const json root(cJSON_Parse(text.c_str()));
        return kind.name == "Odm" ? cJSON_IsObject(root.get()) != 0 : root != nullptr;
    }

    // Used as it is, restored as torn, or kept as bad.
    void expect_kept(const std::string &changed) const
    {
        const unsigned flags = status().flags;
        if (flags == 0) {
            EXPECT_TRUE(may_be_edited(changed));
            EXPECT_EQ(read(), changed);
            EXPECT_FALSE(read(".bad"));
            return;
        }
        EXPECT_EQ(kind.get(), saved);
        EXPECT_STREQ(read().value_or("").c_str(), whole.c_str());
        if (flags == PARA_STATUS_RESTORED) {
            EXPECT_EQ(whole.find(changed.c_str()), 0U) << "nothing but its end is lost";
        } else {
            EXPECT_EQ(flags, unsigned{PARA_STATUS_RESTORED | PARA_STATUS_KEPT_BAD});
            EXPECT_EQ(read(".bad"), changed);
        }
    }

    void start_with(const std::string &bytes, const std::string &backup)
    {
        std::filesystem::remove(path_of(kind, ".bad"));
        write_file(path_of(kind), bytes);
        write_file(path_of(kind, ".bak"), backup);
        after_start([&] {
            expect_values();
            if (!backup.empty())
                expect_kept(bytes);
        });
    }

    // The changes of a byte: one of its bits, a zero, a quote.
    std::vector<std::string> changes_of(size_t place) const
    {
        std::vector<std::string> changed(3, whole);
        changed[0][place] = static_cast<char>(whole[place] ^ 1 << place % 8);
        changed[1][place] = '\0';
        changed[2][place] = '"';
        return changed;
    }

    // Every place, or every n-th where processes start slowly.
    static size_t stride()
    {
        const char *const chosen = getenv("CAMPARAM_PROOF_STRIDE");
        return chosen != nullptr && atoi(chosen) > 0 ? static_cast<size_t>(atoi(chosen)) : 1;
    }

    template <typename trial> void for_each_place(const trial &run) const
    {
        ASSERT_GT(whole.size(), 10U);
        for (size_t place = 0; place < whole.size() && !HasFailure(); place += stride()) {
            SCOPED_TRACE(place);
            run(place);
        }
    }

    std::string whole;
};
INSTANTIATE_TEST_SUITE_P(, ChangedByte, testing::ValuesIn(all_kinds), name_of_kind);

TEST_P(ChangedByte, LosesNothing)
{
    for_each_place([this](size_t place) {
        for (const std::string &changed : changes_of(place))
            start_with(changed, whole);
    });
}

TEST_P(ChangedByte, WithoutTheGuardLeavesOtherModulesAlone)
{
    platformparam_set_guard(0);
    for_each_place([this](size_t place) {
        start_with(changes_of(place)[place % 3], "");
        start_with(whole.substr(0, place), "");
    });
}
