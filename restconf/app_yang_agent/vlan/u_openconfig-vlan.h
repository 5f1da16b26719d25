// Membership of ports and LAGs in VLANs.
#pragma once

#include "frame/call.h"

extern "C" {

// A deleted container takes the port out of all its VLANs. kInternal when the device fails.
Status u_openconfig_vlan_interfaces_interface_ethernet_switched_vlan_edit(EDIT_ARGS, const char *name);
// Access and trunk VLANs go to the device in apply; rollback takes the port out of the new ones. kInternal
// when the device fails; what can still be sent is sent. A deletion with an access VLAN waits three seconds.
Status u_openconfig_vlan_interfaces_interface_ethernet_switched_vlan_config_edit(EDIT_ARGS, const char *name);
Status u_openconfig_vlan_interfaces_interface_ethernet_switched_vlan_state_get(tk::GetBlock *get2cb,
                                                                               const char *name);
Status u_openconfig_vlan_interfaces_interface_aggregation_switched_vlan_edit(EDIT_ARGS, const char *name);
// The same for a LAG, whose deletion sends nothing.
Status u_openconfig_vlan_interfaces_interface_aggregation_switched_vlan_config_edit(EDIT_ARGS,
                                                                                    const char *name);
Status u_openconfig_vlan_interfaces_interface_aggregation_switched_vlan_state_get(tk::GetBlock *get2cb,
                                                                                  const char *name);
Status u_openconfig_vlan_interfaces_interface_routed_vlan_edit(EDIT_ARGS, const char *name);
Status u_openconfig_vlan_interfaces_interface_routed_vlan_config_edit(EDIT_ARGS, const char *name);

} // extern "C"
