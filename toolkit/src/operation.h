// RPCs and actions.
#pragma once

#include "engine.h"
#include "target.h"

namespace tk {

// Runs an operation: checks its input, then validate and invoke of the bundle. Throws Failure.
// Returns the output's nodes as a tree of the operation's own, or null when there is none.
Tree runOperation(Engine &engine, const Context &context, const Target::Node &target,
                  const std::string &input, Encoding encoding, lyd_node **operation);

} // namespace tk
