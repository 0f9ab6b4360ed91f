#include "data_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "camparam/platform.h"

std::string too_long_path(const std::string &folder, const std::vector<std::string> &names)
{
    for (const std::string &name : names) {
        char path[PARA_PATH_SIZE];
        if (*cat_file_name(path, folder.c_str(), name.c_str()) == '\0')
            return std::string(folder).append("/").append(name);
    }
    return "";
}

std::string make_folder(const std::string &folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (!error && !std::filesystem::is_directory(folder, error) && !error)
        error = std::make_error_code(std::errc::not_a_directory);
    return error ? error.message() : "";
}

// The lock is the folder's own, not a file's: a folder that cannot be written has it too.
folder_lock lock_folder(const std::string &folder)
{
    static bool tried = false;
    if (tried)
        return {0, true};
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    tried = descriptor >= 0 || (errno != ENOENT && errno != ENOTDIR);
    if (descriptor < 0)
        return {errno, true};
    const int error = flock(descriptor, LOCK_EX | LOCK_NB) == 0 ? 0 : errno;
    if (error != 0)
        close(descriptor); // else the lock lasts as long as it is open
    return {error, error == 0 || error == EWOULDBLOCK};
}

int try_to_write(const std::string &folder)
{
    std::string path = folder + "/.camparamd-XXXXXX";
    const int descriptor = mkostemp(path.data(), O_CLOEXEC);
    if (descriptor < 0)
        return errno;
    close(descriptor);
    return unlink(path.c_str()) == 0 ? 0 : errno;
}
