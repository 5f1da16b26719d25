// The RPC that shows the routing table.
#pragma once

#include "frame/operation.h"

extern "C" {

// Turns a request without input down with kFailed.
Status u_lyn_openconfig_iproute_iproute_validate(RPC_ARGS);

// Asks the routing daemon for all pages of its table and returns them as one text, in the output's leaf
// `result`. A page that does not come ends the text there: kInternal, or kFailed with the daemon's own words.
Status u_lyn_openconfig_iproute_iproute_invoke(RPC_ARGS);

} // extern "C"
