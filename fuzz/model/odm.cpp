#include "fuzz/model/odm.h"

#include <strings.h>

#include <utility>

static const char file_name[] = "persist/odm.json";

void model_odm::load(const cJSON *root)
{
    document.emplace();
    const cJSON *child = nullptr;
    cJSON_ArrayForEach(child, root)
    {
        tree_ptr copy(cJSON_Duplicate(child, 1));
        document->push_back({child->string, std::move(copy), child->valueint});
    }
}

void model_odm::start()
{
    forget();
    document.reset();
    folder_missed = disk.gone || !disk.has_persist_folder;
    const auto text = disk.recover(file_name, text_form::json_object, flags);
    if (!text)
        return;
    const tree_ptr root = parse_json(*text);
    if (root == nullptr) {
        flags |= PARA_STATUS_LOAD_FAILED;
        return;
    }
    load(root.get());
    int version = 0;
    get_int("version", version);
    if (version != 1)
        set_int("version", 1);
}

bool model_odm::save()
{
    if (!may_be_saved())
        return false;
    if (disk.guard || folder_missed)
        disk.has_persist_folder = disk.has_persist_folder || !disk.gone;
    folder_missed = false;
    if (!document) {
        changed = false;
        end_save(true); // nothing to write
        return true;
    }
    const tree_ptr root(cJSON_CreateObject());
    for (const item &each : *document)
        cJSON_AddItemToObject(root.get(), each.key.c_str(), cJSON_Duplicate(each.value.get(), 1));
    return write(file_name, print_json(root.get()) + '\0');
}

// Keys are compared as the JSON library does.
const model_odm::item *model_odm::find(const std::string &key) const
{
    for (const item &each : *document) {
        if (strcasecmp(each.key.c_str(), key.c_str()) == 0)
            return &each;
    }
    return nullptr;
}

int model_odm::get_int(const std::string &key, int &value) const
{
    if (!document)
        return -1;
    const item *const found = find(key);
    if (found == nullptr)
        return -2;
    value = found->number;
    return 0;
}

int model_odm::get_text(const std::string &key, std::string &text) const
{
    if (!document)
        return -1;
    const item *const found = find(key);
    if (found == nullptr)
        return -2;
    const char *const known = cJSON_GetStringValue(found->value.get());
    text = std::string(known != nullptr ? known : "").substr(0, 255);
    return 0;
}

model_odm::item *model_odm::item_to_set(const std::string &key)
{
    if (!document) {
        document.emplace();
        document->push_back({"version", tree_ptr(cJSON_CreateNumber(1)), 1});
    }
    return const_cast<item *>(find(key));
}

bool model_odm::set_int(const std::string &key, int value)
{
    item *const found = item_to_set(key);
    if (found == nullptr) {
        document->push_back({key, tree_ptr(cJSON_CreateNumber(value)), value});
    } else if (found->number == value) {
        return false;
    } else {
        found->number = value;
        cJSON_SetNumberValue(found->value.get(), value); // seen in the file of a number alone
    }
    accept_change();
    return true;
}

bool model_odm::set_text(const std::string &key, const std::string &text)
{
    item *const found = item_to_set(key);
    if (found == nullptr) {
        document->push_back({key, tree_ptr(cJSON_CreateString(text.c_str())), 0});
    } else {
        const char *const known = cJSON_GetStringValue(found->value.get());
        if (known != nullptr && text == known)
            return false;
        if (known != nullptr)
            cJSON_SetValuestring(found->value.get(), text.c_str());
    }
    accept_change();
    return true;
}
