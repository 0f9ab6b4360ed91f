#include "complete.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "client/describe.h"
#include "several.h"

namespace {

using word_list = std::vector<std::string>;

// What is known where a value is to be completed.
struct place {
    const program &all;
    const argument_place &arguments;
    const std::string &word;

    client host() const { return all.connect(); }
};

word_list texts_of(const cJSON *array)
{
    word_list texts;
    const cJSON *text = nullptr;
    cJSON_ArrayForEach(text, array)
    {
        texts.push_back(string_of(text));
    }
    return texts;
}

// --- Settings ---

template <typename visitor> void for_each_setting(const place &at, const visitor &visit)
{
    client host = at.host();
    const std::optional<description> described = describe(host, {});
    if (!described)
        return;
    for (const module_description &module : described->modules) {
        for (const member_description &member : module.members)
            visit(setting_name{module.name, member.name}.text(), member);
    }
}

word_list settings(const place &at)
{
    word_list names;
    for_each_setting(
        at, [&](const std::string &name, const member_description &) { names.push_back(name); });
    return names;
}

word_list modules_and_settings(const place &at)
{
    word_list names = settings(at);
    word_list modules;
    for (const std::string &name : names) {
        const std::string module = name.substr(0, name.find('.'));
        if (std::find(modules.begin(), modules.end(), module) == modules.end())
            modules.push_back(module);
    }
    names.insert(names.begin(), modules.begin(), modules.end());
    return names;
}

// The names of a setting's values.
word_list values_of(const place &at, const std::string &setting)
{
    client host = at.host();
    const setting_name name = parse_setting_name(setting);
    const std::optional<description> described = describe(host, {name.module});
    const module_description *const module = described ? described->find(name.module) : nullptr;
    const member_description *const member =
        module != nullptr ? module->find(name.member) : nullptr;
    if (member == nullptr)
        return {};
    word_list names = member->names;
    for (const auto &[number, text] : member->names_of_numbers)
        names.push_back(text);
    return names;
}

// Of what share datagrams change, modules have no number.
std::string shared_name(const std::string &name)
{
    for (const char *module : {"video", "isp"}) {
        const std::string first = std::string(module) + "0.";
        if (name.compare(0, first.size(), first) == 0)
            return module + ("." + name.substr(first.size()));
    }
    return name.compare(0, 6, "audio.") == 0 ? name : "";
}

word_list with_value(const place &at)
{
    const bool is_shared = at.arguments.commands == word_list{"share"};
    const size_t equals = at.word.find('=');
    word_list words;
    if (equals == std::string::npos) {
        for_each_setting(at, [&](const std::string &name, const member_description &member) {
            const std::string shown = is_shared ? shared_name(name) : name;
            if (!member.read_only && !shown.empty())
                words.push_back(shown + "=");
        });
        return words;
    }
    std::string name = at.word.substr(0, equals);
    if (is_shared && name.compare(0, 6, "audio.") != 0)
        name.insert(std::min(name.find('.'), name.size()), "0");
    for (const std::string &value : values_of(at, name))
        words.push_back(at.word.substr(0, equals + 1) + value);
    return words;
}

word_list values_of_setting(const place &at)
{
    return values_of(at, at.arguments.values.empty() ? "" : at.arguments.values.back());
}

// --- What else the host has ---

word_list styles(const place &at)
{
    return texts_of(member_of(at.host().call("api_get", "style", nullptr).get(), "styles"));
}

word_list pages(const place &at)
{
    return texts_of(member_of(at.host().call("api_get", "pages", nullptr).get(), "pages"));
}

word_list commands_of_kit(const place &)
{
    return {"changes", "check",  "confirm", "describe", "lens",   "log",
            "pages",   "reload", "reset",   "save",     "status", "style"};
}

// "NAME=" of each pair that the page shows, behind what is there already.
word_list pairs_of_page(const place &at)
{
    const std::string page = at.arguments.values.empty() ? "" : at.arguments.values.back();
    const size_t last = at.word.rfind('&');
    const std::string before = last == std::string::npos ? "" : at.word.substr(0, last + 1);
    std::string query = at.host().web("get", page, "");
    word_list words;
    while (!query.empty()) {
        const std::string pair = query.substr(0, query.find('&'));
        query.erase(0, pair.size() + 1);
        words.push_back(before + pair.substr(0, pair.find('=')) + "=");
    }
    return words;
}

// --- Files ---

word_list files(const place &at)
{
    namespace fs = std::filesystem;
    const size_t slash = at.word.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : at.word.substr(0, slash + 1);
    word_list names;
    std::error_code error;
    for (const fs::directory_entry &entry :
         fs::directory_iterator(folder.empty() ? "." : folder, error))
        names.push_back(folder + entry.path().filename().string() +
                        (entry.is_directory(error) ? "/" : ""));
    std::sort(names.begin(), names.end());
    return names;
}

// --- All of it ---

// By the type that the help shows.
struct kind_of_value {
    const char *type;
    word_list (*complete)(const place &at);
};

constexpr kind_of_value kinds[] = {
    {"GLOB", modules_and_settings},
    {"MODULE.MEMBER", settings},
    {"MODULE.MEMBER=VALUE", with_value},
    {"VALUE", values_of_setting},
    {"STYLE", styles},
    {"PAGE", pages},
    {"NAME=VALUE&...", pairs_of_page},
    {"COMMAND", commands_of_kit},
    {"FILE", files},
    {"DIR", files},
    {"HOME[:DATA]", files},
};

word_list values_at(const place &at)
{
    for (const kind_of_value &kind : kinds) {
        if (at.arguments.type == kind.type)
            return kind.complete(at);
    }
    return {};
}

void reach(program &all, const std::map<std::string, std::string> &options)
{
    const auto given = [&](const char *name) {
        const auto found = options.find(name);
        return found != options.end() ? found->second : "";
    };
    all.server.timeout_s = 0.5;
    all.server.retries = 0;
    if (const std::optional<int> port = parse_int(given("--port")))
        all.server.port = *port;
    const std::string host = given("--host");
    if (!host.empty() || usual_host() != nullptr)
        set_host(all.server, host.empty() ? usual_host() : host);
    all.root = given("--root");
    all.access = file_access::reads;
}

} // namespace

void print_completions(const arguments &words, program &all, word_list given)
{
    if (given.empty())
        given.emplace_back();
    const std::string word = given.back();
    given.pop_back();
    const argument_place arguments = words.place_of(given, word);
    word_list found = arguments.names;
    try {
        reach(all, arguments.options);
        const word_list values = values_at({all, arguments, word});
        found.insert(found.end(), values.begin(), values.end());
    } catch (const failure &) { // there is nothing to be told
    }
    for (const std::string &one : found) {
        if (one.compare(0, word.size(), word) == 0)
            puts(one.c_str());
    }
}
