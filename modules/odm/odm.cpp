// The ODM store: a JSON document with the device maker's overrides.
#include "camparam/odm.h"

#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <utility>

#include "base/backup.h"
#include "base/change.h"
#include "base/file.h"
#include "base/guard.h"
#include "base/json_writer.h"
#include "base/lock.h"
#include "base/observer.h"
#include "base/trace.h"
#include "base/word.h"
#include "camparam/control.h"
#include "modules/odm/rows.h"

// Never held while a hook runs: hooks may call the getters and setters.
static pthread_mutex_t document_mutex = PTHREAD_MUTEX_INITIALIZER;
static cJSON *json_odm_file; // null until a file is loaded or a value set

timespec odm_item_start_time;
static int odm_item_changed;
static save_state saves;
static constexpr change_stamp stamp = {
    .time = &odm_item_start_time, .changed = &odm_item_changed, .saves = &saves};

constexpr char row[] = PARA_ODM_ROW;

static int odm_persist_dir_missing;

// Of the data directory; empty when there is none.
static file_path persist_dir()
{
    if (para_profile.data_dir == nullptr)
        return file_path();
    return {para_profile.data_dir, "/persist/"};
}

static file_path store_path()
{
    if (para_profile.data_dir == nullptr)
        return {nullptr, "odm.json"};
    const file_path dir = persist_dir();
    return dir.text[0] != '\0' ? file_path(dir.text, "odm.json") : file_path();
}

// With the guard on it may have gone since start-up.
static void make_persist_dir_if_missing()
{
    if (load_word(odm_persist_dir_missing) == 0 && !guard_is_on())
        return;
    store_word(odm_persist_dir_missing, 0);
    mkdir(persist_dir().text, 0775);
}

static void move_legacy_file()
{
    if (para_profile.data_dir == nullptr)
        return;
    const file_path legacy(para_profile.data_dir, "isp_odm.json");
    if (is_missing(legacy.text))
        return;
    make_persist_dir_if_missing();
    rename(legacy.text, store_path().text);
}

int para_init_odm(const char *)
{
    if (access(persist_dir().text, F_OK) != 0)
        store_word(odm_persist_dir_missing, 1);
    move_legacy_file();

    json_file file = read_current_json(store_path().text, file_form::json_object, saves);
    if (file.starved)
        return note_load_failure(saves, row);
    if (!file.readable)
        return 0;
    if (!file.root) {
        PARA_TRACE(PARA_ERROR, "Error before: [%s]\n", file.error);
        return note_load_failure(saves, row);
    }

    const lock_guard guard(document_mutex);
    cJSON_Delete(json_odm_file);
    json_odm_file = file.root.release();
    return 0;
}

constexpr int current_version = 1;

int para_init_stage2_odm(const char *)
{
    int version = 0;
    const int result = para_get_odm_int("version", &version);
    if (result == -1 || version == current_version)
        return result;
    para_conflict_callback("odm", version, current_version);
    return para_set_odm_int("version", current_version);
}

// Stores the key's item. Returns 0; -1 when there is no document; -2 when the key is absent.
static int find_item(const char *key, const cJSON *&item)
{
    if (json_odm_file == nullptr)
        return -1;
    item = find_item(json_odm_file, key);
    return item != nullptr ? 0 : -2;
}

int para_get_odm_int(const char *key, int *value)
{
    const lock_guard guard(document_mutex);
    const cJSON *item = nullptr;
    const int result = find_item(key, item);
    if (result == 0)
        *value = item->valueint;
    return result;
}

int para_get_odm_string(const char *key, char *text)
{
    const lock_guard guard(document_mutex);
    const cJSON *item = nullptr;
    const int result = find_item(key, item);
    if (result == 0)
        snprintf(text, PARA_ODM_TEXT_MAX, "%s", cJSON_IsString(item) ? item->valuestring : "");
    return result;
}

// What became of a set; starved: memory ran out, and nothing is changed.
enum class outcome { same, changed, starved };

static outcome set_number(cJSON *document, const char *key, int value)
{
    cJSON *const item = find_item(document, key);
    if (item == nullptr)
        return add_number(document, key, value) ? outcome::changed : outcome::starved;
    if (item->valueint == value)
        return outcome::same;
    cJSON_SetNumberValue(item, value);
    return outcome::changed;
}

// A null text, and a text for an item that is none, count as changes and store nothing.
static outcome set_text(cJSON *document, const char *key, const char *text)
{
    if (text == nullptr)
        return outcome::changed;
    cJSON *const item = find_item(document, key);
    if (item == nullptr)
        return add_text(document, key, text) ? outcome::changed : outcome::starved;
    if (item->valuestring != nullptr && strcmp(item->valuestring, text) == 0)
        return outcome::same;
    if (cJSON_IsString(item) && cJSON_SetValuestring(item, text) == nullptr)
        return outcome::starved;
    return outcome::changed;
}

static json_ptr new_document()
{
    json_ptr created(cJSON_CreateObject());
    return add_number(created.get(), "version", current_version) ? std::move(created) : nullptr;
}

// Sets in the document, and makes one if there is none. Returns 1 when it changed, else 0.
template <typename setter> static int set_in_document(const setter &set)
{
    const lock_guard guard(document_mutex);
    json_ptr created = json_odm_file == nullptr ? new_document() : nullptr;
    cJSON *const document = created ? created.get() : json_odm_file;
    const outcome result = document != nullptr ? set(document) : outcome::starved;
    if (created && result != outcome::starved)
        json_odm_file = created.release();
    return result == outcome::changed ? 1 : 0;
}

namespace {

// A value before it is changed, for the observers: none is kept while there are none.
class kept_value {
public:
    // With the document's lock held.
    void keep(const cJSON *item)
    {
        if (item == nullptr || !has_observers())
            return;
        const char *const found = cJSON_GetStringValue(item);
        snprintf(text, sizeof text, "%s", found != nullptr ? found : "");
        value = {.exists = 1, .text = found != nullptr ? text : nullptr, .number = item->valueint};
    }
    const para_value &told() const { return value; }

private:
    para_value value = {};
    char text[PARA_ODM_TEXT_MAX];
};

} // namespace

static void note_change(const char *key, const kept_value &before, const para_value &after)
{
    count_change(stamp);
    tell_change({.module = row,
                 .instance = 0,
                 .member = key,
                 .old_value = before.told(),
                 .new_value = after,
                 .sender = nullptr});
}

int _para_set_odm_int(const char *key, int value)
{
    if (key == nullptr)
        return 0;
    kept_value before;
    const int changed = set_in_document([&](cJSON *document) {
        before.keep(find_item(document, key));
        return set_number(document, key, value);
    });
    if (changed != 0)
        note_change(key, before, {.exists = 1, .text = nullptr, .number = value});
    return changed;
}

int _para_set_odm_string(const char *key, const char *text)
{
    if (key == nullptr)
        return 0;
    kept_value before;
    const int changed = set_in_document([&](cJSON *document) {
        before.keep(find_item(document, key));
        return set_text(document, key, text);
    });
    if (changed != 0)
        note_change(key, before, {.exists = text != nullptr ? 1 : 0, .text = text, .number = 0});
    return changed;
}

// The hook runs before the change is stamped (OdmSetter.TellsTheHookBeforeTheStamp).
static int tell_and_stamp(const char *key)
{
    if (para_profile.odm_set_notify_hook != nullptr)
        para_profile.odm_set_notify_hook(key);
    stamp_change(stamp);
    return 0;
}

int para_set_odm_int(const char *key, int value)
{
    return _para_set_odm_int(key, value) != 0 ? tell_and_stamp(key) : 0;
}

int para_set_odm_string(const char *key, const char *text)
{
    return _para_set_odm_string(key, text) != 0 ? tell_and_stamp(key) : 0;
}

int para_need_save_odm(const char *)
{
    return change_due(stamp, default_save_delay_ms) ? 1 : 0;
}

// Returns whether there is a document.
static bool print_document(json_writer &text)
{
    const lock_guard guard(document_mutex);
    if (json_odm_file != nullptr)
        text.document(json_odm_file);
    return json_odm_file != nullptr;
}

int para_save_odm(const char *)
{
    if (!may_be_saved(saves))
        return refuse_save(row);
    make_persist_dir_if_missing();
    const unsigned changes = counted_changes(stamp);
    clear_change(stamp); // before the document is read: a change from now on is saved again
    json_writer text;
    if (!print_document(text))
        return 0;
    return end_save(stamp, changes, write_text_file(store_path().text, text.written(), saves));
}

para_module_status odm_status(const char *)
{
    return status_of(saves);
}
