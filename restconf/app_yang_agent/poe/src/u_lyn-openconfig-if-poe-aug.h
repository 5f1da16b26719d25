// Power over Ethernet of a port: its switch, priority, and limit or class, and its state.
#pragma once

#include "frame/call.h"

extern "C" {

// The node around: a stub.
Status u_lyn_openconfig_if_poe_aug_interfaces_interface_ethernet_poe_edit(EDIT_ARGS, const char *port);
// A merge sends the edited leaves in every phase, and all of them in apply; the others send in apply.
// kInternal for a priority out of range and for limit and class together, each with a text, and when the
// device fails.
Status u_lyn_openconfig_if_poe_aug_interfaces_interface_ethernet_poe_config_edit(EDIT_ARGS, const char *port);
// The port's power as the device has it. kInternal when it does not tell.
Status u_lyn_openconfig_if_poe_aug_interfaces_interface_ethernet_poe_state_get(tk::GetBlock *get2cb,
                                                                               const char *port);

// Switches the power of a port on (non-zero) or off. 0, the device's error code, or 1 when it cannot be
// reached.
int poe_set_port_config(int enabled, const char *port);

} // extern "C"
