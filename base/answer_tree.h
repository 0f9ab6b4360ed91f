// Answers as trees.
#pragma once

#include "base/answer.h"

class answer_tree final : public answer_sink {
public:
    answer_tree() = default;
    explicit answer_tree(cJSON *object); // borrowed; what is answered becomes members of it
    ~answer_tree() { cJSON_Delete(root); }
    answer_tree(const answer_tree &) = delete;
    answer_tree &operator=(const answer_tree &) = delete;

    void open(const char *key) override;
    void close() override { depth--; }
    void number(const char *key, int value) override;
    void text(const char *key, const char *value) override;
    void tree(const char *key, json_ptr value) override;
    bool complete() const override { return is_complete; }

    // The outermost value. Null when there was none, or it is not complete.
    json_ptr release();

private:
    cJSON *add(const char *key, json_ptr value);

    static constexpr int deepest = 2; // objects within each other: a reply, a module's answer
    cJSON *root = nullptr;
    cJSON *objects[deepest] = {};
    int depth = 0;
    bool is_complete = true;
};

// A get_opt function's work: stores the answer as a tree.
int answer_as_tree(answer_function answer, const char *key, const cJSON *item, cJSON **tree,
                   const char *name);
#define DEFINE_GET_OPT(module)                                                                     \
    int para_get_##module##_opt(const char *key, const cJSON *item, cJSON **answer,                \
                                const char *name)                                                  \
    {                                                                                              \
        return answer_as_tree(answer_##module, key, item, answer, name);                           \
    }
