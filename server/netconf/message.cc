#include "server/netconf/message.h"

#include "server/nesting.h"
#include "server/netconf/xml.h"
#include "server/text.h"

#include <algorithm>

namespace agentd::netconf {

namespace {

constexpr char kBase10[] = "urn:ietf:params:netconf:base:1.0", kBase11[] = "urn:ietf:params:netconf:base:1.1";

std::string baseDeclaration()
{
    return std::string(" xmlns=\"") + tk::kNetconfNamespace + "\"";
}

std::string_view withoutBlanks(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t\r\n");
    return first == text.npos ? std::string_view()
                              : text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

} // namespace

std::shared_ptr<pugi::xml_document> loadMessage(const std::string &text)
{
    if (!isUtf8(text))
        throw malformedMessage("The message is not UTF-8.");
    if (const auto fault = xmlNestingFault(text, kDeepestMessage))
        throw malformedMessage(*fault);
    const auto document = std::make_shared<pugi::xml_document>();
    try {
        tk::loadDocument(*document, text);
    } catch (const tk::Failure &failure) {
        throw malformedMessage(failure.what());
    }
    return document;
}

Envelope::Envelope(const pugi::xml_node &rpc)
{
    const std::string_view prefix = tk::prefixOf(rpc.name());
    prefix_ = prefix.empty() ? "" : std::string(prefix) + ":";
    for (const pugi::xml_attribute attribute : rpc.attributes())
        attributes_.append(" ")
            .append(attribute.name())
            .append("=\"")
            .append(escaped(attribute.value()))
            .append("\"");
    // Elements inside are written without a prefix.
    declaration_ = prefix_.empty() ? "" : baseDeclaration();
    isDeclared_ = true;
}

std::string Envelope::content(const std::string &elements) const
{
    const std::string name = prefix_ + "rpc-reply";
    return "<" + name + (isDeclared_ ? attributes_ : baseDeclaration()) + ">" + elements + "</" + name + ">";
}

std::string Envelope::ok() const
{
    return content("<ok" + declaration_ + "/>");
}

std::string Envelope::data(const std::string &inner) const
{
    return content("<data" + declaration_ + ">" + inner + "</data>");
}

std::string Envelope::errors(const std::vector<RpcError> &errors, const NamespaceOf &namespaceOf) const
{
    return content(errorElements(errors, declaration_, namespaceOf));
}

pugi::xml_node operationOf(const pugi::xml_document &message)
{
    const pugi::xml_node rpc = message.document_element();
    const std::string nameSpace = tk::namespaceOf(rpc);
    if (nameSpace != tk::kNetconfNamespace)
        throw unknownNamespace(tk::localName(rpc), nameSpace);
    if (tk::localName(rpc) != "rpc")
        throw unknownElement(tk::localName(rpc));
    if (!rpc.attribute("message-id"))
        throw missingAttribute("message-id", "rpc");
    pugi::xml_node operation;
    for (const pugi::xml_node child : rpc.children()) {
        if (child.type() != pugi::node_element)
            continue;
        if (operation)
            throw badElement(tk::localName(child), "A request has one operation.");
        operation = child;
    }
    if (!operation)
        throw missingElement("operation");
    return operation;
}

std::string helloMessage(const std::vector<std::string> &capabilities, std::uint32_t sessionId)
{
    std::string text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<hello" + baseDeclaration() + "><capabilities>\n";
    for (const std::string &capability : capabilities)
        text.append("<capability>").append(escaped(capability)).append("</capability>\n");
    return text + "</capabilities><session-id>" + std::to_string(sessionId) + "</session-id></hello>";
}

bool readHello(const std::string &text)
{
    const auto document = loadMessage(text);
    const pugi::xml_node hello = document->document_element();
    if (tk::localName(hello) != "hello" || tk::namespaceOf(hello) != tk::kNetconfNamespace)
        throw unknownElement(tk::localName(hello));
    bool isOld = false, isNew = false;
    for (const pugi::xml_node child : hello.children()) {
        if (tk::localName(child) == "session-id")
            throw badElement("session-id", "A client's hello has no session-id.");
        if (tk::localName(child) != "capabilities")
            continue;
        for (const pugi::xml_node capability : child.children()) {
            const std::string_view name = withoutBlanks(capability.text().get());
            isOld |= name == kBase10;
            isNew |= name == kBase11;
        }
    }
    if (!isOld && !isNew)
        throw missingElement("capability");
    return isNew;
}

} // namespace agentd::netconf
