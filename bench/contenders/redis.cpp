// An in-memory database, with the members in a hash: HGET, HMGET, HGETALL and HSET.
#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cjson/cJSON.h>

#include <cstdio>
#include <cstring>

#include "bench/contenders/contender.h"
#include "bench/support/device.h"
#include "bench/support/process.h"

namespace {

constexpr int tcp_port = 16379;

// The command in the protocol's own form, made before it is measured.
std::string encoded(const std::vector<std::string> &words)
{
    std::string text = "*" + std::to_string(words.size()) + "\r\n";
    for (const std::string &word : words)
        text += "$" + std::to_string(word.size()) + "\r\n" + word + "\r\n";
    return text;
}

class redis_server {
public:
    redis_server()
        : server({"redis-server", "--port", std::to_string(tcp_port), "--bind", "127.0.0.1",
                  "--unixsocket", socket_path(), "--save", "", "--appendonly", "no"})
    {
    }
    std::string socket_path() const { return folder.path() + "/redis"; }

private:
    scratch_folder folder;
    process server;
};

// One server for both ways to it.
std::shared_ptr<redis_server> running_server()
{
    static std::weak_ptr<redis_server> running;
    std::shared_ptr<redis_server> server = running.lock();
    if (!server)
        running = server = std::make_shared<redis_server>();
    return server;
}

int connect_tcp()
{
    const int descriptor = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(tcp_port);
    const int on = 1;
    setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    if (connect(descriptor, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0)
        return descriptor;
    close(descriptor);
    return -1;
}

int connect_unix(const std::string &path)
{
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    snprintf(address.sun_path, sizeof address.sun_path, "%s", path.c_str());
    if (connect(descriptor, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0)
        return descriptor;
    close(descriptor);
    return -1;
}

class redis final : public contender {
public:
    redis(std::string name, bool by_tcp) : own_name(std::move(name)), server(running_server())
    {
        const bool connected = succeeds_soon([&] {
            descriptor = by_tcp ? connect_tcp() : connect_unix(server->socket_path());
            return descriptor >= 0;
        });
        if (!connected)
            give_up(own_name);
        const timeval limit = {5, 0};
        setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    }
    ~redis() override { close(descriptor); }

    std::string name() const override { return own_name; }

    void load(const std::string &all) override
    {
        cJSON *const tree = cJSON_Parse(all.c_str());
        const cJSON *member = nullptr;
        cJSON_ArrayForEach(member, cJSON_GetObjectItem(tree, "isp0")) first_reply(
            encoded({"HSET", "isp0", member->string, std::to_string(member->valueint)}));
        cJSON_Delete(tree);
    }

    void prepare(const request_kind &kind, const std::string &) override
    {
        if (kind.requests.size() > 1) {
            commands = {encoded({"HSET", "isp0", kind.members[0], "40"}),
                        encoded({"HSET", "isp0", kind.members[0], "60"})};
        } else if (kind.members.empty()) {
            commands = {encoded({"HGETALL", "isp0"})};
        } else {
            std::vector<std::string> words = {kind.members.size() > 1 ? "HMGET" : "HGET", "isp0"};
            words.insert(words.end(), kind.members.begin(), kind.members.end());
            commands = {encoded(words)};
        }
        reply_size = first_reply(commands[0]).size();
    }

    void ask(size_t turn) override
    {
        const std::string &command = commands[turn % commands.size()];
        char text[4096];
        send(descriptor, command.data(), command.size(), 0);
        for (size_t got = 0; got < reply_size;) {
            const ssize_t length = recv(descriptor, text, sizeof text, 0);
            if (length <= 0)
                give_up("no reply of " + own_name);
            got += static_cast<size_t>(length);
        }
    }

private:
    // Of a command that nobody times: all that comes until nothing does any more.
    std::string first_reply(const std::string &command)
    {
        send(descriptor, command.data(), command.size(), 0);
        std::string reply;
        char text[4096];
        int flags = 0;
        for (ssize_t length = 0; (length = recv(descriptor, text, sizeof text, flags)) > 0;) {
            reply.append(text, static_cast<size_t>(length));
            usleep(2000);
            flags = MSG_DONTWAIT;
        }
        if (reply.empty() || reply[0] == '-')
            give_up(own_name + ": " + reply);
        return reply;
    }

    std::string own_name;
    std::shared_ptr<redis_server> server;
    int descriptor = -1;
    std::vector<std::string> commands;
    size_t reply_size = 0;
};

std::unique_ptr<contender> redis_if_installed(const char *name, bool by_tcp)
{
    if (is_installed("redis-server"))
        return std::make_unique<redis>(name, by_tcp);
    fprintf(stderr, "%s: redis-server is not installed\n", name);
    return nullptr;
}

} // namespace

std::unique_ptr<contender> redis_over_tcp()
{
    return redis_if_installed("Redis, TCP", true);
}

std::unique_ptr<contender> redis_over_unix_socket()
{
    return redis_if_installed("Redis, Unix", false);
}
