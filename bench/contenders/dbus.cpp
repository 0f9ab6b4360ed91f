// A service on a message bus, with the members as its properties: Get, GetAll and Set.
#include <cjson/cJSON.h>
#include <systemd/sd-bus.h>

#include <atomic>
#include <map>
#include <thread>

#include "bench/contenders/contender.h"
#include "bench/support/device.h"
#include "bench/support/process.h"

namespace {

constexpr char service_name[] = "org.example.Camera";
constexpr char object[] = "/isp0";
constexpr char interface[] = "org.example.Camera.Picture";
constexpr char properties[] = "org.freedesktop.DBus.Properties";

void check(int result, const char *what)
{
    if (result >= 0)
        return;
    errno = -result;
    give_up(what);
}

std::map<std::string, int> values; // filled before the service starts, then its thread's

int get_value(sd_bus *, const char *, const char *, const char *property, sd_bus_message *reply,
              void *, sd_bus_error *)
{
    return sd_bus_message_append(reply, "i", values.find(property)->second);
}

int set_value(sd_bus *, const char *, const char *, const char *property, sd_bus_message *value,
              void *, sd_bus_error *)
{
    return sd_bus_message_read(value, "i", &values.find(property)->second);
}

std::vector<sd_bus_vtable> table_of_values()
{
    std::vector<sd_bus_vtable> table = {SD_BUS_VTABLE_START(0)};
    for (const auto &[name, value] : values)
        table.push_back(SD_BUS_WRITABLE_PROPERTY(name.c_str(), "i", get_value, set_value, 0, 0));
    table.push_back(SD_BUS_VTABLE_END);
    return table;
}

// A bus of its own, by which only this user's programs talk.
class message_bus {
public:
    message_bus()
    {
        daemon = std::make_unique<process>(std::vector<std::string>{
            "dbus-daemon", "--session", "--nofork", "--address=" + address()});
    }

    sd_bus *connect() const
    {
        sd_bus *bus = nullptr;
        const bool connected = succeeds_soon([&] {
            sd_bus_new(&bus);
            sd_bus_set_address(bus, address().c_str());
            sd_bus_set_bus_client(bus, 1);
            if (sd_bus_start(bus) >= 0)
                return true;
            bus = sd_bus_unref(bus);
            return false;
        });
        if (!connected)
            give_up("message bus");
        return bus;
    }

private:
    std::string address() const { return "unix:path=" + folder.path() + "/bus"; }

    scratch_folder folder;
    std::unique_ptr<process> daemon;
};

class dbus final : public contender {
public:
    dbus() : client(daemon.connect()) {}
    ~dbus() override
    {
        stopping = true;
        if (service.joinable()) {
            sd_bus_call_method(client, service_name, object, "org.freedesktop.DBus.Peer", "Ping",
                               nullptr, nullptr, "");
            service.join();
        }
        sd_bus_flush_close_unref(client);
    }

    std::string name() const override { return "D-Bus"; }

    void load(const std::string &all) override
    {
        cJSON *const tree = cJSON_Parse(all.c_str());
        const cJSON *each = nullptr;
        cJSON_ArrayForEach(each, cJSON_GetObjectItem(tree, "isp0"))
        {
            values[each->string] = each->valueint;
        }
        cJSON_Delete(tree);
        std::atomic<bool> ready{false};
        service = std::thread([&] { serve(ready); });
        if (!succeeds_soon([&] { return ready.load(); }))
            give_up("service on the message bus");
    }

    // There is no request for some of the properties: all of them are asked for.
    void prepare(const request_kind &kind, const std::string &) override
    {
        member = kind.members.size() == 1 ? kind.members[0] : "";
        sets = kind.requests.size() > 1;
    }

    void ask(size_t turn) override
    {
        sd_bus_message *reply = nullptr;
        if (sets)
            check(sd_bus_call_method(client, service_name, object, properties, "Set", nullptr,
                                     &reply, "ssv", interface, member.c_str(), "i",
                                     turn % 2 == 0 ? 40 : 60),
                  "Set");
        else if (member.empty())
            check(sd_bus_call_method(client, service_name, object, properties, "GetAll", nullptr,
                                     &reply, "s", interface),
                  "GetAll");
        else
            check(sd_bus_call_method(client, service_name, object, properties, "Get", nullptr,
                                     &reply, "ss", interface, member.c_str()),
                  "Get");
        sd_bus_message_unref(reply);
    }

private:
    void serve(std::atomic<bool> &ready)
    {
        sd_bus *const bus = daemon.connect();
        const std::vector<sd_bus_vtable> table = table_of_values();
        check(sd_bus_add_object_vtable(bus, nullptr, object, interface, table.data(), nullptr),
              "properties");
        check(sd_bus_request_name(bus, service_name, 0), "name of the service");
        ready = true;
        while (!stopping) {
            if (sd_bus_process(bus, nullptr) == 0)
                sd_bus_wait(bus, 100000);
        }
        sd_bus_flush_close_unref(bus);
    }

    message_bus daemon;
    sd_bus *client;
    std::thread service;
    std::atomic<bool> stopping{false};
    std::string member;
    bool sets = false;
};

} // namespace

std::unique_ptr<contender> dbus_properties()
{
    if (is_installed("dbus-daemon"))
        return std::make_unique<dbus>();
    fprintf(stderr, "D-Bus: dbus-daemon is not installed\n");
    return nullptr;
}
