// From the XML elements of clients to schema nodes and values.
#pragma once

#include "schema.h"
#include "toolkit/xml_names.h"

#include <functional>

namespace tk {

// Text without blanks around it.
std::string trimmed(std::string_view text);

// A value as libyang takes it: where the text is "p:name" and p is declared at the element, the prefix gives
// way to the name of the module.
std::string withModuleName(const ly_ctx *context, const pugi::xml_node &element, const std::string &text);

// The canonical form of a value, or nothing if it is none of the node's. A name of an identity has its
// module's name in front.
std::optional<std::string> canonicalValue(const lysc_node *node, const std::string &value);

// The schema node of an element below `parent` (null: at the top). Throws Failure for an unknown namespace or
// name, at the path of the parent.
const lysc_node *schemaOf(const ly_ctx *context, const lysc_node *parent, const pugi::xml_node &element,
                          const std::function<std::string()> &parentPath);

// "[name='value']", with the kind of quotes that the value allows.
std::string keyPredicate(const std::string &name, const std::string &value);

} // namespace tk
