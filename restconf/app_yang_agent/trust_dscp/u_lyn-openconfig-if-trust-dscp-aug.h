// DSCP trust of a port: one switch, and its state.
#pragma once

#include "frame/call.h"

extern "C" {

// The node around: a stub.
Status
u_lyn_openconfig_if_trust_dscp_aug_interfaces_interface_ethernet_trust_dscp_edit(EDIT_ARGS,
                                                                                 const char *interface);
// `enabled` goes to the device in apply. kNotSupported for a delete from apply on, kInternal when the device
// fails.
Status u_lyn_openconfig_if_trust_dscp_aug_interfaces_interface_ethernet_trust_dscp_config_edit(
    EDIT_ARGS, const char *interface);
// `enabled` as the device has it. kInternal when it does not tell.
Status
u_lyn_openconfig_if_trust_dscp_aug_interfaces_interface_ethernet_trust_dscp_state_get(tk::GetBlock *get2cb,
                                                                                      const char *interface);

// Switches the trust of a port on (non-zero) or off. 0, the device's error code, or 1 when it cannot be
// reached.
int trust_dscp_set_config(int enabled, const char *interface);

} // extern "C"
