// MAC addresses by VLAN and by port, for the switch's own tools: accepted, and nothing reaches the device.
#pragma once

#include "frame/call.h"

#include <cstdint>

extern "C" {

Status u_lyn_openconfig_ni_aug_internal_use_edit(EDIT_ARGS, const char *instance);
Status u_lyn_openconfig_ni_aug_l2_edit(EDIT_ARGS, const char *instance);
Status u_lyn_openconfig_ni_aug_mac_address_table_edit(EDIT_ARGS, const char *instance);
Status u_lyn_openconfig_ni_aug_vlans_edit(EDIT_ARGS, const char *instance);
Status u_lyn_openconfig_ni_aug_vlan_edit(EDIT_ARGS, const char *instance, std::uint16_t vlanId);
Status u_lyn_openconfig_ni_aug_port_edit(EDIT_ARGS, const char *instance, std::uint16_t vlanId,
                                         const char *port);
Status u_lyn_openconfig_ni_aug_ports_edit(EDIT_ARGS, const char *instance);
Status u_lyn_openconfig_ni_aug_port_1_edit(EDIT_ARGS, const char *instance, const char *port);
Status u_lyn_openconfig_ni_aug_vlan_1_edit(EDIT_ARGS, const char *instance, const char *port,
                                           std::uint16_t vlanId);

} // extern "C"
