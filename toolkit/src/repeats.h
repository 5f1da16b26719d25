// Nodes that stand more than once in a large document, found before libyang makes a tree of it: it compares
// every copy with all the copies before it, so that a few megabytes would keep it busy for minutes.
#pragma once

#include "toolkit/host.h"

#include <libyang/libyang.h>

namespace tk {

// `parent` is the schema node that the document's nodes lie below; null: they are at the top. What it does
// not understand it passes over: libyang refuses that with better words. Throws Failure for a configuration
// node, a list entry or a leaf-list's value that comes twice.
void refuseRepeats(const ly_ctx *context, const std::string &text, Encoding encoding,
                   const lysc_node *parent);

} // namespace tk
