#include "server/netconf/xml.h"

namespace agentd::netconf {

std::string detached(const pugi::xml_node &element)
{
    pugi::xml_document document;
    pugi::xml_node copy = document.append_copy(element);
    for (const auto &[prefix, uri] : tk::namespacesAt(element)) {
        const std::string name = prefix.empty() ? "xmlns" : "xmlns:" + prefix;
        if (!copy.attribute(name.c_str()))
            copy.append_attribute(name.c_str()).set_value(uri.c_str());
    }
    return tk::printElement(copy);
}

std::string escaped(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += c;
        }
    }
    return result;
}

} // namespace agentd::netconf
