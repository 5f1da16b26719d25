// Network instances: the VLANs and the static MAC addresses of the switch.
#pragma once

#include "frame/call.h"

#include <cstdint>

extern "C" {

Status u_openconfig_network_instance_network_instances_edit(EDIT_ARGS);
// The switch has its instances: kDeviceText in apply of a create or delete.
Status u_openconfig_network_instance_network_instances_network_instance_edit(EDIT_ARGS, const char *instance);
Status u_openconfig_network_instance_network_instances_network_instance_fdb_edit(EDIT_ARGS,
                                                                                 const char *instance);
Status u_openconfig_network_instance_network_instances_network_instance_fdb_config_edit(EDIT_ARGS,
                                                                                        const char *instance);
Status u_openconfig_network_instance_network_instances_network_instance_fdb_state_get(tk::GetBlock *get2cb,
                                                                                      const char *instance);
Status
u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_edit(EDIT_ARGS,
                                                                                    const char *instance);
Status u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_edit(
    EDIT_ARGS, const char *instance);
// The entry's config must agree with its keys: kDeviceText in apply if not.
Status u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_edit(
    EDIT_ARGS, const char *instance, const char *mac, std::uint16_t vlan);
Status
u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_config_edit(
    EDIT_ARGS, const char *instance, const char *mac, std::uint16_t vlan);
Status u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_state_get(
    tk::GetBlock *get2cb, const char *instance, const char *mac, std::uint16_t vlan);
Status
u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_interface_edit(
    EDIT_ARGS, const char *instance, const char *mac, std::uint16_t vlan);
Status
u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_interface_interface_ref_edit(
    EDIT_ARGS, const char *instance, const char *mac, std::uint16_t vlan);
// A static address comes and goes with its interface, in apply. kDeviceText with the device's words,
// kInternal without.
Status
u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_interface_interface_ref_config_edit(
    EDIT_ARGS, const char *instance, const char *mac, std::uint16_t vlan);
Status
u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_interface_interface_ref_state_get(
    tk::GetBlock *get2cb, const char *instance, const char *mac, std::uint16_t vlan);
Status u_openconfig_network_instance_network_instances_network_instance_config_edit(EDIT_ARGS,
                                                                                    const char *instance);
Status u_openconfig_network_instance_network_instances_network_instance_state_get(tk::GetBlock *get2cb,
                                                                                  const char *instance);
Status u_openconfig_network_instance_network_instances_network_instance_interfaces_edit(EDIT_ARGS,
                                                                                        const char *instance);
Status u_openconfig_network_instance_network_instances_network_instance_interfaces_interface_edit(
    EDIT_ARGS, const char *instance, const char *interface);
Status u_openconfig_network_instance_network_instances_network_instance_interfaces_interface_config_edit(
    EDIT_ARGS, const char *instance, const char *interface);
Status u_openconfig_network_instance_network_instances_network_instance_interfaces_interface_state_get(
    tk::GetBlock *get2cb, const char *instance, const char *interface);
// A deletion removes all VLANs, in apply, and is not taken back.
Status u_openconfig_network_instance_network_instances_network_instance_vlans_edit(EDIT_ARGS,
                                                                                   const char *instance);
// A deletion removes the VLAN in apply; rollback adds it again. As its config does.
Status u_openconfig_network_instance_network_instances_network_instance_vlans_vlan_edit(EDIT_ARGS,
                                                                                        const char *instance,
                                                                                        const char *vlanId);
// Adds, names and removes the VLAN in apply, and takes that back in rollback. kInternal when the device
// fails.
Status u_openconfig_network_instance_network_instances_network_instance_vlans_vlan_config_edit(
    EDIT_ARGS, const char *instance, const char *vlanId);
Status u_openconfig_network_instance_network_instances_network_instance_vlans_vlan_state_get(
    tk::GetBlock *get2cb, const char *instance, const char *vlanId);
Status u_openconfig_network_instance_network_instances_network_instance_protocols_edit(EDIT_ARGS,
                                                                                       const char *instance);

} // extern "C"
