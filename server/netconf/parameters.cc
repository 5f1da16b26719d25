#include "server/netconf/parameters.h"

#include "server/netconf/rpc_error.h"
#include "server/netconf/xml.h"

#include <algorithm>
#include <charconv>

namespace agentd::netconf {

namespace {

std::string trimmedText(const pugi::xml_node &element)
{
    const std::string text = element.text().get();
    const auto first = text.find_first_not_of(" \t\r\n");
    return first == text.npos ? "" : text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

// An attribute without a prefix, or in the namespace of the operations.
std::optional<std::string> attribute(const pugi::xml_node &element, std::string_view name)
{
    for (const pugi::xml_attribute candidate : element.attributes()) {
        const std::string nameSpace = tk::namespaceOf(element, candidate);
        const bool fits = nameSpace.empty() || nameSpace == tk::kNetconfNamespace;
        if (fits && !tk::isNamespaceDeclaration(candidate) && tk::localName(candidate.name()) == name)
            return candidate.value();
    }
    return std::nullopt;
}

std::optional<tk::Datastore> datastoreNamed(std::string_view name)
{
    if (name == "running")
        return tk::Datastore::running;
    if (name == "candidate")
        return tk::Datastore::candidate;
    return name == "startup" ? std::optional(tk::Datastore::startup) : std::nullopt;
}

} // namespace

Parameters::Parameters(const pugi::xml_node &operation)
    : nameSpace_(tk::namespaceOf(operation))
{
    for (const pugi::xml_node child : operation.children()) {
        if (child.type() == pugi::node_element)
            left_.push_back(child);
    }
}

std::optional<pugi::xml_node> Parameters::element(const char *name)
{
    return element(name, nameSpace_.c_str());
}

std::optional<pugi::xml_node> Parameters::element(const char *name, const char *nameSpace)
{
    const auto fits = [&](const pugi::xml_node &node) {
        const std::string own = tk::namespaceOf(node);
        return tk::localName(node) == name && (own.empty() || own == nameSpace);
    };
    const auto found = std::find_if(left_.begin(), left_.end(), fits);
    if (found == left_.end())
        return std::nullopt;
    const pugi::xml_node node = *found;
    left_.erase(found);
    if (std::any_of(left_.begin(), left_.end(), fits))
        throw badElement(name, std::string("<") + name + "> is there twice.");
    return node;
}

pugi::xml_node Parameters::requiredElement(const char *name)
{
    const auto found = element(name);
    if (!found)
        throw missingElement(name);
    return *found;
}

bool Parameters::flag(const char *name)
{
    return element(name).has_value();
}

std::optional<std::string> Parameters::text(const char *name)
{
    const auto found = element(name);
    return found ? std::optional(trimmedText(*found)) : std::nullopt;
}

std::string Parameters::requiredText(const char *name)
{
    return trimmedText(requiredElement(name));
}

std::optional<std::uint32_t> Parameters::number(const char *name)
{
    const auto given = text(name);
    if (!given)
        return std::nullopt;
    std::uint32_t value = 0;
    const char *const end = given->data() + given->size();
    const auto [stop, error] = std::from_chars(given->data(), end, value);
    if (error != std::errc() || stop != end || value == 0)
        throw invalidValue("\"" + *given + "\" is no value of <" + name + ">.");
    return value;
}

Parameters::Store Parameters::store(const char *name, bool takesConfig)
{
    Parameters inside(requiredElement(name));
    if (inside.left_.empty())
        throw missingElement(name);
    const pugi::xml_node chosen = inside.left_.front();
    if (inside.left_.size() > 1)
        throw badElement(tk::localName(inside.left_[1]), std::string("<") + name + "> names one datastore.");
    const std::string nameSpace = tk::namespaceOf(chosen);
    if (!nameSpace.empty() && nameSpace != nameSpace_)
        throw unknownNamespace(tk::localName(chosen), nameSpace);
    if (const auto store = datastoreNamed(tk::localName(chosen)))
        return *store;
    if (takesConfig && tk::localName(chosen) == "config")
        return detached(chosen);
    throw unknownElement(tk::localName(chosen));
}

tk::Datastore Parameters::datastore(const char *name)
{
    return std::get<tk::Datastore>(store(name, false));
}

tk::Filter Parameters::filter()
{
    const auto found = element("filter");
    if (!found)
        return {};
    const std::string type = attribute(*found, "type").value_or("subtree");
    if (type == "subtree")
        return {tk::Filter::Kind::subtree, detached(*found)};
    if (type != "xpath")
        throw badAttribute("type", "filter", "\"" + type + "\" is no type of filter.");
    const auto expression = attribute(*found, "select");
    if (!expression)
        throw missingAttribute("select", "filter");
    tk::Filter filter{tk::Filter::Kind::xpath, *expression};
    for (const auto &[prefix, uri] : tk::namespacesAt(*found))
        filter.namespaces.emplace_back(prefix, uri);
    return filter;
}

tk::WithDefaults Parameters::withDefaults()
{
    const auto found = element("with-defaults", tk::kDefaultsModuleNamespace);
    if (!found)
        return tk::WithDefaults::explicitOnly;
    const std::string mode = trimmedText(*found);
    if (mode == "explicit")
        return tk::WithDefaults::explicitOnly;
    if (mode == "trim")
        return tk::WithDefaults::trim;
    if (mode == "report-all")
        return tk::WithDefaults::reportAll;
    if (mode == "report-all-tagged")
        return tk::WithDefaults::reportAllTagged;
    throw invalidValue("\"" + mode + "\" is no way to show defaults.");
}

void Parameters::done() const
{
    if (left_.empty())
        return;
    const std::string nameSpace = tk::namespaceOf(left_.front());
    if (!nameSpace.empty() && nameSpace != nameSpace_)
        throw unknownNamespace(tk::localName(left_.front()), nameSpace);
    throw unknownElement(tk::localName(left_.front()));
}

void Parameters::refuseWord(const char *name, const std::string &word)
{
    throw invalidValue("\"" + word + "\" is no value of <" + name + ">.");
}

} // namespace agentd::netconf
