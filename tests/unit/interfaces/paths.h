// Paths to the nodes that many of these tests are about, and the port that they start with.
#pragma once

#include <string>

namespace test {

inline std::string interfacePath(const std::string &name, const std::string &below = "")
{
    std::string path = "openconfig-interfaces:interfaces/interface=";
    for (const char c : name)
        path += c == ' ' ? "%20" : c == '/' ? "%2F" : std::string(1, c);
    return path + below;
}

inline std::string instancePath(const std::string &below = "")
{
    return "openconfig-network-instance:network-instances/network-instance=default" + below;
}

inline std::string vlanPath(const std::string &vlan, const std::string &below = "")
{
    return instancePath("/vlans/vlan=" + vlan + below);
}

inline const std::string kPort = "ethernet 1/1/1",
                         kPortStartup =
                             R"({"openconfig-interfaces:interfaces":{"interface":[{"name":"ethernet 1/1/1",)"
                             R"("config":{"name":"ethernet 1/1/1","type":"iana-if-type:ethernetCsmacd"}}]}})";

} // namespace test
