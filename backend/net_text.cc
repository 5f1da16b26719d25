#include "backend/net_text.h"

#include "backend/hex_digit.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string_view>

#include <arpa/inet.h>

namespace {

// Takes a decimal number of at most `highest` off the front of a text.
std::optional<std::uint32_t> takeNumber(std::string_view &text, std::uint32_t highest)
{
    std::uint32_t value = 0;
    std::size_t digits = 0;
    while (digits < text.size() && text[digits] >= '0' && text[digits] <= '9') {
        value = 10 * value + static_cast<std::uint32_t>(text[digits++] - '0');
        if (value > highest)
            return std::nullopt;
    }
    if (digits == 0)
        return std::nullopt;
    text.remove_prefix(digits);
    return value;
}

bool takeCharacter(std::string_view &text, char character)
{
    if (text.empty() || text.front() != character)
        return false;
    text.remove_prefix(1);
    return true;
}

struct Dotted {
    std::uint32_t address = 0;
    int octets = 0;
};

// One to four numbers with dots between them; `text` is left behind them.
std::optional<Dotted> takeDotted(std::string_view &text)
{
    Dotted dotted;
    do {
        const auto octet = takeNumber(text, 255);
        if (!octet)
            return std::nullopt;
        dotted.address |= *octet << (24 - 8 * dotted.octets++);
    } while (dotted.octets < 4 && takeCharacter(text, '.'));
    return dotted;
}

// Twelve hexadecimal digits, with `separator` behind every `group` of them.
bool readMac(std::string_view text, char separator, std::size_t group, std::uint8_t *mac)
{
    const std::size_t separators = 12 / group - 1;
    if (text.size() != 12 + separators)
        return false;
    std::size_t nibble = 0;
    for (std::size_t i = 0; i < text.size(); i++) {
        if (i % (group + 1) == group) {
            if (text[i] != separator)
                return false;
            continue;
        }
        const int digit = backend::hexDigit(text[i]);
        if (digit < 0)
            return false;
        mac[nibble / 2] = static_cast<std::uint8_t>(mac[nibble / 2] << 4 | digit);
        nibble++;
    }
    return true;
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

} // namespace

int ip_string_to_address(const char *text, uint32_t *address)
{
    if (text == nullptr || address == nullptr)
        return 0;
    std::string_view rest = text;
    const auto dotted = takeDotted(rest);
    if (!dotted || dotted->octets != 4 || !rest.empty())
        return 0;
    *address = dotted->address;
    return 1;
}

int ip6_string_to_address(const char *text, uint8_t *address)
{
    in6_addr read{};
    if (text == nullptr || address == nullptr || inet_pton(AF_INET6, text, &read) != 1)
        return 0;
    std::memcpy(address, &read, sizeof(read));
    return 1;
}

char *ip_address_to_string(uint32_t address, char *text)
{
    std::snprintf(text, IP_ADDRESS_TEXT_BYTES, "%u.%u.%u.%u", address >> 24, address >> 16 & 0xffU,
                  address >> 8 & 0xffU, address & 0xffU);
    return text;
}

uint32_t ip_string2int(const char *text)
{
    std::string_view rest = text == nullptr ? "" : text;
    const auto dotted = takeDotted(rest);
    return dotted && rest.empty() ? dotted->address : 0;
}

uint32_t prefix2mask(uint32_t prefix_length)
{
    if (prefix_length == 0)
        return 0;
    return prefix_length >= 32 ? UINT32_MAX : UINT32_MAX << (32 - prefix_length);
}

int ip_prefix_to_addr_mask(const char *prefix, uint32_t *address, uint32_t *mask)
{
    if (prefix == nullptr || address == nullptr || mask == nullptr)
        return 0;
    std::string_view rest = prefix;
    const auto dotted = takeDotted(rest);
    if (!dotted || dotted->octets != 4 || !takeCharacter(rest, '/'))
        return 0;
    const auto length = takeNumber(rest, 32);
    if (!length || !rest.empty())
        return 0;
    *address = dotted->address;
    *mask = prefix2mask(*length);
    return 1;
}

uint8_t get_common_ip_addr_val(uint32_t address, int octet)
{
    return octet < 1 || octet > 4 ? 0 : static_cast<std::uint8_t>(address >> (8 * (octet - 1)));
}

int string_to_mac_addr_form(const char *text, uint8_t *mac)
{
    if (mac == nullptr)
        return 0;
    struct Form {
        char separator;
        std::size_t group;
    };
    for (const Form form : {Form{'.', 4}, Form{':', 2}, Form{'-', 2}}) {
        std::memset(mac, 0, 6);
        if (text != nullptr && readMac(text, form.separator, form.group, mac))
            return 1;
    }
    std::memset(mac, 0, 6);
    return 0;
}

char *trim_whitespace(char *text)
{
    if (text == nullptr)
        return nullptr;
    std::size_t length = std::strlen(text);
    while (length > 0 && isBlank(text[length - 1]))
        text[--length] = '\0';
    while (isBlank(*text))
        text++;
    return text;
}

int cli_find_char(const char *text, char character)
{
    const auto position = std::string_view(text == nullptr ? "" : text).find(character);
    return position == std::string_view::npos ? -1 : static_cast<int>(position);
}

int kprintf(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int result = std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    return result;
}

int uprintf(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int result = std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    return result;
}

int ksprintf(char *buffer, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int result = std::vsnprintf(buffer, KSPRINTF_LIMIT, format, arguments);
    va_end(arguments);
    return result;
}

int ksnprintf(char *buffer, size_t size, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int result = std::vsnprintf(buffer, size, format, arguments);
    va_end(arguments);
    return result;
}
