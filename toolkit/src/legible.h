// Texts of the switch on their way to clients.
#pragma once

#include <string>
#include <string_view>

namespace tk {

// The text with U+FFFD for every byte that is not well-formed UTF-8 and every character that no YANG string,
// and so no XML document, can hold (control characters but tab and line ends, noncharacters). What a daemon
// says has to get through, whatever a cable's other end put into it.
std::string legible(std::string_view text);

} // namespace tk
