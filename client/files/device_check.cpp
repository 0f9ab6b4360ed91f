#include "client/files/device_check.h"

#include <algorithm>
#include <filesystem>
#include <tuple>

#include "client/failure.h"
#include "client/files/checks.h"

namespace {

void need_folder(const std::string &folder)
{
    std::error_code error;
    const std::filesystem::directory_iterator content(folder, error);
    if (!error)
        return;
    const bool is_missing = error == std::errc::no_such_file_or_directory;
    throw failure(is_missing ? NO_SUCH_SETTING : OTHER,
                  "cannot read the folder \"" + folder + "\": " + error.message());
}

void check_home(device_folder &home, device_model &device)
{
    json_document web_names(home, "www2json.json");
    read_module_lists(web_names, device);
    check_fixed_modules(home, device);
    check_image_processor(home, device);
    check_pattern_modules(home, device);
    check_conf_modules(home, device);
    check_web_names(web_names, device);
    check_descriptions(home, device);
    check_other_files(home);
    if (device.modules.empty())
        home.found.push_back({home.path, 0, "", "holds the settings of no module", false});
}

bool comes_first(const finding &one, const finding &other)
{
    return std::tie(one.file, one.line) < std::tie(other.file, other.line);
}

} // namespace

std::vector<finding> check_device(const std::string &home, const std::string &data)
{
    need_folder(home);
    if (!data.empty())
        need_folder(data);

    std::vector<finding> found;
    device_model device;
    device_folder home_folder = {.path = home, .found = found};
    check_home(home_folder, device);
    if (!data.empty()) {
        device_folder data_folder = {.path = data, .found = found};
        check_saved(data_folder, device);
    }
    std::stable_sort(found.begin(), found.end(), comes_first);
    return found;
}
