#include "fuzz/model/disk.h"

#include <cstring>

#include "camparam/guard.h"
#include "fuzz/support/json.h"

bool model_disk::can_open(const std::string &name) const
{
    return !gone && (has_persist_folder || name.rfind("persist/", 0) != 0);
}

bool model_disk::write_in_place(const std::string &name, const std::string &bytes)
{
    if (!can_open(name))
        return false;
    opened++;
    files[name] = fits(bytes) ? bytes : bytes.substr(0, *limit);
    return fits(bytes);
}

bool model_disk::write(const std::string &name, const std::string &bytes)
{
    if (guard) {
        const bool is_late = missed.count(name) != 0 && files.count(name) != 0;
        if (!can_open(name) || !fits(bytes) || is_late)
            return false;
        files[name + ".bak"] = bytes;
        missed.erase(name);
    }
    return write_in_place(name, bytes);
}

// The text of a file, which ends at its first zero byte.
static std::string text_of(const std::string &bytes)
{
    return bytes.substr(0, bytes.find('\0'));
}

static bool is_usable(const std::string &text, text_form form)
{
    if (form == text_form::conf)
        return true;
    const tree_ptr root = parse_json(text);
    return form == text_form::json_object ? cJSON_IsObject(root.get()) != 0 : root != nullptr;
}

static bool is_torn(const std::string &text, const std::string &backup)
{
    return text.size() < backup.size() && backup.compare(0, text.size(), text) == 0;
}

std::optional<std::string> model_disk::look_for(const std::string &name)
{
    const auto file = files.find(name);
    missed.erase(name);
    if (!can_open(name))
        missed.insert(name);
    if (gone || file == files.end())
        return std::nullopt;
    return file->second;
}

std::optional<std::string> model_disk::recover(const std::string &name, text_form form,
                                               unsigned &flags)
{
    const auto file = look_for(name);
    if (!file)
        return std::nullopt;
    const std::string text = text_of(*file);
    const std::string whole = form == text_form::conf ? *file : text;
    if (!guard)
        return whole;

    const auto found = files.find(name + ".bak");
    std::optional<std::string> backup;
    if (found != files.end() && is_usable(text_of(found->second), form))
        backup = text_of(found->second);
    const bool torn = backup && is_torn(text, *backup);
    if (!torn && is_usable(text, form))
        return whole;
    if (!torn) {
        files[name + ".bad"] = *file;
        files.erase(name);
        flags |= PARA_STATUS_KEPT_BAD;
    }
    if (!backup)
        return std::nullopt;
    flags |= PARA_STATUS_RESTORED;
    files[name] = form == text_form::conf ? *backup : *backup + '\0';
    return backup;
}
