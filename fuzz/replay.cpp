// Runs a target over files, for builds without libFuzzer: fuzz_NAME PATH..., where a path is a file
// or a folder of files. Fails when one of them has none.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "fuzz/support/device.h"
#include "fuzz/support/target.h"

static std::vector<std::string> files_at(const std::string &path)
{
    if (!std::filesystem::is_directory(path))
        return {path};
    std::vector<std::string> files;
    for (const auto &entry : std::filesystem::directory_iterator(path))
        files.push_back(entry.path().string());
    std::sort(files.begin(), files.end());
    return files;
}

int main(int argc, char **argv)
{
    int inputs = 0;
    for (int i = 1; i < argc; i++) {
        const std::vector<std::string> files = files_at(argv[i]);
        require(!files.empty(), "%s is empty", argv[i]);
        for (const std::string &file : files) {
            const std::optional<std::string> bytes = read_file(file);
            require(bytes.has_value(), "%s cannot be read", file.c_str());
            fprintf(stderr, "%s\n", file.c_str()); // the last one is the one that fails
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes->data()), bytes->size());
            inputs++;
        }
    }
    printf("%d inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
