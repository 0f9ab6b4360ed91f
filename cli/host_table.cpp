#include "host_table.h"

#include <algorithm>

#include "output.h"
#include "several.h"

host_table::host_table(const host_results &results)
{
    for (const host_result &one : results) {
        hosts.push_back(one.host);
        answered.push_back(one.found != nullptr);
    }
}

void host_table::set(size_t host, const std::string &setting, const cJSON *value)
{
    const auto [place, is_new] = places.emplace(setting, rows.size());
    if (is_new)
        rows.push_back({setting, std::vector<const cJSON *>(hosts.size())});
    rows[place->second].values[host] = value;
}

void host_table::set_all(size_t host, const cJSON *modules)
{
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, modules)
    {
        if (!cJSON_IsObject(module)) {
            set(host, module->string, module);
            continue;
        }
        const cJSON *member = nullptr;
        cJSON_ArrayForEach(member, module)
        {
            set(host, setting_name{module->string, member->string}.text(), member);
        }
    }
}

void host_table::keep_different()
{
    const size_t first =
        static_cast<size_t>(std::find(answered.begin(), answered.end(), true) - answered.begin());
    const auto is_same = [&](const row &one) {
        for (size_t host = first; host < hosts.size(); host++) {
            const cJSON *const value = one.values[host], *const expected = one.values[first];
            if (answered[host] && value != expected && cJSON_Compare(value, expected, 1) == 0)
                return false;
        }
        return true;
    };
    rows.erase(std::remove_if(rows.begin(), rows.end(), is_same), rows.end());
    places.clear();
    for (size_t i = 0; i < rows.size(); i++)
        places.emplace(rows[i].setting, i);
}

void host_table::print(std::string (*cell)(const cJSON *value)) const
{
    if (rows.empty())
        return;
    const bool hosts_in_rows = hosts.size() > rows.size();
    std::vector<std::vector<std::string>> cells(1 + rows.size(),
                                                std::vector<std::string>(1 + hosts.size()));
    cells[0][0] = hosts_in_rows ? "HOST" : "NAME";
    for (size_t host = 0; host < hosts.size(); host++)
        cells[0][1 + host] = visible(hosts[host]);
    for (size_t i = 0; i < rows.size(); i++) {
        cells[1 + i][0] = visible(rows[i].setting);
        for (size_t host = 0; host < hosts.size(); host++)
            cells[1 + i][1 + host] = cell(rows[i].values[host]);
    }
    print_table(hosts_in_rows ? transposed(cells) : cells);
}

void host_table::print_as_json() const
{
    const json_ptr tree(cJSON_CreateObject());
    for (const row &one : rows) {
        cJSON *const setting = cJSON_AddObjectToObject(tree.get(), one.setting.c_str());
        for (size_t host = 0; host < hosts.size(); host++)
            cJSON_AddItemToObject(setting, hosts[host].c_str(),
                                  one.values[host] != nullptr ? cJSON_Duplicate(one.values[host], 1)
                                                              : cJSON_CreateNull());
    }
    print_json(tree.get());
}

exit_code print_settings_by_host(const program &all, const host_results &results,
                                 std::string (*cell)(const cJSON *value))
{
    if (all.as_json)
        return print_by_host(results);
    host_table table(results);
    for (size_t host = 0; host < results.size(); host++)
        table.set_all(host, results[host].found.get());
    if (!table.is_empty() || status_of(results) == DONE)
        table.print(cell);
    return status_of(results);
}

void print_rows_by_host(const host_results &results, std::vector<std::string> header,
                        std::vector<std::string> (*cells)(const cJSON *found))
{
    header.insert(header.begin(), "HOST");
    std::vector<std::vector<std::string>> rows = {header};
    for (const host_result &one : results) {
        std::vector<std::string> row(header.size() - 1, "-");
        if (one.found)
            row = cells(one.found.get());
        row.insert(row.begin(), visible(one.host));
        rows.push_back(std::move(row));
    }
    print_table(rows);
}
