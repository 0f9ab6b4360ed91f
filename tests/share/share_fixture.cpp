#include "share/share_fixture.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "support/shared_memory.h"

std::string OwnSharedMemory::object_path(int module)
{
    char name[64];
    snprintf(name, sizeof name, PARA_SHARE_MAP_NAME, module);
    return std::string("/dev/shm") + name;
}

std::string word_bytes(uint32_t word)
{
    std::string bytes(4, '\0');
    memcpy(bytes.data(), &word, 4);
    return bytes;
}

std::string field_bytes(const std::string &text, size_t width)
{
    std::string bytes = text;
    bytes.resize(width, '\0');
    return bytes;
}

static std::string datagram(uint32_t type, int instance, int value, const std::string &module,
                            const std::string &member, const std::string &text)
{
    return word_bytes(type) + word_bytes(static_cast<uint32_t>(instance)) +
           word_bytes(static_cast<uint32_t>(value)) + field_bytes(module, 16) +
           field_bytes(member, 16) + field_bytes(text, 32);
}

std::string number_datagram(const std::string &module, const std::string &member, int instance,
                            int value)
{
    return datagram(PARA_SHARE_NUMBER, instance, value, module, member, "");
}

std::string text_datagram(const std::string &module, const std::string &member, int instance,
                          const std::string &text)
{
    return datagram(PARA_SHARE_TEXT, instance, 0, module, member, text);
}

OwnSharedMemory::OwnSharedMemory()
{
    remove_share_maps();
}

void OwnSharedMemory::write_object(int module, const std::string &bytes)
{
    unlink(object_path(module).c_str());
    write_file(object_path(module), bytes);
}

std::string OwnSharedMemory::read_object(int module)
{
    return read_file(object_path(module)).value_or("none");
}

bool OwnSharedMemory::object_exists(int module)
{
    return access(object_path(module).c_str(), F_OK) == 0;
}

DatagramReceiver::DatagramReceiver(int port) : descriptor(socket(AF_INET, SOCK_DGRAM, 0))
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const auto *const any = reinterpret_cast<const sockaddr *>(&address);
    EXPECT_EQ(bind(descriptor, any, sizeof address), 0) << strerror(errno);
}

DatagramReceiver::~DatagramReceiver()
{
    close(descriptor);
}

std::string DatagramReceiver::receive() const
{
    char bytes[PARA_MESSAGE_MAX];
    pollfd readable = {descriptor, POLLIN, 0};
    if (poll(&readable, 1, 20000) != 1)
        return "none";
    const ssize_t length = recv(descriptor, bytes, sizeof bytes, 0);
    return std::string(bytes, length > 0 ? static_cast<size_t>(length) : 0);
}
