// Inputs that spell documents: a byte above 0x7f stands for a word of a table, so that a fuzzer finds valid
// ones soon; every other byte stands for itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace fuzz {

inline std::string expanded(const std::uint8_t *data, std::size_t size, std::span<const char *const> words)
{
    std::string text;
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] < 0x80)
            text += static_cast<char>(data[i]);
        else
            text += words[(data[i] - 0x80U) % words.size()];
    }
    return text;
}

} // namespace fuzz
