#include "server/netconf/rpc_error.h"

#include "server/netconf/xml.h"
#include "server/text.h"

#include <set>

namespace agentd::netconf {

namespace {

using Info = std::vector<std::pair<std::string, std::string>>;

constexpr char kBadElement[] = "bad-element", kBadAttribute[] = "bad-attribute";

RpcFailure failure(ErrorType type, const char *tag, const std::string &message, Info info = {})
{
    return RpcFailure(RpcError{type, tk::Error{kOk, tag, "", "", message}, std::move(info)});
}

const char *nameOf(ErrorType type)
{
    switch (type) {
    case ErrorType::rpc:
        return "rpc";
    case ErrorType::protocol:
        return "protocol";
    case ErrorType::application:
        break;
    }
    return "application";
}

std::string element(const char *name, const std::string &text, const std::string &attributes = {})
{
    return std::string("<") + name + attributes + ">" + escaped(printableText(text)) + "</" + name + ">";
}

std::string pathElement(const std::string &path, const NamespaceOf &namespaceOf)
{
    std::string attributes;
    for (const std::string &module : prefixesIn(path)) {
        const std::string uri = namespaceOf(module);
        if (isIdentifier(module) && !uri.empty())
            attributes.append(" xmlns:").append(module).append("=\"").append(escaped(uri)).append("\"");
    }
    return element("error-path", path, attributes);
}

std::string infoElement(const Info &info)
{
    std::string text = "<error-info>";
    for (const auto &[name, value] : info)
        text += element(name.c_str(), value);
    return text + "</error-info>";
}

std::string errorElement(const RpcError &entry, const std::string &attribute, const NamespaceOf &namespaceOf)
{
    const tk::Error &error = entry.error;
    std::string text = "<rpc-error" + attribute + ">";
    text += element("error-type", nameOf(entry.type)) + element("error-tag", error.tag);
    text += element("error-severity", "error");
    if (!error.appTag.empty())
        text += element("error-app-tag", error.appTag);
    if (!error.path.empty())
        text += pathElement(error.path, namespaceOf);
    if (!error.message.empty())
        text += element("error-message", error.message, " xml:lang=\"en\"");
    if (!entry.info.empty())
        text += infoElement(entry.info);
    return text + "</rpc-error>";
}

} // namespace

RpcFailure malformedMessage(const std::string &message)
{
    return failure(ErrorType::rpc, "malformed-message", message);
}

RpcFailure missingAttribute(const std::string &attribute, std::string_view element)
{
    return failure(ErrorType::rpc, "missing-attribute", "The attribute " + attribute + " is missing.",
                   {{kBadAttribute, attribute}, {kBadElement, std::string(element)}});
}

RpcFailure badAttribute(const std::string &attribute, std::string_view element, const std::string &message)
{
    return failure(ErrorType::protocol, "bad-attribute", message,
                   {{kBadAttribute, attribute}, {kBadElement, std::string(element)}});
}

RpcFailure missingElement(const std::string &element)
{
    return failure(ErrorType::protocol, "missing-element", "The element <" + element + "> is missing.",
                   {{kBadElement, element}});
}

RpcFailure badElement(std::string_view element, const std::string &message)
{
    return failure(ErrorType::protocol, "bad-element", message, {{kBadElement, std::string(element)}});
}

RpcFailure unknownElement(std::string_view element)
{
    const std::string name(element);
    return failure(ErrorType::protocol, "unknown-element", "The element <" + name + "> is not known here.",
                   {{kBadElement, name}});
}

RpcFailure unknownNamespace(std::string_view element, const std::string &nameSpace)
{
    return failure(ErrorType::protocol, "unknown-namespace",
                   "The namespace \"" + nameSpace + "\" is not known here.",
                   {{kBadElement, std::string(element)}, {"bad-namespace", nameSpace}});
}

RpcFailure unknownOperation(std::string_view element)
{
    return failure(ErrorType::protocol, "operation-not-supported",
                   "There is no operation <" + std::string(element) + ">.");
}

RpcFailure notSupported(std::string_view element, const std::string &message)
{
    return failure(ErrorType::protocol, "operation-not-supported", message,
                   {{kBadElement, std::string(element)}});
}

RpcFailure invalidValue(const std::string &message)
{
    return failure(ErrorType::protocol, "invalid-value", message);
}

RpcFailure resourceDenied(const std::string &message)
{
    return failure(ErrorType::protocol, "resource-denied", message);
}

RpcFailure internalError()
{
    return failure(ErrorType::application, "operation-failed", "internal error of the server");
}

namespace {

// The tags for which the standard asks to name what is wrong.
bool namesElement(std::string_view tag)
{
    return tag == "missing-attribute" || tag == "bad-attribute" || tag == "unknown-attribute" ||
        tag == "missing-element" || tag == "bad-element" || tag == "unknown-element" ||
        tag == "unknown-namespace";
}

// What the data or the device did is the application's matter, the rest the protocol's.
ErrorType typeOf(const tk::Error &error)
{
    const bool isProtocol = error.tag == "lock-denied" || error.tag == "malformed-message" ||
        error.tag == "access-denied" || (error.status == kOk && error.tag == "in-use");
    return isProtocol ? ErrorType::protocol : ErrorType::application;
}

Info infoOf(const tk::Error &error)
{
    Info info;
    if (!error.badAttribute.empty())
        info.emplace_back(kBadAttribute, error.badAttribute);
    if (!error.badElement.empty() && namesElement(error.tag))
        info.emplace_back(kBadElement, error.badElement);
    if (!error.badNamespace.empty())
        info.emplace_back("bad-namespace", error.badNamespace);
    if (error.lockHolder)
        info.emplace_back("session-id", std::to_string(*error.lockHolder));
    return info;
}

} // namespace

std::vector<RpcError> fromToolkit(const tk::Failure &failure)
{
    std::vector<RpcError> errors;
    for (const tk::Error &error : failure.errors)
        errors.push_back({typeOf(error), error, infoOf(error)});
    return errors;
}

std::string errorElements(const std::vector<RpcError> &errors, const std::string &attribute,
                          const NamespaceOf &namespaceOf)
{
    std::string text;
    for (const RpcError &error : errors)
        text += errorElement(error, attribute, namespaceOf);
    return text;
}

} // namespace agentd::netconf
