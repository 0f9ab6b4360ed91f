#include "support/store.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

std::string swap_quotes(std::string text, char from, char to)
{
    std::replace(text.begin(), text.end(), from, to);
    return text;
}

} // namespace

json parse(std::string text)
{
    json tree(cJSON_Parse(swap_quotes(std::move(text), '\'', '"').c_str()));
    EXPECT_NE(tree, nullptr) << "the test's own text is not JSON";
    return tree;
}

std::string compact(const cJSON *node)
{
    char *const text = cJSON_PrintUnformatted(node);
    std::string result = text != nullptr ? text : "";
    cJSON_free(text);
    return swap_quotes(std::move(result), '"', '\'');
}

std::optional<std::string> read_file(const std::string &path)
{
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
    ASSERT_TRUE(file) << path;
}

Store::Store()
{
    char name[] = "/tmp/camparam-test-XXXXXX";
    folder = mkdtemp(name);
    home = folder + "/home";
    data = folder + "/data";
    std::filesystem::create_directory(home);
    std::filesystem::create_directory(data);
    para_profile.home_dir = home.c_str();
    para_profile.data_dir = data.c_str();
    set_trace_level(7);
}

Store::~Store()
{
    if (started)
        stop_store();
    std::filesystem::remove_all(folder);
}

void Store::write_home(const std::string &name, const std::string &bytes)
{
    write_file(home + "/" + name, swap_quotes(bytes, '\'', '"'));
}

void Store::write_data(const std::string &name, const std::string &bytes)
{
    write_file(data + "/" + name, swap_quotes(bytes, '\'', '"'));
}

std::optional<std::string> Store::read_data(const std::string &name)
{
    return read_file(data + "/" + name);
}

void Store::start_store()
{
    ASSERT_EQ(platformparam_init(), 0);
    started = true;
}

void Store::stop_store()
{
    platformparam_stop(1);
    started = false;
}

Client::Client() : descriptor(socket(AF_INET, SOCK_DGRAM, 0))
{
    sockaddr_in server = {};
    server.sin_family = AF_INET;
    server.sin_port = htons(6800);
    server.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int connected =
        connect(descriptor, reinterpret_cast<const sockaddr *>(&server), sizeof server);
    EXPECT_EQ(connected, 0);
}

Client::~Client()
{
    close(descriptor);
}

void Client::send(const std::string &datagram)
{
    const ssize_t sent = ::send(descriptor, datagram.data(), datagram.size(), 0);
    ASSERT_EQ(sent, static_cast<ssize_t>(datagram.size()));
}

std::optional<std::string> Client::receive(int timeout_ms)
{
    pollfd readable = {descriptor, POLLIN, 0};
    if (poll(&readable, 1, timeout_ms) != 1)
        return std::nullopt;
    std::string datagram(65536, '\0');
    const ssize_t length = recv(descriptor, datagram.data(), datagram.size(), 0);
    if (length < 0)
        return std::nullopt;
    datagram.resize(static_cast<size_t>(length));
    return datagram;
}

std::optional<std::string> Client::request(std::string text)
{
    send(swap_quotes(std::move(text), '\'', '"'));
    return receive();
}

std::string Client::ask(const std::string &text)
{
    const std::optional<std::string> reply = request(text);
    if (!reply)
        return "none";
    const json tree(cJSON_Parse(reply->c_str()));
    return tree != nullptr ? compact(tree.get()) : *reply;
}

bool Client::stays_silent()
{
    static int number = 0;
    const std::string mark = "silence-" + std::to_string(++number);
    const std::optional<std::string> reply =
        request("{'msg_type':'get','msg_name':'" + mark + "'}");
    return reply && reply->find(mark) != std::string::npos;
}
