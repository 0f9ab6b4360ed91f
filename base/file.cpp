#include "base/file.h"

#include <cstdio>
#include <cstring>

#include "base/trace.h"
#include "camparam/platform.h"

file_path::file_path(const char *dir, const char *name)
{
    cat_file_name(text, dir, name);
}

json_file read_json_file(const char *path, const char *function, int level, const char *ending)
{
    const text_ptr text(read_file_to_buf(path));
    if (!text)
        return {false, nullptr};

    // cJSON_GetErrorPtr() would give the same position, but another thread's if one parses too.
    const char *position = nullptr;
    json_ptr root(cJSON_ParseWithOpts(text.get(), &position, 0));
    if (!root)
        PARA_TRACE_AS(function, level, "Error before: [%s]%s", position, ending);
    return {true, std::move(root)};
}

int write_text_file(const char *path, const char *text)
{
    FILE *const file = fopen(path, "wb");
    if (file == nullptr)
        return 0;

    // The final zero byte belongs to the format (SavedFile.EndsWithOneZeroByte).
    fwrite(text, strlen(text) + 1, 1, file);
    const int flushed = fflush(file);
    fclose(file);
    return flushed;
}

int write_json_file(const char *path, const cJSON *root)
{
    const printed_ptr text(cJSON_Print(root));
    return text ? write_text_file(path, text.get()) : 0;
}
