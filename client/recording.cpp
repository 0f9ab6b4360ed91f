#include "client/recording.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <cstring>

#include "client/failure.h"
#include "client/utf8.h"

namespace {

// Pipes and devices are left as they are.
bool is_regular(int descriptor)
{
    struct stat found = {};
    return fstat(descriptor, &found) == 0 && S_ISREG(found.st_mode);
}

double now_ms()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<double>(std::chrono::floor<std::chrono::milliseconds>(now).count());
}

} // namespace

recording_writer::recording_writer(const std::string &file)
    : path(file), opened(open(file.c_str(), O_WRONLY | O_CREAT | O_NOCTTY | O_CLOEXEC, 0600))
{
    if (opened.get() < 0)
        fail();
    if (is_regular(opened.get()) && fchmod(opened.get(), 0600) != 0)
        fail();
}

void recording_writer::clear()
{
    if (is_regular(opened.get()) && ftruncate(opened.get(), 0) != 0)
        fail();
}

void recording_writer::write(int client, const char *kind, const std::string &bytes)
{
    const json_ptr object(cJSON_CreateObject());
    cJSON_AddNumberToObject(object.get(), "time", now_ms());
    cJSON_AddNumberToObject(object.get(), "client", client);
    add_bytes(object.get(), kind, bytes);
    const std::string line = print_line(object.get()) + '\n';

    size_t written = 0;
    while (written < line.size()) {
        const ssize_t length = ::write(opened.get(), line.data() + written, line.size() - written);
        if (length < 0 && errno != EINTR)
            fail();
        if (length > 0)
            written += static_cast<size_t>(length);
    }
}

void recording_writer::fail() const
{
    throw failure(OTHER, "cannot write " + path + ": " + strerror(errno));
}

bool is_text(const std::string &bytes)
{
    return is_utf8(bytes) && bytes.find('\0') == std::string::npos;
}

std::string hex_of(const std::string &bytes)
{
    const char *const digits = "0123456789abcdef";
    std::string text;
    for (const char letter : bytes) {
        const unsigned byte = static_cast<unsigned char>(letter);
        text += digits[byte >> 4];
        text += digits[byte & 0xf];
    }
    return text;
}

void add_bytes(cJSON *object, const std::string &name, const std::string &bytes)
{
    if (is_text(bytes))
        cJSON_AddStringToObject(object, name.c_str(), bytes.c_str());
    else
        cJSON_AddStringToObject(object, (name + "_hex").c_str(), hex_of(bytes).c_str());
}
