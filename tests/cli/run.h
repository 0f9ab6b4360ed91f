// Runs the client program.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "host/fake_server.h"
#include "host/process.h"
#include "support/folders.h"
#include "support/json_text.h"

struct run_result {
    int status;
    std::string output;
    std::string errors;
};

// Runs camparam with these arguments until it exits. The timeout is 20 s unless they set it: the
// default of 1 s may be too short on a busy machine.
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

// Runs camparam with increasing timeouts until its messages contain the text. For answers that it
// rejects, after which it waits for the whole timeout: the shortest one that suffices is used.
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

// Compact JSON with apostrophes for quotes.
inline std::string squeeze(const std::string &text)
{
    const json tree(cJSON_Parse(text.c_str()));
    return tree != nullptr ? compact(tree.get()) : "not JSON: " + text;
}

// The text with quotes for apostrophes.
inline std::string quoted(std::string text)
{
    std::replace(text.begin(), text.end(), '\'', '"');
    return text;
}

// A reply with the request's "msg_id" and these members, written with apostrophes for quotes.
inline std::string reply_to(const std::string &request, const std::string &members)
{
    return quoted("{'msg_id':" + id_of(request) + "," + members + "}");
}

inline bool is_for(const std::string &request, const std::string &word)
{
    return request.find("\"" + word + "\"") != std::string::npos;
}

// A host that describes these modules and answers every other request with these values.
inline fake_server::answerer describing(const std::string &modules, const std::string &values)
{
    return [=](const std::string &request) {
        const bool describes = is_for(request, "describe");
        return std::vector<std::string>{
            reply_to(request, describes ? "'modules':{" + modules + "}" : values)};
    };
}
