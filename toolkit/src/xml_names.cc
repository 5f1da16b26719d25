#include "toolkit/xml_names.h"

#include "errors.h"

#include <algorithm>
#include <sstream>

namespace tk {

namespace {

constexpr std::string_view kDeclaration = "xmlns";

// Of "xmlns:x" the "x", of "xmlns" the empty prefix.
std::string_view declaredPrefix(std::string_view name)
{
    return name.size() == kDeclaration.size() ? std::string_view() : name.substr(kDeclaration.size() + 1);
}

} // namespace

std::string_view localName(std::string_view qualifiedName)
{
    const auto colon = qualifiedName.find(':');
    return colon == qualifiedName.npos ? qualifiedName : qualifiedName.substr(colon + 1);
}

std::string_view prefixOf(std::string_view qualifiedName)
{
    const auto colon = qualifiedName.find(':');
    return colon == qualifiedName.npos ? std::string_view() : qualifiedName.substr(0, colon);
}

bool isNamespaceDeclaration(const pugi::xml_attribute &attribute)
{
    const std::string_view name = attribute.name();
    return name == kDeclaration || prefixOf(name) == kDeclaration;
}

std::optional<std::string> namespaceOf(const pugi::xml_node &element, std::string_view prefix)
{
    for (pugi::xml_node up = element; up; up = up.parent())
        for (const pugi::xml_attribute attribute : up.attributes())
            if (isNamespaceDeclaration(attribute) && declaredPrefix(attribute.name()) == prefix)
                return attribute.value();
    return prefix.empty() ? std::optional<std::string>("") : std::nullopt;
}

std::string namespaceOf(const pugi::xml_node &element)
{
    return namespaceOf(element, prefixOf(element.name())).value_or("");
}

std::string namespaceOf(const pugi::xml_node &element, const pugi::xml_attribute &attribute)
{
    const std::string_view prefix = prefixOf(attribute.name());
    return prefix.empty() ? "" : namespaceOf(element, prefix).value_or("");
}

std::map<std::string, std::string> namespacesAt(const pugi::xml_node &element)
{
    std::map<std::string, std::string> found;
    for (pugi::xml_node up = element; up; up = up.parent())
        for (const pugi::xml_attribute attribute : up.attributes())
            if (isNamespaceDeclaration(attribute))
                found.emplace(declaredPrefix(attribute.name()), attribute.value());
    return found;
}

void takeNamespacesAlong(pugi::xml_node element)
{
    for (pugi::xml_node up = element.parent(); up; up = up.parent())
        for (const pugi::xml_attribute attribute : up.attributes())
            if (isNamespaceDeclaration(attribute) && !element.attribute(attribute.name()))
                element.append_copy(attribute);
}

std::string printElement(const pugi::xml_node &element)
{
    std::ostringstream out;
    element.print(out, "", pugi::format_raw);
    return out.str();
}

void loadDocument(pugi::xml_document &document, std::string_view text)
{
    const auto result =
        document.load_buffer(text.data(), text.size(), pugi::parse_default | pugi::parse_ws_pcdata_single);
    if (!result)
        throw malformed(std::string("The XML document is malformed: ") + result.description() + ".");
    const auto isElement = [](const pugi::xml_node &node) { return node.type() == pugi::node_element; };
    if (std::count_if(document.begin(), document.end(), isElement) != 1)
        throw malformed("The XML document must have one root.");
}

} // namespace tk
