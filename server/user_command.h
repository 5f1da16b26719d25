// `agentd user add|passwd|del`.
#pragma once

#include "server/options.h"

#include <iosfwd>

namespace agentd {

// Carries it out, reading the password from `input`: the first line, its end aside. Returns the exit status,
// after one line on `errors` if it isn't 0.
int runUserCommand(const UserOptions &options, std::istream &input, std::ostream &errors);

} // namespace agentd
