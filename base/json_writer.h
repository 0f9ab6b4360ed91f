// Answers as text: byte for byte what cJSON_Print makes of the same values.
#pragma once

#include <cstddef>

#include "base/answer.h"

// Memory for a text. It grows, and is freed by its owner with free().
struct text_space {
    char *bytes;
    size_t size;
};

constexpr size_t longest_number = 32; // with room for what cJSON demands beyond the digits

class json_writer final : public answer_sink {
public:
    json_writer() = default;
    explicit json_writer(text_space memory) : space(memory) {} // its own from now on
    ~json_writer() { free(space.bytes); }
    json_writer(const json_writer &) = delete;
    json_writer &operator=(const json_writer &) = delete;

    void open(const char *key) override;
    void close() override;
    void number(const char *key, int value) override;
    void text(const char *key, const char *value) override;
    void tree(const char *key, json_ptr value) override;
    bool complete() const override { return is_complete; }

    // Makes room for so many bytes more. Returns whether the text is complete so far.
    bool reserve(size_t more) { return more <= space.size - used ? is_complete : grow(more); }

    // A whole document.
    void document(const cJSON *value);

    // The text so far; null when it is not complete, or holds what cJSON_Print would not print.
    const char *written();
    size_t length() const { return used; }

    // The memory, for the next text. Ends this one.
    text_space release();

private:
    bool grow(size_t more);
    bool begin(const char *key);
    char *end() { return space.bytes + used; }
    void end_at(const char *end) { used = static_cast<size_t>(end - space.bytes); }
    void add(char byte) { space.bytes[used++] = byte; }
    bool add_bytes(const char *bytes);
    bool add_quoted(const char *text);
    bool add_number(int value);
    bool add_printed(const cJSON *number);
    bool add_nothing();
    bool add_value(const cJSON *value);
    bool add_array(const cJSON *array);
    bool add_object(const cJSON *object);
    void open_object();

    text_space space = {};
    size_t used = 0;
    size_t depth = 0;  // of objects and arrays that are open
    bool first = true; // nothing stands yet in the object that is open
    bool is_complete = true;
    bool is_printable = true;
};
