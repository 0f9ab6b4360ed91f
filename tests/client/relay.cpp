// usage: relay late | twice | among-garbage | garbage
// Passes requests to port 6801 on to the host on port 6800, one after the other, and disturbs the
// answers. Says "ready" on standard error.
#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr int late_ms = 60, longest_ms = 20000;

sockaddr_in address_of(int port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

bool is_readable(int socket, int milliseconds)
{
    pollfd readable = {socket, POLLIN, 0};
    return poll(&readable, 1, milliseconds) > 0;
}

// Empty when none comes.
std::string answer_to(const std::string &request)
{
    static const int host = socket(AF_INET, SOCK_DGRAM, 0); // one: a repeat is known by its sender
    const sockaddr_in address = address_of(6800);
    std::string answer(65536, '\0');
    sendto(host, request.data(), request.size(), 0, reinterpret_cast<const sockaddr *>(&address),
           sizeof address);
    const ssize_t length =
        is_readable(host, longest_ms) ? recv(host, answer.data(), answer.size(), 0) : 0;
    answer.resize(static_cast<size_t>(length > 0 ? length : 0));
    return answer;
}

// Nothing of it is an answer.
std::vector<std::string> garbage()
{
    return {"",
            "garbage",
            "{",
            "[1, 2]",
            "{\"msg_id\": 0}",
            "{\"msg_id\": 0, \"msg_name\": \"describe\", \"modules\": {\"af\": 5}}",
            std::string("\0\xff\x9b", 3),
            std::string(20000, '{')};
}

std::vector<std::string> answers_to(const std::string &request, const std::string &mode)
{
    if (mode == "garbage")
        return garbage();
    const std::string answer = answer_to(request);
    if (mode == "twice")
        return {answer, answer};
    if (mode == "among-garbage") {
        std::vector<std::string> all = garbage();
        all.insert(all.begin() + 4, answer);
        return all;
    }
    poll(nullptr, 0, late_ms);
    return {answer};
}

} // namespace

int main(int argc, char **argv)
{
    const std::string mode = argc == 2 ? argv[1] : "";
    const int clients = socket(AF_INET, SOCK_DGRAM, 0);
    const sockaddr_in own = address_of(6801);
    if (bind(clients, reinterpret_cast<const sockaddr *>(&own), sizeof own) != 0)
        return 1;
    fprintf(stderr, "ready\n");
    while (is_readable(clients, -1)) {
        std::string request(65536, '\0');
        sockaddr_in sender = {};
        socklen_t size = sizeof sender;
        const ssize_t length = recvfrom(clients, request.data(), request.size(), 0,
                                        reinterpret_cast<sockaddr *>(&sender), &size);
        request.resize(static_cast<size_t>(length > 0 ? length : 0));
        const std::vector<std::string> answers = answers_to(request, mode);
        while (is_readable(clients, 0)) // a client that could not wait has asked again
            recv(clients, request.data(), request.size(), 0);
        for (const std::string &text : answers)
            sendto(clients, text.data(), text.size(), 0, reinterpret_cast<sockaddr *>(&sender),
                   size);
    }
}
