#include "switchsim/logical.h"

#include "switchsim/family.h"

namespace switchsim {

Lag *Lags::find(std::string_view interfaceName)
{
    for (auto &[id, lag] : all)
        if (lag.name == interfaceName)
            return &lag;
    return nullptr;
}

const Lag *Lags::withMember(const std::string &port) const
{
    for (const auto &[id, lag] : all)
        if (lag.members.count(port) != 0)
            return &lag;
    return nullptr;
}

void Vlans::forget(const std::string &interface)
{
    for (auto &[id, vlan] : all) {
        vlan.tagged.erase(interface);
        vlan.untagged.erase(interface);
    }
}

Interface *Device::findInterface(std::string_view name)
{
    if (Port *port = ports.find(name))
        return port;
    if (Lag *lag = lags.find(name))
        return lag;
    const auto found = routed.find(name);
    return found == routed.end() ? nullptr : &found->second;
}

std::string unknownInterface(std::string_view name)
{
    return "Error: interface " + std::string(name) + " does not exist\n";
}

std::string unknownVlan(std::uint32_t id)
{
    return "Error: VLAN " + std::to_string(id) + " does not exist\n";
}

} // namespace switchsim
