// Rewriting single lines of ".conf" files that other programs own.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/types.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "base/trace.h"
#include "camparam/conf.h"
#include "camparam/platform.h"
#include "modules/text/text_module.h"

// Text that grows as it is written.
class text_buffer {
public:
    text_buffer() : stream(open_memstream(&text, &size)) {}
    ~text_buffer()
    {
        close();
        free(text);
    }
    text_buffer(const text_buffer &) = delete;
    text_buffer &operator=(const text_buffer &) = delete;

    FILE *file() const { return stream; }

    // Ends writing. Returns whether all of it is there.
    bool close()
    {
        const bool closed = stream != nullptr && fclose(stream) == 0;
        stream = nullptr;
        return closed;
    }

    const char *data() const { return text; }
    size_t length() const { return size; }

private:
    char *text = nullptr;
    size_t size = 0;
    FILE *stream;
};

struct file_close {
    void operator()(FILE *file) const { fclose(file); }
};
using file_ptr = std::unique_ptr<FILE, file_close>;

static bool has_key(const char *line, const char *key)
{
    const size_t length = strlen(key);
    return strncmp(line, key, length) == 0 && (line[length] == ' ' || line[length] == '=');
}

// Copies the lines, with the new one in place of those that have the key. Returns whether it got to
// the end of the file.
static bool replace_lines(FILE *from, const char *key, const char *new_line, FILE *to)
{
    char *line = nullptr;
    size_t size = 0;
    for (ssize_t length; (length = getline(&line, &size, from)) > 0;) {
        if (line[0] == '\0')
            continue;
        if (has_key(line, key))
            fprintf(to, "%s\n", new_line);
        else
            fwrite(line, 1, static_cast<size_t>(length), to);
    }
    free(line);
    return feof(from) != 0 && ferror(from) == 0;
}

static bool rewrite(FILE *file, const text_buffer &text)
{
    if (ftruncate(fileno(file), 0) != 0)
        return false;
    rewind(file);
    return fwrite(text.data(), 1, text.length(), file) == text.length() && fflush(file) == 0;
}

int update_conf(const char *path, const char *key, const char *line)
{
    if (path == nullptr || key == nullptr || line == nullptr)
        return -1;
    const file_ptr file(fopen(path, "r+e"));
    text_buffer text;
    if (!file || text.file() == nullptr)
        return -1;

    // Locked before it is read, so that nothing another program writes in between is lost.
    const int descriptor = fileno(file.get());
    lock_file(descriptor);
    const bool read = replace_lines(file.get(), key, line, text.file());
    const bool rewritten = text.close() && read && rewrite(file.get(), text);
    flock(descriptor, LOCK_UN);
    return rewritten ? 0 : -1;
}

int update_line_conf(const char *path, const char *key, const char *line)
{
    return update_conf(path, key, line);
}

// The two formats that a caller may choose: the value in quotes, or plain.
struct line_formats {
    const char *quoted, *plain;
};

static bool is_format(const char *format, const char *known)
{
    return format != nullptr && strcmp(format, known) == 0;
}

static int update_quoted(const char *path, const char *key, const char *value, bool in_quotes)
{
    if (key == nullptr || value == nullptr)
        return -1;
    text_buffer line;
    if (line.file() == nullptr)
        return -1;
    if (in_quotes)
        fprintf(line.file(), "%s = \"%s\"", key, value);
    else
        fprintf(line.file(), "%s=%s", key, value);
    return line.close() ? update_conf(path, key, line.data()) : -1;
}

static int update_line(const char *function, const char *path, const char *key, const char *value,
                       const char *format, const line_formats &known)
{
    const bool in_quotes = is_format(format, known.quoted);
    if (!in_quotes && !is_format(format, known.plain)) {
        PARA_TRACE_AS(function, PARA_ERROR, "error: format is wrong");
        return -1;
    }
    return update_quoted(path, key, value, in_quotes);
}

int update_line_conf_str(const char *path, const char *key, const char *value, const char *format)
{
    return update_line(__func__, path, key, value, format, {"%s = \"%s\"", "%s=%s"});
}

int update_line_conf_int(const char *path, const char *key, int value, const char *format)
{
    char digits[32];
    return update_line(__func__, path, key, lib_itoa(value, digits), format,
                       {"%s = \"%d\"", "%s=%d"});
}
