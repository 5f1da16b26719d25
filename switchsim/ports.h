// The ports of the switch: one unit with 24.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace switchsim
{

struct Port {
    std::string name; // "ethernet 1/1/7"
    std::uint32_t ifindex = 0;
    bool isEnabled = true;
    std::optional<std::string> description;
};

class Ports
{
public:
    static constexpr unsigned kPortsOfUnit = 24;

    Ports();

    // Null: there is no such port.
    Port *find(std::string_view name);
    const std::vector<Port> &all() const { return ports_; }

private:
    std::vector<Port> ports_;
};

// What the switch says about a port that it doesn't have.
std::string unknownPort(std::string_view name);

} // namespace switchsim
