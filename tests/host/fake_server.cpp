#include "host/fake_server.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "camparam/camparam.h"
#include "support/json_text.h"

fake_server::fake_server(answerer answers)
    : answer(std::move(answers)), descriptor(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(PARA_SERVER_PORT);
    EXPECT_EQ(bind(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    thread = std::thread(&fake_server::serve, this);
}

fake_server::~fake_server()
{
    stopping = true;
    thread.join();
    close(descriptor);
}

std::vector<std::string> fake_server::requests() const
{
    const std::lock_guard<std::mutex> guard(lock);
    serve_waiting();
    return received;
}

void fake_server::serve()
{
    const int turn_ms = 10;
    while (!stopping) {
        pollfd readable = {descriptor, POLLIN, 0};
        if (poll(&readable, 1, turn_ms) != 1)
            continue;
        const std::lock_guard<std::mutex> guard(lock);
        serve_waiting();
    }
}

void fake_server::serve_waiting() const
{
    while (true) {
        std::string request(65536, '\0');
        sockaddr_in sender = {};
        socklen_t sender_length = sizeof sender;
        auto *const from = reinterpret_cast<sockaddr *>(&sender);
        const ssize_t length = recvfrom(descriptor, request.data(), request.size(), MSG_DONTWAIT,
                                        from, &sender_length);
        if (length < 0)
            return;
        request.resize(static_cast<size_t>(length));
        received.push_back(request);
        for (const std::string &text : answer(request))
            sendto(descriptor, text.data(), text.size(), 0, from, sender_length);
    }
}

std::string id_of(const std::string &request)
{
    const json tree(cJSON_Parse(request.c_str()));
    const cJSON *const id = cJSON_GetObjectItem(tree.get(), "msg_id");
    return cJSON_IsNumber(id) ? std::to_string(id->valueint) : "none";
}
