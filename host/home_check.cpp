#include "home_check.h"

#include <algorithm>
#include <filesystem>

#include "default_style.h"
#include "device_file.h"
#include "json.h"

namespace {

// "no JSON at line 3, column 7", of the place where parsing ended.
std::string position_of(const char *text, const char *end)
{
    const auto lines = std::count(text, end, '\n');
    const char *start = end;
    while (start > text && start[-1] != '\n')
        start--;
    return "no JSON at line " + std::to_string(lines + 1) + ", column " +
           std::to_string(end - start + 1);
}

// Text behind the document is no fault to the store either.
json_ptr parse(device_file &file)
{
    const char *end = nullptr;
    json_ptr root(cJSON_ParseWithOpts(file.text.get(), &end, 0));
    if (!root)
        file.fault = position_of(file.text.get(), end);
    else if (!cJSON_IsObject(root.get()))
        file.fault = "holds no JSON object";
    return root;
}

class home_folder {
public:
    explicit home_folder(const std::string &folder) : home(folder) {}

    // The tree of a JSON file; null when there is none, or a fault.
    json_ptr take_json(const std::string &name)
    {
        device_file file = read_device_file(home, name);
        json_ptr root = file.text ? parse(file) : nullptr;
        take(name, file);
        return file.fault.empty() ? std::move(root) : nullptr;
    }

    void take_styles(const std::string &data)
    {
        const std::string name = "isp_def.json";
        if (const json_ptr styles = take_json(name))
            add_fault(name, default_style_fault(styles.get(), data));
    }

    void take_conf(const std::string &name) { take(name, read_device_file(home, name)); }

    bool has_files = false;
    std::string fault; // the first one

private:
    void take(const std::string &name, const device_file &file)
    {
        has_files |= file.exists;
        add_fault(name, file.fault);
    }

    void add_fault(const std::string &name, const std::string &reason)
    {
        if (fault.empty() && !reason.empty())
            fault = "cannot use the home file \"" + home + "/" + name + "\": " + reason;
    }

    const std::string &home;
};

std::string folder_fault(const std::string &home)
{
    std::error_code error;
    const std::filesystem::directory_iterator content(home, error);
    if (!error)
        return "";
    return "cannot read the home folder \"" + home + "\": " + error.message();
}

} // namespace

home_check check_home(const std::string &home, const std::string &web_names,
                      const std::string &data)
{
    if (const std::string fault = folder_fault(home); !fault.empty())
        return {fault, {}};

    home_folder folder(home);
    const json_ptr names = folder.take_json(web_names);
    const device_files files = files_of(names.get());
    folder.take_json("descriptions.json");
    folder.has_files = false; // these alone are no settings
    for (const std::string &name : files.json_files)
        folder.take_json(name);
    for (const std::string &name : files.conf_files)
        folder.take_conf(name);
    folder.take_styles(data);
    if (folder.fault.empty() && !folder.has_files)
        folder.fault = "cannot use the home folder \"" + home + "\": no settings files in it";
    return {folder.fault, files};
}
