#include "bench/support/result.h"

#include <cstdio>
#include <cstdlib>

#include "bench/support/device.h"

// As it is shown.
static std::string shown(double number)
{
    char text[32];
    snprintf(text, sizeof text, "%.2f", number);
    return text;
}

void add_result(const std::string &what, double measured, double goal)
{
    const char *const path = getenv("CAMPARAM_BENCH_TABLE");
    if (path == nullptr)
        return;
    FILE *const table = fopen(path, "a");
    if (table == nullptr)
        give_up(path);
    fprintf(table, "%-52s %8s %8s%s\n", what.c_str(), shown(measured).c_str(), shown(goal).c_str(),
            std::stod(shown(measured)) > goal ? "  missed" : "");
    fclose(table);
}
