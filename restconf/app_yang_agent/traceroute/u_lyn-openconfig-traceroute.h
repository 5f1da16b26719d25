// The RPC that shows the way to somebody.
#pragma once

#include "frame/operation.h"

extern "C" {

// Nothing is turned down before the RPC is carried out.
Status u_lyn_openconfig_traceroute_traceroute_validate(RPC_ARGS);

// Sends the switch's traceroute and returns what it printed, in the output's leaf `result`; nothing if it
// printed nothing. kInternal when the switch cannot do it; a bad input is refused with a text.
Status u_lyn_openconfig_traceroute_traceroute_invoke(RPC_ARGS);

} // extern "C"
