#include "support/folders.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "camparam/control.h"
#include "support/device.h"
#include "support/json_text.h"

std::optional<std::string> read_file(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

void write_file(const std::string &path, const std::string &bytes)
{
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    file.close();
    ASSERT_TRUE(file) << path;
}

Folders::Folders()
{
    char name[] = "/tmp/camparam-test-XXXXXX";
    folder = mkdtemp(name);
    home = folder + "/home";
    data = folder + "/data";
    std::filesystem::create_directory(home);
    std::filesystem::create_directory(data);
    para_profile.home_dir = home.c_str();
    para_profile.data_dir = data.c_str();
    set_trace_level(7);
}

Folders::~Folders()
{
    std::filesystem::remove_all(folder);
}

void Folders::write_home(const std::string &name, const std::string &bytes)
{
    write_file(home + "/" + name, swap_quotes(bytes, '\'', '"'));
}

void Folders::write_data(const std::string &name, const std::string &bytes)
{
    write_file(data + "/" + name, swap_quotes(bytes, '\'', '"'));
}

std::optional<std::string> Folders::read_data(const std::string &name)
{
    return read_file(data + "/" + name);
}
