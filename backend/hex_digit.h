// A hexadecimal digit's value.
#pragma once

namespace backend {

// 0 to 15; -1 for any other character.
constexpr int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

} // namespace backend
