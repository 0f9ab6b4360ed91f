// Runs camparam record.
#pragma once

#include <filesystem>

#include "cli/run.h"
#include "host/host_process.h"
#include "support/client.h"

class Recorder : public HostProcess {
protected:
    Recorder() : file(data + "/recording") {}

    // Starts it with these options and waits until it takes requests.
    void start_recorder(const std::vector<std::string> &options = {"--listen", "0"})
    {
        std::vector<std::string> command = {CAMPARAM, "record", file};
        command.insert(command.end(), options.begin(), options.end());
        recorder = std::make_unique<process>(command);
        const std::string ready = "recording on port ";
        ASSERT_TRUE(wait_until([&] {
            return recorder->errors().find('\n') != std::string::npos || recorder->has_ended();
        }));
        ASSERT_EQ(recorder->errors().find(ready), 0u) << recorder->errors();
        port = std::stoi(recorder->errors().substr(ready.size()));
    }

    // Ends it by a signal. Returns its exit status.
    int end_recorder(int number = SIGTERM)
    {
        recorder->send_signal(number);
        return recorder->wait_for_end();
    }

    // The lines of the recording so far, without times.
    std::vector<std::string> lines() const
    {
        std::vector<std::string> found;
        const std::string text = read_file(file).value_or("");
        for (size_t begin = 0; begin < text.size();) {
            const size_t end = std::min(text.find('\n', begin), text.size());
            const json tree(cJSON_Parse(text.substr(begin, end - begin).c_str()));
            EXPECT_TRUE(cJSON_IsNumber(cJSON_GetObjectItem(tree.get(), "time"))) << text;
            cJSON_DeleteItemFromObject(tree.get(), "time");
            found.push_back(tree != nullptr ? compact(tree.get()) : "no JSON");
            begin = end + 1;
        }
        return found;
    }

    bool records(size_t count) const
    {
        return wait_until([&] { return lines().size() >= count; });
    }

    std::string file;
    int port = 0;
    std::unique_ptr<process> recorder;
};
