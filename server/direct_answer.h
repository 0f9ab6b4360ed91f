// Answers of rows straight into the reply, without the trees that their get_opt functions make.
#pragma once

#include "base/answer.h"
#include "camparam/module.h"

int answer_msg_name(const char *key, const cJSON *item, const char *name, answer_sink &sink);
int answer_msg_id(const char *key, const cJSON *item, const char *name, answer_sink &sink);

struct direct_answer {
    int (*get_opt)(const char *key, const cJSON *item, cJSON **answer, const char *name);
    answer_function answer; // what get_opt makes a tree of
};

struct direct_answers {
    const direct_answer *first;
    int count;

    const direct_answer *begin() const { return first; }
    const direct_answer *end() const { return first + count; }
};

// The table must stay alive. During start-up.
void use_direct_answers(const direct_answers &table);

// Answers a member of a get request, directly or by the tree that the row's get_opt makes. Returns
// whether the sink is complete.
bool answer_member(const para_module &row, const cJSON *item, answer_sink &sink);
