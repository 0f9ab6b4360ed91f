#include "client/connection.h"

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <memory>
#include <optional>
#include <regex>

#include "client/failure.h"

namespace {

using steady_clock = std::chrono::steady_clock;

std::string name_of(const server_address &server)
{
    return server.host + " port " + std::to_string(server.port);
}

// Throws a failure that explains errno after a socket call.
[[noreturn]] void network_failure(const server_address &server)
{
    if (errno == ECONNREFUSED)
        throw failure(NO_ANSWER, "nothing listens on " + name_of(server) +
                                     "; is the host process running, is --host right?");
    throw failure(NO_ANSWER, "cannot reach " + name_of(server) + ": " + strerror(errno));
}

class datagram_socket {
public:
    explicit datagram_socket(const server_address &address) : server(address)
    {
        const auto found = look_up();
        descriptor = socket(found->ai_family, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        // A connected socket drops datagrams from elsewhere, and reports a closed port.
        if (descriptor < 0 || connect(descriptor, found->ai_addr, found->ai_addrlen) != 0) {
            const int error = errno;
            close(descriptor);
            errno = error;
            network_failure(server);
        }
    }

    ~datagram_socket() { close(descriptor); }

    datagram_socket(const datagram_socket &) = delete;
    datagram_socket &operator=(const datagram_socket &) = delete;

    void send(const std::string &text) const
    {
        if (::send(descriptor, text.data(), text.size(), 0) < 0)
            network_failure(server);
    }

    // The next datagram, or nothing if none arrives in time.
    std::optional<std::string> receive(steady_clock::time_point until) const
    {
        if (!wait(until))
            return std::nullopt;
        std::string text(65536, '\0');
        const ssize_t length = recv(descriptor, text.data(), text.size(), 0);
        if (length < 0)
            network_failure(server);
        text.resize(static_cast<size_t>(length));
        return text;
    }

private:
    using address_list = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

    address_list look_up() const
    {
        addrinfo hints = {};
        hints.ai_socktype = SOCK_DGRAM;
        addrinfo *found = nullptr;
        int error = 0;
        for (const int family : {AF_INET, AF_INET6}) { // stores have IPv4, relays may have IPv6
            hints.ai_family = family;
            error = getaddrinfo(server.host.c_str(), std::to_string(server.port).c_str(), &hints,
                                &found);
            if (error == 0)
                break;
        }
        if (error != 0)
            throw failure(OTHER,
                          "cannot find the host \"" + server.host + "\": " + gai_strerror(error));
        return {found, freeaddrinfo};
    }

    bool wait(steady_clock::time_point until) const
    {
        while (true) {
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(until - steady_clock::now()).count();
            pollfd readable = {descriptor, POLLIN, 0};
            const int ready = poll(&readable, 1, static_cast<int>(left > 0 ? left : 0));
            if (ready > 0)
                return true;
            if (ready < 0 && errno != EINTR)
                network_failure(server);
            if (ready == 0)
                return false;
        }
    }

    const server_address &server;
    int descriptor = -1;
};

[[noreturn]] void no_answer(const server_address &server, int unfit)
{
    const int sent = server.retries + 1;
    std::string message = "no answer from " + name_of(server) + " to " + std::to_string(sent) +
                          (sent == 1 ? " request" : " requests");
    if (unfit > 0)
        message += "; " + std::to_string(unfit) + " not understood";
    else
        message += "; --timeout and --retries wait longer";
    throw failure(NO_ANSWER, message);
}

} // namespace

void set_host(server_address &server, const std::string &text)
{
    static const std::regex usual(R"((?:\[([^\]]+)\]|([^:\[\]]+))(?::([0-9]{1,5}))?)");
    static const std::regex bare_ipv6(R"([0-9A-Fa-f.]*:[0-9A-Fa-f:.]*:[0-9A-Fa-f:.]*(?:%.+)?)");
    std::smatch found;
    if (std::regex_match(text, bare_ipv6)) {
        server.host = text;
        return;
    }
    const bool matches = std::regex_match(text, found, usual);
    const int port = matches && found[3].matched ? std::stoi(found[3]) : server.port;
    if (!matches || port < 1 || port > 65535)
        throw failure(USAGE, "\"" + text + "\" is not of the form HOST or HOST:PORT");
    server.host = found[1].matched ? found[1] : found[2];
    server.port = port;
}

std::string exchange(const server_address &server, const std::string &request,
                     const std::function<bool(const std::string &answer)> &fits)
{
    if (request.size() > PARA_MESSAGE_MAX)
        throw failure(USAGE, "the request has " + std::to_string(request.size()) +
                                 " bytes, the host takes " + std::to_string(PARA_MESSAGE_MAX));

    const datagram_socket socket(server);
    const auto timeout = std::chrono::duration_cast<steady_clock::duration>(
        std::chrono::duration<double>(server.timeout_s));
    int unfit = 0;
    for (int sent = 0; sent <= server.retries; sent++) {
        socket.send(request);
        const auto until = steady_clock::now() + timeout;
        while (const std::optional<std::string> answer = socket.receive(until)) {
            if (fits(*answer))
                return *answer;
            unfit++;
        }
    }
    no_answer(server, unfit);
}

void send_datagram(const server_address &server, const std::string &bytes)
{
    datagram_socket(server).send(bytes);
}
