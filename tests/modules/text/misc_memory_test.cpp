// "misc" when memory runs out while it is loaded.
#include <gtest/gtest.h>

#include <cstdlib>

#include "modules/text/misc_fixture.h"

namespace {

int allocations_left;

void *limited_malloc(size_t size)
{
    return allocations_left-- > 0 ? malloc(size) : nullptr;
}

} // namespace

using MiscMemory = Misc;

TEST_F(MiscMemory, ALoadThatRunsOutOfItFailsOrHasAVersion)
{
    write_legacy();
    cJSON_Hooks limited = {limited_malloc, free};
    for (int k = 0; k < 400; k++) {
        configure *cur = nullptr, *def = nullptr;
        cJSON *range = nullptr;
        allocations_left = k;
        cJSON_InitHooks(&limited);
        const int result = para_init_misc_legacy("misc", &cur, &def, &range);
        cJSON_InitHooks(nullptr);
        const json owner(range);
        if (result == 0)
            EXPECT_NE(cJSON_GetObjectItem(range, "version"), nullptr) << k;
        else
            EXPECT_EQ(range, nullptr) << k;
        configure_free(cur);
        configure_free(def);
    }
}
