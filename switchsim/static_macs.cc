#include "backend/proto/vlan.pb-c.h"
#include "switchsim/family.h"

#include <array>
#include <cstdio>

namespace switchsim {
namespace {

constexpr std::int32_t kAdd = 1, kRemove = 3;
constexpr std::size_t kMacBytes = 6;

std::string macText(const std::uint8_t *mac)
{
    std::array<char, 3 * kMacBytes> text{};
    std::snprintf(text.data(), text.size(), "%02x:%02x:%02x:%02x:%02x:%02x", mac[0], mac[1], mac[2], mac[3],
                  mac[4], mac[5]);
    return text.data();
}

class StaticMacs : public Family {
public:
    explicit StaticMacs(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "static-mac"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<MacConfigReq, CommonResp>("ui_mac_config_apply", mac_config_req__descriptor,
                                           common_resp__descriptor,
                                           [this](const auto &request, auto &, auto &answering) {
                                               for (std::size_t i = 0; i < request.n_entries; ++i)
                                                   apply(*request.entries[i], answering);
                                           });
    }

    Json show() const override
    {
        Json all = Json::array();
        for (const auto &[key, port] : entries_)
            all.push_back({{"mac", key.second}, {"vlan", key.first}, {"port", port}});
        return all;
    }

private:
    void apply(const MacConfigEntry &entry, Answering &answering)
    {
        if (entry.mac_address.len != kMacBytes || entry.vlan_type == nullptr)
            return answering.refuse("Error: invalid MAC address entry\n");
        const std::uint32_t vlan = entry.vlan_type->id;
        const std::string mac = macText(entry.mac_address.data),
                          port = entry.port == nullptr ? "" : entry.port;
        if (entry.mac_op == kRemove)
            entries_.erase({vlan, mac});
        else if (entry.mac_op != kAdd)
            answering.refuse("Error: unknown MAC address operation\n");
        else if ((entry.mac_address.data[0] & 1U) != 0)
            answering.refuse("Error: " + mac + " is a group address\n");
        else if (!device_.vlans.has(vlan))
            answering.refuse(unknownVlan(vlan));
        else if (device_.findInterface(port) == nullptr)
            answering.refuse(unknownInterface(port));
        else
            entries_[{vlan, mac}] = port;
    }

    Device &device_;
    std::map<std::pair<std::uint32_t, std::string>, std::string> entries_; // ports by VLAN and address
};

} // namespace

std::unique_ptr<Family> makeStaticMacs(Device &device)
{
    return std::make_unique<StaticMacs>(device);
}

} // namespace switchsim
