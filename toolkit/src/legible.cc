#include "legible.h"

#include <cstdint>

namespace tk {

namespace {

// Of a character that begins like this: how many bytes it has, and which bits of the first one count. 0: none
// does.
struct Start {
    unsigned length;
    unsigned bits;
};

Start startOf(unsigned char first)
{
    if (first < 0x80)
        return {1, 0x7f};
    if (first >= 0xc2 && first < 0xe0)
        return {2, 0x1f};
    if (first >= 0xe0 && first < 0xf0)
        return {3, 0x0f};
    if (first >= 0xf0 && first < 0xf5)
        return {4, 0x07};
    return {0, 0};
}

bool isAllowed(std::uint32_t character, unsigned length)
{
    constexpr std::uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    if (character < 0x20)
        return character == '\t' || character == '\n' || character == '\r';
    const bool isSurrogate = character >= 0xd800 && character <= 0xdfff;
    const bool isNoncharacter =
        (character >= 0xfdd0 && character <= 0xfdef) || (character & 0xfffe) == 0xfffe;
    return character >= least[length] && character <= 0x10ffff && !isSurrogate && !isNoncharacter;
}

// The length of the allowed character in front; 0: there is none.
std::size_t characterAt(std::string_view text)
{
    const Start start = startOf(static_cast<unsigned char>(text.front()));
    if (start.length == 0 || start.length > text.size())
        return 0;
    std::uint32_t character = static_cast<unsigned char>(text.front()) & start.bits;
    for (unsigned i = 1; i < start.length; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xc0) != 0x80)
            return 0;
        character = character << 6 | (next & 0x3fU);
    }
    return isAllowed(character, start.length) ? start.length : 0;
}

} // namespace

std::string legible(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = characterAt(text);
        if (length)
            result += text.substr(0, length);
        else
            result += "\uFFFD";
        text.remove_prefix(length ? length : 1);
    }
    return result;
}

} // namespace tk
