// Classic spanning trees of VLANs.
#pragma once

#include "frame/call.h"

extern "C" {

Status u_lyn_openconfig_spanning_tree_aug_stp_pvst_edit(EDIT_ARGS);
// A deleted VLAN's tree is turned off in apply.
Status u_lyn_openconfig_spanning_tree_aug_stp_pvst_vlan_edit(EDIT_ARGS, const char *vlanId);
// As for rapid trees: any change turns the tree on anew in apply, not so `replace`. kDeviceText, or kInternal
// when the device fails.
Status u_lyn_openconfig_spanning_tree_aug_stp_pvst_vlan_config_edit(EDIT_ARGS, const char *vlanId);
Status u_lyn_openconfig_spanning_tree_aug_stp_pvst_vlan_state_get(tk::GetBlock *get2cb, const char *vlanId);

} // extern "C"
