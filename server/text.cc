#include "server/text.h"

#include <algorithm>
#include <cstdint>

namespace agentd {
namespace {

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

struct Lead {
    std::size_t length;  // of the whole character; 0: no lead byte
    std::uint32_t bits;  // the value's part in the lead byte
    std::uint32_t least; // a smaller value has a shorter spelling
};

Lead leadOf(unsigned char byte)
{
    if (byte < 0x80)
        return {1, byte, 0};
    if (byte >= 0xc2 && byte <= 0xdf)
        return {2, byte & 0x1fU, 0x80};
    if (byte >= 0xe0 && byte <= 0xef)
        return {3, byte & 0x0fU, 0x800};
    if (byte >= 0xf0 && byte <= 0xf4)
        return {4, byte & 0x07U, 0x10000};
    return {0, 0, 0};
}

// How many bytes the character at the front has; 0: it is no valid UTF-8.
std::size_t characterLength(std::string_view text)
{
    const Lead lead = leadOf(static_cast<unsigned char>(text.front()));
    if (lead.length == 0 || lead.length > text.size())
        return 0;
    std::uint32_t value = lead.bits;
    for (std::size_t i = 1; i < lead.length; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xc0U) != 0x80U)
            return 0;
        value = value << 6 | (byte & 0x3fU);
    }
    const bool isSurrogate = value >= 0xd800 && value <= 0xdfff;
    return value < lead.least || value > 0x10ffff || isSurrogate ? 0 : lead.length;
}

// Of three bytes, but no character in XML.
bool isNonCharacter(std::string_view character)
{
    return character == "\xef\xbf\xbe" || character == "\xef\xbf\xbf";
}

} // namespace

bool isIdentifierCharacter(char c)
{
    return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

bool isIdentifier(std::string_view text)
{
    return !text.empty() && isLetter(text.front()) &&
        std::all_of(text.begin(), text.end(), isIdentifierCharacter);
}

bool isUtf8(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string printableText(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        const char c = text.front();
        const bool isControl = (static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n') || c == 0x7f;
        if (length == 0 || isControl || isNonCharacter(text.substr(0, length)))
            result += '?';
        else
            result.append(text.substr(0, length));
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result;
}

std::string_view trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t");
    if (first == text.npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool equalsIgnoringCase(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lower(x) == lower(y); });
}

std::vector<std::string_view> split(std::string_view text, char separator)
{
    std::vector<std::string_view> pieces;
    for (;;) {
        const auto end = text.find(separator);
        pieces.push_back(text.substr(0, end));
        if (end == text.npos)
            return pieces;
        text.remove_prefix(end + 1);
    }
}

std::set<std::string> prefixesIn(std::string_view path)
{
    std::set<std::string> prefixes;
    std::string name;
    char quote = 0;
    for (const char c : path) {
        if (quote) {
            quote = c == quote ? '\0' : quote;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == ':') {
            prefixes.insert(name);
            name.clear();
        } else if (isIdentifierCharacter(c)) {
            name += c;
        } else {
            name.clear();
        }
    }
    return prefixes;
}

} // namespace agentd
