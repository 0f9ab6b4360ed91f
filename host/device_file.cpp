#include "device_file.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "camparam/platform.h"

static std::string reason_of(int error)
{
    return error != 0 ? strerror(error) : "cannot be read";
}

static device_file unusable(const std::string &reason)
{
    return {.exists = true, .fault = reason, .text = nullptr};
}

device_file read_device_file(const std::string &folder, const std::string &name)
{
    char path[PARA_PATH_SIZE];
    if (*cat_file_name(path, folder.c_str(), name.c_str()) == '\0')
        return unusable("the path is too long");
    struct stat about = {};
    if (stat(path, &about) != 0)
        return errno == ENOENT ? device_file() : unusable(reason_of(errno));
    if (S_ISDIR(about.st_mode))
        return unusable(reason_of(EISDIR));
    if (!S_ISREG(about.st_mode))
        return unusable("not a regular file");

    errno = 0;
    device_file file = {.exists = true, .fault = "", .text = nullptr};
    file.text.reset(read_file_to_buf(path));
    if (!file.text)
        file.fault = reason_of(errno);
    return file;
}
