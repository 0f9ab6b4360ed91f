// Requests to the ISP module.
#include <cstring>

#include "base/answer_tree.h"
#include "base/text.h"
#include "modules/fixed/isp.h"
#include "modules/fixed/rows.h"

static int get_isp_member(const int *values, const char *name, int instance, int *value)
{
    return is_isp_instance(instance) ? get_member(isp, values, instance, name, value, nullptr) : 0;
}

int para_get_isp_cur_member(const char *name, int instance, int *value, const char **)
{
    return get_isp_member(isp.values.cur, name, instance, value);
}

int para_get_isp_def_member(const char *name, int instance, int *value, const char **)
{
    return get_isp_member(isp.values.def, name, instance, value);
}

cJSON *isp_param_to_json(int instance, int use_defaults)
{
    if (!is_isp_instance(instance))
        return cJSON_CreateObject();
    return tree_of_all(isp, use_defaults != 0 ? isp.values.def : isp.values.cur, instance);
}

// In slot order, so that "rgain_tuning" is taken by "rgain"
// (IspSetByName.LongerNamesAreTakenByShorterOnes).
int isp_set_member_by_name(const char *key, int instance, int number, const char *)
{
    const fixed_member *const member = find_member_by_prefix(isp, key);
    if (member == nullptr || !is_isp_instance(instance))
        return 0;
    return set_as_requested(isp, instance, *member, number, nullptr);
}

// What a query's key asks for: an instance and one of its tables; no values for any other key.
struct isp_query {
    int instance;
    const int *values;
};

static isp_query query_of(const char *key)
{
    struct {
        const char *suffix;
        const int *values;
    } const forms[] = {{.suffix = "", .values = isp.values.cur},
                       {.suffix = "_def", .values = isp.values.def},
                       {.suffix = "_cur_all", .values = isp.values.cur}};
    for (int instance = 0; instance < isp_num; instance++) {
        const instance_key name(isp, instance);
        if (!begins_with(key, name.text))
            continue;
        const char *const suffix = key + strlen(name.text);
        for (const auto &form : forms) {
            if (is_same(suffix, form.suffix))
                return {.instance = instance, .values = form.values};
        }
    }
    return {.instance = 0, .values = nullptr};
}

int answer_isp(const char *key, const cJSON *item, const char *, answer_sink &sink)
{
    const trace_site site = PARA_IN(para_get_isp_opt);
    PARA_TRACE_AT(site, PARA_DUMP, "inter %s", key);
    const isp_query query = query_of(key);
    if (query.values == nullptr)
        return 0;
    return answer_query(isp, query.values, query.instance, item, sink, site);
}
DEFINE_GET_OPT(isp)

constexpr int settable_keys = 6; // "isp0" to "isp5", of which two have a record

// The instance that the item's key names, or -1.
static int instance_to_set(const cJSON *item)
{
    for (int instance = 0; item->string != nullptr && instance < settable_keys; instance++) {
        if (is_same(item->string, instance_key(isp, instance).text))
            return instance;
    }
    return -1;
}

// Calls no hook (IspSetRequest.TellsNoHook).
int para_set_isp_opt(const char *, const cJSON *item, const char *)
{
    PARA_TRACE(PARA_INFO, "inter");
    const int instance = instance_to_set(item);
    if (instance < 0)
        return 0;
    set_each(item, [instance](const char *key, int number, const char *text) {
        return isp_set_member_by_name(key, instance, number, text);
    });
    return 0;
}
