// The command "confirm": sets values that are taken back unless they are confirmed in time, such as
// addresses by which the camera may be out of reach.
#include <pthread.h>

#include <algorithm>
#include <utility>

#include "base/lock.h"
#include "checked.h"
#include "command.h"
#include "moment.h"
#include "repeated.h"
#include "setting.h"
#include "worker.h"

namespace {

constexpr int most_seconds = 3600;
constexpr long long retry_ms = 1000; // when memory ran out

pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER; // guards what follows
// By module and member; null: nothing waits to be confirmed. Owned.
cJSON *old_values, *new_values;
long long end_ms;
bool is_taking_back; // the values are the kit's thread's until it is done

// The store's thread only.
given_answers answers;
bool is_told; // what waits: its client has an answer, or gets it when it asks again

bool is_waiting()
{
    return new_values != nullptr && !is_taking_back;
}

// The members of each module, as "MODULE.MEMBER".
void list_waiting(json_builder &reply, const char *key)
{
    cJSON *const names = reply.array(reply.root(), key);
    const cJSON *const modules = is_waiting() ? new_values : nullptr;
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, modules)
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

// What nobody has changed since. Returns false when memory ran out.
bool take_back(const cJSON *old, const cJSON *set)
{
    const descriptions texts;
    const module_settings now(old->string, texts);
    if (!now.exists())
        return true;
    if (!now.is_complete())
        return false;
    json_builder values;
    const cJSON *value = nullptr;
    cJSON_ArrayForEach(value, old)
    {
        if (now.is_in_force(cJSON_GetObjectItemCaseSensitive(set, value->string)))
            values.value(values.root(), value->string, json_ptr(cJSON_Duplicate(value, 1)));
    }
    const json_ptr members = values.take();
    return members != nullptr && set_members(now.module(), members.get());
}

bool begin_taking_back()
{
    const lock_guard guard(mutex);
    if (old_values == nullptr || monotonic_ms() < end_ms)
        return false; // confirmed, and perhaps others begun
    is_taking_back = true;
    return true;
}

void take_all_back()
{
    if (!begin_taking_back())
        return;
    bool all = true;
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, old_values)
    {
        all =
            take_back(module, cJSON_GetObjectItemCaseSensitive(new_values, module->string)) && all;
    }
    const lock_guard guard(mutex);
    if (!all) {
        do_at(monotonic_ms() + retry_ms, take_all_back);
        return;
    }
    forget();
    is_taking_back = false;
}

// --- Setting ---

// A value that a file has brought in may be outside the range.
bool can_be_set(const cJSON *member, const cJSON *value)
{
    const bool is_text = is_kind(member, "text"); // of any length
    return value != nullptr && (is_text || fault_of(member, value).text[0] == '\0');
}

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
        if (!now.is_complete())
            values.lack();
        cJSON *const of_module = values.object(values.root(), module->string);
        const cJSON *member = nullptr;
        cJSON_ArrayForEach(member, module)
        {
            const cJSON *const current = now.current(member->string);
            const bool can_be = now.is_of_store() && can_be_set(now.find(member->string), current);
            if (!can_be)
                result.add(setting_name(module->string, member->string).text,
                           {"cannot be taken back"});
            else
                values.value(of_module, member->string, json_ptr(cJSON_Duplicate(current, 1)));
            all = all && can_be;
        }
    }
    if (!values.is_complete())
        result.lack();
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
            result.add(setting_name(module->string, member->string).text,
                       now.is_in_force(member) ? no_reason : reason{"not taken"});
        }
    }
}

bool start_clock(int seconds)
{
    end_ms = monotonic_ms() + seconds * 1000LL;
    return do_at(end_ms, take_all_back);
}

// again: it waits already, but memory ran out before its client was told.
enum class attempt { first, again, too_early };

attempt attempt_at(const cJSON *wanted, int seconds)
{
    const lock_guard guard(mutex);
    if (new_values == nullptr)
        return attempt::first;
    const bool is_same = is_waiting() && !is_told && cJSON_Compare(new_values, wanted, 1) != 0;
    return is_same && start_clock(seconds) ? attempt::again : attempt::too_early;
}

// From now on what is set is taken back, unless it is confirmed.
bool begin(const cJSON *wanted, const descriptions &texts, int seconds, outcome &result)
{
    json_ptr old = values_in_force(wanted, texts, result), set(cJSON_Duplicate(wanted, 1));
    if (set == nullptr)
        result.lack();
    if (old == nullptr || set == nullptr)
        return false;
    const lock_guard guard(mutex);
    if (!start_clock(seconds)) {
        refuse_values(wanted, {"cannot be taken back"}, result);
        return false;
    }
    old_values = old.release();
    new_values = set.release();
    is_told = false;
    return true;
}

void set_for(int seconds, const cJSON *wanted, const para_message &message, json_builder &reply)
{
    outcome result(reply);
    const attempt which = attempt_at(wanted, seconds);
    if (which == attempt::too_early) {
        refuse_values(wanted, {"another change waits to be confirmed"}, result);
        return;
    }
    if (refuse_faulty_values(wanted, result) > 0 || !reply.is_complete() || !names_a_member(wanted))
        return;
    const descriptions texts;
    if (which == attempt::first && !begin(wanted, texts, seconds, result))
        return;
    set_all(wanted, texts, result);
    is_told = answers.keep(message, reply, monotonic_ms() + seconds * 1000LL + repeats_ms);
}

void confirm(const para_message &message, json_builder &reply)
{
    const lock_guard guard(mutex);
    list_waiting(reply, "confirmed");
    // Without an answer it waits for the request that is repeated.
    if (is_waiting() && answers.keep(message, reply, monotonic_ms() + repeats_ms))
        forget();
}

void tell_waiting(json_builder &reply)
{
    const lock_guard guard(mutex);
    list_waiting(reply, "waiting");
    if (is_waiting()) {
        const long long seconds = (std::max(end_ms - monotonic_ms(), 0LL) + 999) / 1000;
        reply.number(reply.root(), "seconds", static_cast<double>(seconds));
    }
}

} // namespace

answered answer_confirm(const request &request, json_builder &reply)
{
    if (request.mode == PARA_GET) {
        tell_waiting(reply);
        return answered::now;
    }
    if (answers.give_again(request.message, reply))
        return answered::now;
    const cJSON *const wanted = cJSON_GetObjectItemCaseSensitive(request.data, "set");
    if (wanted == nullptr) {
        confirm(request.message, reply);
        return answered::now;
    }
    const cJSON *const seconds = cJSON_GetObjectItemCaseSensitive(request.data, "seconds");
    if (!are_values(wanted) || !is_int(seconds) || seconds->valueint < 1 ||
        seconds->valueint > most_seconds)
        return answered::invalid;
    set_for(seconds->valueint, wanted, request.message, reply);
    return answered::now;
}
