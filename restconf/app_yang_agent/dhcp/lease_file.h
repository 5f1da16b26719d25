// The text of the file in which the DHCP server keeps its leases: another program writes it, so nothing in it
// is taken on trust.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace dhcp {

inline constexpr std::size_t kMacBytes = 20;     // of a MAC address's text with its terminator
inline constexpr std::size_t kAddressBytes = 64; // of an IP address's text with its terminator

// Texts that are longer in the file are cut.
struct Lease {
    char mac[kMacBytes];
    char address[kAddressBytes];
    std::int32_t expiration; // seconds from now; 0 when it is over, has no end or none that can be read
};

enum class Block {
    none,     // there is no further one
    unusable, // it is cut off, or lacks the client's MAC address or a good IP address
    whole,
};

// Takes the next block off the front of a lease file, with all that stands before it. `lease` is filled for a
// whole one.
Block takeBlock(std::string_view &text, Lease &lease);

} // namespace dhcp
