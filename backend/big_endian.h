// Numbers in network byte order, whatever the CPU's order and alignment.
#pragma once

#include <cstdint>

namespace backend {

inline void putU32(std::uint8_t *out, std::uint32_t value)
{
    for (int i = 0; i < 4; i++)
        out[i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
}

inline std::uint32_t getU32(const std::uint8_t *in)
{
    std::uint32_t value = 0;
    for (int i = 0; i < 4; i++)
        value = value << 8 | in[i];
    return value;
}

} // namespace backend
