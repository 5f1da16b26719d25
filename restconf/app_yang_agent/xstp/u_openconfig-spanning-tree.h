// Rapid spanning trees of VLANs, and what ports do in spanning trees of either kind.
#pragma once

#include "frame/call.h"

extern "C" {

Status u_openconfig_spanning_tree_stp_edit(EDIT_ARGS);
Status u_openconfig_spanning_tree_stp_rapid_pvst_edit(EDIT_ARGS);
// A deleted VLAN's tree is turned off in apply; waits three seconds whatever came of it.
Status u_openconfig_spanning_tree_stp_rapid_pvst_vlan_edit(EDIT_ARGS, const char *vlanId);
// Any change turns the tree on anew in apply, with its whole settings; not so `replace`. kDeviceText, or
// kInternal when the device fails.
Status u_openconfig_spanning_tree_stp_rapid_pvst_vlan_config_edit(EDIT_ARGS, const char *vlanId);
Status u_openconfig_spanning_tree_stp_rapid_pvst_vlan_state_get(tk::GetBlock *get2cb, const char *vlanId);
Status u_openconfig_spanning_tree_stp_interfaces_edit(EDIT_ARGS);
Status u_openconfig_spanning_tree_stp_interfaces_interface_edit(EDIT_ARGS, const char *name);
// In apply, one request a leaf; a failed one does not keep the others from being sent, and the last failure
// is the status.
Status u_openconfig_spanning_tree_stp_interfaces_interface_config_edit(EDIT_ARGS, const char *name);
Status u_openconfig_spanning_tree_stp_interfaces_interface_state_get(tk::GetBlock *get2cb, const char *name);

} // extern "C"
