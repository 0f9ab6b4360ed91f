// A row of the module table without a name is skipped by every walk.
#include <gtest/gtest.h>

#include <atomic>

#include "runtime/module_row.h"
#include "support/store.h"

namespace {

std::atomic<int> calls{0};

int count_call(const char *)
{
    return ++calls;
}

int count_set(const char *, const cJSON *, const char *)
{
    return ++calls;
}

int count_get(const char *, const cJSON *, cJSON **, const char *)
{
    return ++calls;
}

// A row that a walk has to reach.
std::atomic<int> inits_reached{0}, second_stages_reached{0}, questions_reached{0}, saves_reached{0};

template <std::atomic<int> &count> int visit(const char *)
{
    count++;
    return 0;
}

} // namespace

class NamelessRow : public Store {
protected:
    // The row of a module that needs no files, in front of all that the requests below could mean.
    static void put_into_table()
    {
        row_named("odmInter") = {.name = nullptr,
                                 .init = count_call,
                                 .init_stage2 = count_call,
                                 .set_opt = count_set,
                                 .get_opt = count_get,
                                 .need_save = count_call,
                                 .save = count_call};
    }
};

TEST_F(NamelessRow, DoesNotEndAWalk)
{
    para_module &last = row_named("end");
    last.init = visit<inits_reached>;
    last.init_stage2 = visit<second_stages_reached>;
    last.need_save = visit<questions_reached>;
    last.save = visit<saves_reached>;
    put_into_table();
    start_store();
    EXPECT_EQ(inits_reached, 1);
    EXPECT_EQ(second_stages_reached, 1);
    EXPECT_TRUE(wait_until([] { return questions_reached > 0; }));
    platformparam_save();
    EXPECT_EQ(saves_reached, 1);
}

TEST_F(NamelessRow, IsSkippedByEveryWalk)
{
    put_into_table();
    start_store();
    EXPECT_EQ(module_para_handle_num, 21);
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'get','msg_name':'n','':['all'],'odmInter':['all']}"),
              "{'msg_name':'n'}");
    EXPECT_EQ(client.ask("{'msg_type':'set','msg_name':'n','':{},'odmInter':{}}"),
              "{'msg_name':'n'}");
    platformparam_save();
    stop_store();
    EXPECT_EQ(calls, 0);
}
