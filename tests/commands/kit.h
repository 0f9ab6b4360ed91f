// The command kit in a store with a module of each kind, and a client.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "camparam/commands.h"
#include "support/every_kind.h"

class Kit : public EveryKind {
protected:
    Kit() { EXPECT_EQ(para_commands_register(), 0); }

    // The answer to a command without its name, an apostrophe for a quote. Details may be empty.
    std::string ask(const std::string &command, const std::string &details = "",
                    const std::string &type = "api_get");

    // The object in which the answer is, or a null one.
    json asked(const std::string &command, const std::string &details = "",
               const std::string &type = "api_get");

    static constexpr const char *invalid = "{'err':'Invalid API command'}";

    Client client;

private:
    static std::string request_of(const std::string &command, const std::string &details,
                                  const std::string &type);
};

inline std::string Kit::request_of(const std::string &command, const std::string &details,
                                   const std::string &type)
{
    return "{'msg_type':'" + type + "','msg_name':'" + command + "'" +
           (details.empty() ? "" : ",'data':" + details) + "}";
}

inline std::string Kit::ask(const std::string &command, const std::string &details,
                            const std::string &type)
{
    const std::string answer = client.ask(request_of(command, details, type));
    const std::string name = "{'msg_name':'" + command + "'";
    if (answer.compare(0, name.size(), name) != 0)
        return answer;
    const size_t rest = name.size() + (answer[name.size()] == ',' ? 1 : 0);
    return "{" + answer.substr(rest);
}

inline json Kit::asked(const std::string &command, const std::string &details,
                       const std::string &type)
{
    return parse(ask(command, details, type));
}
