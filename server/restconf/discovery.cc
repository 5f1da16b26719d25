#include "server/restconf/discovery.h"

#include "server/restconf/uri.h"

#include <nlohmann/json.hpp>
#include <pugixml.hpp>
#include <sstream>

namespace agentd::restconf {
namespace {

using Json = nlohmann::ordered_json;

constexpr char kNamespace[] = "urn:ietf:params:xml:ns:yang:ietf-restconf";
constexpr char kXrdNamespace[] = "http://docs.oasis-open.org/ns/xri/xrd-1.0";
constexpr char kVersionLeaf[] = "yang-library-version";

std::string asText(const pugi::xml_document &document)
{
    std::ostringstream text;
    document.save(text, "", pugi::format_raw | pugi::format_no_declaration);
    return text.str();
}

pugi::xml_node appendRoot(pugi::xml_document &document, const char *name, const char *nameSpace = kNamespace)
{
    pugi::xml_node root = document.append_child(name);
    root.append_attribute("xmlns").set_value(nameSpace);
    return root;
}

} // namespace

std::string hostMetaDocument(tk::Encoding encoding)
{
    const std::string root(kRoot);
    if (encoding == tk::Encoding::json)
        return Json{{"links", Json::array({Json{{"rel", "restconf"}, {"href", root}}})}}.dump();
    pugi::xml_document document;
    pugi::xml_node link = appendRoot(document, "XRD", kXrdNamespace).append_child("Link");
    link.append_attribute("rel").set_value("restconf");
    link.append_attribute("href").set_value(root.c_str());
    return asText(document);
}

std::string apiDocument(tk::Encoding encoding, const std::string &libraryVersion, bool isShallow)
{
    if (encoding == tk::Encoding::json) {
        Json content = Json::object();
        if (!isShallow)
            content = {
                {"data", Json::object()}, {"operations", Json::object()}, {kVersionLeaf, libraryVersion}};
        return Json{{"ietf-restconf:restconf", std::move(content)}}.dump();
    }
    pugi::xml_document document;
    pugi::xml_node root = appendRoot(document, "restconf");
    if (!isShallow) {
        root.append_child("data");
        root.append_child("operations");
        root.append_child(kVersionLeaf).text().set(libraryVersion.c_str());
    }
    return asText(document);
}

std::string libraryVersionDocument(tk::Encoding encoding, const std::string &libraryVersion)
{
    if (encoding == tk::Encoding::json)
        return Json{{std::string("ietf-restconf:") + kVersionLeaf, libraryVersion}}.dump();
    pugi::xml_document document;
    appendRoot(document, kVersionLeaf).text().set(libraryVersion.c_str());
    return asText(document);
}

// An operation stands there as an empty leaf (RFC 8040, section 3.3.2).
std::string operationsDocument(tk::Encoding encoding, const std::vector<OperationName> &operations)
{
    if (encoding == tk::Encoding::json) {
        Json list = Json::object();
        for (const OperationName &operation : operations)
            list[operation.module + ":" + operation.name] = Json::array({nullptr});
        return Json{{"ietf-restconf:operations", std::move(list)}}.dump();
    }
    pugi::xml_document document;
    pugi::xml_node root = appendRoot(document, "operations");
    for (const OperationName &operation : operations)
        root.append_child(operation.name.c_str())
            .append_attribute("xmlns")
            .set_value(operation.nameSpace.c_str());
    return asText(document);
}

} // namespace agentd::restconf
