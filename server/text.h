// Small questions about texts that more than one part of the server asks.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace agentd {

// A YANG identifier: a letter or "_", then letters, digits, "_", "-" and ".".
bool isIdentifier(std::string_view text);
bool isIdentifierCharacter(char c);

// Whether the bytes are valid UTF-8 (RFC 3629: no surrogates, nothing overlong).
bool isUtf8(std::string_view text);

// The text with each control character (tab and newline stay) and each byte of bad UTF-8 as "?": fit for
// a JSON string or an XML element.
std::string printableText(std::string_view text);

std::string_view trimmed(std::string_view text);                 // without spaces and tabs around it
bool equalsIgnoringCase(std::string_view a, std::string_view b); // ASCII only

// The pieces between the separators; a text without one is one piece, also if it is empty.
std::vector<std::string_view> split(std::string_view text, char separator);

// The names that stand before a colon in an instance-identifier, outside of quoted values.
std::set<std::string> prefixesIn(std::string_view path);

} // namespace agentd
