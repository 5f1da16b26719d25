// Addresses of interfaces: on subinterface 0 of any interface and on routed VLANs. The rest of the tree is
// accepted and nothing reaches the device.
#pragma once

#include "frame/call.h"

#include <cstdint>

extern "C" {

// Addresses. Each is added and removed in apply by its entry (below a subinterface) or the config of its
// entry (below a routed VLAN). kInvalidValue for a key that is no address, kInternal when the length is
// missing or the device cannot be reached, kDeviceText when it refuses; IPv4 below a subinterface has
// kInternal for that, too. All IPv4 addresses of a subinterface: only a loopback's can be replaced or deleted
// as a whole, else kNotSupported.
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_edit(
    EDIT_ARGS, const char *name, const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_config_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_config_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_config_edit(
    EDIT_ARGS, const char *name, const char *address);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_config_edit(
    EDIT_ARGS, const char *name, const char *address);

// Stubs.
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_edit(EDIT_ARGS,
                                                                                    const char *name,
                                                                                    const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_state_get(
    tk::GetBlock *get2cb, const char *name, const char *index, const char *address);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_vrrp_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address);
Status
u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_vrrp_vrrp_group_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address, std::uint8_t router);
Status
u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_vrrp_vrrp_group_config_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address, std::uint8_t router);
Status
u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_vrrp_vrrp_group_state_get(
    tk::GetBlock *get2cb, const char *name, const char *index, const char *address, std::uint8_t router);
Status
u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_vrrp_vrrp_group_interface_tracking_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address, std::uint8_t router);
Status
u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_vrrp_vrrp_group_interface_tracking_config_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address, std::uint8_t router);
Status
u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_vrrp_vrrp_group_interface_tracking_state_get(
    tk::GetBlock *get2cb, const char *name, const char *index, const char *address, std::uint8_t router);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_proxy_arp_edit(
    EDIT_ARGS, const char *name, const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_proxy_arp_config_edit(
    EDIT_ARGS, const char *name, const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_proxy_arp_state_get(
    tk::GetBlock *get2cb, const char *name, const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_neighbors_edit(
    EDIT_ARGS, const char *name, const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_neighbors_neighbor_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_neighbors_neighbor_config_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_neighbors_neighbor_state_get(
    tk::GetBlock *get2cb, const char *name, const char *index, const char *address);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_unnumbered_edit(
    EDIT_ARGS, const char *name, const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_unnumbered_config_edit(
    EDIT_ARGS, const char *name, const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_unnumbered_state_get(
    tk::GetBlock *get2cb, const char *name, const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_unnumbered_interface_ref_edit(
    EDIT_ARGS, const char *name, const char *index);
Status
u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_unnumbered_interface_ref_config_edit(
    EDIT_ARGS, const char *name, const char *index);
Status
u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_unnumbered_interface_ref_state_get(
    tk::GetBlock *get2cb, const char *name, const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_config_edit(EDIT_ARGS,
                                                                                           const char *name,
                                                                                           const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_state_get(tk::GetBlock *get2cb,
                                                                                         const char *name,
                                                                                         const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_state_counters_get(
    tk::GetBlock *get2cb, const char *name, const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_edit(EDIT_ARGS,
                                                                                    const char *name,
                                                                                    const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_edit(
    EDIT_ARGS, const char *name, const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_state_get(
    tk::GetBlock *get2cb, const char *name, const char *index, const char *address);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_vrrp_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address);
Status
u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_vrrp_vrrp_group_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address, std::uint8_t router);
Status
u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_vrrp_vrrp_group_config_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address, std::uint8_t router);
Status
u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_vrrp_vrrp_group_state_get(
    tk::GetBlock *get2cb, const char *name, const char *index, const char *address, std::uint8_t router);
Status
u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_vrrp_vrrp_group_interface_tracking_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address, std::uint8_t router);
Status
u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_vrrp_vrrp_group_interface_tracking_config_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address, std::uint8_t router);
Status
u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_vrrp_vrrp_group_interface_tracking_state_get(
    tk::GetBlock *get2cb, const char *name, const char *index, const char *address, std::uint8_t router);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_router_advertisement_edit(
    EDIT_ARGS, const char *name, const char *index);
Status
u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_router_advertisement_config_edit(
    EDIT_ARGS, const char *name, const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_router_advertisement_state_get(
    tk::GetBlock *get2cb, const char *name, const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_neighbors_edit(
    EDIT_ARGS, const char *name, const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_neighbors_neighbor_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_neighbors_neighbor_config_edit(
    EDIT_ARGS, const char *name, const char *index, const char *address);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_neighbors_neighbor_state_get(
    tk::GetBlock *get2cb, const char *name, const char *index, const char *address);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_unnumbered_edit(
    EDIT_ARGS, const char *name, const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_unnumbered_config_edit(
    EDIT_ARGS, const char *name, const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_unnumbered_state_get(
    tk::GetBlock *get2cb, const char *name, const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_unnumbered_interface_ref_edit(
    EDIT_ARGS, const char *name, const char *index);
Status
u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_unnumbered_interface_ref_config_edit(
    EDIT_ARGS, const char *name, const char *index);
Status
u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_unnumbered_interface_ref_state_get(
    tk::GetBlock *get2cb, const char *name, const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_config_edit(EDIT_ARGS,
                                                                                           const char *name,
                                                                                           const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_state_get(tk::GetBlock *get2cb,
                                                                                         const char *name,
                                                                                         const char *index);
Status u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_state_counters_get(
    tk::GetBlock *get2cb, const char *name, const char *index);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_edit(EDIT_ARGS, const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_edit(EDIT_ARGS, const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_edit(EDIT_ARGS,
                                                                                       const char *name,
                                                                                       const char *address);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_state_get(
    tk::GetBlock *get2cb, const char *name, const char *address);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_vrrp_edit(
    EDIT_ARGS, const char *name, const char *address);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_vrrp_vrrp_group_edit(
    EDIT_ARGS, const char *name, const char *address, std::uint8_t router);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_vrrp_vrrp_group_config_edit(
    EDIT_ARGS, const char *name, const char *address, std::uint8_t router);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_vrrp_vrrp_group_state_get(
    tk::GetBlock *get2cb, const char *name, const char *address, std::uint8_t router);
Status
u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_vrrp_vrrp_group_interface_tracking_edit(
    EDIT_ARGS, const char *name, const char *address, std::uint8_t router);
Status
u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_vrrp_vrrp_group_interface_tracking_config_edit(
    EDIT_ARGS, const char *name, const char *address, std::uint8_t router);
Status
u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_vrrp_vrrp_group_interface_tracking_state_get(
    tk::GetBlock *get2cb, const char *name, const char *address, std::uint8_t router);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_proxy_arp_edit(EDIT_ARGS, const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_proxy_arp_config_edit(EDIT_ARGS,
                                                                                      const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_proxy_arp_state_get(tk::GetBlock *get2cb,
                                                                                    const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_neighbors_edit(EDIT_ARGS, const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_neighbors_neighbor_edit(EDIT_ARGS,
                                                                                        const char *name,
                                                                                        const char *address);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_neighbors_neighbor_config_edit(
    EDIT_ARGS, const char *name, const char *address);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_neighbors_neighbor_state_get(
    tk::GetBlock *get2cb, const char *name, const char *address);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_unnumbered_edit(EDIT_ARGS, const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_unnumbered_config_edit(EDIT_ARGS,
                                                                                       const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_unnumbered_state_get(tk::GetBlock *get2cb,
                                                                                     const char *name);
Status
u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_unnumbered_interface_ref_edit(EDIT_ARGS,
                                                                                       const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_unnumbered_interface_ref_config_edit(
    EDIT_ARGS, const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_unnumbered_interface_ref_state_get(
    tk::GetBlock *get2cb, const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_config_edit(EDIT_ARGS, const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_state_get(tk::GetBlock *get2cb,
                                                                          const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_state_counters_get(tk::GetBlock *get2cb,
                                                                                   const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_edit(EDIT_ARGS, const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_edit(EDIT_ARGS, const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_edit(EDIT_ARGS,
                                                                                       const char *name,
                                                                                       const char *address);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_state_get(
    tk::GetBlock *get2cb, const char *name, const char *address);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_vrrp_edit(
    EDIT_ARGS, const char *name, const char *address);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_vrrp_vrrp_group_edit(
    EDIT_ARGS, const char *name, const char *address, std::uint8_t router);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_vrrp_vrrp_group_config_edit(
    EDIT_ARGS, const char *name, const char *address, std::uint8_t router);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_vrrp_vrrp_group_state_get(
    tk::GetBlock *get2cb, const char *name, const char *address, std::uint8_t router);
Status
u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_vrrp_vrrp_group_interface_tracking_edit(
    EDIT_ARGS, const char *name, const char *address, std::uint8_t router);
Status
u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_vrrp_vrrp_group_interface_tracking_config_edit(
    EDIT_ARGS, const char *name, const char *address, std::uint8_t router);
Status
u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_vrrp_vrrp_group_interface_tracking_state_get(
    tk::GetBlock *get2cb, const char *name, const char *address, std::uint8_t router);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_router_advertisement_edit(EDIT_ARGS,
                                                                                          const char *name);
Status
u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_router_advertisement_config_edit(EDIT_ARGS,
                                                                                          const char *name);
Status
u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_router_advertisement_state_get(tk::GetBlock *get2cb,
                                                                                        const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_neighbors_edit(EDIT_ARGS, const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_neighbors_neighbor_edit(EDIT_ARGS,
                                                                                        const char *name,
                                                                                        const char *address);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_neighbors_neighbor_config_edit(
    EDIT_ARGS, const char *name, const char *address);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_neighbors_neighbor_state_get(
    tk::GetBlock *get2cb, const char *name, const char *address);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_unnumbered_edit(EDIT_ARGS, const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_unnumbered_config_edit(EDIT_ARGS,
                                                                                       const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_unnumbered_state_get(tk::GetBlock *get2cb,
                                                                                     const char *name);
Status
u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_unnumbered_interface_ref_edit(EDIT_ARGS,
                                                                                       const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_unnumbered_interface_ref_config_edit(
    EDIT_ARGS, const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_unnumbered_interface_ref_state_get(
    tk::GetBlock *get2cb, const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_config_edit(EDIT_ARGS, const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_state_get(tk::GetBlock *get2cb,
                                                                          const char *name);
Status u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_state_counters_get(tk::GetBlock *get2cb,
                                                                                   const char *name);

} // extern "C"
