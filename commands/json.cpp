#include "json.h"

#include <utility>

cJSON *json_builder::added(cJSON *node)
{
    complete = complete && node != nullptr;
    return node;
}

cJSON *json_builder::object(cJSON *parent, const char *key)
{
    return added(cJSON_AddObjectToObject(parent, key));
}

cJSON *json_builder::array(cJSON *parent, const char *key)
{
    return added(cJSON_AddArrayToObject(parent, key));
}

void json_builder::number(cJSON *parent, const char *key, double value)
{
    added(cJSON_AddNumberToObject(parent, key, value));
}

void json_builder::text(cJSON *parent, const char *key, const char *value)
{
    added(cJSON_AddStringToObject(parent, key, value));
}

void json_builder::truth(cJSON *parent, const char *key)
{
    added(cJSON_AddTrueToObject(parent, key));
}

void json_builder::value(cJSON *parent, const char *key, json_ptr value)
{
    complete = add_to_object(parent, key, std::move(value)) && complete;
}

void json_builder::append(cJSON *array, json_ptr element)
{
    complete = add_to_array(array, std::move(element)) && complete;
}

void json_builder::append(cJSON *array, const char *text)
{
    append(array, json_ptr(cJSON_CreateString(text)));
}

json_ptr json_builder::take()
{
    if (!complete)
        tree.reset();
    return std::move(tree);
}

void json_builder::become(json_ptr other)
{
    tree = std::move(other);
    complete = tree != nullptr;
}

json_ptr json_builder::take_compact()
{
    const json_ptr taken = take();
    const printed_ptr text(cJSON_PrintUnformatted(taken.get()));
    return json_ptr(text != nullptr ? cJSON_CreateRaw(text.get()) : nullptr);
}

size_t longest_in_json(const char *text)
{
    size_t length = 0;
    for (; *text != '\0'; text++) {
        const auto byte = static_cast<unsigned char>(*text);
        length += byte < ' ' || byte == '"' || byte == '\\' ? 6 : 1;
    }
    return length;
}

bool is_true(const cJSON *object, const char *key)
{
    return cJSON_IsTrue(cJSON_GetObjectItemCaseSensitive(object, key)) != 0;
}

bool is_flag(const cJSON *node)
{
    return node == nullptr || cJSON_IsNumber(node) || cJSON_IsBool(node);
}

bool is_flag_set(const cJSON *flag)
{
    return cJSON_IsTrue(flag) || (cJSON_IsNumber(flag) && flag->valueint != 0);
}

bool is_int(const cJSON *node)
{
    return cJSON_IsNumber(node) && node->valuedouble == static_cast<double>(node->valueint);
}
