#include "support/shared_memory.h"

#include <filesystem>

void remove_share_maps()
{
    std::error_code ignored;
    for (const auto &entry : std::filesystem::directory_iterator("/dev/shm", ignored)) {
        if (entry.path().filename().string().rfind("camparam_share_", 0) == 0)
            std::filesystem::remove_all(entry.path(), ignored);
    }
}
