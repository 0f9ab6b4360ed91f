#include <atomic>
#include <thread>

#include "tests/platform/folder.h"

// Concurrent use of an object. Each value repeats one letter, so that a torn value would contain
// two letters.
class SharedConfigureObject : public Folder {
protected:
    static constexpr int turns = 300;

    static std::string letters(int turn)
    {
        const size_t length = static_cast<size_t>(turn % 7) * 50 + 1;
        return std::string(length, static_cast<char>('a' + turn % 7));
    }

    static bool whole(const std::string &value)
    {
        return !value.empty() && value.find_first_not_of(value[0]) == std::string::npos;
    }

    // Runs the limited action, while threads repeat the other actions until it has finished.
    static void run(const std::function<void()> &limited,
                    const std::vector<std::function<void()>> &repeated)
    {
        std::atomic<bool> done{false};
        std::vector<std::thread> threads;
        threads.reserve(repeated.size());
        for (const std::function<void()> &action : repeated) {
            threads.emplace_back([&] {
                do {
                    action();
                } while (!done);
            });
        }
        limited();
        done = true;
        for (std::thread &thread : threads)
            thread.join();
    }

    void set_letters()
    {
        for (int i = 0; i < turns; i++)
            conf.set("shared", letters(i));
    }

    Conf conf;
};

TEST_F(SharedConfigureObject, ShowsWholeValuesOnly)
{
    conf.set("shared", "a");
    const auto get = [this] {
        char value[512];
        EXPECT_EQ(conf.object->conf_get(conf.object, "shared", value, sizeof value), 0);
        EXPECT_TRUE(whole(value)) << value;
    };
    const auto loop = [this] {
        for (const auto &[key, value] : conf.entries())
            EXPECT_TRUE(whole(value)) << key << " " << value;
    };
    run([this] { set_letters(); }, {get, loop});
    EXPECT_EQ(conf.get("shared"), letters(turns - 1));
}

TEST_F(SharedConfigureObject, LosesNoKeyOfAnyThread)
{
    const auto add = [this](const char *prefix) {
        for (int i = 0; i < turns; i++)
            EXPECT_EQ(conf.set(prefix + std::to_string(i), "v"), 1);
    };
    std::thread one(add, "one");
    std::thread other(add, "other");
    one.join();
    other.join();
    EXPECT_EQ(conf.entries().size(), size_t{2} * turns);
    EXPECT_EQ(conf.get("one0"), "v");
    EXPECT_EQ(conf.get("other299"), "v");
}

TEST_F(SharedConfigureObject, KeepsAFoundTextWhileOthersAddAndSetOtherKeys)
{
    conf.set("port", "80");
    const char *const found = conf.found("port");
    const auto read = [found] { EXPECT_STREQ(found, "80"); };
    const auto look = [this, found] { EXPECT_EQ(conf.found("port"), found); };
    run(
        [this] {
            for (int i = 0; i < turns; i++)
                conf.set("new" + std::to_string(i), letters(i));
            set_letters();
        },
        {read, look});
}

TEST_F(SharedConfigureObject, ShowsAFileAsAWhole)
{
    const std::string one = write("one.conf", "a=1\nb=1\nc=1\n");
    const std::string two = write("two.conf", "a=2\nb=2\nc=2\n");
    ASSERT_EQ(conf.parse(one), 0);
    const auto loop = [this] {
        const auto all = conf.entries();
        ASSERT_EQ(all.size(), 3U);
        EXPECT_EQ(all[0].second, all[1].second);
        EXPECT_EQ(all[0].second, all[2].second);
    };
    run(
        [&] {
            for (int i = 0; i < turns; i++)
                EXPECT_EQ(conf.parse(i % 2 == 0 ? two : one), 0);
        },
        {loop, loop});
}

TEST_F(SharedConfigureObject, ReportsEachChangeToOneAskerOnly)
{
    conf.set("shared", "");
    EXPECT_EQ(conf.changed({"shared"}), 0);
    std::atomic<int> reports{0};
    const auto ask = [this, &reports] {
        if (conf.changed({"shared"}) == 0)
            reports++;
    };
    run(
        [&] {
            for (int i = 1; i <= 50; i++) {
                conf.set("shared", std::to_string(i));
                EXPECT_TRUE(eventually([&] { return reports == i; }));
            }
        },
        {ask, ask});
    EXPECT_EQ(reports, 50);
}

TEST_F(SharedConfigureObject, MayBeSavedWhileItChanges)
{
    const auto save = [this] { EXPECT_EQ(conf.save(path("saved.conf")), 0); };
    conf.set("shared", "a");
    run([this] { set_letters(); }, {save});

    Conf saved;
    ASSERT_EQ(saved.parse(path("saved.conf")), 0);
    ASSERT_EQ(saved.entries().size(), 1U);
    EXPECT_TRUE(whole(saved.get("shared")));
}
