// Runs of the client program.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "host/fake_server.h"
#include "host/process.h"
#include "support/store.h"

struct run_result {
    int status;
    std::string output;
    std::string errors;
};

// Runs camparam with these words to its end. Unless they name a timeout it is 20 s, as an answer
// may take longer than the default of 1 s on a busy machine.
inline run_result run(const std::vector<std::string> &words, const std::string &input = "")
{
    std::vector<std::string> command = {CAMPARAM};
    if (std::find(words.begin(), words.end(), "--timeout") == words.end())
        command.insert(command.end(), {"--timeout", "20"});
    command.insert(command.end(), words.begin(), words.end());
    process client(command, input);
    const int status = client.wait_for_end();
    return {status, client.output(), client.errors()};
}

// Runs camparam with ever longer timeouts until it reports this text, for answers after which it
// waits on: however late they come on a busy machine, the last run receives them in time.
inline run_result run_until_reported(std::vector<std::string> words, const std::string &report)
{
    run_result got = {};
    words.insert(words.end(), {"--retries", "0", "--timeout", ""});
    for (const char *timeout : {"0.05", "0.5", "5", "15"}) {
        words.back() = timeout;
        got = run(words);
        if (got.errors.find(report) != std::string::npos)
            break;
    }
    return got;
}

// JSON without blanks, an apostrophe for a quote.
inline std::string squeeze(const std::string &text)
{
    const json tree(cJSON_Parse(text.c_str()));
    return tree != nullptr ? compact(tree.get()) : "not JSON: " + text;
}

// A text with quotes for apostrophes.
inline std::string quoted(std::string text)
{
    std::replace(text.begin(), text.end(), '\'', '"');
    return text;
}

// A reply that echoes the request's identifier and holds these members; an apostrophe stands for a
// quote.
inline std::string reply_to(const std::string &request, const std::string &members)
{
    return quoted("{'msg_id':" + id_of(request) + "," + members + "}");
}

inline bool is_for(const std::string &request, const std::string &word)
{
    return request.find("\"" + word + "\"") != std::string::npos;
}

// A host that describes these modules, answers every get with these values, and takes nothing.
inline fake_server::answerer describing(const std::string &modules, const std::string &values)
{
    return [=](const std::string &request) {
        const bool describes = is_for(request, "describe");
        return std::vector<std::string>{
            reply_to(request, describes ? "'modules':{" + modules + "}" : values)};
    };
}
