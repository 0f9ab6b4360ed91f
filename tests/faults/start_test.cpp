// Start-up while memory runs out, each try in a process of its own.
#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "faults/child.h"
#include "faults/faulted_store.h"

namespace {

constexpr char separator = '\x1e';

// One for each module and form of answer.
const char *const questions[] = {
    "{'msg_type':'get','isp0':['all']}",
    "{'msg_type':'get','isp0_def':['all']}",
    "{'msg_type':'get','af':['all']}",
    "{'msg_type':'get','video0':['all'],'video1':['all']}",
    "{'msg_type':'get','audio':['all']}",
    "{'msg_type':'get','misc':['all']}",
    "{'msg_type':'get','misc_def':['all']}",
    "{'msg_type':'get','misc':['ViStrategy','mirror']}",
    "{'msg_type':'get','lens':['all']}",
    "{'msg_type':'get','netport':['all']}",
    "{'msg_type':'get','netport_def':['all']}",
    "{'msg_type':'get','overlay':['all']}",
    "{'msg_from':'www','msg_type':'get','msg_name':'page'}",
};

// In the order in which start-up reads them, but for the saved values of modules of texts: a module
// that cannot read those must not answer with its defaults.
const char *const read_files[] = {
    "home/www2json.json",  "data/persist/odm.json", "home/isp_range.json",
    "home/isp_def.json",   "data/isp_cur.json",     "home/af_range.json",
    "home/af_def.json",    "data/af_cur.json",      "home/video_range.json",
    "home/video_def.json", "data/video_cur.json",   "home/audio_range.json",
    "home/audio_def.json", "home/misc_range.json",  "home/misc.conf",
    "home/misc_def.json",  "home/lens_range.json",  "home/lens.conf",
    "home/netport.conf",   "home/overlay.conf"};

struct seen_start {
    long tried = 0;
    std::vector<std::string> answers;
};

// Starts the store and tells, once memory is back, what it answers.
std::string told_by_start(long failing, shortage lasting)
{
    long tried = 0;
    {
        const Allocations allocations(failing, lasting);
        platformparam_init();
        tried = allocations.tried();
    }
    std::string told = std::to_string(tried);
    DirectClient client;
    for (const char *question : questions)
        told += separator + client.ask(question).text;
    return told;
}

seen_start start_in_child(long failing = 0, shortage lasting = shortage::once)
{
    std::istringstream told(Child([=] { return told_by_start(failing, lasting); }).result());
    seen_start seen;
    std::string part;
    std::getline(told, part, separator);
    seen.tried = std::atol(part.c_str());
    while (std::getline(told, part, separator))
        seen.answers.push_back(part);
    EXPECT_EQ(seen.answers.size(), std::size(questions));
    return seen;
}

} // namespace

class StarvedStart : public FaultedFolders, public testing::WithParamInterface<part_of_failures> {
protected:
    void hide(const std::string &file) { rename(path_of(file).c_str(), hidden(file).c_str()); }
    void show(const std::string &file) { rename(hidden(file).c_str(), path_of(file).c_str()); }

    void allow(const seen_start &seen)
    {
        for (size_t i = 0; i < seen.answers.size(); i++)
            allowed[i].insert(seen.answers[i]);
    }

    // What the store answers when files are missing: what it has for those that it could not read.
    void allow_without(const std::vector<std::string> &missing)
    {
        for (const std::string &file : missing)
            hide(file);
        allow(start_in_child());
        for (const std::string &file : missing)
            show(file);
    }

    void learn_what_is_allowed()
    {
        std::vector<std::string> rest(std::begin(read_files), std::end(read_files));
        while (!rest.empty()) {
            allow_without({rest.front()});
            allow_without(rest);
            rest.erase(rest.begin());
        }
        for (std::set<std::string> &answers : allowed)
            answers.insert("{\n}"); // of a row that could not be named
    }

    void answers_as_without_a_file()
    {
        const seen_start right = start_in_child();
        learn_what_is_allowed();
        allow(right);
        ASSERT_FALSE(HasFailure());
        for_each_failure(right.tried, GetParam(), [&](long failing, shortage lasting) {
            const seen_start seen = start_in_child(failing, lasting);
            for (size_t i = 0; i < seen.answers.size(); i++)
                EXPECT_EQ(allowed[i].count(seen.answers[i]), 1U) << questions[i] << seen.answers[i];
        });
    }

    std::vector<std::set<std::string>> allowed =
        std::vector<std::set<std::string>>(std::size(questions));

private:
    std::string path_of(const std::string &file) const
    {
        return std::filesystem::path(home).parent_path().string() + "/" + file;
    }
    std::string hidden(const std::string &file) const { return path_of(file) + ".hidden"; }
};

INSTANTIATE_TEST_SUITE_P(Parts, StarvedStart, testing::ValuesIn(all_parts()), name_of_part);

TEST_P(StarvedStart, AnswersAsWithoutTheFilesThatItCouldNotRead)
{
    answers_as_without_a_file();
}

TEST_P(StarvedStart, AnswersAsWithoutTheFilesOfLegacyMisc)
{
    use_legacy_misc();
    answers_as_without_a_file();
}
