// Storm control: limits of broadcast, multicast and unknown unicast traffic on a port.
#pragma once

#include "backend/proto/security.pb-c.h"
#include "frame/call.h"

extern "C" {

// The node around: a stub.
Status u_lyn_oc_stormcontrol_storm_control_config_edit(EDIT_ARGS, const char *name);
// `limit` and `kbps` of one class of traffic go to the device together, in apply. kInternal when it cannot be
// reached; what it answers is not looked at.
Status u_lyn_oc_stormcontrol_broadcast_edit(EDIT_ARGS, const char *name);
Status u_lyn_oc_stormcontrol_multicast_edit(EDIT_ARGS, const char *name);
Status u_lyn_oc_stormcontrol_unknown_unicast_edit(EDIT_ARGS, const char *name);

// Send the limit of one class of traffic on a port: non-zero `kbps` counts kilobits, non-zero `add` adds the
// limit, zero removes it. 0, or kInternal when the device cannot be reached.
int restconf_set_brd_limit_config(const char *port, std::uint32_t limit, int kbps, int add);
int restconf_set_mcast_limit_config(const char *port, std::uint32_t limit, int kbps, int add);
int restconf_set_unknown_unicast_limit_config(const char *port, std::uint32_t limit, int kbps, int add);

// Logs the text of an answer and frees it. Returns the device's app_err, 2 without an answer or a reply.
int restconf_bum_rate_limit_response_processor(BumRateLimitResp *answer);

} // extern "C"
