#include "fuzz/support/device.h"

#include <pthread.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "base/time.h"
#include "camparam/control.h"
#include "camparam/guard.h"
#include "camparam/platform.h"
#include "camparam/platform_queue.h"
#include "fuzz/support/target.h"

namespace {

long long now_ms = 1000000;
int syncs = 0;
std::vector<fifo_work> registered_work;
pid_t owner; // of the folders; forked processes leave them alone

void remove_folders()
{
    std::error_code ignored;
    if (getpid() == owner)
        std::filesystem::remove_all(folders().root, ignored);
}

// In memory, where it is fast, unless another place is wanted.
std::string make_root()
{
    for (const char *place : {static_cast<const char *>(getenv("TMPDIR")), "/dev/shm", "/tmp"}) {
        if (place == nullptr)
            continue;
        std::string name = std::string(place) + "/camparam-fuzz-XXXXXX";
        if (mkdtemp(name.data()) != nullptr)
            return name;
    }
    require(false, "no folder can be made");
    return "";
}

device_folders make_folders()
{
    const std::string root = make_root();
    device_folders made = {root, root + "/home", root + "/data"};
    std::filesystem::create_directory(made.home);
    std::filesystem::create_directory(made.data);
    owner = getpid();
    atexit(remove_folders);
    return made;
}

} // namespace

const device_folders &folders()
{
    static const device_folders *const made = new device_folders(make_folders()); // until the end
    para_profile.home_dir = made->home.c_str();
    para_profile.data_dir = made->data.c_str();
    return *made;
}

std::optional<std::string> read_file(const std::string &path)
{
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(path, ignored))
        return std::nullopt;
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
    require(!file.fail(), "%s cannot be written", path.c_str());
}

void empty_folder(const std::string &path)
{
    for (const auto &entry : std::filesystem::directory_iterator(path))
        std::filesystem::remove_all(entry.path());
}

void install_sample_home()
{
    std::filesystem::copy(SAMPLE_HOME, folders().home,
                          std::filesystem::copy_options::overwrite_existing);
}

void start_store()
{
    folders();
    platformparam_set_server_port(0);
    require(platformparam_init() == 0, "the store does not start");
}

void move_clock(long long milliseconds)
{
    now_ms += milliseconds;
}

long long clock_ms()
{
    return now_ms;
}

int count_syncs()
{
    return syncs;
}

// --- In place of the platform's functions, and of one of the library's ---

int dbgout_profile[2] = {0, 7};

// Formats the message, which reads every argument.
void wnk_traceout(int, const char *format, ...)
{
    static char message[8192];
    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf(message, sizeof message, format, arguments);
    va_end(arguments);
    require(length >= 0, "a trace that cannot be formatted: %s", format);
}

int lib_system(const char *command)
{
    require(strcmp(command, "sync") == 0, "another command than sync: %s", command);
    syncs++;
    return 0;
}

int add_fifo_work(const fifo_work *works, int count)
{
    registered_work.insert(registered_work.end(), works, works + count);
    return 0;
}

int post_fifo_work(const char *name, const char *type)
{
    int done = 0;
    for (const fifo_work &work : registered_work) {
        if (type == nullptr && work.type == nullptr && strcmp(work.name, name) == 0) {
            work.handler(work.argument);
            done++;
        }
    }
    return done > 0 ? done : -1;
}

timespec monotonic_now()
{
    timespec now = {};
    now.tv_sec = static_cast<time_t>(now_ms / 1000);
    now.tv_nsec = static_cast<long>(now_ms % 1000 * 1000000);
    return now;
}

// --- System calls (the linker's option --wrap) ---

extern "C" {

int __real_pthread_create(pthread_t *, const pthread_attr_t *, void *(*)(void *), void *);
int __real_pthread_join(pthread_t, void **);

int __wrap_pthread_create(pthread_t *thread, const pthread_attr_t *attributes, void *(*run)(void *),
                          void *argument)
{
    if (run != platformparam_Process)
        return __real_pthread_create(thread, attributes, run, argument);
    *thread = pthread_self();
    return 0;
}

int __wrap_pthread_join(pthread_t thread, void **result)
{
    return pthread_equal(thread, pthread_self()) != 0 ? 0 : __real_pthread_join(thread, result);
}

} // extern "C"
