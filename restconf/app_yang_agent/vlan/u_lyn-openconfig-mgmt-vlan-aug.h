// The mark of the VLAN in which the switch is managed. No bundle loads this unit.
#pragma once

#include "frame/call.h"

extern "C" {

Status y_lyn_openconfig_mgmt_vlan_aug_init(const char *module, const char *revision);
Status y_lyn_openconfig_mgmt_vlan_aug_init2();
void y_lyn_openconfig_mgmt_vlan_aug_cleanup();

// `management_vlan` goes to the device in apply. kInternal when the device fails.
Status u_lyn_openconfig_mgmt_vlan_aug_management_vlan_container_edit(EDIT_ARGS, const char *instance,
                                                                     const char *vlanId);

} // extern "C"
