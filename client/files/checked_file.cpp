#include "client/files/checked_file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "client/suggest.h"

namespace {

// Far more than any device's file; what is larger is something else.
constexpr std::uintmax_t most_bytes = 16 << 20;

} // namespace

checked_file::checked_file(device_folder &folder, const std::string &name)
    : path(folder.path + "/" + name), found(folder.found)
{
    folder.asked_for.insert(name);
    read();
}

void checked_file::read()
{
    std::error_code error;
    const std::filesystem::file_status about = std::filesystem::status(path, error);
    is_there = about.type() != std::filesystem::file_type::not_found;
    if (!is_there)
        return;
    if (!std::filesystem::is_regular_file(about))
        return fault(0, "", error ? error.message() : "is no regular file");
    if (std::filesystem::file_size(path, error) > most_bytes || error)
        return fault(0, "", error ? error.message() : "has more than 16 MiB");

    errno = 0;
    std::ifstream file(path, std::ios::binary);
    bytes.assign(std::istreambuf_iterator<char>(file), {});
    is_read = file.is_open() && !file.bad();
    if (!is_read)
        fault(0, "", errno != 0 ? strerror(errno) : "cannot be read");
}

void checked_file::fault(int line, const std::string &member, const std::string &reason)
{
    found.push_back({path, line, member, reason, false});
}

void checked_file::warn(int line, const std::string &member, const std::string &reason)
{
    found.push_back({path, line, member, reason, true});
}

std::string in_small_letters(std::string text)
{
    for (char &letter : text) {
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    }
    return text;
}

std::string hint(const std::string &word, const std::vector<std::string> &names)
{
    const std::string similar = most_similar(word, names);
    return similar.empty() ? "" : "; did you mean " + in_quotes(similar) + "?";
}

std::string in_quotes(const std::string &text)
{
    return "\"" + text + "\"";
}
