#include "host/host_process.h"

namespace {

class SaveCommand : public HostProcess {
protected:
    Client client;
};

TEST_F(SaveCommand, WritesTheFilesBeforeItAnswers)
{
    for (const char *type : {"api_set", "api_get"}) {
        start_host();
        ASSERT_EQ(read_data("af_cur.json"), std::nullopt);

        const std::string request = "{'msg_type':'" + std::string(type) + "',";
        EXPECT_EQ(client.ask(request + "'msg_name':'save','msg_id':3}"),
                  "{'msg_name':'save','msg_id':3}");

        const std::optional<std::string> saved = read_data("af_cur.json");
        ASSERT_TRUE(saved.has_value());
        const json tree(cJSON_Parse(saved->c_str()));
        EXPECT_EQ(compact(tree.get()), "{'focus_mode':1,'zoom_value':0}");
        end_host(SIGKILL);
        remove((data + "/af_cur.json").c_str());
    }
}

} // namespace
