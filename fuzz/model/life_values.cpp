// Operations on values, by the accessors.
#include <algorithm>

#include "camparam/camparam.h"
#include "fuzz/model/life.h"
#include "fuzz/model/store.h"
#include "fuzz/support/target.h"

void life::set_fixed(model_fixed &module, bool internally)
{
    const int instance = input.choice(module.instances());
    const int member = input.choice(static_cast<int>(module.members(instance).size()));
    const fixed_value &slot = module.value(instance, member);
    const int value = chosen_value(slot.min, slot.max, slot.cur);
    const bool changes = module.set(instance, member, value);
    if (!live)
        return;
    if (internally)
        require(call_internal_setter(module, device, instance, member, value) == int{changes},
                "an internal setter, %d", value);
    else
        require(call_setter(module, device, instance, member, value) == 0, "a setter, %d", value);
}

void life::set_video_by_name()
{
    const int stream = input.choice(2);
    const name_list &names = *device.video.members(stream)[1].names;
    const std::string text = chosen_text(names);
    const auto found = std::find(names.begin(), names.end(), text);
    if (found != names.end())
        device.video.set(stream, 1, static_cast<int>(found - names.begin()));
    if (live)
        require(para_set_video_size_cur_bystr(stream, text.c_str()) ==
                    (found != names.end() ? 0 : -1),
                "the size %s", text.c_str());
}

void life::set_pattern()
{
    model_pattern &module = device.pattern(input.choice(2));
    const std::string member = chosen_key(members_of(module.name()));
    const int value = chosen_value(-1, 10, 5);
    const int result = module.set(member, value);
    if (live)
        require(para_set_json_cur(module.name(), member.c_str(), value) == result, "%s to %d",
                member.c_str(), value);
}

void life::set_pattern_text()
{
    model_pattern &module = device.pattern(input.choice(2));
    const std::string member = chosen_key(members_of(module.name()));
    const std::string text = chosen_text({"50", "osd", "red", "green", "re", "7"});
    const int result = module.set_text(member, text);
    if (live)
        require(para_set_json_cur_str(module.name(), member.c_str(), text.c_str()) == result,
                "%s to %s", member.c_str(), text.c_str());
}

void life::set_conf()
{
    const std::string key = chosen_key(members_of("netport"));
    const std::string text = chosen_text({"80", "8080", ""});
    const int result = device.netport.set(key, text);
    if (live)
        require(para_conf_set_member("netport", key.c_str(), text.c_str()) == result, "%s to %s",
                key.c_str(), text.c_str());
}

void life::set_odm_int()
{
    const std::string key = chosen_key(odm_keys);
    const int value = chosen_value(0, 2, 1);
    device.odm.set_int(key, value);
    if (live)
        require(para_set_odm_int(key.c_str(), value) == 0, "%s to %d", key.c_str(), value);
}

void life::set_odm_text()
{
    const std::string key = chosen_key(odm_keys);
    const std::string text = chosen_text({"one", "two", ""});
    device.odm.set_text(key, text);
    if (live)
        require(para_set_odm_string(key.c_str(), text.c_str()) == 0, "%s to %s", key.c_str(),
                text.c_str());
}
