// Saving while memory runs out: a file keeps its old text, or has the whole new one.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "faults/faulted_store.h"

namespace {

void write_conf_files() {}

struct setting {
    const char *request;
    int focus_mode;
    const char *maker;
};

const setting old_setting = {"{'msg_type':'set','isp0':{'bright':1},'video0':{'bitRate':1},"
                             "'audio':{'audioEnable':0},'misc':{'ViStrategy':'50'},"
                             "'lens':{'steps':1},'netport':{'http_port':'1'},"
                             "'overlay':{'title':'1'}}",
                             1, "1"};
const setting new_setting = {"{'msg_type':'set','isp0':{'bright':2},'video0':{'bitRate':2},"
                             "'audio':{'audioEnable':1},'misc':{'ViStrategy':'dial'},"
                             "'lens':{'steps':2},'netport':{'http_port':'2'},"
                             "'overlay':{'title':'2'}}",
                             2, "2"};

const char *const files[] = {"persist/odm.json", "isp_cur.json", "af_cur.json",   "video_cur.json",
                             "audio_cur.json",   "misc.conf",    "misc_cur.json", "lens.conf",
                             "netport.conf",     "overlay.conf"};

} // namespace

class StarvedSave : public FaultedStore {
protected:
    StarvedSave() { para_profile.conf_save_hook = write_conf_files; }

    void apply(const setting &wanted)
    {
        client.ask(wanted.request);
        para_set_af_focus_mode_cur(wanted.focus_mode);
        para_set_odm_string("maker", wanted.maker);
    }

    // Of each file; empty when there is none.
    std::vector<std::string> texts()
    {
        std::vector<std::string> all;
        for (const char *file : files)
            all.push_back(read_data(file).value_or(""));
        return all;
    }

    std::vector<std::string> saved(const setting &wanted)
    {
        apply(wanted);
        platformparam_save();
        return texts();
    }

    void restore(const std::vector<std::string> &all)
    {
        const std::vector<std::string> now = texts();
        for (size_t i = 0; i < all.size(); i++) {
            if (now[i] != all[i])
                write_file(data + "/" + files[i], all[i]);
        }
    }

    void each_module_is_saved_whole_or_not(bool tells_failure);
};

void StarvedSave::each_module_is_saved_whole_or_not(bool tells_failure)
{
    const std::vector<std::string> before = saved(old_setting);
    const std::vector<std::string> after = saved(new_setting);
    std::set<int (*)(const char *)> fixed_modules; // the rows of all streams have one file
    int modules = 0;
    for (int i = 0; i < module_para_handle_num; i++) {
        const para_module &row = module_para_handle[i];
        const bool texts_row = row.save == para_save_misc || row.save == para_save_conf;
        if (row.save == nullptr || (!texts_row && !fixed_modules.insert(row.save).second))
            continue;
        SCOPED_TRACE(row.name);
        modules++;
        restore(before);
        long tried = 0;
        {
            const Allocations allocations;
            row.save(row.name);
            tried = allocations.tried();
        }
        const std::vector<std::string> right = texts();
        ASSERT_NE(right, before);
        for_each_failure(tried, [&](long failing, shortage lasting) {
            restore(before);
            int result = 0;
            long kept = 0;
            {
                const Allocations allocations(failing, lasting);
                result = row.save(row.name);
                kept = allocations.kept();
            }
            const std::vector<std::string> now = texts();
            EXPECT_TRUE(now == before || now == right);
            if (tells_failure && result == 0) {
                EXPECT_EQ(now, right) << "told as saved";
            }
            EXPECT_EQ(kept, 0);
            EXPECT_EQ(row.save(row.name), 0) << "memory is back";
            EXPECT_EQ(texts(), right);
        });
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_EQ(modules, 9);
    EXPECT_EQ(saved(new_setting), after);
}

TEST_F(StarvedSave, OfEachModuleIsWholeOrNot)
{
    each_module_is_saved_whole_or_not(false);
}

class StarvedLegacySave : public StarvedSave {
protected:
    StarvedLegacySave() { use_legacy_misc(); }
};

TEST_F(StarvedLegacySave, OfEachModuleIsWholeOrNot)
{
    each_module_is_saved_whole_or_not(false);
}

class StarvedGuardedSave : public StarvedSave {
protected:
    StarvedGuardedSave() { EXPECT_EQ(platformparam_set_guard(1), 0); }
};

TEST_F(StarvedGuardedSave, OfEachModuleIsWholeOrTold)
{
    each_module_is_saved_whole_or_not(true);
}
