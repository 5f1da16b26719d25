// What the tree of addresses has beside them: VRRP, neighbors, proxy ARP, advertisements, unnumbered,
// counters.
#include "frame/stub.h"
#include "interface/u_openconfig-if-ip.h"

using namespace frame;

STUB_EDIT(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_edit, const char *,
          const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_state_get,
         const char *, const char *, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_vrrp_edit,
          const char *, const char *, const char *);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_vrrp_vrrp_group_edit,
    const char *, const char *, const char *, std::uint8_t);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_vrrp_vrrp_group_config_edit,
    const char *, const char *, const char *, std::uint8_t);
STUB_GET(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_vrrp_vrrp_group_state_get,
    const char *, const char *, const char *, std::uint8_t);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_vrrp_vrrp_group_interface_tracking_edit,
    const char *, const char *, const char *, std::uint8_t);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_vrrp_vrrp_group_interface_tracking_config_edit,
    const char *, const char *, const char *, std::uint8_t);
STUB_GET(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_addresses_address_vrrp_vrrp_group_interface_tracking_state_get,
    const char *, const char *, const char *, std::uint8_t);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_proxy_arp_edit,
          const char *, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_proxy_arp_config_edit,
          const char *, const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_proxy_arp_state_get,
         const char *, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_neighbors_edit,
          const char *, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_neighbors_neighbor_edit,
          const char *, const char *, const char *);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_neighbors_neighbor_config_edit,
    const char *, const char *, const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_neighbors_neighbor_state_get,
         const char *, const char *, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_unnumbered_edit,
          const char *, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_unnumbered_config_edit,
          const char *, const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_unnumbered_state_get,
         const char *, const char *);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_unnumbered_interface_ref_edit,
    const char *, const char *);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_unnumbered_interface_ref_config_edit,
    const char *, const char *);
STUB_GET(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_unnumbered_interface_ref_state_get,
    const char *, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_config_edit, const char *,
          const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_state_get, const char *,
         const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv4_state_counters_get,
         const char *, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_edit, const char *,
          const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_edit,
          const char *, const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_state_get,
         const char *, const char *, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_vrrp_edit,
          const char *, const char *, const char *);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_vrrp_vrrp_group_edit,
    const char *, const char *, const char *, std::uint8_t);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_vrrp_vrrp_group_config_edit,
    const char *, const char *, const char *, std::uint8_t);
STUB_GET(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_vrrp_vrrp_group_state_get,
    const char *, const char *, const char *, std::uint8_t);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_vrrp_vrrp_group_interface_tracking_edit,
    const char *, const char *, const char *, std::uint8_t);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_vrrp_vrrp_group_interface_tracking_config_edit,
    const char *, const char *, const char *, std::uint8_t);
STUB_GET(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_addresses_address_vrrp_vrrp_group_interface_tracking_state_get,
    const char *, const char *, const char *, std::uint8_t);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_router_advertisement_edit,
          const char *, const char *);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_router_advertisement_config_edit,
    const char *, const char *);
STUB_GET(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_router_advertisement_state_get,
    const char *, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_neighbors_edit,
          const char *, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_neighbors_neighbor_edit,
          const char *, const char *, const char *);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_neighbors_neighbor_config_edit,
    const char *, const char *, const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_neighbors_neighbor_state_get,
         const char *, const char *, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_unnumbered_edit,
          const char *, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_unnumbered_config_edit,
          const char *, const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_unnumbered_state_get,
         const char *, const char *);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_unnumbered_interface_ref_edit,
    const char *, const char *);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_unnumbered_interface_ref_config_edit,
    const char *, const char *);
STUB_GET(
    u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_unnumbered_interface_ref_state_get,
    const char *, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_config_edit, const char *,
          const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_state_get, const char *,
         const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_subinterfaces_subinterface_ipv6_state_counters_get,
         const char *, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_edit, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_edit, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_edit, const char *,
          const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_state_get, const char *,
         const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_vrrp_edit, const char *,
          const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_vrrp_vrrp_group_edit,
          const char *, const char *, std::uint8_t);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_vrrp_vrrp_group_config_edit,
    const char *, const char *, std::uint8_t);
STUB_GET(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_vrrp_vrrp_group_state_get,
         const char *, const char *, std::uint8_t);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_vrrp_vrrp_group_interface_tracking_edit,
    const char *, const char *, std::uint8_t);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_vrrp_vrrp_group_interface_tracking_config_edit,
    const char *, const char *, std::uint8_t);
STUB_GET(
    u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_vrrp_vrrp_group_interface_tracking_state_get,
    const char *, const char *, std::uint8_t);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_proxy_arp_edit, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_proxy_arp_config_edit, const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_proxy_arp_state_get, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_neighbors_edit, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_neighbors_neighbor_edit, const char *,
          const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_neighbors_neighbor_config_edit,
          const char *, const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_neighbors_neighbor_state_get, const char *,
         const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_unnumbered_edit, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_unnumbered_config_edit, const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_unnumbered_state_get, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_unnumbered_interface_ref_edit,
          const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_unnumbered_interface_ref_config_edit,
          const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_unnumbered_interface_ref_state_get,
         const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_config_edit, const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_state_get, const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_state_counters_get, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_edit, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_edit, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_edit, const char *,
          const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_state_get, const char *,
         const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_vrrp_edit, const char *,
          const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_vrrp_vrrp_group_edit,
          const char *, const char *, std::uint8_t);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_vrrp_vrrp_group_config_edit,
    const char *, const char *, std::uint8_t);
STUB_GET(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_vrrp_vrrp_group_state_get,
         const char *, const char *, std::uint8_t);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_vrrp_vrrp_group_interface_tracking_edit,
    const char *, const char *, std::uint8_t);
STUB_EDIT(
    u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_vrrp_vrrp_group_interface_tracking_config_edit,
    const char *, const char *, std::uint8_t);
STUB_GET(
    u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_vrrp_vrrp_group_interface_tracking_state_get,
    const char *, const char *, std::uint8_t);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_router_advertisement_edit, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_router_advertisement_config_edit,
          const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_router_advertisement_state_get,
         const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_neighbors_edit, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_neighbors_neighbor_edit, const char *,
          const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_neighbors_neighbor_config_edit,
          const char *, const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_neighbors_neighbor_state_get, const char *,
         const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_unnumbered_edit, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_unnumbered_config_edit, const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_unnumbered_state_get, const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_unnumbered_interface_ref_edit,
          const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_unnumbered_interface_ref_config_edit,
          const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_unnumbered_interface_ref_state_get,
         const char *);
STUB_EDIT(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_config_edit, const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_state_get, const char *);
STUB_GET(u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_state_counters_get, const char *);
