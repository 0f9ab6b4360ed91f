// Text that grows as it is written.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// Not open_memstream(): what that cannot store for want of memory is lost without an error.
class text_buffer {
public:
    text_buffer() : writer(fopencookie(this, "w", {.write = append})) {}
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
        if (writer == nullptr)
            return complete;
        const bool written = fflush(writer) == 0 && ferror(writer) == 0;
        complete = fclose(writer) == 0 && written && reserve(1);
        writer = nullptr;
        if (complete)
            text[size] = '\0';
        return complete;
    }

    // Once it is finished and complete. A zero follows the last byte.
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
    bool reserve(size_t more)
    {
        if (more <= capacity - size)
            return true;
        const size_t grown = std::max(2 * capacity, size + more);
        auto *const moved = static_cast<char *>(realloc(text, grown));
        if (moved == nullptr)
            return false;
        text = moved;
        capacity = grown;
        return true;
    }

    // Returns the bytes taken; 0 sets the stream's error.
    static ssize_t append(void *cookie, const char *bytes, size_t length)
    {
        auto &buffer = *static_cast<text_buffer *>(cookie);
        if (!buffer.reserve(length))
            return 0;
        memcpy(buffer.text + buffer.size, bytes, length);
        buffer.size += length;
        return static_cast<ssize_t>(length);
    }

    char *text = nullptr;
    size_t size = 0, capacity = 0;
    FILE *writer;
    bool complete = false;
};
