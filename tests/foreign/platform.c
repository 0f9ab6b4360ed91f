/* The smallest platform that serves the store: traces and shell commands are counted, work is never
 * posted. */
#include "platform.h"

#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "camparam/platform.h"

int dbgout_profile[2] = {0, 6};

static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static int messages;
static int syncs;

static void count(int *counter)
{
    pthread_mutex_lock(&lock);
    ++*counter;
    pthread_mutex_unlock(&lock);
}

static int read_counter(const int *counter)
{
    pthread_mutex_lock(&lock);
    const int result = *counter;
    pthread_mutex_unlock(&lock);
    return result;
}

int messages_traced(void)
{
    return read_counter(&messages);
}
int syncs_run(void)
{
    return read_counter(&syncs);
}

void wnk_traceout(int level, const char *format, ...)
{
    (void)level;
    va_list arguments;
    va_start(arguments, format);
    vprintf(format, arguments);
    va_end(arguments);
    count(&messages);
}

char *cat_file_name(char *path, const char *dir, const char *name)
{
    const size_t path_size = 128;
    const size_t dir_length = dir != NULL ? strlen(dir) : 0;
    const int bare = dir == NULL || (dir_length > 0 && dir[dir_length - 1] == '/');
    const int length =
        snprintf(path, path_size, "%s%s%s", dir != NULL ? dir : "", bare ? "" : "/", name);
    if (length < 0 || (size_t)length >= path_size)
        path[0] = '\0';
    return path;
}

char *read_file_to_buf(const char *path)
{
    FILE *const file = fopen(path, "rb");
    if (file == NULL)
        return NULL;

    char *text = NULL;
    size_t size = 0;
    if (getdelim(&text, &size, '\0', file) < 0) {
        free(text);
        text = ferror(file) ? NULL : lib_strdup("");
    }
    fclose(file);
    return text;
}

char *lib_strdup(const char *text)
{
    if (text == NULL)
        return NULL;
    const size_t size = strlen(text) + 1;
    char *const copy = malloc(size);
    return copy != NULL ? memcpy(copy, text, size) : NULL;
}

char *lib_itoa(int value, char *text)
{
    const size_t text_size = 32;
    snprintf(text, text_size, "%d", value);
    return text;
}

int lib_system(const char *command)
{
    if (strcmp(command, "sync") == 0)
        count(&syncs);
    return 0;
}

long long lib_common_diff_msec_timespec(const struct timespec *from, const struct timespec *to)
{
    const long long seconds = (long long)to->tv_sec - from->tv_sec;
    return (seconds * 1000000000 + (to->tv_nsec - from->tv_nsec)) / 1000000;
}

int add_fifo_work(const fifo_work *works, int count)
{
    for (int i = 0; i < count; i++) {
        if (works[i].name == NULL || works[i].handler == NULL)
            return -1;
    }
    return 0;
}
