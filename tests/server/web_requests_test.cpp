// Requests of the web pages, from datagram to datagram.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "support/store.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

// Modules of the test's own, behind the web names: what they were called with on the store's
// thread, and what they answer.
struct {
    std::mutex lock;
    std::vector<std::string> calls;
    std::map<std::string, std::string> answers; // by key; a module without one answers nothing
} modules;

void record(const char *kind, const char *key, const cJSON *item, const char *name)
{
    modules.calls.push_back(std::string(kind) + " " + key + "=" + compact(item) + " for " + name);
}

int get_member(const char *key, const cJSON *item, cJSON **answer, const char *name)
{
    const std::lock_guard<std::mutex> guard(modules.lock);
    record("get", key, item, name);
    const auto known = modules.answers.find(key);
    if (known != modules.answers.end())
        *answer = parse(known->second).release();
    return 0;
}

int set_member(const char *key, const cJSON *item, const char *name)
{
    const std::lock_guard<std::mutex> guard(modules.lock);
    record("set", key, item, name);
    return 0;
}

const char web_names[] =
    "{'json_pattern_list':[],'conf_pattern_list':[],"
    "'image':['near','far'],'far_page':['far','ghost'],'bare_page':['bare'],'empty_page':[],"
    "'near':{'zoom':['z','N'],'position':['p','N','P'],'mode':['m','S'],"
    "'both':['g','N','Greedy']},"
    "'far':{'rate':['k','N','K'],'gain':['f','N','F'],'both_too':['g','S','Greedy']},"
    "'ghost':{'member':['gh','N']},"
    "'bare':{},"
    "'audio':{'volLeftIn':['left','N'],'volRightIn':['right','N']},'sound':['audio']}";

} // namespace

class WebRequests : public Store {
protected:
    WebRequests()
    {
        for (const char *name : {"near", "far", "bare"}) {
            const para_module row = {name,       nullptr, nullptr, set_member,
                                     get_member, nullptr, nullptr};
            register_para_handle_extern(&row);
        }
        write_home("www2json.json", web_names);
    }

    void start()
    {
        start_store();
        forget_traces();
    }

    static std::string get_request(const std::string &page)
    {
        return "{'msg_from':'www','msg_type':'get','msg_name':'" + page + "','msg_id':77}";
    }

    static std::string set_request(const std::string &query)
    {
        return "{'msg_from':'www','msg_type':'set','msg_name':'page','data':'" + query + "'}";
    }

    // The reply, byte for byte.
    std::string get(const std::string &page)
    {
        return client.request(get_request(page)).value_or("none");
    }

    std::string set(const std::string &query)
    {
        return client.request(set_request(query)).value_or("none");
    }

    // Whether a request gets no reply and leaves the store at work.
    bool is_ignored(std::string request)
    {
        for (char &letter : request)
            letter = letter == '\'' ? '"' : letter;
        client.send(request);
        return client.stays_silent();
    }

    // Whether so many requests came to nothing, by trace, since the traces were forgotten. The
    // trace follows the reply.
    static bool came_to_nothing(int count)
    {
        return wait_until([count] {
            return count_traces("ERROR : json null", "Recive_message_Process_gset") == count;
        });
    }

    static void answer(const std::string &key, const std::string &value)
    {
        const std::lock_guard<std::mutex> guard(modules.lock);
        modules.answers[key] = value;
    }

    // While the store's thread runs, which reads the level.
    static void trace_at(int level)
    {
        __atomic_store_n(&dbgout_profile[1], level, __ATOMIC_RELAXED);
    }

    static std::vector<std::string> calls()
    {
        const std::lock_guard<std::mutex> guard(modules.lock);
        return modules.calls;
    }

    static void forget_calls()
    {
        const std::lock_guard<std::mutex> guard(modules.lock);
        modules.calls.clear();
    }

    Client client;
};

using WebGet = WebRequests;
using WebSet = WebRequests;
using WebErrors = WebRequests;

TEST_F(WebGet, AsksTheModulesOfThePageAndAnswersInWebNames)
{
    answer("near", "{'zoom':5,'position':0,'mode':'auto','both':9}");
    answer("far", "{'rate':4096500,'gain':1.5,'both_too':'x'}");
    start();
    EXPECT_EQ(get("image"), "z=5&p=1&m=auto&g=9&k=4096.5&f=1.50&g=x");
    EXPECT_THAT(calls(), ElementsAre("get near=['zoom','position','mode','both'] for near",
                                     "get far=['rate','gain','both_too'] for far"));
}

TEST_F(WebGet, KeepsTheAmpersandInFrontOfAFirstPieceInThousands)
{
    answer("far", "{'rate':4096000}");
    start();
    EXPECT_EQ(get("far_page"), "&k=4096");
    answer("far", "{'rate':4096500}");
    EXPECT_EQ(get("far_page"), "&k=4096.5");
}

TEST_F(WebGet, AsksAModuleWithoutMembersForAll)
{
    answer("bare", "{'anything':1}");
    start();
    EXPECT_EQ(get("bare_page"), "result=success") << "what has no web name is not shown";
    EXPECT_THAT(calls(), ElementsAre("get bare=['all'] for bare"));
}

TEST_F(WebGet, WithoutAnyAnswerIsSuccess)
{
    start();
    EXPECT_EQ(get("image"), "result=success");
    EXPECT_EQ(get("empty_page"), "result=success");
}

TEST_F(WebGet, ReachesAModuleOfTheStore)
{
    write_home("audio_range.json", "{'volLeftIn':[0,100],'volRightIn':[0,100]}");
    write_home("audio_def.json", "{'volLeftIn':50,'volRightIn':51}");
    start();
    EXPECT_EQ(get("sound"), "left=50&right=51");
    EXPECT_EQ(set("left=30&right=101"), "result=success");
    EXPECT_EQ(para_get_audio_volLeftIn_cur(), 30);
    EXPECT_EQ(get("sound"), "left=30&right=51");
}

TEST_F(WebGet, RepliesAreAsLongAsTheAnswersNeed)
{
    std::string file = "{'page':['near'],'near':{";
    std::string answered = "{";
    std::string expected;
    for (int i = 0; i < 900; i++) {
        const std::string number = std::to_string(i);
        const char *const comma = i == 0 ? "" : ",";
        file += comma + ("'" + number + "':['name" + number + "','N']");
        answered += comma + ("'" + number + "':" + number);
        expected += (i == 0 ? "name" : "&name") + number + "=" + number;
    }
    write_home("www2json.json", file + "}}");
    answer("near", "{'1':1}");
    start();
    trace_at(0);
    EXPECT_EQ(get("page"), "name1=1");
    for (const int members : {40, 44, 48, 300, 900}) {
        std::string some = "{", shown;
        for (int i = 0; i < members; i++) {
            const std::string number = std::to_string(i);
            some += (i == 0 ? "'" : ",'") + number + "':" + number;
            shown += (i == 0 ? "name" : "&name") + number + "=" + number;
        }
        answer("near", some + "}");
        EXPECT_EQ(get("page"), shown) << members;
    }
    ASSERT_GT(expected.size(), 2 * 4096U);
    answer("near", answered + "}");
    EXPECT_EQ(get("page"), expected);
}

TEST_F(WebSet, HandsValuesToTheModulesAndRepliesSuccess)
{
    start();
    EXPECT_EQ(set("z=5&k=2.5&m=auto&p=7&f=3.9&unknown=1&rest"), "result=success");
    EXPECT_THAT(calls(), ElementsAre("set near={'zoom':5,'mode':'auto','position':0} for near",
                                     "set far={'rate':2500,'gain':3} for far"));
}

TEST_F(WebSet, AGreedyNameReachesEveryModule)
{
    start();
    EXPECT_EQ(set("g=1"), "result=success");
    EXPECT_THAT(calls(),
                ElementsAre("set near={'both':1} for near", "set far={'both_too':'1'} for far"));
}

TEST_F(WebSet, ARepeatedKeyArrivesTwice)
{
    start();
    EXPECT_EQ(set("z=1&z=2"), "result=success");
    EXPECT_THAT(calls(), ElementsAre("set near={'zoom':1,'zoom':2} for near"));
}

TEST_F(WebSet, SetsNothingWhenNoKeyIsKnown)
{
    start();
    EXPECT_EQ(set("unknown=1"), "result=success");
    EXPECT_EQ(set("="), "result=success");
    EXPECT_EQ(set("a&z=1"), "result=success");
    EXPECT_EQ(set("gh=1"), "result=success") << "a module that is in the file alone";
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(WebSet, SetsNothingByDataThatIsNoText)
{
    start();
    for (const char *value : {"5", "null", "{'z':1}", "['z=1']"}) {
        const std::string request =
            "{'msg_from':'www','msg_type':'set','msg_name':'page','data':" + std::string(value) +
            ",'near':{'zoom':1}}";
        EXPECT_EQ(client.request(request), "result=success") << value;
    }
    EXPECT_THAT(calls(), IsEmpty()) << "a web request's own members are not looked at";
}

TEST_F(WebSet, ServesAFullDatagramOfPairs)
{
    start();
    std::string query;
    std::string members;
    const std::string frame = set_request("");
    int pairs = 0;
    while (frame.size() + query.size() + 4 <= PARA_MESSAGE_MAX) {
        query += query.empty() ? "z=1" : "&z=1";
        members += pairs++ == 0 ? "'zoom':1" : ",'zoom':1";
    }
    query += std::string(PARA_MESSAGE_MAX - frame.size() - query.size(), '&');
    ASSERT_EQ(set_request(query).size(), 4096U);
    EXPECT_EQ(set(query), "result=success");
    EXPECT_THAT(calls(), ElementsAre("set near={" + members + "} for near"));
}

TEST_F(WebSet, KeysAndValuesOfAnyLengthAreServed)
{
    start();
    EXPECT_EQ(
        set(std::string(300, 'k') + "=" + std::string(300, 'v') + "&m=" + std::string(300, 'w')),
        "result=success");
    EXPECT_THAT(calls(), ElementsAre("set near={'mode':'" + std::string(31, 'w') + "'} for near"));
}

TEST_F(WebRequests, OnlyTheWholeOriginIsConverted)
{
    start();
    for (const char *origin : {"'ww'", "'www2'", "'WWW'", "''", "5"}) {
        const std::string request =
            std::string("{'msg_from':") + origin + ",'msg_type':'get','msg_name':'image'}";
        EXPECT_EQ(client.ask(request), "{'msg_name':'image'}") << origin;
    }
}

TEST_F(WebRequests, CommandsAreNotConverted)
{
    start();
    EXPECT_EQ(client.request("{'msg_from':'www','msg_type':'reset','msg_name':'image'}"),
              "{\"err\":\"Invalid API command\"}");
}

TEST_F(WebRequests, AreCounted)
{
    start();
    const auto last_request = [] {
        const std::vector<std::string> dumps = traces_of("cJSON_Print_safe");
        return dumps.empty() ? "" : dumps.back();
    };
    get("empty_page");
    EXPECT_EQ(last_request(), "type:0x40,{\n\t\"msg_from\":\t\"www\",\n\t\"msg_type\":\t\"get\",\n"
                              "\t\"msg_name\":\t\"empty_page\",\n\t\"msg_id\":\t1\n}\n");
    set("z=4");
    EXPECT_EQ(last_request(), "type:0x40,{\n\t\"msg_from\":\t\"www\",\n\t\"msg_type\":\t\"set\",\n"
                              "\t\"msg_name\":\t\"page\",\n\t\"msg_id\":\t2,\n"
                              "\t\"near\":\t{\n\t\t\"zoom\":\t4\n\t}\n}\n");
    EXPECT_EQ(get("unknown"), "unknown=null");
    EXPECT_TRUE(is_ignored("{'msg_from':'www','msg_type':'set','msg_name':'page'}"));
    get("empty_page");
    EXPECT_THAT(last_request(), HasSubstr("\"msg_id\":\t4\n")) << "the unknown page was the third";
}

TEST_F(WebRequests, TheReplyInModuleNamesIsTracedAtLevelSevenExactly)
{
    answer("far", "{'rate':4096500}");
    start();
    get("far_page");
    EXPECT_EQ(count_traces("reverse_convert:{\n\t\"msg_name\":\t\"far_page\",\n\t\"msg_id\":\t1,\n"
                           "\t\"far\":\t{\n\t\t\"rate\":\t4096500\n\t}\n}",
                           "Recive_message_Process_gset"),
              1);
    set("z=1");
    EXPECT_EQ(count_traces("reverse_convert:{\n\t\"msg_name\":\t\"page\",\n\t\"msg_id\":\t2\n}",
                           "Recive_message_Process_gset"),
              1);
    for (const int level : {6, 8}) {
        trace_at(level);
        forget_traces();
        get("far_page");
        EXPECT_THAT(traces_of("Recive_message_Process_gset"), IsEmpty()) << level;
        EXPECT_THAT(traces_of("cJSON_Print_safe"), IsEmpty()) << level;
    }
}

TEST_F(WebRequests, RepliesOfOtherOriginsAreNotTracedAsConverted)
{
    start();
    client.ask("{'msg_type':'get','msg_name':'far_page','msg_id':1}");
    EXPECT_THAT(traces_of("Recive_message_Process_gset"), IsEmpty());
}

TEST_F(WebErrors, WithoutAWebNameFile)
{
    unlink((home + "/www2json.json").c_str());
    start();
    EXPECT_EQ(get("image"), "para_config=null");
    EXPECT_EQ(set("z=1"), "para_config=null");
    EXPECT_EQ(client.request("{'msg_from':'www','msg_type':'g'}"), "para_config=null");
    EXPECT_TRUE(came_to_nothing(3));
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(WebErrors, WithAWebNameFileThatIsNotJson)
{
    write_home("www2json.json", "{'image':['near'],'near':{'zoom':['z','N']}");
    start();
    EXPECT_EQ(get("image"), "para_config=null");
    EXPECT_EQ(set("z=1"), "para_config=null");
    EXPECT_TRUE(came_to_nothing(2));
}

TEST_F(WebErrors, WithAWebNameFileThatIsAList)
{
    write_home("www2json.json", "[['image'],{'near':{'zoom':['z','N']}}]");
    answer("near", "{'zoom':1}");
    start();
    EXPECT_EQ(get("image"), "image=null");
    EXPECT_EQ(set("z=1"), "result=success");
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(WebErrors, AnUnknownPageIsNamed)
{
    start();
    for (const char *page : {"unknown", "near", "json", "%s%n%x", ""}) {
        forget_traces();
        EXPECT_EQ(get(page), std::string(page) + "=null");
        EXPECT_TRUE(came_to_nothing(1)) << page;
        EXPECT_EQ(count_traces(std::string("could not find ") + page + " in json", "get_http2json"),
                  1);
    }
}

TEST_F(WebErrors, ALongPageNameIsCutToTheErrorText)
{
    start();
    const std::string page(3000, 'p');
    EXPECT_EQ(get(page), page.substr(0, 1023));
    EXPECT_EQ(get(page.substr(0, 1018)), page.substr(0, 1018) + "=null");
    EXPECT_EQ(get(page.substr(0, 1019)), page.substr(0, 1019) + "=nul");
}

TEST_F(WebErrors, ASetWithoutDataNameOrPairIsIgnored)
{
    start();
    const char *const requests[] = {
        "{'msg_from':'www','msg_type':'set','msg_name':'page'}",
        "{'msg_from':'www','msg_type':'set','data':'z=1'}",
        "{'msg_from':'www','msg_type':'set','msg_name':5,'data':'z=1'}",
        "{'msg_from':'www','msg_type':'set','msg_name':'page','data':''}",
        "{'msg_from':'www','msg_type':'set','msg_name':'page','data':'z'}",
        "{'msg_from':'www','msg_type':'set','msg_name':'page','data':'&z&'}",
    };
    for (const char *request : requests) {
        forget_traces();
        EXPECT_TRUE(is_ignored(request)) << request;
        EXPECT_TRUE(came_to_nothing(1)) << request;
    }
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(WebErrors, OtherTypesAreIgnored)
{
    start();
    for (const char *type : {"g", "ge", "", "s", "se"}) {
        forget_traces();
        EXPECT_TRUE(is_ignored(std::string("{'msg_from':'www','msg_type':'") + type +
                               "','msg_name':'image','data':'z=1'}"))
            << type;
        EXPECT_TRUE(came_to_nothing(1)) << type;
    }
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(WebErrors, AnErrorTextIsNotSentTwice)
{
    start();
    EXPECT_EQ(get("unknown"), "unknown=null");
    EXPECT_TRUE(is_ignored("{'msg_from':'www','msg_type':'g','msg_name':'image'}"));
}

// A message whose text is not the request that comes with it, as only a host can hand one over.
class WebMessage : public WebRequests {
protected:
    WebMessage()
    {
        start_store();
        stop_store();
        forget_traces();
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        EXPECT_EQ(bind(receiver, reinterpret_cast<sockaddr *>(&address), size), 0);
        EXPECT_EQ(getsockname(receiver, reinterpret_cast<sockaddr *>(&address), &size), 0);
        message.socket = sender;
        message.sender = address;
        message.sender_length = static_cast<int>(size);
    }

    ~WebMessage() override
    {
        close(receiver);
        close(sender);
    }

    std::string received() const
    {
        char bytes[8192];
        pollfd readable = {receiver, POLLIN, 0};
        if (poll(&readable, 1, 20000) != 1)
            return "none";
        const ssize_t length = recv(receiver, bytes, sizeof bytes, 0);
        return std::string(bytes, length > 0 ? static_cast<size_t>(length) : 0);
    }

    para_message message = {};
    const int receiver = socket(AF_INET, SOCK_DGRAM, 0);
    const int sender = socket(AF_INET, SOCK_DGRAM, 0);
};

TEST_F(WebMessage, ThatIsNotJsonIsAnsweredByTheConvertersError)
{
    strcpy(message.text, "{\"msg_type\":\"get\"");
    cJSON *const request =
        parse("{'msg_from':'www','msg_type':'get','msg_name':'image'}").release();
    EXPECT_EQ(Recive_message_Process_gset(&message, request, 0), -1);
    EXPECT_EQ(received(), "cJSON_Parse=null");
    EXPECT_TRUE(came_to_nothing(1));
}

TEST_F(WebMessage, IsConvertedFromItsText)
{
    strcpy(message.text, "{\"msg_type\":\"set\",\"msg_name\":\"p\",\"data\":\"z=8\"}");
    cJSON *const request = parse("{'msg_from':'www','near':{'zoom':1}}").release();
    EXPECT_EQ(Recive_message_Process_gset(&message, request, 1), 0);
    EXPECT_EQ(received(), "result=success");
    EXPECT_THAT(calls(), ElementsAre("set near={'zoom':8} for near"));
}
