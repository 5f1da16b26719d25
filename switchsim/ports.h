// The ports of the switch: one unit with 24, or as many as the value `ports` says.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace switchsim {

// What a port does in spanning trees.
struct TreePort {
    bool hasRootGuard = false;
    bool hasBpduGuard = false;
    bool isEdge = false;

    bool operator==(const TreePort &) const = default;
};

// What every interface has, whatever its kind.
struct Interface {
    std::string name; // "ethernet 1/1/7"
    std::uint32_t ifindex = 0;
    bool isEnabled = true;
    std::optional<std::string> description;
    TreePort treePort;
};

// The numbers are those of the messages; as it comes from the factory a port negotiates all.
struct Link {
    static constexpr std::int32_t kAutoSpeed = 1;
    static constexpr std::int32_t kFull = 2;
    static constexpr std::int32_t kAutoClock = 3;

    std::int32_t speed = kAutoSpeed;
    std::int32_t duplex = kFull;
    std::int32_t clock = kAutoClock;
    std::int32_t quadPort = 0;
};

struct Port : Interface {
    Link link;
    std::uint32_t traffic = 0; // packets since the start, see interfaces.cc
};

class Ports {
public:
    static constexpr unsigned kPortsOfUnit = 24;

    Ports() { resize(kPortsOfUnit); }

    void resize(unsigned count); // the first ones stay as they are
    // Null: there is no such port.
    Port *find(std::string_view name);
    const std::vector<Port> &all() const { return ports_; }

private:
    std::vector<Port> ports_;
};

// What the switch says about a port that it doesn't have.
std::string unknownPort(std::string_view name);

} // namespace switchsim
