#include "client/local_store.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "camparam/camparam.h"
#include "camparam/commands.h"
#include "client/descriptor.h"
#include "client/failure.h"

namespace {

namespace fs = std::filesystem;

[[noreturn]] void system_failure(const std::string &what)
{
    throw failure(OTHER, what + ": " + strerror(errno));
}

// --- Folders ---

void check_folder(const std::string &folder)
{
    std::error_code error;
    if (!fs::is_directory(folder, error))
        throw failure(NO_SUCH_SETTING, "no folder \"" + folder + "\"");
    for (const fs::directory_entry &entry : fs::directory_iterator(folder, error)) {
        char path[PARA_PATH_SIZE];
        if (*cat_file_name(path, folder.c_str(), entry.path().filename().c_str()) == '\0')
            throw failure(OTHER, "the store has no room for a path as long as \"" +
                                     entry.path().string() + "\"");
    }
    if (error)
        throw failure(OTHER, "cannot read \"" + folder + "\": " + error.message());
}

// As a host does; lasts as long as this process.
void lock_folder(const std::string &folder)
{
    const int opened = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened < 0)
        system_failure("cannot open \"" + folder + "\"");
    if (flock(opened, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        throw failure(REFUSED,
                      "a host is at work on \"" + folder + "\"; change its settings by it");
}

// A folder of this process's own.
class private_folder {
public:
    private_folder()
    {
        std::string name = fs::temp_directory_path() / "camparam-XXXXXX";
        if (mkdtemp(name.data()) == nullptr)
            system_failure("cannot make a folder as \"" + name + "\"");
        path = name;
    }
    ~private_folder()
    {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
    private_folder(const private_folder &) = delete;
    private_folder &operator=(const private_folder &) = delete;

    void copy_files_of(const std::string &folder) const
    {
        for (const fs::directory_entry &entry : fs::directory_iterator(folder)) {
            std::error_code error;
            if (entry.is_regular_file(error))
                fs::copy_file(entry.path(), path / entry.path().filename(), error);
            if (error)
                throw failure(OTHER,
                              "cannot read \"" + entry.path().string() + "\": " + error.message());
        }
    }

    fs::path path;
};

// --- The store ---

void start_store(const device_folders &folders)
{
    static std::string home, data; // the profile points into them
    home = folders.home;
    data = folders.data;
    para_profile.home_dir = home.c_str();
    para_profile.data_dir = data.c_str();
    para_profile.conf_save_hook = [] {}; // conf files are written
    platformparam_set_server_port(0);
    platformparam_set_guard(1);
    dbgout_profile[1] = 0; // "check" tells faults of files
    if (para_commands_register() != 0 || platformparam_init() != 0)
        throw failure(OTHER, "cannot start a store");
}

// A pair of sockets that keeps the bounds of messages and takes a destination, as the store gives
// one with each reply, for what it is not.
class socket_pair {
public:
    socket_pair()
    {
        if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0)
            system_failure("cannot make sockets");
    }
    ~socket_pair()
    {
        close(ends[0]);
        close(ends[1]);
    }
    socket_pair(const socket_pair &) = delete;
    socket_pair &operator=(const socket_pair &) = delete;

    int ends[2] = {-1, -1};
};

class local_store : public connection {
public:
    std::string exchange(const std::string &request,
                         const std::function<bool(const std::string &answer)> &fits) override
    {
        check_request_size(request);
        process(request);
        while (is_answered()) {
            std::string answer(65536, '\0');
            const ssize_t length = recv(sockets.ends[0], answer.data(), answer.size(), 0);
            answer.resize(static_cast<size_t>(length > 0 ? length : 0));
            if (fits(answer))
                return answer;
        }
        throw failure(NO_ANSWER, "the store does not answer");
    }

    void send(const std::string &) override
    {
        throw failure(USAGE, "files take no share datagrams");
    }

private:
    void process(const std::string &request) const
    {
        para_message message = {};
        memcpy(message.text, request.data(), request.size());
        message.socket = sockets.ends[1];
        message.sender.sin_family = AF_INET;
        message.sender.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        message.sender_length = sizeof message.sender;
        para_server_message_Process(&message);
    }

    // Some commands answer late.
    bool is_answered() const
    {
        pollfd readable = {sockets.ends[0], POLLIN, 0};
        const int most_ms = 20000;
        return poll(&readable, 1, most_ms) > 0;
    }

    const socket_pair sockets;
};

} // namespace

device_folders parse_folders(const std::string &text)
{
    const size_t colon = text.rfind(':');
    device_folders folders = {text.substr(0, colon), ""};
    if (colon != std::string::npos)
        folders.data = text.substr(colon + 1);
    if (folders.home.empty() || (colon != std::string::npos && folders.data.empty()))
        throw failure(USAGE, "\"" + text + "\" is not of the form HOME or HOME:DATA");
    return folders;
}

std::unique_ptr<connection> open_local_store(const device_folders &folders, file_access access)
{
    check_folder(folders.home);
    if (!folders.data.empty())
        check_folder(folders.data);
    if (access == file_access::changes) {
        if (folders.data.empty())
            throw failure(USAGE, "name the folder of the saved settings, too: HOME:DATA");
        lock_folder(folders.data);
        start_store(folders);
    } else {
        static const private_folder copy;
        if (!folders.data.empty())
            copy.copy_files_of(folders.data);
        start_store({folders.home, copy.path});
    }
    return std::make_unique<local_store>();
}

std::vector<unsaved_module> save_local_store()
{
    std::vector<unsaved_module> unsaved;
    for (int i = 0; i < module_para_handle_num; i++) {
        const para_module &row = module_para_handle[i];
        para_module_status status;
        if (row.save == nullptr || platformparam_get_status(row.name, &status) != 0 ||
            status.changes == status.saved)
            continue;
        row.save(row.name);
        platformparam_get_status(row.name, &status);
        if (status.changes != status.saved)
            unsaved.push_back(
                {row.name, status.error != 0 ? strerror(status.error) : "its files are faulty"});
    }
    return unsaved;
}
