#include "backend/proto/ip_interface.pb-c.h"
#include "backend/proto/ipv6_interface.pb-c.h"
#include "switchsim/family.h"

#include <algorithm>
#include <array>

#include <arpa/inet.h>

namespace switchsim {
namespace {

constexpr std::int32_t kAdd = 1;
constexpr std::int32_t kUpdate = 2;
constexpr std::int32_t kRemove = 3;
constexpr std::size_t kMostHelpers = 16;
constexpr std::size_t kIpv6Bytes = 16;
constexpr std::uint32_t kLongestIpv6Prefix = 128;

struct RoutedKind {
    std::int32_t type;
    std::string_view word;
    std::uint32_t highest;
    std::uint32_t ifindexBase;
};
constexpr RoutedKind kKinds[] = {
    {2, "loopback", 64, 0x0500'0000},
    {4, "ve", 4095, 0x0600'0000},
};

struct Address {
    std::string length;        // mask or prefix length
    std::uint32_t network = 0; // of IPv4 only
    std::uint32_t mask = 0;
};

std::string ipv4Text(std::uint32_t address)
{
    std::array<char, INET_ADDRSTRLEN> text{};
    const in_addr bytes{htonl(address)};
    inet_ntop(AF_INET, &bytes, text.data(), text.size());
    return text.data();
}

std::string ipv6Text(const std::uint8_t *address)
{
    std::array<char, INET6_ADDRSTRLEN> text{};
    inet_ntop(AF_INET6, address, text.data(), text.size());
    return text.data();
}

class Routed : public Family {
public:
    explicit Routed(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "ip"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<Ip__Interface__Config, CommonResp>(
            "ui_set_intf_config", ip__interface__config__descriptor, common_resp__descriptor,
            [this](const auto &request, auto &, auto &answering) { config(request, answering); });
        calls.on<Ip__Interface__Config, CommonResp>(
            "ui_ip_interface_config", ip__interface__config__descriptor, common_resp__descriptor,
            [this](const auto &request, auto &, auto &answering) { ipv4(request, answering); });
        calls.on<Ipv6__Interface__Config, CommonResp>(
            "ui_ipv6_interface_config", ipv6__interface__config__descriptor, common_resp__descriptor,
            [this](const auto &request, auto &, auto &answering) { ipv6(request, answering); });
    }

    // Interfaces of any kind that have an address, and all ve and loopback.
    Json show() const override
    {
        Json all = Json::object();
        for (const auto &[name, interface] : device_.routed) {
            all[name] = Json::object();
            if (interface.description)
                all[name]["description"] = *interface.description;
        }
        for (const auto &[name, addresses] : addresses_)
            for (const auto &[text, address] : addresses)
                all[name]["addresses"].push_back(text + " " + address.length);
        for (const auto &[name, helpers] : helpers_)
            for (const std::uint32_t helper : helpers)
                all[name]["helpers"].push_back(ipv4Text(helper));
        return all;
    }

private:
    static std::string nameOf(const char *name) { return name == nullptr ? "" : name; }

    static const RoutedKind *kindOf(const Ip__Interface__Config &request)
    {
        const std::string name = nameOf(request.name);
        for (const RoutedKind &kind : kKinds)
            if (request.if_type == kind.type &&
                name == std::string(kind.word) + " " + std::to_string(request.id))
                return request.id >= 1 && request.id <= kind.highest ? &kind : nullptr;
        return nullptr;
    }

    void config(const Ip__Interface__Config &request, Answering &answering)
    {
        const std::string name = nameOf(request.name);
        const RoutedKind *kind = kindOf(request);
        if (request.operation == 0)
            return; // nothing said
        if (kind == nullptr)
            return answering.refuse("Error: " + name + " is no routed interface\n");
        if (request.operation == kRemove) {
            device_.routed.erase(name);
            addresses_.erase(name);
            helpers_.erase(name);
            return;
        }
        const bool removesText = request.description_op == kRemove;
        if (request.operation == kUpdate && device_.routed.count(name) == 0 && !removesText)
            return answering.refuse(unknownInterface(name));
        if (request.operation == kAdd) {
            Interface &made = device_.routed[name];
            made.name = name;
            made.ifindex = kind->ifindexBase + request.id;
        }
        describe(name, request);
    }

    void describe(const std::string &name, const Ip__Interface__Config &request)
    {
        const auto found = device_.routed.find(name);
        if (found == device_.routed.end())
            return;
        if (request.description_op == kRemove)
            found->second.description.reset();
        else if (request.description_op == kUpdate)
            found->second.description = nameOf(request.description);
    }

    void ipv4(const Ip__Interface__Config &request, Answering &answering)
    {
        const std::string name = nameOf(request.name);
        if (request.helper_flag != 0)
            return helper(name, request, answering);
        const Address address{ipv4Text(request.mask), request.address, request.mask};
        if (request.address_op == kAdd) {
            if (request.address == 0 || request.mask == 0)
                return answering.refuse("Error: invalid address or mask\n");
            if (const auto other = networkElsewhere(name, address); !other.empty())
                return answering.refuse("Error: the network is on interface " + other + " already\n");
        }
        change(name, request.address_op, ipv4Text(request.address), address, answering);
    }

    void helper(const std::string &name, const Ip__Interface__Config &request, Answering &answering)
    {
        if (device_.findInterface(name) == nullptr)
            return answering.refuse(unknownInterface(name));
        auto &helpers = helpers_[name];
        const auto found = std::find(helpers.begin(), helpers.end(), request.address);
        if (request.helper_op == kRemove && found == helpers.end())
            answering.refuse("Error: interface " + name + " has no such helper address\n");
        else if (request.helper_op == kRemove)
            helpers.erase(found);
        else if (request.helper_op == kAdd && found == helpers.end() && helpers.size() >= kMostHelpers)
            answering.refuse("Error: interface " + name + " has as many helper addresses as it can\n");
        else if (request.helper_op == kAdd && found == helpers.end())
            helpers.push_back(request.address);
        if (helpers.empty())
            helpers_.erase(name);
    }

    void ipv6(const Ipv6__Interface__Config &request, Answering &answering)
    {
        if (request.address_op == 0)
            return; // nothing said
        if (request.address.len != kIpv6Bytes)
            return answering.refuse("Error: invalid address\n");
        if (request.address_op == kAdd && request.prefix_len > kLongestIpv6Prefix)
            return answering.refuse("Error: invalid prefix length\n");
        change(nameOf(request.name), request.address_op, ipv6Text(request.address.data),
               {std::to_string(request.prefix_len)}, answering);
    }

    void change(const std::string &name, std::int32_t operation, const std::string &text,
                const Address &address, Answering &answering)
    {
        if (operation == kRemove) {
            const auto found = addresses_.find(name);
            if (found != addresses_.end() && found->second.erase(text) != 0 && found->second.empty())
                addresses_.erase(found);
        } else if (operation == kAdd && device_.findInterface(name) == nullptr) {
            answering.refuse(unknownInterface(name));
        } else if (operation == kAdd) {
            addresses_[name][text] = address;
        }
    }

    // The interface that has addresses of the same network; empty if none has.
    std::string networkElsewhere(const std::string &name, const Address &wanted) const
    {
        for (const auto &[other, addresses] : addresses_)
            for (const auto &[text, there] : addresses)
                if (other != name && there.mask != 0 &&
                    ((there.network ^ wanted.network) & there.mask & wanted.mask) == 0)
                    return other;
        return {};
    }

    Device &device_;
    std::map<std::string, std::map<std::string, Address>> addresses_; // by interface and text
    std::map<std::string, std::vector<std::uint32_t>> helpers_;       // by interface, as they came
};

} // namespace

std::unique_ptr<Family> makeRoutedInterfaces(Device &device)
{
    return std::make_unique<Routed>(device);
}

} // namespace switchsim
