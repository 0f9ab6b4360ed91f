// Replies that outgrow their buffer at any of their parts, while memory runs out.
#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include "faults/faulted_store.h"
#include "support/json_text.h"

namespace {

std::string answer_text;

int answer_with_all_kinds(const char *, const cJSON *, cJSON **answer, const char *)
{
    *answer = cJSON_Parse(answer_text.c_str());
    return *answer != nullptr ? 0 : -ENOMEM;
}

} // namespace

class StarvedGrowth : public FaultedStore {
protected:
    StarvedGrowth()
    {
        const para_module row = {"host",  nullptr, nullptr, nullptr, answer_with_all_kinds,
                                 nullptr, nullptr};
        register_para_handle_extern(&row);
    }

    // With so many bytes in front, so that each part meets the end of the buffer once.
    void is_answered_whole_or_not(size_t bytes)
    {
        answer_text = swap_quotes(
            "{'pad':'" + std::string(bytes, 'p') +
                "','list':[1,-2.5,true,null,['in','it'],{'a':{}}],'text':'with \\u0001',"
                "'object':{'number':7,'fraction':0.1,'empty':[]},'last':'end'}",
            '\'', '"');
        const std::string request = "{'msg_type':'get','msg_name':'n','host':1,'af':['all'],'misc':"
                                    "['all'],'netport':['all'],'audio':['all'],'msg_id':5}";
        client.ask(request);
        const DirectClient::answer right = client.ask(request);
        ASSERT_GT(right.text.size(), bytes);
        for (long failing = 1; failing <= right.tried; failing++) {
            const DirectClient::answer got = client.ask(request, failing);
            EXPECT_TRUE(got.text.empty() || got.text == right.text) << got.text;
            EXPECT_EQ(got.kept, 0);
        }
    }
};

TEST_F(StarvedGrowth, AtAnyPartGivesTheWholeReplyOrNone)
{
    for (size_t bytes = 3000; bytes <= 4100 && !HasFailure(); bytes++) {
        set_trace_level(bytes % 2 == 0 ? 3 : 0);
        is_answered_whole_or_not(bytes);
    }
}
