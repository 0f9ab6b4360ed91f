#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/signalfd.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <list>
#include <optional>
#include <string>
#include <vector>

#include "client/datagram_socket.h"
#include "client/recording.h"
#include "commands.h"

namespace {

struct options {
    std::string file;
    int port = PARA_SERVER_PORT + 1;
};

bool is_same(const sockaddr_in &one, const sockaddr_in &other)
{
    return one.sin_addr.s_addr == other.sin_addr.s_addr && one.sin_port == other.sin_port;
}

// Where clients send their requests.
class listener {
public:
    explicit listener(int port) : opened(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0))
    {
        own.sin_family = AF_INET;
        own.sin_port = htons(static_cast<uint16_t>(port));
        own.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof own;
        auto *const address = reinterpret_cast<sockaddr *>(&own);
        if (bind(number(), address, length) != 0 || getsockname(number(), address, &length) != 0)
            throw failure(OTHER,
                          "cannot listen on port " + std::to_string(port) + ": " + strerror(errno));
    }

    int number() const { return opened.get(); }
    const sockaddr_in &address() const { return own; }

    std::optional<std::string> receive(sockaddr_in &sender) const
    {
        std::string bytes(65536, '\0');
        socklen_t length = sizeof sender;
        const ssize_t received = recvfrom(number(), bytes.data(), bytes.size(), MSG_DONTWAIT,
                                          reinterpret_cast<sockaddr *>(&sender), &length);
        if (received < 0)
            return std::nullopt;
        bytes.resize(static_cast<size_t>(received));
        return bytes;
    }

    // A client that has gone gets nothing.
    void send(const sockaddr_in &client, const std::string &bytes) const
    {
        sendto(number(), bytes.data(), bytes.size(), MSG_DONTWAIT,
               reinterpret_cast<const sockaddr *>(&client), sizeof client);
    }

private:
    descriptor opened;
    sockaddr_in own = {};
};

struct recorded_client {
    recorded_client(int count, const sockaddr_in &sender) : number(count), address(sender) {}

    int number;
    sockaddr_in address;
    std::optional<datagram_socket> host; // its own, from the first request that gets away
};

// Readable when a signal to end has come.
int open_signals()
{
    sigset_t ends;
    sigemptyset(&ends);
    sigaddset(&ends, SIGINT);
    sigaddset(&ends, SIGTERM);
    sigprocmask(SIG_BLOCK, &ends, nullptr);
    const int signals = signalfd(-1, &ends, SFD_CLOEXEC);
    if (signals < 0)
        throw failure(OTHER, std::string("cannot wait for signals: ") + strerror(errno));
    return signals;
}

class recorder {
public:
    recorder(const server_address &address, const listener &port, recording_writer &lines)
        : server(address), clients_port(port), file(lines)
    {
    }

    void run(int signals);

private:
    bool turn(int signals);
    void take_answer(recorded_client &client);
    void take_request();
    recorded_client &client_at(const sockaddr_in &address);

    const server_address &server;
    const listener &clients_port;
    recording_writer &file;
    std::list<recorded_client> clients; // the most recently used first
    int count = 0;                      // clients so far
};

void recorder::run(int signals)
{
    while (turn(signals))
        ;
}

// Passes on a datagram of each that has one. Returns whether to go on.
bool recorder::turn(int signals)
{
    std::vector<pollfd> polled = {{signals, POLLIN, 0}, {clients_port.number(), POLLIN, 0}};
    std::vector<recorded_client *> each;
    for (recorded_client &client : clients) {
        polled.push_back({client.host ? client.host->number() : -1, POLLIN, 0});
        each.push_back(&client);
    }
    if (poll(polled.data(), polled.size(), -1) < 0)
        return errno == EINTR;

    // Answers first, as a request may drop a client.
    for (size_t i = 0; i < each.size(); i++) {
        if (polled[i + 2].revents != 0)
            take_answer(*each[i]);
    }
    if (polled[1].revents != 0)
        take_request();
    return polled[0].revents == 0;
}

void recorder::take_answer(recorded_client &client)
{
    std::optional<std::string> bytes;
    try {
        bytes = client.host->receive(std::chrono::steady_clock::now());
    } catch (const failure &) {
        return; // nobody listens at the host; the next request may fare better
    }
    if (!bytes)
        return;
    file.write_answer(client.number, *bytes);
    clients_port.send(client.address, *bytes);
    client_at(client.address);
}

void recorder::take_request()
{
    sockaddr_in sender = {};
    const std::optional<std::string> bytes = clients_port.receive(sender);
    if (!bytes)
        return;
    recorded_client &client = client_at(sender);
    file.write_request(client.number, *bytes);
    try {
        if (!client.host)
            client.host.emplace(server);
        client.host->send(*bytes);
    } catch (const failure &) {
        return; // the host cannot be reached; as with any lost datagram, the client asks again
    }
}

// The client of an address, which becomes the most recently used.
recorded_client &recorder::client_at(const sockaddr_in &address)
{
    const auto found =
        std::find_if(clients.begin(), clients.end(), [&](const recorded_client &client) {
            return is_same(client.address, address);
        });
    if (found != clients.end()) {
        clients.splice(clients.begin(), clients, found);
        return clients.front();
    }
    const size_t most_clients = 64;
    if (clients.size() == most_clients)
        clients.pop_back();
    return clients.emplace_front(++count, address);
}

// The host by its address, so that no client waits for its name to be found.
server_address found_host(const server_address &named, const listener &port)
{
    const sockaddr_in peer = datagram_socket(named).peer();
    if (is_same(peer, port.address()))
        throw failure(USAGE, "--listen names the port of the host");
    server_address found = named;
    char text[INET_ADDRSTRLEN] = "";
    found.host = inet_ntop(AF_INET, &peer.sin_addr, text, sizeof text);
    return found;
}

exit_code run(program &all, options &given)
{
    recording_writer file(given.file);
    const listener port(given.port);
    const server_address host = found_host(all.server, port);
    file.clear();
    const descriptor signals(open_signals());
    fprintf(stderr, "recording on port %d\n", ntohs(port.address().sin_port));
    recorder(host, port, file).run(signals.get());
    return DONE;
}

} // namespace

void add_record(const arguments &words, program &all)
{
    const auto [record, given] = add_command<options>(
        words, all, {"record", "Write down requests and answers on their way to the host", run});
    record.footer(
        R"(Requests to the port are passed on to the host, and its answers back, until the command is
interrupted. The file holds every value that is sent, secrets too.

Example, in two shells:
  camparam record day.jsonl
  camparam --port 6801 get af)");
    record.text(given.file, {"file", "FILE", "File to write, a JSON object a line"}).required();
    record
        .integer(
            given.port,
            {"--listen", "PORT", "UDP port on this machine to take requests from; 0: a free one"},
            0, 65535)
        .shows_default();
}
