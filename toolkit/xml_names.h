// Namespaces of XML documents, which pugixml leaves to its user. For the toolkit and for front ends.
#pragma once

#include <map>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>

namespace tk {

inline constexpr char kNetconfNamespace[] = "urn:ietf:params:xml:ns:netconf:base:1.0";
inline constexpr char kYangNamespace[] = "urn:ietf:params:xml:ns:yang:1";
inline constexpr char kDefaultsNamespace[] = "urn:ietf:params:xml:ns:netconf:default:1.0";
inline constexpr char kDefaultsModuleNamespace[] = "urn:ietf:params:xml:ns:yang:ietf-netconf-with-defaults";

std::string_view localName(std::string_view qualifiedName);
inline std::string_view localName(const pugi::xml_node &element)
{
    return localName(std::string_view(element.name()));
}
std::string_view prefixOf(std::string_view qualifiedName); // empty: none

// What the prefix stands for at the element; the empty prefix is the default namespace, "" where none is
// declared. Nothing: the prefix is not declared.
std::optional<std::string> namespaceOf(const pugi::xml_node &element, std::string_view prefix);
// The element's own; "" also where its prefix is not declared.
std::string namespaceOf(const pugi::xml_node &element);
// An attribute without a prefix is in no namespace: "".
std::string namespaceOf(const pugi::xml_node &element, const pugi::xml_attribute &attribute);

bool isNamespaceDeclaration(const pugi::xml_attribute &attribute);

// All declarations that count at the element: prefix to namespace.
std::map<std::string, std::string> namespacesAt(const pugi::xml_node &element);

// Declares at the element what is declared around it, so that it can be printed by itself.
void takeNamespacesAlong(pugi::xml_node element);

std::string printElement(const pugi::xml_node &element);

// A document of exactly one element. Throws Failure (malformed-message).
void loadDocument(pugi::xml_document &document, std::string_view text);

} // namespace tk
