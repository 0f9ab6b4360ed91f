#include "server/direct_answer.h"

#include <utility>

#include "base/memory.h"

static direct_answers known; // fixed after start-up

void use_direct_answers(const direct_answers &table)
{
    known = table;
}

// Null for a row of the host's own.
static answer_function direct_answer_of(const para_module &row)
{
    for (const direct_answer &each : known) {
        if (each.get_opt == row.get_opt)
            return each.answer;
    }
    return nullptr;
}

bool answer_member(const para_module &row, const cJSON *item, answer_sink &sink)
{
    if (const answer_function answer = direct_answer_of(row))
        return answer(item->string, item, row.name, sink) != no_memory && sink.complete();

    cJSON *stored = nullptr;
    const int result = row.get_opt(item->string, item, &stored, row.name);
    json_ptr answer(stored);
    if (!answer)
        return result != no_memory;
    sink.tree(item->string, std::move(answer));
    return sink.complete();
}
