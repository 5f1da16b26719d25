#include "backend/vlan_mask.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

constexpr std::uint32_t kVlans = VLAN_MASK_BYTES * 8;
constexpr std::uint32_t kFirst = 1; // bit 0 stands for no VLAN

bool isSet(const void *mask, std::uint32_t vlan)
{
    std::uint32_t word = 0; // copied: a mask inside of a message has any alignment
    std::memcpy(&word, static_cast<const unsigned char *>(mask) + vlan / 32 * sizeof(word), sizeof(word));
    return (word >> (vlan % 32) & 1U) != 0;
}

// The first VLAN from `vlan` on whose bit is `wanted`, kVlans if there is none.
std::uint32_t findFrom(const void *mask, std::uint32_t vlan, bool wanted)
{
    while (vlan < kVlans && isSet(mask, vlan) != wanted)
        vlan++;
    return vlan;
}

int print(char *out, std::size_t size, const char *blank, std::uint32_t first, std::uint32_t last)
{
    if (first == last)
        return std::snprintf(out, size, "%s%u", blank, first);
    return std::snprintf(out, size, "%s%u%s%u", blank, first, last == first + 1 ? " " : " to ", last);
}

} // namespace

std::size_t vlanmask_to_string(const void *mask, char *text, std::size_t size)
{
    if (text == nullptr || size == 0)
        return 0;
    text[0] = '\0';
    if (mask == nullptr)
        return 0;
    std::size_t length = 0;
    for (std::uint32_t first = findFrom(mask, kFirst, true); first < kVlans;) {
        const std::uint32_t end = findFrom(mask, first, false);
        const int added = print(text + length, size - length, length == 0 ? "" : " ", first, end - 1);
        if (added < 0 || static_cast<std::size_t>(added) >= size - length) {
            text[length] = '\0';
            break;
        }
        length += static_cast<std::size_t>(added);
        first = findFrom(mask, end, true);
    }
    return length;
}

std::size_t vlanmask_to_string_ext(const void *mask, char *text, std::size_t limit)
{
    return vlanmask_to_string(mask, text, limit + 1);
}

std::uint32_t vlanmask_get_first_vlan(const void *mask)
{
    if (mask == nullptr)
        return 0;
    const std::uint32_t first = findFrom(mask, kFirst, true);
    return first < kVlans ? first : 0;
}
