#include "cli/run.h"

namespace {

std::string entry(int number, const char *value)
{
    return "{'number':" + std::to_string(number) +
           ",'time':1,'module':'af','member':'zoom_value','old':0,'new':" + value + ",'by':'host'}";
}

} // namespace

TEST(ClientWatch, ChangesAreNotLostWithTheLogsAnswer)
{
    std::atomic<int> counted{0}, logs{0};
    const fake_server camera([&](const std::string &request) -> std::vector<std::string> {
        if (is_for(request, "changes"))
            return {reply_to(request, "'started':1,'changes':{'af':" +
                                          std::to_string(counted++ > 0 ? 1 : 0) + "}")};
        const int asked = logs++;
        if (asked == 0)
            return {reply_to(request, "'started':1,'changes':[]")};
        if (asked == 1)
            return {}; // lost
        return {reply_to(request, "'started':1,'changes':[" + entry(1, "7") + "]")};
    });
    process watching({CAMPARAM, "--timeout", "0.5", "--retries", "0", "watch", "--for", "60"});

    EXPECT_TRUE(wait_until([&] { return !watching.output().empty(); }));
    EXPECT_EQ(watching.output(), "af.zoom_value=7 (was 0, by host)\n");
}

TEST(ClientWatch, TellsWhatTheLogNoLongerHolds)
{
    std::atomic<int> counted{0}, logs{0};
    const fake_server camera([&](const std::string &request) -> std::vector<std::string> {
        if (is_for(request, "changes"))
            return {reply_to(request, "'started':1,'changes':{'af':" +
                                          std::to_string(counted++ > 0 ? 9 : 0) + "}")};
        return {reply_to(request, std::string("'started':1,'changes':[") +
                                      (logs++ > 0 ? entry(9, "7") : "") + "]")};
    });
    process watching({CAMPARAM, "--timeout", "20", "watch", "--for", "60"});

    EXPECT_TRUE(wait_until([&] { return !watching.output().empty(); }));
    EXPECT_EQ(watching.errors(), "camparam: 8 changes are not in the log\n");
}
