#include <cstdio>
#include <iostream>
#include <iterator>

#include "commands.h"

namespace {

struct options {};

exit_code run(program &all, options &)
{
    client host = all.connect();
    const std::string request(std::istreambuf_iterator<char>(std::cin), {});
    const json_ptr tree = parse_json(request);
    // The store answers neither of these, so waiting would only time out.
    if (!cJSON_IsObject(tree.get()))
        throw failure(USAGE, "standard input holds no JSON object");
    if (!cJSON_IsString(cJSON_GetObjectItem(tree.get(), "msg_type")))
        throw failure(USAGE, "the request lacks \"msg_type\", such as \"get\" or \"set\"");

    const std::string answer = host.raw(request);
    fwrite(answer.data(), 1, answer.size(), stdout);
    putchar('\n');
    return member_of(parse_json(answer).get(), "err") != nullptr ? REFUSED : DONE;
}

} // namespace

void add_raw(const arguments &words, program &all)
{
    const arguments raw =
        add_command<options>(
            words, all,
            {"raw", "Send the JSON request on standard input and print the answer", run})
            .words;
    raw.footer(R"(Example:
  echo '{"msg_type":"get","msg_id":1,"af":["all"]}' | camparam raw)");
}
