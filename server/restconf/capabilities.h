// What the server tells about itself in ietf-restconf-monitoring.
#pragma once

#include "toolkit/host.h"

namespace agentd::restconf {

// Before the host is sealed: has it serve restconf-state.
void provideCapabilities(tk::Host &host);

} // namespace agentd::restconf
