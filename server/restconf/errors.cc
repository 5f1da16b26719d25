#include "server/restconf/errors.h"

#include "server/text.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <pugixml.hpp>
#include <set>
#include <sstream>

namespace agentd::restconf {
namespace {

constexpr char kNamespace[] = "urn:ietf:params:xml:ns:yang:ietf-restconf";

struct TagRow {
    std::string_view tag;
    unsigned status;
};

// Where the RFC leaves a choice: invalid-value is 404 only for a resource that is not there and 406 only for
// a media type, access-denied is 401 here because there are no access rules that could forbid, and
// operation-failed is 412 only for a precondition. Those carry their status in the RequestError.
constexpr std::array kTags{
    TagRow{"in-use", 409},
    TagRow{"invalid-value", 400},
    TagRow{"too-big", 413},
    TagRow{"missing-attribute", 400},
    TagRow{"bad-attribute", 400},
    TagRow{"unknown-attribute", 400},
    TagRow{"bad-element", 400},
    TagRow{"missing-element", 400},
    TagRow{"unknown-element", 400},
    TagRow{"unknown-namespace", 400},
    TagRow{"access-denied", 401},
    TagRow{"lock-denied", 409},
    TagRow{"resource-denied", 409},
    TagRow{"rollback-failed", 500},
    TagRow{"data-exists", 409},
    TagRow{"data-missing", 409},
    TagRow{"operation-not-supported", 405},
    TagRow{"operation-failed", 500},
    TagRow{"partial-operation", 500},
    TagRow{"malformed-message", 400},
};

// What the transport of the request found, and what the data or the device did (RFC 8040, section 7.1).
const char *typeOf(const tk::Error &error)
{
    const bool isProtocol = error.status == kOk &&
        (error.tag == "malformed-message" || error.tag == "access-denied" || error.tag == "too-big");
    return isProtocol ? "protocol" : "application";
}

std::string asJson(const std::vector<tk::Error> &errors)
{
    auto list = nlohmann::ordered_json::array();
    for (const tk::Error &error : errors) {
        nlohmann::ordered_json entry{{"error-type", typeOf(error)}, {"error-tag", error.tag}};
        const auto add = [&entry](const char *name, const std::string &value) {
            if (!value.empty())
                entry[name] = printableText(value);
        };
        add("error-app-tag", error.appTag);
        add("error-path", error.path);
        add("error-message", error.message);
        list.push_back(std::move(entry));
    }
    const nlohmann::ordered_json document{{"ietf-restconf:errors", {{"error", std::move(list)}}}};
    return document.dump();
}

void addPath(pugi::xml_node entry, const std::string &path, const NamespaceOf &namespaceOf)
{
    pugi::xml_node node = entry.append_child("error-path");
    for (const std::string &module : prefixesIn(path)) {
        const std::string uri = namespaceOf(module);
        if (isIdentifier(module) && !uri.empty())
            node.append_attribute(("xmlns:" + module).c_str()).set_value(uri.c_str());
    }
    node.text().set(printableText(path).c_str());
}

std::string asXml(const std::vector<tk::Error> &errors, const NamespaceOf &namespaceOf)
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("errors");
    root.append_attribute("xmlns").set_value(kNamespace);
    for (const tk::Error &error : errors) {
        pugi::xml_node entry = root.append_child("error");
        const auto add = [&entry](const char *name, const std::string &value) {
            if (!value.empty())
                entry.append_child(name).text().set(printableText(value).c_str());
        };
        add("error-type", typeOf(error));
        add("error-tag", error.tag);
        add("error-app-tag", error.appTag);
        if (!error.path.empty())
            addPath(entry, error.path, namespaceOf);
        add("error-message", error.message);
    }
    std::ostringstream text;
    document.save(text, "", pugi::format_raw | pugi::format_no_declaration);
    return text.str();
}

} // namespace

RequestError::RequestError(unsigned httpStatus, std::string tag, std::string message, Fields extraFields)
    : std::runtime_error(message)
    , status(httpStatus)
    , fields(std::move(extraFields))
{
    error.tag = std::move(tag);
    error.message = std::move(message);
}

RequestError badUri(const std::string &message)
{
    return {400, "invalid-value", message};
}

RequestError unknownResource(const std::string &message)
{
    return {404, "invalid-value", message};
}

RequestError badBody(const std::string &message)
{
    return {400, "malformed-message", message};
}

RequestError badHeader(const std::string &message)
{
    return {400, "malformed-message", message};
}

RequestError methodNotAllowed(const std::string &method, const std::string &allow)
{
    return {405, "operation-not-supported", "the resource does not support " + method, {{"Allow", allow}}};
}

RequestError notAcceptable(const std::string &message)
{
    return {406, "invalid-value", message};
}

RequestError unsupportedMediaType(const std::string &message, const std::string &acceptPatch)
{
    RequestError::Fields fields;
    if (!acceptPatch.empty())
        fields.emplace_back("Accept-Patch", acceptPatch);
    return {415, "invalid-value", message, std::move(fields)};
}

RequestError preconditionFailed(const std::string &message)
{
    return {412, "operation-failed", message};
}

RequestError bodyTooLong()
{
    return {413, "too-big", "the body is longer than this server takes"};
}

RequestError headerTooLong()
{
    return {431, "too-big", "the header is longer than this server takes"};
}

RequestError busy(const std::string &message)
{
    return {409, "resource-denied", message};
}

RequestError accessDenied(const std::string &message)
{
    return {
        401, "access-denied", message, {{"WWW-Authenticate", "Basic realm=\"agentd\", charset=\"UTF-8\""}}};
}

RequestError internalError()
{
    return {500, "operation-failed", "internal error of the server"};
}

unsigned httpStatusOf(std::string_view errorTag)
{
    const auto row =
        std::find_if(kTags.begin(), kTags.end(), [&](const TagRow &r) { return r.tag == errorTag; });
    return row == kTags.end() ? 500 : row->status;
}

std::string errorDocument(const std::vector<tk::Error> &errors, tk::Encoding encoding,
                          const NamespaceOf &namespaceOf)
{
    return encoding == tk::Encoding::json ? asJson(errors) : asXml(errors, namespaceOf);
}

} // namespace agentd::restconf
