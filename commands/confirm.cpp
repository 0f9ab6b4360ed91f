// The command "confirm": sets values that are taken back unless they are confirmed in time, such as
// addresses by which the camera may be out of reach.
#include <pthread.h>

#include <algorithm>
#include <utility>

#include "base/lock.h"
#include "checked.h"
#include "command.h"
#include "moment.h"
#include "setting.h"
#include "worker.h"

namespace {

constexpr int most_seconds = 3600;

pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER; // guards what follows
// By module and member; null: nothing waits to be confirmed. Owned.
cJSON *old_values, *new_values;
long long end_ms;

// The members of each module, as "MODULE.MEMBER".
void list_waiting(json_builder &reply, const char *key)
{
    cJSON *const names = reply.array(reply.root(), key);
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, new_values)
    {
        const cJSON *member = nullptr;
        cJSON_ArrayForEach(member, module)
        {
            reply.append(names, setting_name(module->string, member->string).text);
        }
    }
}

void forget()
{
    cJSON_Delete(std::exchange(old_values, nullptr));
    cJSON_Delete(std::exchange(new_values, nullptr));
}

// --- Taking back, on the kit's own thread ---

// What nobody has changed since.
void take_back(const cJSON *old, const cJSON *set)
{
    const descriptions texts;
    const module_settings now(old->string, texts);
    json_builder values;
    const cJSON *value = nullptr;
    cJSON_ArrayForEach(value, old)
    {
        const cJSON *const current =
            cJSON_GetObjectItemCaseSensitive(now.find(value->string), "current");
        if (cJSON_Compare(current, cJSON_GetObjectItemCaseSensitive(set, value->string), 1) != 0)
            values.value(values.root(), value->string, json_ptr(cJSON_Duplicate(value, 1)));
    }
    const json_ptr members = values.take();
    if (now.exists() && members != nullptr)
        set_members(now.module(), members.get());
}

void take_all_back()
{
    json_ptr old, set;
    {
        const lock_guard guard(mutex);
        if (old_values == nullptr || monotonic_ms() < end_ms)
            return; // confirmed, and perhaps others begun
        old.reset(std::exchange(old_values, nullptr));
        set.reset(std::exchange(new_values, nullptr));
    }
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, old.get())
    {
        take_back(module, cJSON_GetObjectItemCaseSensitive(set.get(), module->string));
    }
}

// --- Setting ---

// The values in force of what is to be set. Null when one cannot be told, or is a module's of the
// host's own, which may be set by the store's thread alone.
json_ptr values_in_force(const cJSON *wanted, const descriptions &texts, outcome &result)
{
    json_builder values;
    bool all = true;
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, wanted)
    {
        const module_settings now(module->string, texts);
        cJSON *const of_module = values.object(values.root(), module->string);
        const cJSON *member = nullptr;
        cJSON_ArrayForEach(member, module)
        {
            const cJSON *const current =
                cJSON_GetObjectItemCaseSensitive(now.find(member->string), "current");
            const bool can_be = now.is_of_store() && current != nullptr;
            if (!can_be)
                result.add(setting_name(module->string, member->string).text,
                           {"cannot be taken back"});
            else
                values.value(of_module, member->string, json_ptr(cJSON_Duplicate(current, 1)));
            all = all && can_be;
        }
    }
    return all ? values.take() : nullptr;
}

void set_all(const cJSON *wanted, const descriptions &texts, outcome &result)
{
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, wanted)
    {
        const module_settings before(module->string, texts);
        const bool had_memory = set_members(before.module(), module);
        const module_settings now(module->string, texts);
        if (!had_memory || !now.is_complete())
            result.lack();
        const cJSON *member = nullptr;
        cJSON_ArrayForEach(member, module)
        {
            const cJSON *const current =
                cJSON_GetObjectItemCaseSensitive(now.find(member->string), "current");
            result.add(setting_name(module->string, member->string).text,
                       cJSON_Compare(current, member, 1) != 0 ? no_reason : reason{"not taken"});
        }
    }
}

bool is_waiting()
{
    const lock_guard guard(mutex);
    return old_values != nullptr;
}

// From now on what is set is taken back, unless it is confirmed.
bool begin(json_ptr old, json_ptr set, int seconds)
{
    const lock_guard guard(mutex);
    end_ms = monotonic_ms() + seconds * 1000LL;
    if (old == nullptr || set == nullptr || !do_at(end_ms, take_all_back))
        return false;
    old_values = old.release();
    new_values = set.release();
    return true;
}

void set_for(int seconds, const cJSON *wanted, json_builder &reply)
{
    outcome result(reply);
    if (is_waiting()) {
        refuse_values(wanted, {"another change waits to be confirmed"}, result);
        return;
    }
    if (refuse_faulty_values(wanted, result) > 0)
        return;
    const descriptions texts;
    json_ptr old = values_in_force(wanted, texts, result);
    if (old == nullptr)
        return;
    if (begin(std::move(old), json_ptr(cJSON_Duplicate(wanted, 1)), seconds))
        set_all(wanted, texts, result);
    else
        refuse_values(wanted, {"cannot be taken back"}, result);
}

void confirm(json_builder &reply)
{
    const lock_guard guard(mutex);
    list_waiting(reply, "confirmed");
    forget();
}

void tell_waiting(json_builder &reply)
{
    const lock_guard guard(mutex);
    list_waiting(reply, "waiting");
    if (old_values != nullptr) {
        const long long seconds = (std::max(end_ms - monotonic_ms(), 0LL) + 999) / 1000;
        reply.number(reply.root(), "seconds", static_cast<double>(seconds));
    }
}

bool holds_objects(const cJSON *modules)
{
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, modules)
    {
        if (!cJSON_IsObject(module))
            return false;
    }
    return cJSON_IsObject(modules) != 0;
}

} // namespace

answered answer_confirm(const request &request, json_builder &reply)
{
    if (request.mode == PARA_GET) {
        tell_waiting(reply);
        return answered::now;
    }
    const cJSON *const wanted = cJSON_GetObjectItemCaseSensitive(request.data, "set");
    if (wanted == nullptr) {
        confirm(reply);
        return answered::now;
    }
    const cJSON *const seconds = cJSON_GetObjectItemCaseSensitive(request.data, "seconds");
    if (!holds_objects(wanted) || !is_int(seconds) || seconds->valueint < 1 ||
        seconds->valueint > most_seconds)
        return answered::invalid;
    set_for(seconds->valueint, wanted, reply);
    return answered::now;
}
