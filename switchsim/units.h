// The units of the stack. There are as many as the value `stack-units` says, numbered from 1.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace switchsim {

struct StackUnit {
    static constexpr std::int32_t kPriority = 128;
    static constexpr std::uint32_t kWarning = 60;

    std::int32_t id = 0;
    std::int32_t priority = kPriority;
    std::string name;
    std::uint32_t warning = kWarning; // degrees
    // What it measures and reports.
    std::uint32_t halfDegrees = 0;
    std::array<const char *, 2> powerSupplies{};
    std::array<const char *, 6> fans{}; // null: it has no such fan

    std::string mac() const; // "0200.5e10.0100"
};

class StackUnits {
public:
    static constexpr std::int32_t kMost = 12;
    static constexpr std::uint32_t kShutdown = 75; // degrees

    StackUnits();

    std::vector<StackUnit> all; // up to kMost, present or not
};

} // namespace switchsim
