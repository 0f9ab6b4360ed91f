#include <algorithm>
#include <cstdio>

#include "client/files/device_check.h"
#include "commands.h"
#include "output.h"

namespace {

struct options {
    std::string home, data;
};

// FILE:LINE: MEMBER: reason, as compilers tell it.
std::string line_of(const finding &fault)
{
    std::string line = fault.file + ":";
    if (fault.line != 0)
        line += std::to_string(fault.line) + ":";
    if (!fault.member.empty())
        line += " " + fault.member + ":";
    return line + (fault.is_warning ? " warning: " : " ") + fault.reason;
}

// Whether two bytes begin a character of two or more: not one in more bytes than it needs, not half
// of a pair, and none beyond the last.
bool is_beginning(unsigned first, unsigned second)
{
    if (first < 0xc2 || first > 0xf4 || (second & 0xc0) != 0x80)
        return false;
    const unsigned least = first == 0xe0 ? 0xa0 : first == 0xf0 ? 0x90 : 0x80;
    const unsigned most = first == 0xed ? 0x9f : first == 0xf4 ? 0x8f : 0xbf;
    return second >= least && second <= most;
}

// How many bytes of a text are one UTF-8 character; 0 when they are none.
size_t character_size(const std::string &text, size_t at)
{
    const auto byte = [&](size_t place) {
        return place < text.size() ? static_cast<unsigned char>(text[place]) : 0U;
    };
    const unsigned first = byte(at);
    if (first < 0x80)
        return 1;
    if (!is_beginning(first, byte(at + 1)))
        return 0;
    const size_t size = first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
    for (size_t place = at + 2; place < at + size; place++) {
        if ((byte(place) & 0xc0) != 0x80)
            return 0;
    }
    return size;
}

// With U+FFFD for bytes that are no UTF-8, as JSON holds no others.
std::string as_utf8(const std::string &text)
{
    std::string clean;
    for (size_t at = 0; at < text.size();) {
        const size_t size = character_size(text, at);
        clean += size > 0 ? text.substr(at, size) : "\xef\xbf\xbd";
        at += std::max(size, size_t{1});
    }
    return clean;
}

json_ptr tree_of(const std::vector<finding> &found)
{
    json_ptr list(cJSON_CreateArray());
    for (const finding &each : found) {
        cJSON *const entry = cJSON_CreateObject();
        cJSON_AddStringToObject(entry, "file", as_utf8(each.file).c_str());
        cJSON_AddNumberToObject(entry, "line", each.line);
        cJSON_AddStringToObject(entry, "member", as_utf8(each.member).c_str());
        cJSON_AddStringToObject(entry, "reason", as_utf8(each.reason).c_str());
        cJSON_AddBoolToObject(entry, "warning", each.is_warning);
        cJSON_AddItemToArray(list.get(), entry);
    }
    return list;
}

exit_code run(program &all, options &given)
{
    const std::vector<finding> found = check_device(given.home, given.data);
    if (all.as_json) {
        puts(print_pretty(tree_of(found).get()).c_str());
    } else {
        for (const finding &each : found)
            puts(visible(line_of(each)).c_str());
    }
    const bool has_faults = std::any_of(found.begin(), found.end(),
                                        [](const finding &each) { return !each.is_warning; });
    return has_faults ? REFUSED : DONE;
}

} // namespace

void add_check(const arguments &words, program &all)
{
    const auto [check, given] = add_command(
        words, all, {"check", "Look for faults in the files of a device, without a host"}, run);
    check.footer("Prints FILE:LINE: MEMBER: reason. Exit status: 0 no fault, warnings perhaps;\n"
                 "4 faults, 5 no such folder.");
    check.text(given.home, {"home", "DIR", "Home folder of the device"}).required();
    check.text(given.data, {"--data", "DIR", "Folder of its saved files, to look at these, too"});
}
