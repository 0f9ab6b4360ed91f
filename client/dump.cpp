#include "client/dump.h"

#include <fstream>
#include <iostream>

#include "client/failure.h"

json_ptr dump_of(const std::vector<described_setting> &settings)
{
    json_ptr modules(cJSON_CreateObject());
    for (const described_setting &setting : settings) {
        const cJSON *const value = member_of(setting.member->node, "current");
        if (setting.member->read_only || value == nullptr)
            continue;
        add_setting(modules.get(), setting.name(), json_ptr(cJSON_Duplicate(value, 1)));
    }
    return modules;
}

namespace {

std::string read_all(std::istream &from)
{
    std::string text;
    char part[4096];
    while (from.read(part, sizeof part), from.gcount() > 0) // iterators throw, as for a folder
        text.append(part, static_cast<size_t>(from.gcount()));
    return text;
}

std::string read_file(const std::string &path)
{
    if (path == "-")
        return read_all(std::cin);
    std::ifstream file(path, std::ios::binary);
    std::string text = read_all(file);
    if (!file.is_open() || file.bad())
        throw failure(OTHER, "cannot read \"" + path + "\"");
    return text;
}

} // namespace

json_ptr read_dump(const std::string &path)
{
    json_ptr dump = parse_whole_json(read_file(path));
    if (!cJSON_IsObject(dump.get()))
        throw failure(USAGE, "\"" + path + "\" holds no JSON object of modules");
    return dump;
}
