#include "default_style.h"

#include "device_file.h"
#include "json.h"

static const char *const default_index = "isp0_style_def";

static int number_in(const cJSON *object, int otherwise)
{
    const cJSON *const item = cJSON_GetObjectItem(object, default_index);
    return item != nullptr ? item->valueint : otherwise;
}

static json_ptr read_overrides(const std::string &data)
{
    const device_file file = read_device_file(data, "/persist/odm.json");
    return json_ptr(file.text ? cJSON_Parse(file.text.get()) : nullptr);
}

std::string default_style_fault(const cJSON *style_file, const std::string &data)
{
    const int index = number_in(read_overrides(data).get(), number_in(style_file, 0));
    const cJSON *const list = cJSON_GetObjectItem(style_file, "isp0_style_list");
    const char *const name = cJSON_GetStringValue(cJSON_GetArrayItem(list, index));
    if (name != nullptr && cJSON_IsObject(cJSON_GetObjectItem(style_file, name)))
        return "";
    return "the default style, number " + std::to_string(index) + " of its list, has no values";
}
