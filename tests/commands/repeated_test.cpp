// Requests to the kit that come again, as the client has not got the answer.
#include <gtest/gtest.h>

#include <string>

#include "commands/kit.h"

class RepeatedRequest : public Kit {
protected:
    RepeatedRequest() { stop_clock(); }

    static std::string set_request(int id, const std::string &values, int seconds = 60)
    {
        return "{'msg_type':'api_set','msg_name':'confirm','msg_id':" + std::to_string(id) +
               ",'data':{'seconds':" + std::to_string(seconds) + ",'set':" + values + "}}";
    }
    static std::string confirm_request(int id)
    {
        return "{'msg_type':'api_set','msg_name':'confirm','msg_id':" + std::to_string(id) + "}";
    }
    static std::string reset_request(int id, const std::string &names)
    {
        return "{'msg_type':'api_set','msg_name':'reset','msg_id':" + std::to_string(id) +
               ",'data':" + names + "}";
    }

    // What it answered, to the byte.
    std::string answer_to(const std::string &request) { return client.request(request).value(); }

    // The time is over, and all of it taken back.
    void let_time_pass(int seconds)
    {
        move_clock(seconds * 1000);
        EXPECT_EQ(ask("save", "", "api_set"), "{}") << "wakes the kit's thread";
    }

    static int port() { return kind_named("Conf").get(); }
    static int zoom() { return kind_named("Af").get(); }

    const std::string port_9 = "{'netport':{'port':'9'}}";
};

TEST_F(RepeatedRequest, ToSetForATimeGetsItsAnswerAgain)
{
    start_store();
    const std::string request = set_request(5, "{'netport':{'port':'9'},'af':{'zoom_value':9}}");
    const std::string answer = answer_to(request);
    EXPECT_NE(answer.find("netport.port"), std::string::npos);
    kind_named("Conf").set(11);
    const unsigned before = status_of("af").changes;
    EXPECT_EQ(answer_to(request), answer);
    EXPECT_EQ(answer_to(request), answer);
    EXPECT_EQ(port(), 11) << "it is not set again";
    EXPECT_EQ(status_of("af").changes, before);
}

TEST_F(RepeatedRequest, ToConfirmGetsItsAnswerAgain)
{
    start_store();
    answer_to(set_request(5, port_9));
    const std::string answer = answer_to(confirm_request(6));
    EXPECT_NE(answer.find("netport.port"), std::string::npos);
    EXPECT_EQ(answer_to(confirm_request(6)), answer);
    EXPECT_EQ(client.ask(confirm_request(7)), "{'msg_name':'confirm','msg_id':7,'confirmed':[]}");
}

TEST_F(RepeatedRequest, DoesNotBeginAnew)
{
    start_store();
    const std::string answer = answer_to(set_request(5, port_9));
    answer_to(confirm_request(6));
    EXPECT_EQ(answer_to(set_request(5, port_9)), answer) << "the change was confirmed";
    EXPECT_EQ(ask("confirm"), "{'waiting':[]}");
}

TEST_F(RepeatedRequest, DoesNotConfirmWhatCameLater)
{
    start_store();
    answer_to(set_request(5, port_9));
    const std::string answer = answer_to(confirm_request(6));
    answer_to(set_request(7, "{'af':{'zoom_value':9}}"));
    EXPECT_EQ(answer_to(confirm_request(6)), answer);
    let_time_pass(60);
    EXPECT_EQ(port(), 9);
    EXPECT_EQ(zoom(), default_number);
}

TEST_F(RepeatedRequest, IsKnownForAMinuteBehindTheTime)
{
    start_store();
    const std::string answer = answer_to(set_request(5, port_9, 10));
    let_time_pass(10);
    EXPECT_EQ(port(), default_number);
    move_clock(59000);
    EXPECT_EQ(answer_to(set_request(5, port_9, 10)), answer);
    EXPECT_EQ(port(), default_number);
    move_clock(1000);
    EXPECT_EQ(answer_to(set_request(5, port_9, 10)), answer);
    EXPECT_EQ(port(), 9) << "it is a new one now";
}

TEST_F(RepeatedRequest, IsThatOfTheSameClientAndTextAlone)
{
    start_store();
    answer_to(set_request(5, port_9));
    const std::string refused = "'accepted':[],'refused':{'netport.port':"
                                "'another change waits to be confirmed'}}";
    EXPECT_EQ(client.ask(set_request(6, port_9)), "{'msg_name':'confirm','msg_id':6," + refused);
    EXPECT_EQ(client.ask(set_request(5, port_9) + " "),
              "{'msg_name':'confirm','msg_id':5," + refused);
    EXPECT_EQ(Client().ask(set_request(5, port_9)), "{'msg_name':'confirm','msg_id':5," + refused);
}

// Nothing tells it from one that is meant.
TEST_F(RepeatedRequest, HasAnIdentifier)
{
    start_store();
    const std::string answer = "{'confirmed':['netport.port']}";
    for (const char *number : {"9", "10"}) {
        const std::string values = std::string("{'netport':{'port':'") + number + "'}}";
        ask("confirm", "{'seconds':60,'set':" + values + "}", "api_set");
        EXPECT_EQ(ask("confirm", "", "api_set"), answer) << number;
    }
    EXPECT_EQ(ask("confirm"), "{'waiting':[]}");
}

TEST_F(RepeatedRequest, IsKnownAfterThreeOthers)
{
    start_store();
    const std::string answer = answer_to(set_request(5, port_9));
    answer_to(confirm_request(6));
    answer_to(set_request(7, "{'af':{'zoom_value':9}}"));
    answer_to(confirm_request(8));
    EXPECT_EQ(answer_to(set_request(5, port_9)), answer);
    EXPECT_EQ(ask("confirm"), "{'waiting':[]}");
    answer_to(set_request(9, "{'af':{'zoom_value':10}}"));
    answer_to(confirm_request(10));
    EXPECT_EQ(answer_to(set_request(5, port_9)), answer) << "forgotten, and so set again";
    EXPECT_EQ(ask("confirm"), "{'waiting':['netport.port'],'seconds':60}");
}

TEST_F(RepeatedRequest, ToResetGetsItsAnswerAgain)
{
    start_store();
    kind_named("Af").set(9);
    const std::string request = reset_request(5, "{'af':['all']}");
    const std::string answer = answer_to(request);
    EXPECT_NE(answer.find("af.zoom_value"), std::string::npos);
    kind_named("Af").set(8);
    EXPECT_EQ(answer_to(request), answer);
    EXPECT_EQ(zoom(), 8) << "it is not reset again";
    EXPECT_EQ(client.ask(reset_request(6, "{'af':['all']}")),
              "{'msg_name':'reset','msg_id':6,'accepted':['af.zoom_value'],'refused':{}}");
}
