// JSON trees of requests and replies.
#pragma once

#include "base/json.h"

// Builds a tree, and knows whether memory ran out for a part of it. Parents may be null, when they
// are such parts.
class json_builder {
public:
    // The root, an object. Null when there is no memory.
    cJSON *root() const { return tree.get(); }

    cJSON *object(cJSON *parent, const char *key);
    cJSON *array(cJSON *parent, const char *key);
    void number(cJSON *parent, const char *key, double value);
    void text(cJSON *parent, const char *key, const char *value);
    void truth(cJSON *parent, const char *key);
    // Takes the value over.
    void value(cJSON *parent, const char *key, json_ptr value);
    void append(cJSON *array, json_ptr element);
    void append(cJSON *array, const char *text);

    // Memory ran out for what would be a part.
    void lack() { complete = false; }
    bool is_complete() const { return complete; }

    // Makes another tree the root; null: memory ran out.
    void become(json_ptr other);

    // The tree; null unless it is complete.
    json_ptr take();
    // The same as a node that is printed as compact text: with the white space of cJSON_Print() the
    // description of a whole camera would exceed a datagram.
    json_ptr take_compact();

private:
    cJSON *added(cJSON *node);

    json_ptr tree{cJSON_CreateObject()};
    bool complete = tree != nullptr;
};

// Bytes of a text as it stands in JSON, without its quotes, at the most.
size_t longest_in_json(const char *text);

// Whether the object's member is true.
bool is_true(const cJSON *object, const char *key);

// Flags of requests: absent, a number or a truth value.
bool is_flag(const cJSON *node);
bool is_flag_set(const cJSON *flag); // nonzero or true

// Whether valueint holds the number exactly: cJSON saturates large numbers and cuts fractions.
bool is_int(const cJSON *node);
