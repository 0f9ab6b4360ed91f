// Picture styles: named sets of ISP values, one of which gives the defaults.
#include <cstdlib>
#include <cstring>

#include "camparam/odm.h"
#include "modules/fixed/isp.h"
#include "modules/fixed/module_file.h"

// Fixed after start-up; the list points into the document, which is kept for good.
static cJSON *json_style_file;
using style_object = cJSON *;
static style_object *style_list;      // a style's object, or null
static isp_record *isp_para_in_style; // its values
static int isp_style_num;
static int isp_style_excute_by_arm;
static int isp_antiflicker_def_odm = -1; // -1: none

// Any thread.
static int isp_style_def_index;

// The settings of the style file that concern all styles.
static void read_settings()
{
    const cJSON *const def = find_item(json_style_file, "isp0_style_def");
    if (def != nullptr)
        store_word(isp_style_def_index, def->valueint);
    const cJSON *const by_arm = find_item(json_style_file, "style_excute_by_arm");
    if (by_arm != nullptr)
        isp_style_excute_by_arm = by_arm->valueint;
}

// The ODM store wins over the style file.
static void read_overrides()
{
    int value = 0;
    if (para_get_odm_int(odm_style_def, &value) == 0)
        store_word(isp_style_def_index, value);
    if (para_get_odm_int(odm_antiflicker_def, &value) == 0)
        isp_antiflicker_def_odm = value;
}

static void add_style(const trace_site &site, int index, const char *name)
{
    isp_record &record = isp_para_in_style[index];
    record.size = static_cast<int>(sizeof record);

    cJSON *const style = find_item(json_style_file, name);
    style_list[index] = style;
    if (style == nullptr) {
        PARA_TRACE_AT(site, PARA_INFO, "error can not find style %s", name != nullptr ? name : "");
        return;
    }
    PARA_TRACE_AT(site, PARA_INFO, "find style[%d]:%s", index, name);
    cJSON *const number = find_item(style, "style");
    if (number != nullptr)
        cJSON_SetNumberValue(number, index); // the list position overrides the file's value
    read_values(isp, &record.size, style);
}

static int allocate_styles(int count)
{
    const auto places = static_cast<size_t>(count);
    style_list = static_cast<style_object *>(calloc(places, sizeof(style_object)));
    isp_para_in_style = static_cast<isp_record *>(calloc(places, sizeof *isp_para_in_style));
    if (style_list == nullptr || isp_para_in_style == nullptr) {
        free(style_list);
        free(isp_para_in_style);
        style_list = nullptr;
        isp_para_in_style = nullptr;
        return 0;
    }
    isp_style_num = count;
    return count;
}

int para_init_isp_style()
{
    json_file file = read_json_file(home_file(isp, "_def.json").text);
    json_style_file = file.root.release();
    if (json_style_file == nullptr) {
        if (file.readable)
            PARA_TRACE(PARA_INFO, "Error before: [%s]\n", file.error);
        return -1;
    }

    read_settings();
    const cJSON *const list = find_item(json_style_file, "isp0_style_list");
    if (list == nullptr) {
        PARA_TRACE(PARA_INFO, "error");
        return -1;
    }
    const int count = cJSON_GetArraySize(list);
    read_overrides();
    PARA_TRACE(PARA_INFO, "style_excute_by_arm:%d,total_style:%d,style_def:%d,antiflicker_def:%d",
               isp_style_excute_by_arm, count, load_word(isp_style_def_index),
               isp_antiflicker_def_odm);

    if (count > 0 && allocate_styles(count) == 0)
        return -1;
    int index = 0;
    const cJSON *entry = nullptr;
    cJSON_ArrayForEach(entry, list)
    {
        add_style(PARA_HERE, index++, entry->valuestring);
    }
    return 0;
}

cJSON *get_isp_style_json(int index)
{
    return index >= 0 && index < isp_style_num ? style_list[index] : nullptr;
}

int para_get_isp_style_def_index(int)
{
    return load_word(isp_style_def_index);
}

int para_set_isp_style_def_index(int, int index)
{
    if (get_isp_style_json(index) == nullptr)
        return -1;
    store_word(isp_style_def_index, index);
    return 0;
}

int para_set_isp_style_def(int instance, int index)
{
    if (!is_isp_instance(instance) || para_set_isp_style_def_index(instance, index) != 0)
        return -1;
    read_defaults(isp, instance, get_isp_style_json(index));
    para_set_odm_int(odm_style_def, index);
    return parse_isp_def_odm(&para_isp_def[instance]);
}

const char *para_get_isp_style_string(int index)
{
    const cJSON *const style = get_isp_style_json(index);
    return style != nullptr ? style->string : nullptr;
}

int para_get_isp_style_index(const char *name)
{
    for (int index = 0; name != nullptr && index < isp_style_num; index++) {
        const char *const known = para_get_isp_style_string(index);
        if (known != nullptr && strcmp(known, name) == 0)
            return index;
    }
    return -1;
}

isp_record *para_get_isp_style_param(int instance, int index)
{
    if (!is_isp_instance(instance) || get_isp_style_json(index) == nullptr)
        return nullptr;
    isp_record &record = isp_para_in_style[index];
    store_word(record.antiflicker, para_get_isp_antiflicker_cur(instance));
    return &record;
}

int para_isp_style_excute_by_arm()
{
    return isp_style_excute_by_arm;
}

int parse_isp_def_odm(isp_record *record)
{
    if (isp_antiflicker_def_odm >= 0)
        store_word(record->antiflicker, isp_antiflicker_def_odm);
    return 0;
}
