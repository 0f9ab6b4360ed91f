// What start-up and stop leave in the data folder while memory runs out, each try in a process of
// its own.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "faults/child.h"
#include "faults/faulted_store.h"

namespace {

using folder_texts = std::map<std::string, std::string>;

// The saved files: what the guard keeps beside them does not count.
folder_texts texts_in(const std::string &folder)
{
    folder_texts texts;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder)) {
        const std::string suffix = entry.path().extension();
        if (entry.is_regular_file() && (suffix == ".json" || suffix == ".conf")) {
            const std::string name = std::filesystem::relative(entry.path(), folder);
            texts[name] = read_file(entry.path()).value_or("");
        }
    }
    return texts;
}

void save_conf_files_too() {}

void change_every_module(DirectClient &client)
{
    client.ask("{'msg_type':'set','isp0':{'bright':2},'video0':{'bitRate':2},"
               "'audio':{'audioEnable':0},'misc':{'ViStrategy':'dial'},'lens':{'steps':2},"
               "'netport':{'http_port':'2'},'overlay':{'title':'2'}}");
    para_set_af_focus_mode_cur(0);
    para_set_odm_string("maker", "other");
}

} // namespace

class StarvedProcess : public FaultedFolders {
protected:
    StarvedProcess()
    {
        para_profile.conf_save_hook = save_conf_files_too;
        move_data_to_memory();
        // Every module has a file, as after a first stop.
        Child([] {
            platformparam_init();
            platformparam_stop(1);
            return "";
        }).result();
        before = texts_in(data);
    }

    ~StarvedProcess() override { std::filesystem::remove_all(in_memory); }

    folder_texts before;

private:
    // A disk would take most of the time for thousands of saves.
    void move_data_to_memory()
    {
        char name[] = "/dev/shm/camparam-faults-XXXXXX";
        in_memory = mkdtemp(name);
        std::filesystem::copy(data, in_memory + "/data", std::filesystem::copy_options::recursive);
        data = in_memory + "/data";
        para_profile.data_dir = data.c_str();
    }

    std::string in_memory;
};

class StarvedStop : public StarvedProcess {
protected:
    // Starts, changes and stops a store in a copy of the data folder. Its text is the number of
    // allocations that the stop tried.
    Child stop_in_child(const std::string &copy, long failing, shortage lasting)
    {
        std::filesystem::copy(data, copy, std::filesystem::copy_options::recursive);
        return Child([copy, failing, lasting] {
            para_profile.data_dir = copy.c_str();
            platformparam_init();
            DirectClient client;
            change_every_module(client);
            const Allocations allocations(failing, lasting);
            platformparam_stop(1);
            return std::to_string(allocations.tried());
        });
    }

    std::string numbered(long number) const { return data + "." + std::to_string(number); }

    // They wait for the end of their threads' turns: many at once.
    void stop_with_failures(long first, long last, shortage lasting)
    {
        std::vector<Child> children;
        for (long failing = first; failing <= last; failing++)
            children.push_back(stop_in_child(numbered(failing), failing, lasting));
        for (Child &child : children)
            child.result();
        for (long failing = first; failing <= last; failing++) {
            for (const auto &[name, text] : texts_in(numbered(failing)))
                EXPECT_TRUE(text == before[name] || text == after[name])
                    << name << " at allocation " << failing << ": " << text;
            std::filesystem::remove_all(numbered(failing));
        }
    }

    folder_texts after;
};

TEST_F(StarvedStop, LeavesOldOrWholeNewFiles)
{
    const long tried = std::stol(stop_in_child(numbered(0), 0, shortage::once).result());
    after = texts_in(numbered(0));
    ASSERT_GT(tried, 0);
    ASSERT_EQ(after.size(), before.size());
    for (const auto &[name, text] : after)
        ASSERT_NE(text, before[name]) << name;

    for (const shortage lasting : {shortage::once, shortage::for_ever}) {
        for (long first = 1; first <= tried && !HasFailure(); first += 32)
            stop_with_failures(first, std::min(first + 31, tried), lasting);
    }
}

class StarvedGuardedStart : public StarvedProcess,
                            public testing::WithParamInterface<part_of_failures> {
protected:
    StarvedGuardedStart() { EXPECT_EQ(platformparam_set_guard(1), 0); }

    // Starts a store, and saves everything once memory is back.
    static std::string start_and_save(long failing, shortage lasting)
    {
        long tried = 0;
        {
            const Allocations allocations(failing, lasting);
            platformparam_init();
            tried = allocations.tried();
        }
        para_set_odm_int("version", 1); // makes a document where none was loaded
        platformparam_save();
        return std::to_string(tried);
    }
};

INSTANTIATE_TEST_SUITE_P(Parts, StarvedGuardedStart, testing::ValuesIn(all_parts()), name_of_part);

TEST_P(StarvedGuardedStart, LosesNoSavedValue)
{
    const auto start = [](long failing, shortage lasting) {
        return Child([=] { return start_and_save(failing, lasting); }).result();
    };
    const long tried = std::stol(start(0, shortage::once)); // makes the backups, too
    EXPECT_EQ(texts_in(data), before);
    for_each_failure(tried, GetParam(), [&](long failing, shortage lasting) {
        start(failing, lasting);
        EXPECT_EQ(texts_in(data), before);
    });
}
