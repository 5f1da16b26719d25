// Interfaces that are made on request, and the VLANs with their members.
#pragma once

#include "switchsim/ports.h"

#include <map>
#include <set>

namespace switchsim {

struct Lag : Interface {
    std::string lagName;
    bool isDynamic = false;
    std::set<std::string> members; // names of ports
};

struct Lags {
    std::map<std::uint32_t, Lag> all; // by number

    // Null: there is no such LAG.
    Lag *find(std::string_view interfaceName);
    // The LAG that a port is a member of, or null.
    const Lag *withMember(const std::string &port) const;
};

using RoutedInterfaces = std::map<std::string, Interface, std::less<>>; // ve and loopback, by name

// Multicast snooping, for all VLANs or for one. 0: not set.
struct Snooping {
    std::int32_t mode = 0; // of the querier, 1 active, 2 passive
    std::uint32_t version = 0;

    bool operator==(const Snooping &) const = default;
};

// The spanning tree of a VLAN: one of the two kinds.
struct SpanningTree {
    static constexpr std::uint32_t kDefaultPriority = 32768;

    bool isRapid;
    std::uint32_t priority = kDefaultPriority;
};

struct Vlan {
    std::optional<std::string> name;
    std::set<std::string> tagged, untagged; // interface names
    bool isManagement = false;
    std::optional<SpanningTree> tree;
    Snooping snooping;
};

struct Vlans {
    static constexpr std::uint32_t kDefault = 1;
    static constexpr std::uint32_t kHighest = 4094;

    std::map<std::uint32_t, Vlan> all;          // the default VLAN always exists
    std::map<std::string, std::uint32_t> voice; // of a port

    bool has(std::uint32_t id) const { return all.count(id) != 0; }
    // An interface that goes away is a member of nothing.
    void forget(const std::string &interface);
};

// What the switch says about something that it doesn't have.
std::string unknownInterface(std::string_view name);
std::string unknownVlan(std::uint32_t id);

} // namespace switchsim
