// The trace dump of a module with fixed members.
#include "modules/fixed/fixed_module.h"

static void page_row(const fixed_module &module, const fixed_member &member, int slot,
                     const trace_site &site)
{
    const value_tables &values = module.values;
    if (!member.queried || (module.rules.page_needs_presence && load_word(values.exist[slot]) == 0))
        return;
    PARA_TRACE_AT(site, PARA_INFO, "%16s : cur:[%d],\tdef:[%d],\trange:[%d,%d]", member.key,
                  load_word(values.cur[slot]), load_word(values.def[slot]),
                  load_word(values.min[slot]), load_word(values.max[slot]));
}

static void page_instance(const fixed_module &module, int instance, const trace_site &site)
{
    for (const fixed_member &member : module.members)
        page_row(module, member, slot_of(module, instance, member), site);
}

void page_module(const fixed_module &module, const trace_site &site)
{
    PARA_TRACE_AT(site, PARA_INFO, "----------%s PARAM-----------\n", module.title);
    for (int instance = 0; instance < instance_count(module); instance++) {
        if (module.instances != nullptr)
            module.instances->page_title(instance, site);
        page_instance(module, instance, site);
    }
    PARA_TRACE_AT(site, PARA_INFO, "--------------------------------\n");
}
