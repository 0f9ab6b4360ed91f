// Saving the current values of a module with fixed members.
#include <utility>

#include "base/file.h"
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

static json_ptr current_document(const fixed_module &module)
{
    if (module.instances == nullptr)
        return json_ptr(answer_all(module, module.values.cur, 0));

    json_ptr root(cJSON_CreateObject());
    for (int instance = 0; instance < instance_count(module); instance++) {
        const instance_key key(module, instance);
        json_ptr values(answer_all(module, module.values.cur, instance));
        if (!add_to_object(root.get(), key.text, std::move(values)))
            return nullptr;
    }
    return root;
}

int save_module(const fixed_module &module)
{
    if (!may_be_saved(*module.stamp.saves))
        return refuse_save(module.name);
    const unsigned changes = counted_changes(module.stamp);
    const printed_ptr text(cJSON_Print(current_document(module).get()));
    const write_result written =
        write_text_file(current_file(module).text, text.get(), *module.stamp.saves);
    // After formatting, and also when nothing was written (VideoSave.AFailedSaveIsNotRetried).
    clear_change(module.stamp);
    return end_save(module.stamp, changes, written);
}
