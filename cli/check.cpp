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

json_ptr tree_of(const std::vector<finding> &found)
{
    json_ptr list(cJSON_CreateArray());
    for (const finding &each : found) {
        cJSON *const entry = cJSON_CreateObject();
        cJSON_AddStringToObject(entry, "file", each.file.c_str());
        cJSON_AddNumberToObject(entry, "line", each.line);
        cJSON_AddStringToObject(entry, "member", each.member.c_str());
        cJSON_AddStringToObject(entry, "reason", each.reason.c_str());
        cJSON_AddBoolToObject(entry, "warning", each.is_warning);
        cJSON_AddItemToArray(list.get(), entry);
    }
    return list;
}

exit_code run(program &all, options &given)
{
    if (given.home.empty() == all.root.empty())
        throw failure(USAGE, "name the home folder, or the folders with --root");
    const device_folders folders =
        all.root.empty() ? device_folders{given.home, given.data} : parse_folders(all.root);
    const std::vector<finding> found = check_device(folders.home, folders.data);
    if (all.as_json) {
        print_json(tree_of(found).get());
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
    const auto [check, given] =
        add_command<options>(words, all,
                             {"check", "Look for faults in the files of a device, without a host",
                              run, nullptr, nullptr, file_access::reads});
    check.footer("Prints FILE:LINE: MEMBER: reason. Exit status: 0 no fault, warnings perhaps;\n"
                 "4 faults, 5 no such folder.");
    check.text(given.home, {"home", "DIR", "Home folder of the device"});
    check.text(given.data, {"--data", "DIR", "Folder of its saved files, to look at these, too"})
        .not_empty();
}
