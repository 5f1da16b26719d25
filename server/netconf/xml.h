// Pieces of XML messages as documents of their own.
#pragma once

#include "toolkit/xml_names.h"

namespace agentd::netconf {

// The element as a document of its own: what is declared around it is declared on it.
std::string detached(const pugi::xml_node &element);

// The text with markup characters escaped: fit for an element or an attribute in double quotes.
std::string escaped(std::string_view text);

} // namespace agentd::netconf
