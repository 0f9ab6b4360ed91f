// JSON files and the heap objects that come with them.
#pragma once

#include <cjson/cJSON.h>

#include <cstdlib>
#include <memory>

struct text_delete {
    void operator()(char *text) const { free(text); }
};
using text_ptr = std::unique_ptr<char, text_delete>;

// Text that cJSON printed: cJSON's own allocator made it.
struct printed_delete {
    void operator()(char *text) const { cJSON_free(text); }
};
using printed_ptr = std::unique_ptr<char, printed_delete>;

struct json_delete {
    void operator()(cJSON *node) const { cJSON_Delete(node); }
};
using json_ptr = std::unique_ptr<cJSON, json_delete>;

constexpr int path_size = 128;

// A path that does not fit is empty, and so a file that cannot be opened.
struct file_path {
    file_path() : text{} {}
    file_path(const char *dir, const char *name);
    char text[path_size];
};

struct json_file {
    bool readable;
    json_ptr root; // null when it is not readable or not JSON
};

// Reads a JSON file; text that is not JSON is traced as the function's. Some of them end that trace
// with an empty line: their ending is a line break.
json_file read_json_file(const char *path, const char *function, int level, const char *ending);

// Writes a text and its final zero byte. Returns what fflush returned; 0 when the file cannot be
// opened, which leaves an existing file as it is.
int write_text_file(const char *path, const char *text);

// Writes the text that cJSON_Print makes of the tree in the same way.
int write_json_file(const char *path, const cJSON *root);
