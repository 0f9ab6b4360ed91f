// What is found on several hosts, side by side.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "program.h"

// Prints settings of hosts side by side, or as print_by_host().
exit_code print_settings_by_host(const program &all, const host_results &results,
                                 std::string (*cell)(const cJSON *value));

// Settings of hosts, side by side.
class host_table {
public:
    explicit host_table(const host_results &results);

    // A value that is kept by the results. Rows stand in the order in which they are first set.
    void set(size_t host, const std::string &setting, const cJSON *value);
    // The same for each value in an object of modules.
    void set_all(size_t host, const cJSON *modules);

    // Leaves out the settings that are the same on all hosts that have answered.
    void keep_different();
    bool is_empty() const { return rows.empty(); }

    // Hosts in columns; in rows, if there are more hosts than settings.
    void print(std::string (*cell)(const cJSON *value)) const;
    void print_as_json() const;

private:
    struct row {
        std::string setting;
        std::vector<const cJSON *> values; // null: the host has no such setting
    };

    std::vector<std::string> hosts;
    std::vector<bool> answered; // by host
    std::vector<row> rows;
    std::unordered_map<std::string, size_t> places; // of settings in the rows
};

// A row for each host.
void print_rows_by_host(const host_results &results, std::vector<std::string> header,
                        std::vector<std::string> (*cells)(const cJSON *found));
