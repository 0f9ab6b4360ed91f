// The command "log": the last changes, page by page.
#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include "change_log.h"
#include "command.h"
#include "descriptions.h"
#include "page.h"
#include "run.h"

namespace {

void add_value(json_builder &entry, const char *name, const para_value &value)
{
    if (value.exists == 0)
        return;
    if (value.text != nullptr)
        entry.text(entry.root(), name, value.text);
    else
        entry.number(entry.root(), name, value.number);
}

enum class detail { all, no_values };

json_ptr entry_of(const logged_change &change, const descriptions &texts, detail told)
{
    const bool is_text = change.before.text != nullptr || change.after.text != nullptr;
    const bool secret = texts.is_secret(change.module, change.member, is_text);
    json_builder entry;
    entry.number(entry.root(), "number", change.number);
    entry.number(entry.root(), "time", static_cast<double>(change.time));
    entry.text(entry.root(), "module", change.module);
    entry.text(entry.root(), "member", change.member);
    if (secret) {
        entry.truth(entry.root(), "secret");
    } else if (told == detail::all) {
        add_value(entry, "old", change.before);
        add_value(entry, "new", change.after);
    }
    entry.text(entry.root(), "by", change.sender);
    return entry.take();
}

class log_page : public log_reader {
public:
    explicit log_page(json_builder &in) : reply(in), entries(in.array(in.root(), "changes"))
    {
        if (texts.is_starved())
            reply.lack();
    }

    bool take(const logged_change &change) override
    {
        json_ptr entry = entry_of(change, texts, detail::all);
        printed_ptr text(cJSON_PrintUnformatted(entry.get()));
        if (text != nullptr && strlen(text.get()) > most_listed_bytes) {
            entry = entry_of(change, texts, detail::no_values);
            text.reset(cJSON_PrintUnformatted(entry.get()));
        }
        if (text == nullptr) {
            reply.lack();
            return false;
        }
        used += strlen(text.get()) + 1;
        if (used > most_page_bytes && last != 0) {
            reply.number(reply.root(), "next", last);
            return false;
        }
        last = change.number;
        reply.append(entries, std::move(entry));
        return true;
    }

private:
    json_builder &reply;
    cJSON *const entries;
    const descriptions texts;
    size_t used = 0;
    unsigned last = 0; // that the page holds
};

} // namespace

answered answer_log(const request &request, json_builder &reply)
{
    const cJSON *const after = cJSON_GetObjectItemCaseSensitive(request.data, "after");
    if (after != nullptr && (!cJSON_IsNumber(after) || !(after->valuedouble >= 0)))
        return answered::invalid;
    reply.number(reply.root(), "started", static_cast<double>(start_of_run()));
    log_page page(reply);
    constexpr double last = std::numeric_limits<unsigned>::max();
    read_log(after != nullptr ? static_cast<unsigned>(std::min(after->valuedouble, last)) : 0,
             page);
    return answered::compactly;
}
