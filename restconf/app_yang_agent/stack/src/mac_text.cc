#include "stack/src/mac_text.h"

#include "backend/net_text.h"
#include "frame/call.h"
#include "stack/src/u_lyn-openconfig-stack.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstring>

namespace stack {

namespace {

constexpr std::size_t kLength = 14;
constexpr std::size_t kDots[] = {4, 9};

bool isDot(std::size_t position)
{
    return std::find(std::begin(kDots), std::end(kDots), position) != std::end(kDots);
}

bool isWellFormed(const char *text)
{
    for (std::size_t i = 0; i < kLength; ++i) {
        const bool fits = isDot(i) ? text[i] == '.' : std::isxdigit(static_cast<unsigned char>(text[i])) != 0;
        if (!fits)
            return false;
    }
    return true;
}

unsigned digit(char c)
{
    const int lower = std::tolower(static_cast<unsigned char>(c));
    return static_cast<unsigned>(lower <= '9' ? lower - '0' : lower - 'a' + 10);
}

void convert(const char *text, std::uint8_t (&mac)[STACK_MAC_SIZE])
{
    std::size_t digits = 0;
    std::fill(std::begin(mac), std::end(mac), std::uint8_t{0});
    for (std::size_t i = 0; i < kLength; ++i)
        if (!isDot(i)) {
            mac[digits / 2] = static_cast<std::uint8_t>(mac[digits / 2] << 4 | digit(text[i]));
            ++digits;
        }
}

} // namespace

Status readMac(const char *text, std::uint8_t (&mac)[STACK_MAC_SIZE], char *error, std::size_t size)
{
    std::array<char, 16> copy{};
    std::snprintf(copy.data(), copy.size(), "%s", text);
    const char *trimmed = trim_whitespace(copy.data());
    if (const std::size_t length = std::strlen(trimmed); length != kLength)
        std::snprintf(error, size, "Bad mac address len: exp:%d, actual:%d", static_cast<int>(kLength),
                      static_cast<int>(length));
    else if (!isWellFormed(trimmed))
        std::snprintf(error, size, "Invalid chars in mac address string: %s", trimmed);
    else if (convert(trimmed, mac); std::count(std::begin(mac), std::end(mac), 0xFF) == STACK_MAC_SIZE)
        std::snprintf(error, size, "Can't set mac addres to broadcast addr: %s", trimmed);
    else if (mac[0] & 1U)
        std::snprintf(error, size, "Can't set mac addres to multicast addr:%s", trimmed);
    else
        return kOk;
    return kBadMac;
}

} // namespace stack

extern "C" void stack_yang_build_mac_string(const std::uint8_t *bytes, int present, std::size_t length,
                                            char *text_out)
{
    text_out[0] = '\0';
    if (length == 0 && present && frame::logsErrors())
        log_error("\nStack conf edit mac addr len zero!!!");
    if (!bytes)
        return;
    char *at = text_out;
    for (std::size_t i = 0; i < std::min<std::size_t>(length, STACK_MAC_SIZE); ++i) {
        if (i > 0 && i % 2 == 0)
            *at++ = '.';
        at += std::snprintf(at, 3, "%02x", bytes[i]);
    }
}
