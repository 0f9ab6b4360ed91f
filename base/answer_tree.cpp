#include "base/answer_tree.h"

#include <utility>

#include "base/memory.h"

answer_tree::answer_tree(cJSON *object) : objects{object}, depth(1), is_complete(object != nullptr)
{
}

// Returns the value, which the object that is open owns from now on; null when it was not taken.
cJSON *answer_tree::add(const char *key, json_ptr value)
{
    cJSON *const added = value.get();
    if (!is_complete || added == nullptr)
        is_complete = false;
    else if (depth == 0)
        root = value.release();
    else
        is_complete = add_to_object(objects[depth - 1], key, std::move(value));
    return is_complete ? added : nullptr;
}

void answer_tree::open(const char *key)
{
    objects[depth] = add(key, json_ptr(cJSON_CreateObject()));
    depth++;
}

void answer_tree::number(const char *key, int value)
{
    add(key, json_ptr(cJSON_CreateNumber(value)));
}

void answer_tree::text(const char *key, const char *value)
{
    add(key, json_ptr(cJSON_CreateString(value)));
}

void answer_tree::tree(const char *key, json_ptr value)
{
    add(key, std::move(value));
}

json_ptr answer_tree::release()
{
    return json_ptr(is_complete ? std::exchange(root, nullptr) : nullptr);
}

int answer_as_tree(answer_function answer, const char *key, const cJSON *item, cJSON **tree,
                   const char *name)
{
    answer_tree sink;
    const int result = answer(key, item, name, sink);
    if (result == no_memory || !sink.complete())
        return no_memory;
    if (json_ptr answered = sink.release())
        *tree = answered.release();
    return result;
}
