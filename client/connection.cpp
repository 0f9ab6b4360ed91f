#include "client/connection.h"

#include <chrono>
#include <optional>
#include <regex>
#include <thread>

#include "client/datagram_socket.h"
#include "client/failure.h"

namespace {

using std::chrono::steady_clock;

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

std::string name_of(const server_address &server)
{
    return server.host + " port " + std::to_string(server.port);
}

void check_request_size(const std::string &request)
{
    if (request.size() > PARA_MESSAGE_MAX)
        throw failure(USAGE, "the request has " + std::to_string(request.size()) +
                                 " bytes, the host takes " + std::to_string(PARA_MESSAGE_MAX));
}

std::string exchange(const server_address &server, const std::string &request,
                     const std::function<bool(const std::string &answer)> &fits)
{
    check_request_size(request);
    return exchange_datagrams(server, request, fits);
}

std::string exchange_datagrams(const server_address &server, const std::string &request,
                               const std::function<bool(const std::string &answer)> &fits)
{
    const datagram_socket socket(server);
    const auto timeout = std::chrono::duration_cast<steady_clock::duration>(
        std::chrono::duration<double>(server.timeout_s));
    int unfit = 0;
    for (int sent = 0; sent <= server.retries; sent++) {
        const auto until = steady_clock::now() + timeout;
        try {
            socket.send(request);
            while (const std::optional<std::string> answer = socket.receive(until)) {
                if (fits(*answer))
                    return *answer;
                unfit++;
            }
        } catch (const failure &error) {
            if (error.code != NO_ANSWER || !server.waits_for_port || sent == server.retries)
                throw;
            std::this_thread::sleep_until(until);
        }
    }
    no_answer(server, unfit);
}

void send_datagram(const server_address &server, const std::string &bytes)
{
    datagram_socket(server).send(bytes);
}
