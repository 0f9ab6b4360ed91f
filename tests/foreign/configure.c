/* Configure objects as a linked list under one lock for all of them. */
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "camparam/platform.h"

/* conf_find() hands out the address of the key; the value text begins 256 bytes behind it. */
struct entry {
    char key[256];
    char value[768];
    char asked[768]; /* the value when it was last asked about */
    struct entry *next;
};

struct object {
    configure operations;
    struct entry *first;
    int was_read;
};

struct key_set {
    int count;
    char keys[][256];
};

static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;

static struct entry **place_of(configure *conf, const char *key)
{
    struct entry **place = &((struct object *)conf)->first;
    while (*place != NULL && strcmp((*place)->key, key) != 0)
        place = &(*place)->next;
    return place;
}

static int get(configure *conf, const char *key, char *buffer, int size)
{
    pthread_mutex_lock(&lock);
    const struct entry *const found = *place_of(conf, key);
    const int fits = found != NULL && size > 0 && strlen(found->value) < (size_t)size;
    if (fits)
        memcpy(buffer, found->value, strlen(found->value) + 1);
    pthread_mutex_unlock(&lock);
    return fits ? 0 : -1;
}

/* The callback runs without the lock, so it may use the object; entries stay until that is freed.
 */
static int loop(configure *conf, conf_loop_callback callback, void *argument)
{
    pthread_mutex_lock(&lock);
    struct entry *each = ((struct object *)conf)->first;
    while (each != NULL) {
        char value[sizeof each->value];
        memcpy(value, each->value, sizeof value);
        pthread_mutex_unlock(&lock);
        callback(argument, each->key, value);
        pthread_mutex_lock(&lock);
        each = each->next;
    }
    pthread_mutex_unlock(&lock);
    return 0;
}

static int store(configure *conf, const char *key, const char *value)
{
    struct entry **const place = place_of(conf, key);
    if (strlen(key) >= sizeof(*place)->key || strlen(value) >= sizeof(*place)->value)
        return 0;
    if (*place != NULL && strcmp((*place)->value, value) == 0)
        return 0;
    if (*place == NULL)
        *place = calloc(1, sizeof **place);
    if (*place == NULL)
        return 0;
    memcpy((*place)->key, key, strlen(key) + 1);
    memcpy((*place)->value, value, strlen(value) + 1);
    return 1;
}

static int set(configure *conf, const char *key, const char *value)
{
    pthread_mutex_lock(&lock);
    const int changed = store(conf, key, value);
    pthread_mutex_unlock(&lock);
    return changed;
}

static void *find(configure *conf, const char *key)
{
    pthread_mutex_lock(&lock);
    struct entry *const found = *place_of(conf, key);
    pthread_mutex_unlock(&lock);
    return found;
}

configure *configure_init(void)
{
    struct object *const made = calloc(1, sizeof *made);
    if (made == NULL)
        return NULL;
    made->operations = (configure){get, loop, set, find};
    return &made->operations;
}

static void mark_as_asked(configure *conf)
{
    for (struct entry *each = ((struct object *)conf)->first; each != NULL; each = each->next)
        memcpy(each->asked, each->value, sizeof each->asked);
}

int configure_parse(configure *conf, int flags, const char *path)
{
    (void)flags;
    FILE *const file = fopen(path, "r");
    if (file == NULL)
        return -1;

    pthread_mutex_lock(&lock);
    char line[1200];
    while (fgets(line, sizeof line, file) != NULL) {
        char key[256];
        char value[768] = "";
        int value_at = 0;
        if (sscanf(line, " %255[^= \t\n#] =%n", key, &value_at) != 1 || value_at == 0)
            continue;
        if (sscanf(line + value_at, " \"%767[^\"\n]", value) != 1)
            sscanf(line + value_at, " %767[^\"\n]", value);
        store(conf, key, value);
    }
    if (!((struct object *)conf)->was_read)
        mark_as_asked(conf);
    ((struct object *)conf)->was_read = 1;
    pthread_mutex_unlock(&lock);
    fclose(file);
    return 0;
}

void configure_free(configure *conf)
{
    struct object *const object = (struct object *)conf;
    while (object != NULL && object->first != NULL) {
        struct entry *const next = object->first->next;
        free(object->first);
        object->first = next;
    }
    free(object);
}

void *config_keys_format(const char *const *keys, int count)
{
    struct key_set *const made = calloc(1, sizeof *made + (size_t)count * sizeof made->keys[0]);
    if (made == NULL)
        return NULL;
    made->count = count;
    for (int i = 0; i < count; i++)
        snprintf(made->keys[i], sizeof made->keys[i], "%s", keys[i]);
    return made;
}

int configure_key_IsChanged(configure *conf, const void *key_set)
{
    const struct key_set *const asked = key_set;
    int first = -1;
    pthread_mutex_lock(&lock);
    for (int i = 0; asked != NULL && i < asked->count; i++) {
        struct entry *const entry = *place_of(conf, asked->keys[i]);
        if (entry == NULL || strcmp(entry->asked, entry->value) == 0)
            continue;
        memcpy(entry->asked, entry->value, sizeof entry->asked);
        if (first < 0)
            first = i;
    }
    pthread_mutex_unlock(&lock);
    return first;
}

int loop_2_conf(void *file, const char *key, const char *value)
{
    if (file != NULL)
        fprintf(file, "%s = \"%s\"\n", key, value);
    return 0;
}

int loop_2_buf(void *state, const char *key, const char *value)
{
    conf_buffer_state *const dump = state;
    const size_t room = (size_t)(dump->size - dump->used);
    const int length = snprintf(dump->buffer + dump->used, room, "%s = \"%s\"\n", key, value);
    if (length >= 0 && (size_t)length < room) {
        dump->used += length;
        return 0;
    }
    dump->overflow = 1;
    if (room > 0)
        dump->buffer[dump->used] = '\0';
    return 0;
}
