// Saving the current values of a module with fixed members.
#include "base/file.h"
#include "base/json_writer.h"
#include "modules/fixed/fixed_module.h"
#include "modules/fixed/module_file.h"

int module_due(const fixed_module &module)
{
    return change_due(module.stamp, load_word(*module.save_delay_ms)) ? 1 : 0;
}

int save_after(const fixed_module &module, int delay_ms)
{
    if (change_due(module.stamp, delay_ms)) {
        clear_change(module.stamp);
        save_module(module);
    }
    return 0;
}

static void write_current_values(const fixed_module &module, json_writer &text)
{
    if (module.instances == nullptr) {
        answer_all(module, module.values.cur, 0, nullptr, text);
        return;
    }
    text.open(nullptr);
    for (int instance = 0; instance < instance_count(module); instance++) {
        const instance_key key(module, instance);
        answer_all(module, module.values.cur, instance, key.text, text);
    }
    text.close();
}

int save_module(const fixed_module &module)
{
    if (!may_be_saved(*module.stamp.saves))
        return refuse_save(module.name);
    const unsigned changes = counted_changes(module.stamp);
    json_writer text;
    write_current_values(module, text);
    const write_result written =
        write_text_file(current_file(module).text, text.written(), *module.stamp.saves);
    // After formatting, and also when nothing was written (VideoSave.AFailedSaveIsNotRetried).
    clear_change(module.stamp);
    return end_save(module.stamp, changes, written);
}
