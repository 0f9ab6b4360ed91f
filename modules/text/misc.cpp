// The module "misc": its two file sets, and its typed accessors.
#include "camparam/misc.h"

#include <cstdio>
#include <cstring>

#include "base/file.h"
#include "base/text.h"
#include "base/trace.h"
#include "camparam/control.h"
#include "camparam/json_util.h"

const char *const hdmivideoformat[] = {
#define MISC_HDMIVIDEOFORMAT(text) text,
#include "camparam/misc_texts.def"
};
const char *const ViStrategy[] = {
#define MISC_VISTRATEGY(text) text,
#include "camparam/misc_texts.def"
};
const char *const ndi_mode[] = {
#define MISC_NDI_MODE(text) text,
#include "camparam/misc_texts.def"
};

// The number item of the range tree that tells the file set; null until "misc" is loaded.
static const cJSON *misc_version;

static bool is_current_set()
{
    return misc_version->valueint != 0;
}

// --- Typed accessors ---

static int set_and_tell(const char *member, int value, int (*setter)(int))
{
    const int result = _para_set_json_cur("misc", member, value);
    if (result == 1 && para_profile.misc_set_notify_hook != nullptr)
        para_profile.misc_set_notify_hook("misc", reinterpret_cast<para_entry_point>(setter),
                                          member, value);
    return result;
}

#define MISC_MEMBER(name)                                                                          \
    int para_get_misc_##name##_min()                                                               \
    {                                                                                              \
        return para_get_json_min("misc", #name);                                                   \
    }                                                                                              \
    int para_get_misc_##name##_max()                                                               \
    {                                                                                              \
        return para_get_json_max("misc", #name);                                                   \
    }                                                                                              \
    int para_get_misc_##name##_def()                                                               \
    {                                                                                              \
        return para_get_json_def("misc", #name);                                                   \
    }                                                                                              \
    int para_get_misc_##name##_cur()                                                               \
    {                                                                                              \
        return para_get_json_cur("misc", #name);                                                   \
    }                                                                                              \
    int para_set_misc_##name##_cur(int value)                                                      \
    {                                                                                              \
        return set_and_tell(#name, value, para_set_misc_##name##_cur);                             \
    }
#include "camparam/misc_members.def"

#define MISC_ENUM_MEMBER(name)                                                                     \
    const char *para_get_misc_##name##_str(int position)                                           \
    {                                                                                              \
        return para_get_json_emum_str("misc", #name, position);                                    \
    }                                                                                              \
    int para_get_misc_##name##_num(const char *text)                                               \
    {                                                                                              \
        return para_get_json_enum_index("misc", #name, text);                                      \
    }                                                                                              \
    int para_set_misc_##name##_cur_bystr(const char *text)                                         \
    {                                                                                              \
        return para_set_json_cur_str("misc", #name, text);                                         \
    }
#include "camparam/misc_members.def"

// --- Legacy ranges ---

struct name_table {
    const char *member;
    const char *const *names;
    int count;
};

static const name_table *table_of(const char *member)
{
    static const name_table tables[] = {
#define MISC_ENUM_MEMBER(name) {#name, name, sizeof name / sizeof name[0]},
#include "camparam/misc_members.def"
    };
    for (const name_table &table : tables) {
        if (strcmp(table.member, member) == 0)
            return &table;
    }
    return nullptr;
}

// The stretch from the first table text that begins with the one name to the one that begins with
// the other. The end is looked for from the beginning of the table on, so a pair in the wrong order
// gives a list that is short or empty (MiscWidening.* tests).
static cJSON *widened(const name_table &table, const char *first, const char *last)
{
    cJSON *const list = cJSON_CreateArray();
    bool started = false;
    for (int i = 0; i < table.count; i++) {
        started = started || begins_with(table.names[i], first);
        if (started)
            cJSON_AddItemToArray(list, cJSON_CreateString(table.names[i]));
        if (begins_with(table.names[i], last))
            break;
    }
    return list;
}

// The member of the new range, or null for one that is dropped.
static cJSON *fixed_member(const cJSON *old_member)
{
    if (!cJSON_IsArray(old_member))
        return nullptr;
    const cJSON *const first = cJSON_GetArrayItem(old_member, 0);
    const cJSON *const last = cJSON_GetArrayItem(old_member, 1);
    if (first == nullptr || last == nullptr)
        return nullptr;

    const name_table *const table = table_of(old_member->string);
    if (table == nullptr)
        return cJSON_Duplicate(old_member, 1);
    if (!cJSON_IsString(first) || !cJSON_IsString(last))
        return nullptr;
    return widened(*table, first->valuestring, last->valuestring);
}

cJSON *fix_old_misc_range_conf(const cJSON *old_range)
{
    cJSON *const range = cJSON_CreateObject();
    cJSON_AddNumberToObject(range, "version", 0);
    const cJSON *old_member = nullptr;
    cJSON_ArrayForEach(old_member, old_range)
    {
        if (old_member->string == nullptr)
            continue;
        PARA_TRACE(PARA_INFO, "element is %s,size:%d", old_member->string,
                   cJSON_GetArraySize(old_member));
        cJSON *const member = fixed_member(old_member);
        if (member != nullptr)
            cJSON_AddItemToObject(range, old_member->string, member);
    }
    return range;
}

// --- Loading ---

int fix_old_misc_def_cur_conf(const char *path, configure *conf)
{
    const json_file file = read_json_file(path, __func__, PARA_ERROR, "");
    if (!file.root)
        return -1;
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, file.root.get())
    {
        char number[32];
        if (member->string == nullptr)
            continue;
        const char *const text =
            cJSON_IsString(member) ? member->valuestring : lib_itoa(member->valueint, number);
        conf->conf_set(conf, member->string, text);
    }
    return 0;
}

int para_init_misc_legacy_test()
{
    return 0;
}

// The range tree of either set, with its version in misc_version; null when there is none.
static cJSON *load_range(const char *function)
{
    const file_path path(para_profile.home_dir, "misc_range.json");
    json_file file = read_json_file(path.text, function, PARA_ERROR, "");
    if (!file.readable)
        PARA_TRACE_AS(function, PARA_ERROR, "Error range def buf");
    if (!file.root)
        return nullptr;

    const cJSON *const version = cJSON_GetObjectItem(file.root.get(), "version");
    const bool current_set = version != nullptr && version->valueint != 0;
    cJSON *const range =
        current_set ? file.root.release() : fix_old_misc_range_conf(file.root.get());
    misc_version = cJSON_GetObjectItem(range, "version");
    cJSON_Print_safe(range);
    return range;
}

static int load_current_set(configure *cur, configure *def)
{
    const file_path home(para_profile.home_dir, "misc.conf");
    if (configure_parse(def, 0, home.text) != 0)
        return -1;
    configure_parse(cur, 0, home.text);
    configure_parse(cur, 0, file_path(para_profile.data_dir, "misc.conf").text);
    return 0;
}

static int load_legacy_set(configure *cur, configure *def)
{
    const file_path defaults(para_profile.home_dir, "misc_def.json");
    fix_old_misc_def_cur_conf(defaults.text, def);
    fix_old_misc_def_cur_conf(defaults.text, cur);
    fix_old_misc_def_cur_conf(file_path(para_profile.data_dir, "misc_cur.json").text, cur);
    return 0;
}

int para_init_misc_legacy(const char *, configure **cur, configure **def, cJSON **range)
{
    *cur = configure_init();
    *def = configure_init();
    PARA_TRACE(PARA_INFO, "enter");
    *range = load_range(__func__);
    if (*range == nullptr)
        return -1;

    PARA_TRACE(PARA_INFO, "enter misc version:%d", misc_version->valueint);
    const int result =
        is_current_set() ? load_current_set(*cur, *def) : load_legacy_set(*cur, *def);
    if (result == 0)
        para_init_misc_legacy_test();
    return result;
}

// --- Saving ---

// Without the lock that other modules' files are written under.
static int save_current_set(configure *cur)
{
    const file_path path(para_profile.data_dir, "misc.conf");
    FILE *const file = fopen(path.text, "wb");
    if (file == nullptr)
        return 0;
    cur->conf_loop(cur, loop_2_conf, file);
    const int flushed = fflush(file);
    fclose(file);
    return flushed;
}

static int save_legacy_set(const char *name)
{
    const json_ptr root(cJSON_CreateObject());
    Create_Json_Misc_Object(name, root.get(), 0);
    return write_json_file(file_path(para_profile.data_dir, "misc_cur.json").text, root.get());
}

int para_save_misc_legacy(const char *name, configure *cur)
{
    if (misc_version == nullptr)
        return 0;
    return is_current_set() ? save_current_set(cur) : save_legacy_set(name);
}
