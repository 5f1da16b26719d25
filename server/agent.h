// agentd as a whole: start in an order in which nothing serves before all is there, run, stop.
#pragma once

#include "server/options.h"

namespace agentd {

// Serves until SIGTERM or SIGINT. Returns the exit status: 0, or 1 after one line on standard error that
// says why it could not start.
int serve(const ServeOptions &options);

} // namespace agentd
