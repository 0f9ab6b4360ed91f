#include "client/describe.h"

#include <algorithm>
#include <cstring>

#include "client/failure.h"
#include "client/suggest.h"

namespace {

template <typename row>
const row *find_by_name(const std::vector<row> &rows, const std::string &name)
{
    const auto found =
        std::find_if(rows.begin(), rows.end(), [&](const row &one) { return one.name == name; });
    return found != rows.end() ? &*found : nullptr;
}

template <typename row>
std::string suggest(const std::string &word, const std::vector<row> &rows,
                    const std::string &before)
{
    std::vector<std::string> names;
    for (const row &one : rows)
        names.push_back(one.name);
    const std::string name = most_similar(word, names);
    return name.empty() ? "" : "; did you mean \"" + before + name + "\"?";
}

// Whether the name holds the word, in upper or lower case.
bool holds(const std::string &name, const std::string &word)
{
    return strcasestr(name.c_str(), word.c_str()) != nullptr;
}

// A module, or a setting of which only the member was named, or a part of it.
std::string suggest_for_module(const description &all, const std::string &word)
{
    std::string module = suggest(word, all.modules, "");
    if (!module.empty() || word.size() < 3)
        return module;
    for (const module_description &each : all.modules) {
        for (const member_description &member : each.members) {
            if (holds(member.name, word))
                return "; did you mean \"" + each.name + "." + member.name + "\"?";
        }
    }
    return "";
}

// An array names what an enum takes, an object some numbers.
void read_names(const cJSON *names, member_description &member)
{
    const cJSON *name = nullptr;
    cJSON_ArrayForEach(name, names)
    {
        if (cJSON_IsObject(names))
            member.names_of_numbers.emplace_back(name->string, value_text(name));
        else
            member.names.push_back(value_text(name));
    }
}

member_description read_member(const cJSON *node)
{
    member_description member;
    member.name = node->string;
    member.kind = string_of(member_of(node, "kind"));
    member.min = value_text(member_of(node, "min"));
    member.max = value_text(member_of(node, "max"));
    member.default_value = value_text(member_of(node, "default"));
    member.start = value_text(member_of(node, "start"));
    member.current = value_text(member_of(node, "current"));
    read_names(member_of(node, "names"), member);
    member.unit = string_of(member_of(node, "unit"));
    member.label = string_of(member_of(node, "label"));
    member.help = string_of(member_of(node, "help"));
    member.read_only = cJSON_IsTrue(member_of(node, "read_only"));
    member.secret = cJSON_IsTrue(member_of(node, "secret"));
    member.node = node;
    return member;
}

module_description read_module(const cJSON *node)
{
    module_description module = {node->string, string_of(member_of(node, "set")), {}};
    const cJSON *const members = member_of(node, "members");
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, members)
    {
        if (cJSON_IsObject(members) && cJSON_IsObject(member))
            module.members.push_back(read_member(member));
    }
    return module;
}

struct wanted {
    const std::vector<std::string> &modules;
    bool show_secrets;
};

// An empty cursor asks for the first page.
json_ptr ask(client &host, const wanted &what, const std::string &cursor)
{
    const std::vector<std::string> &modules = what.modules;
    json_ptr data(cJSON_CreateObject());
    if (what.show_secrets)
        cJSON_AddTrueToObject(data.get(), "secrets");
    if (!modules.empty()) {
        cJSON *const names = cJSON_AddArrayToObject(data.get(), "modules");
        for (const std::string &module : modules)
            cJSON_AddItemToArray(names, cJSON_CreateString(module.c_str()));
    }
    if (!cursor.empty())
        cJSON_AddStringToObject(data.get(), "cursor", cursor.c_str());
    return host.call("api_get", "describe", data->child != nullptr ? std::move(data) : nullptr);
}

// A module may begin on one page and end on the next.
void add_page(cJSON *modules, cJSON *page)
{
    while (page != nullptr && page->child != nullptr) {
        json_ptr module(cJSON_DetachItemViaPointer(page, page->child));
        cJSON *const known = cJSON_GetObjectItemCaseSensitive(modules, module->string);
        if (known == nullptr) {
            cJSON_AddItemToArray(modules, module.release());
            continue;
        }
        cJSON *const members = cJSON_GetObjectItemCaseSensitive(known, "members");
        cJSON *const more = cJSON_GetObjectItemCaseSensitive(module.get(), "members");
        while (more != nullptr && more->child != nullptr)
            cJSON_AddItemToArray(members, cJSON_DetachItemViaPointer(more, more->child));
    }
}

// All pages as one answer. Nothing when the settings changed on the way.
std::optional<json_ptr> ask_for_pages(client &host, const wanted &what)
{
    json_ptr first = ask(host, what, "");
    cJSON *const all = cJSON_GetObjectItemCaseSensitive(first.get(), "modules");
    std::string next = value_text(member_of(first.get(), "next"));
    const std::string revision = value_text(member_of(first.get(), "revision"));
    while (cJSON_IsObject(all) && !next.empty()) {
        const json_ptr page = ask(host, what, next);
        if (value_text(member_of(page.get(), "revision")) != revision)
            return std::nullopt;
        add_page(all, cJSON_GetObjectItemCaseSensitive(page.get(), "modules"));
        next = value_text(member_of(page.get(), "next"));
    }
    return first;
}

json_ptr ask_for_all(client &host, const wanted &what)
{
    for (int tries = 0; tries < 5; tries++) {
        if (std::optional<json_ptr> answer = ask_for_pages(host, what))
            return std::move(*answer);
    }
    throw failure(OTHER, "the host's settings change all the time");
}

} // namespace

std::string member_description::limits() const
{
    if (!names.empty()) {
        std::string text = "one of";
        for (const std::string &one : names)
            text += (&one == &names.front() ? " " : ", ") + one;
        return text;
    }
    return has_limits() ? kind + ", " + min + " to " + max : kind;
}

bool differs_from_default(const cJSON *described)
{
    const cJSON *const usual = member_of(described, "default");
    return usual != nullptr && cJSON_Compare(usual, member_of(described, "current"), 1) == 0;
}

bool differs_from_default(const member_description &member)
{
    return differs_from_default(member.node);
}

std::string member_description::number_of(const std::string &text) const
{
    const auto found = std::find_if(names_of_numbers.begin(), names_of_numbers.end(),
                                    [&](const auto &one) { return one.second == text; });
    return found != names_of_numbers.end() ? found->first : text;
}

const member_description *module_description::find(const std::string &member) const
{
    return find_by_name(members, member);
}

const module_description *description::find(const std::string &module) const
{
    return find_by_name(modules, module);
}

std::optional<description> describe(client &host, const std::vector<std::string> &modules,
                                    bool show_secrets)
{
    description described;
    described.answer = ask_for_all(host, {modules, show_secrets});
    const cJSON *const found = member_of(described.answer.get(), "modules");
    if (!cJSON_IsObject(found))
        return std::nullopt; // or the answer of another command whose name begins with "describe"
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, found)
    {
        described.modules.push_back(read_module(module));
    }
    return described;
}

std::string no_such_setting(client &host, const setting_name &name)
{
    const std::optional<description> all = describe(host, {});
    const module_description *const module = all ? all->find(name.module) : nullptr;
    if (all && module == nullptr)
        return "no module \"" + name.module + "\"" + suggest_for_module(*all, name.module);

    std::string text = "no setting \"" + name.text() + "\"";
    if (module == nullptr)
        return text;
    return text + suggest(name.member, module->members, module->name + ".");
}
