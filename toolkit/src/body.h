// Documents of clients: taken out of their envelope and parsed.
#pragma once

#include "target.h"

namespace tk {

// The content of a document's one root member or element, whose local name must be `name`: what stands in
// {"x:name": <this>} or <name><this></name>. Throws Failure.
std::string unwrap(const std::string &body, Encoding encoding, const std::string &name);

// Throws Failure for what libyang's parser must not see below a node of this schema (null: at the top): what
// is no JSON, metadata in JSON ("@name"; nobody takes orders by it), the same node many times.
void scanBody(const ly_ctx *context, const std::string &text, Encoding encoding, const lysc_node *parent);

// Parses configuration below `parent` (null: at the top, into `tree`). Strict, without checks beyond types.
void parseConfig(const ly_ctx *context, const std::string &text, Encoding encoding, lyd_node *parent,
                 Tree &tree);

// Parses what need not be configuration: an operation's input below its node, the server's own state at the
// top. Throws Failure.
void parseData(const ly_ctx *context, const std::string &text, Encoding encoding, lyd_node *parent,
               Tree &tree);

} // namespace tk
