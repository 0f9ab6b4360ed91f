// Text that grows as it is written.
#pragma once

#include <cstddef>
#include <cstdio>
#include <cstdlib>

class text_buffer {
public:
    text_buffer() : writer(open_memstream(&text, &size)) {}
    ~text_buffer()
    {
        finish();
        free(text);
    }
    text_buffer(const text_buffer &) = delete;
    text_buffer &operator=(const text_buffer &) = delete;

    // What printf and its like write to; null when memory ran out.
    FILE *stream() const { return writer; }

    // Ends writing. Returns whether all of the text is there.
    bool finish()
    {
        complete = writer != nullptr ? fclose(writer) == 0 : complete;
        writer = nullptr;
        return complete;
    }

    // Once it is finished. A zero follows the last byte.
    const char *data() const { return text; }
    size_t length() const { return size; }

    // The same for the caller to free(); null when the text is not complete.
    char *release()
    {
        char *const released = finish() ? text : nullptr;
        text = released != nullptr ? nullptr : text;
        return released;
    }

private:
    char *text = nullptr;
    size_t size = 0;
    FILE *writer;
    bool complete = false;
};
