// Answers of which a datagram does not hold all.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "commands/kit.h"

class LargeAnswer : public Kit {
protected:
    LargeAnswer()
    {
        write_home("www2json.json", "{'json_pattern_list':['misc','panel'],"
                                    "'conf_pattern_list':['netport','" +
                                        longest_name + "']}");
    }

    static int count_of(const json &answer, const char *key)
    {
        return cJSON_GetArraySize(cJSON_GetObjectItem(answer.get(), key));
    }
    static int omitted(const json &answer)
    {
        const cJSON *const number = cJSON_GetObjectItem(answer.get(), "omitted");
        return number != nullptr ? number->valueint : 0;
    }
    static std::string text_of(const std::string &key)
    {
        char text[16] = "none";
        para_conf_get_member_safe("netport", key.c_str(), text, sizeof text);
        return text;
    }
    std::string members(const std::string &module)
    {
        const json answer = asked("describe", "{'modules':['" + module + "']}");
        return compact(cJSON_GetObjectItem(
            cJSON_GetObjectItem(cJSON_GetObjectItem(answer.get(), "modules"), module.c_str()),
            "members"));
    }

    const std::string longest_name = std::string(63, 'm'); // of a module in files
};

TEST_F(LargeAnswer, ToResetNamesWhatFits)
{
    const std::string begin = "a_key_of_thirty_characters_";
    std::string defaults, saved;
    for (int i = 1000; i < 5000; i++) {
        defaults += begin + std::to_string(i) + " = x\n";
        saved += begin + std::to_string(i) + " = y\n";
    }
    write_home("netport.conf", defaults);
    write_data("netport.conf", saved);
    start_store();
    EXPECT_EQ(text_of(begin + "4999"), "y");
    const json answer = asked("reset", "{'netport':['all']}", "api_set");
    EXPECT_EQ(text_of(begin + "4999"), "x");
    EXPECT_GT(count_of(answer, "accepted"), 1000);
    EXPECT_EQ(count_of(answer, "accepted") + omitted(answer), 4000);
}

TEST_F(LargeAnswer, OfReasonsNamesWhatFits)
{
    write_home(longest_name + ".conf", "a = x\n");
    start_store();
    std::string names = "5";
    for (int i = 1; i < 1900; i++)
        names += ",5";
    const json answer = asked("reset", "{'" + longest_name + "':[" + names + "]}", "api_set");
    EXPECT_GT(count_of(answer, "refused"), 500);
    EXPECT_EQ(count_of(answer, "refused") + omitted(answer), 1900);
}

// As many as a request holds, of names that take six times their bytes in an answer.
TEST_F(LargeAnswer, ToConfirmNamesAll)
{
    std::string defaults, values;
    int count = 0;
    for (char first = 1; first < ' '; first++) {
        for (char second = 1; second < ' ' && values.size() < 3900; second++) {
            if (isspace(first) != 0 || isspace(second) != 0)
                continue;
            const std::string key = {first, second};
            defaults += key + " = x\n";
            values += (count++ == 0 ? "" : ",") + ("'" + key) + "':'y'";
        }
    }
    write_home(longest_name + ".conf", defaults);
    start_store();
    const std::string details = "{'seconds':60,'set':{'" + longest_name + "':{" + values + "}}}";
    EXPECT_GT(count, 400);
    EXPECT_EQ(count_of(asked("confirm", details, "api_set"), "accepted"), count);
    EXPECT_EQ(count_of(asked("confirm", details, "api_set"), "refused"), count);
    EXPECT_EQ(count_of(asked("confirm"), "waiting"), count);
    EXPECT_EQ(count_of(asked("confirm", "", "api_set"), "confirmed"), count);
}

TEST_F(LargeAnswer, LeavesOutTextsOfAMember)
{
    write_home("descriptions.json", "{'af':{'zoom_value':{'unit':'steps','secret':true,'help':'" +
                                        std::string(70000, 'x') + "'}}}");
    start_store();
    EXPECT_EQ(members("af"), "{'zoom_value':{'kind':'number','min':0,'max':100,'secret':true}}");
}

TEST_F(LargeAnswer, LeavesOutNamesOfAMember)
{
    std::string names = "'first'";
    for (int i = 10000; i < 17000; i++)
        names += ",'name" + std::to_string(i) + "'";
    write_home("panel_range.json", "{'mode':[" + names + "],'brightness':[0,100]}");
    write_home("panel.conf", "mode = 'first'\nbrightness = '40'\n");
    start_store();
    EXPECT_EQ(members("panel"), "{'mode':{'kind':'enum'},'brightness':{'kind':'number','min':0,"
                                "'max':100,'default':40,'current':40}}");
}

TEST_F(LargeAnswer, LeavesOutValuesOfAChange)
{
    start_store();
    kind_named("Conf").set(9);
    const std::string value(70000, 'x');
    ASSERT_EQ(para_conf_set_member("netport", "port", value.c_str()), 1);
    const json answer = asked("log");
    ASSERT_EQ(count_of(answer, "changes"), 2);
    cJSON *const change = cJSON_GetArrayItem(cJSON_GetObjectItem(answer.get(), "changes"), 1);
    cJSON_DeleteItemFromObject(change, "time");
    EXPECT_EQ(compact(change), "{'number':2,'module':'netport','member':'port','by':'host'}");
}
