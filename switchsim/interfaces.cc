#include "backend/proto/interface.pb-c.h"
#include "switchsim/family.h"

#include <algorithm>

namespace switchsim {
namespace {

constexpr std::int32_t kSet = 2;
constexpr std::int32_t kRemove = 3;
constexpr std::int32_t kGet = 5;

// Speeds by number, and those of them that know half duplex.
constexpr std::int32_t kSpeeds[] = {1, 2, 3, 4, 5, 7, 8, 9, 10, 11, 12};
constexpr std::int32_t k10M = 2;
constexpr std::int32_t k100M = 3;
constexpr std::int32_t k1G = 4;
constexpr std::int32_t kOptic = 12;
constexpr std::int32_t kHalf = 1;
constexpr std::int32_t kMaster = 1;
constexpr std::int32_t kSlave = 2;

// Between two looks at a port with a link, packets of this size come and go.
constexpr std::uint32_t kPacketsPerLook = 16;
constexpr std::uint32_t kPacketSize = 128;

class Interfaces : public Family {
public:
    explicit Interfaces(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "interfaces"; }

    void registerCalls(CallTable &calls) override
    {
        calls
            .on<InterfaceConfigParam, InterfaceConfigParam>(
                "ui_fe_interface_config_msg", interface_config_param__descriptor,
                interface_config_param__descriptor,
                [this](const auto &request, auto &answer, auto &answering) {
                    config(request, answer, answering);
                })
            .withArgument("operation");
        calls
            .on<InterfaceEthernetConfigParam, InterfaceEthernetConfigParam>(
                "ui_fe_interface_ethernet_config_msg", interface_ethernet_config_param__descriptor,
                interface_ethernet_config_param__descriptor,
                [this](const auto &request, auto &answer, auto &answering) {
                    ethernet(request, answer, answering);
                })
            .withArgument("operation");
    }

    void valueChanged(std::string_view name) override
    {
        if (name == "ports")
            device_.ports.resize(static_cast<unsigned>(device_.values.get(name)));
    }

    Json show() const override
    {
        Json all = Json::object();
        for (const Port &port : device_.ports.all()) {
            Json &shown = all[port.name] = {{"ifindex", port.ifindex},    {"enabled", port.isEnabled},
                                            {"link", hasLink(port)},      {"speed", port.link.speed},
                                            {"duplex", port.link.duplex}, {"clock", port.link.clock}};
            if (port.description)
                shown["description"] = *port.description;
            if (port.link.quadPort != 0)
                shown["quad-port"] = port.link.quadPort;
        }
        return all;
    }

private:
    void config(const InterfaceConfigParam &request, InterfaceConfigParam &answer, Answering &answering)
    {
        const std::string_view name = request.name == nullptr ? "" : request.name;
        Interface *interface = device_.findInterface(name);
        if (interface == nullptr)
            return answering.refuse(unknownPort(name));
        if (answering.argument() == kSet)
            change(*interface, request);
        else if (answering.argument() != kGet)
            return answering.refuse("Error: unknown interface operation\n");
        describe(*interface, answer, answering);
    }

    static void change(Interface &interface, const InterfaceConfigParam &request)
    {
        if (request.description_op == kSet && request.description != nullptr)
            interface.description = request.description;
        else if (request.description_op == kRemove)
            interface.description.reset();
        if (request.enabled_op == kSet)
            interface.isEnabled = request.enabled != 0;
        else if (request.enabled_op == kRemove)
            interface.isEnabled = true;
    }

    void describe(const Interface &interface, InterfaceConfigParam &answer, Answering &answering)
    {
        answer.name = answering.keep(interface.name);
        answer.ifindex = interface.ifindex;
        answer.description = interface.description ? answering.keep(*interface.description) : nullptr;
        answer.has_enabled = answer.has_oper_state = 1;
        answer.enabled = interface.isEnabled ? 1 : 0;
        answer.oper_state = isUp(interface) ? 1 : 0;
        answer.counters = answering.make(interface_counters__init);
        count(trafficOf(interface.name), *answer.counters);
    }

    bool hasLink(const Port &port) const
    {
        return port.isEnabled &&
            device_.values.get("unplugged-port") != static_cast<std::int32_t>(port.ifindex);
    }

    bool isUp(const Interface &interface) const
    {
        if (const Port *port = device_.ports.find(interface.name))
            return hasLink(*port);
        const Lag *lag = device_.lags.find(interface.name);
        return interface.isEnabled &&
            (lag == nullptr ||
             std::any_of(lag->members.begin(), lag->members.end(), [this](const auto &name) {
                 const Port *member = device_.ports.find(name);
                 return member != nullptr && hasLink(*member);
             }));
    }

    // Packets through a port, of a LAG those of its members. They grow with each look while there is a link.
    std::uint32_t trafficOf(const std::string &name)
    {
        if (Port *port = device_.ports.find(name))
            return port->traffic += hasLink(*port) ? kPacketsPerLook : 0;
        std::uint32_t sum = 0;
        if (const Lag *lag = device_.lags.find(name))
            for (const auto &member : lag->members)
                sum += trafficOf(member);
        return sum;
    }

    // One packet in eight is a broadcast, another one a multicast.
    static void count(std::uint32_t packets, InterfaceCounters &counters)
    {
        const std::uint32_t group = packets / 8;
        counters.in_octets = counters.out_octets = packets * kPacketSize;
        counters.in_pkts = counters.out_pkts = packets;
        counters.in_broadcast_pkts = counters.out_broadcast_pkts = group;
        counters.in_multicast_pkts = counters.out_multicast_pkts = group;
        counters.in_unicast_pkts = counters.out_unicast_pkts = packets - 2 * group;
    }

    void ethernet(const InterfaceEthernetConfigParam &request, InterfaceEthernetConfigParam &answer,
                  Answering &answering)
    {
        const std::string_view name = request.name == nullptr ? "" : request.name;
        Port *port = device_.ports.find(name);
        if (port == nullptr)
            return answering.refuse(unknownPort(name));
        if (answering.argument() != kSet && answering.argument() != kGet)
            return answering.refuse("Error: unknown interface operation\n");
        if (answering.argument() == kSet && request.settings != nullptr)
            changeLink(port->link, *request.settings, answering);
        answer.name = answering.keep(port->name);
        answer.settings = answering.make(ethernet_settings__init);
        describeLink(*port, *answer.settings);
    }

    static void changeLink(Link &link, const EthernetSettings &settings, Answering &answering)
    {
        Link wanted = link;
        if (settings.speed_op == kRemove)
            wanted = {.quadPort = link.quadPort};
        if (settings.speed_op == kSet) {
            wanted.speed = settings.speed != 0 ? settings.speed : link.speed;
            wanted.duplex = settings.duplex != 0 ? settings.duplex : link.duplex;
            wanted.clock = settings.clock != 0 ? settings.clock : link.clock;
        }
        if (settings.quad_port_op == kSet)
            wanted.quadPort = settings.quad_port;
        if (std::find(std::begin(kSpeeds), std::end(kSpeeds), wanted.speed) == std::end(kSpeeds))
            return answering.refuse("Error: the port does not have that speed\n");
        if (wanted.duplex == kHalf && wanted.speed != k10M && wanted.speed != k100M)
            return answering.refuse("Error: half duplex is for 10 and 100 Mbit/s only\n");
        link = wanted;
    }

    void describeLink(const Port &port, EthernetSettings &settings) const
    {
        const bool isNegotiated = port.link.speed == Link::kAutoSpeed || port.link.speed == kOptic;
        settings.speed = port.link.speed;
        settings.duplex = port.link.duplex;
        settings.clock = port.link.clock;
        settings.quad_port = port.link.quadPort;
        if (!hasLink(port))
            return;
        settings.negotiated_speed = isNegotiated ? k1G : port.link.speed;
        settings.negotiated_duplex = port.link.duplex;
        settings.negotiated_clock = port.link.clock == kMaster ? kMaster : kSlave;
    }

    Device &device_;
};

} // namespace

std::unique_ptr<Family> makeInterfaces(Device &device)
{
    return std::make_unique<Interfaces>(device);
}

} // namespace switchsim
