// Rewriting single lines of ".conf" files that other programs own.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "base/backup.h"
#include "base/file.h"
#include "base/guard.h"
#include "base/text_buffer.h"
#include "base/trace.h"
#include "camparam/conf.h"
#include "camparam/platform.h"

struct file_close {
    void operator()(FILE *file) const { fclose(file); }
};
using file_ptr = std::unique_ptr<FILE, file_close>;

static bool has_key(const char *line, const char *key)
{
    const size_t length = strlen(key);
    return strncmp(line, key, length) == 0 && (line[length] == ' ' || line[length] == '=');
}

// Copies the file and replaces the lines that have the key. Returns whether all of it was read.
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

// Returns 0, or the error number. With the guard on, the new text is on disk before the old one is
// gone.
static int replace_text(FILE *file, const char *path, const text_buffer &text)
{
    const int backed_up = guard_is_on() ? write_backup(path, text.data(), text.length()) : 0;
    if (backed_up != 0)
        return backed_up;
    errno = 0;
    return error_of(replace_contents(file, text.data(), text.length()) == 0);
}

static int rewrite(FILE *file, const char *path, const char *key, const char *line)
{
    text_buffer text;
    if (text.stream() == nullptr)
        return ENOMEM;
    // Lock before reading: another program's write between read and rewrite would be lost.
    const int locked = lock_file(file);
    if (locked != 0)
        return locked;
    errno = 0;
    const bool complete = replace_lines(file, key, line, text.stream()) && text.finish();
    const int error = complete ? replace_text(file, path, text) : error_of(false);
    unlock_file(file);
    return error;
}

int update_conf(const char *path, const char *key, const char *line)
{
    if (path == nullptr || key == nullptr || line == nullptr)
        return -1;
    errno = 0;
    const file_ptr file(fopen(path, "r+e"));
    const int error = file ? rewrite(file.get(), path, key, line) : error_of(false);
    if (error != 0 && guard_is_on())
        PARA_TRACE(PARA_ERROR, "%s is not written, errno:%d", path, error);
    return error == 0 ? 0 : -1;
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
    if (line.stream() == nullptr)
        return -1;
    if (in_quotes)
        fprintf(line.stream(), "%s = \"%s\"", key, value);
    else
        fprintf(line.stream(), "%s=%s", key, value);
    return line.finish() ? update_conf(path, key, line.data()) : -1;
}

static int update_line(const trace_site &site, const char *path, const char *key, const char *value,
                       const char *format, const line_formats &known)
{
    const bool in_quotes = is_format(format, known.quoted);
    if (!in_quotes && !is_format(format, known.plain)) {
        PARA_TRACE_AT(site, PARA_ERROR, "error: format is wrong");
        return -1;
    }
    return update_quoted(path, key, value, in_quotes);
}

int update_line_conf_str(const char *path, const char *key, const char *value, const char *format)
{
    return update_line(PARA_HERE, path, key, value, format,
                       {.quoted = "%s = \"%s\"", .plain = "%s=%s"});
}

int update_line_conf_int(const char *path, const char *key, int value, const char *format)
{
    char digits[PARA_NUMBER_SIZE];
    return update_line(PARA_HERE, path, key, lib_itoa(value, digits), format,
                       {.quoted = "%s = \"%d\"", .plain = "%s=%d"});
}
