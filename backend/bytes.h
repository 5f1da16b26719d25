// A run of bytes, owned or looked at.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace backend {

using Bytes = std::vector<std::uint8_t>;
using BytesView = std::span<const std::uint8_t>;

} // namespace backend
