// Link layer discovery: the switch for all, and the one of each port. The rest of the tree answers nothing.
#pragma once

#include "frame/unit.h"

extern "C" {

// kInternal for its creation and deletion in apply: the switch always has LLDP.
Status u_openconfig_lldp_lldp_edit(EDIT_ARGS);
// `enabled` goes to the device in apply, the old value in rollback. kNotSupported for creation and deletion;
// kInternal without an answer.
Status u_openconfig_lldp_lldp_config_edit(EDIT_ARGS);
Status u_openconfig_lldp_lldp_state_get(tk::GetBlock *get2cb);
Status u_openconfig_lldp_lldp_state_counters_get(tk::GetBlock *get2cb);
Status u_openconfig_lldp_lldp_interfaces_edit(EDIT_ARGS);
Status u_openconfig_lldp_lldp_interfaces_interface_edit(EDIT_ARGS, const char *name);
// `enabled` turns sending and receiving on or off, in apply and again in rollback. kInternal while LLDP is
// off for the whole switch, and without an answer.
Status u_openconfig_lldp_lldp_interfaces_interface_config_edit(EDIT_ARGS, const char *name);
Status u_openconfig_lldp_lldp_interfaces_interface_state_get(tk::GetBlock *get2cb, const char *name);
Status u_openconfig_lldp_lldp_interfaces_interface_state_counters_get(tk::GetBlock *get2cb, const char *name);
Status u_openconfig_lldp_lldp_interfaces_interface_neighbors_get(tk::GetBlock *get2cb, const char *name);
Status u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_get(tk::GetBlock *get2cb,
                                                                          const char *name,
                                                                          frame::OwnKey<const char *> id);
Status u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_config_get(tk::GetBlock *get2cb,
                                                                                 const char *name,
                                                                                 const char *id);
Status u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_state_get(tk::GetBlock *get2cb,
                                                                                const char *name,
                                                                                const char *id);
Status u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_custom_tlvs_get(tk::GetBlock *get2cb,
                                                                                      const char *name,
                                                                                      const char *id);
Status u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_custom_tlvs_tlv_get(
    tk::GetBlock *get2cb, const char *name, const char *id, frame::OwnKey<std::int32_t> type,
    frame::OwnKey<const char *> oui, frame::OwnKey<const char *> subtype);
Status u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_custom_tlvs_tlv_config_get(
    tk::GetBlock *get2cb, const char *name, const char *id, std::int32_t type, const char *oui,
    const char *subtype);
Status u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_custom_tlvs_tlv_state_get(
    tk::GetBlock *get2cb, const char *name, const char *id, std::int32_t type, const char *oui,
    const char *subtype);
Status u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_capabilities_get(tk::GetBlock *get2cb,
                                                                                       const char *name,
                                                                                       const char *id);
Status u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_capabilities_capability_get(
    tk::GetBlock *get2cb, const char *name, const char *id, frame::OwnKey<const char *> capability);
Status u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_capabilities_capability_config_get(
    tk::GetBlock *get2cb, const char *name, const char *id, const char *capability);
Status u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_capabilities_capability_state_get(
    tk::GetBlock *get2cb, const char *name, const char *id, const char *capability);

} // extern "C"
