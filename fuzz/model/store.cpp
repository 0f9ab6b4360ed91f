#include "fuzz/model/store.h"

#include <filesystem>
#include <vector>

#include "camparam/camparam.h"
#include "fuzz/support/device.h"
#include "fuzz/support/target.h"

namespace {

unsigned observed_changes;

// Of one member; those of af and audio ignore the instance.
struct accessors {
    int (*def)(int), (*min)(int), (*max)(int), (*init)(int), (*cur)(int);
    int (*set)(int, int);
    int (*set_internally)(int, int);
};

#define GETTER(module, name, field) [](int) { return para_get_##module##_##name##_##field(); }
#define GETTERS(module, name)                                                                      \
    GETTER(module, name, def), GETTER(module, name, min), GETTER(module, name, max),               \
        GETTER(module, name, init), GETTER(module, name, cur)

const accessors af_accessors[] = {
#define AF_MEMBER(slot, name)                                                                      \
    {GETTERS(af, name), [](int, int value) { return para_set_af_##name##_cur(value); }, nullptr},
#include "camparam/af_members.def"
};

const accessors audio_accessors[] = {
#define AUDIO_MEMBER(slot, name)                                                                   \
    {GETTERS(audio, name), [](int, int value) { return para_set_audio_##name##_cur(value); },      \
     [](int, int value) { return _para_set_audio_##name##_cur(value); }},
#include "camparam/audio_members.def"
};

const accessors video_accessors[] = {
#define VIDEO_MEMBER(slot, name)                                                                   \
    {para_get_video_##name##_def,  para_get_video_##name##_min, para_get_video_##name##_max,       \
     para_get_video_##name##_init, para_get_video_##name##_cur, para_set_video_##name##_cur,       \
     _para_set_video_##name##_cur},
#include "camparam/video_members.def"
};

const accessors *accessors_of(const model_fixed &module, const model_device &device)
{
    if (&module == &device.af)
        return af_accessors;
    return &module == &device.audio ? audio_accessors : video_accessors;
}

void check_member(const model_fixed &module, const accessors &store, int instance, int member)
{
    const char *const name = module.members(instance)[static_cast<size_t>(member)].name;
    const fixed_value &model = module.value(instance, member);
    const struct {
        const char *field;
        int store, model;
    } pairs[] = {
        {"def", store.def(instance), model.def},
        {"min", store.min(instance), model.min},
        {"max", store.max(instance), model.max},
        {"init", store.init(instance), module.answered(instance, member, model.init)},
        {"cur", store.cur(instance), module.answered(instance, member, model.cur)},
    };
    for (const auto &pair : pairs)
        require(pair.store == pair.model, "%s %s of %d: %d, not %d", name, pair.field, instance,
                pair.store, pair.model);
}

void check_fixed(const model_fixed &module, const accessors *store)
{
    for (int instance = 0; instance < module.instances(); instance++) {
        for (size_t i = 0; i < module.members(instance).size(); i++)
            check_member(module, store[i], instance, static_cast<int>(i));
    }
}

std::string text_of(int (*write)(const char *, char *, int), const char *module)
{
    std::vector<char> buffer(4096);
    const int length = write(module, buffer.data(), static_cast<int>(buffer.size()));
    require(length > 0, "%s has no text", module);
    return std::string(buffer.data(), static_cast<size_t>(length) - 1);
}

void check_text(const model_text &module, const std::string &text)
{
    require(text == module.current().text(), "%s:\n%s, not\n%s", module.name(), text.c_str(),
            module.current().text().c_str());
}

void check_pattern(const model_pattern &module)
{
    const char *const name = module.name();
    check_text(module, text_of(para_save_misc_conf_2_buf, name));
    for (const pattern_traits &traits : module.members()) {
        require(para_get_json_min(name, traits.name) == module.lowest(traits.name) &&
                    para_get_json_max(name, traits.name) == module.highest(traits.name),
                "limits of %s", traits.name);
        require(para_get_json_def(name, traits.name) ==
                    module.number_in(module.defaults(), traits.name),
                "default of %s", traits.name);
        require(para_get_json_cur(name, traits.name) ==
                    module.number_in(module.current(), traits.name),
                "value of %s", traits.name);
    }
}

void check_conf(const model_conf &module)
{
    check_text(module, text_of(para_save_conf_2_buf, module.name()));
    for (const auto &[key, value] : module.defaults().entries()) {
        char text[256];
        require(para_conf_get_def_member_safe(module.name(), key.c_str(), text, sizeof text) == 0 &&
                    text == value,
                "default of %s", key.c_str());
    }
}

void check_odm(const model_odm &model, const std::string &key)
{
    int value = 0, expected = 0;
    const int result = para_get_odm_int(key.c_str(), &value);
    require(result == model.get_int(key, expected) && value == expected, "%s: %d", key.c_str(),
            value);
    char text[PARA_ODM_TEXT_MAX] = "";
    std::string expected_text;
    require(para_get_odm_string(key.c_str(), text) == model.get_text(key, expected_text) &&
                text == expected_text,
            "%s: %s", key.c_str(), text);
}

void check_status(const std::string &row, const para_module_status &model)
{
    para_module_status store = {};
    require(platformparam_get_status(row.c_str(), &store) == 0, "no status of %s", row.c_str());
    require(store.changes == model.changes && store.saved == model.saved,
            "%s: %u changes and %u saved, not %u and %u", row.c_str(), store.changes, store.saved,
            model.changes, model.saved);
    require((store.error != 0) == (model.error != 0), "%s: error %d", row.c_str(), store.error);
    require(store.flags == model.flags, "%s: flags %u, not %u", row.c_str(), store.flags,
            model.flags);
}

} // namespace

int call_setter(const model_fixed &module, const model_device &device, int instance, int member,
                int value)
{
    return accessors_of(module, device)[member].set(instance, value);
}

std::optional<int> call_internal_setter(const model_fixed &module, const model_device &device,
                                        int instance, int member, int value)
{
    const auto setter = accessors_of(module, device)[member].set_internally;
    return setter != nullptr ? std::optional<int>(setter(instance, value)) : std::nullopt;
}

void check_values(model_device &device)
{
    unsigned changes = 0;
    for (const model_module *const module : device.modules())
        changes += module->status().changes;
    require(observed_changes == changes, "%u changes were told, not %u", observed_changes, changes);
    for (const model_fixed *const module : {&device.af, &device.audio, &device.video})
        check_fixed(*module, accessors_of(*module, device));
    for (const model_pattern *const module : device.patterns())
        check_pattern(*module);
    check_conf(device.netport);
    for (const auto &[row, module] : device.rows())
        check_status(row, module->status());
    for (const std::string &key : odm_keys)
        check_odm(device.odm, key);
    require(count_syncs() == static_cast<int>(device.syncs), "%d syncs, not %u", count_syncs(),
            device.syncs);
}

void observe_changes()
{
    platformparam_set_change_observer(
        [](const char *, const struct sockaddr_in *) { observed_changes++; });
}

std::string data_folder(const model_device &device)
{
    return folders().data + (device.disk.gone ? ".gone" : "");
}

void check_files(const model_device &device)
{
    const std::string folder = data_folder(device);
    size_t files = 0;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file())
            continue;
        const std::string name = entry.path().string().substr(folder.size() + 1);
        const auto model = device.disk.files.find(name);
        require(model != device.disk.files.end(), "a file too many: %s", name.c_str());
        const std::string bytes = read_file(entry.path().string()).value_or("");
        require(bytes == model->second, "%s:\n%s, not\n%s", name.c_str(), bytes.c_str(),
                model->second.c_str());
        files++;
    }
    require(files == device.disk.files.size(), "%zu files, not %zu", files,
            device.disk.files.size());
}
