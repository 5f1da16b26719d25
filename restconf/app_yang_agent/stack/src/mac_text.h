// MAC addresses of the form "aabb.ccdd.eeff".
#pragma once

#include "backend/stack.h"
#include "toolkit/toolkit.h"

#include <cstddef>

namespace stack {

inline constexpr Status kBadMac = 232;

// Reads an address into six bytes. kBadMac, with a text for the client in the `size` bytes of `error`, for
// one that is no address or that no device can have.
Status readMac(const char *text, std::uint8_t (&mac)[STACK_MAC_SIZE], char *error, std::size_t size);

} // namespace stack
