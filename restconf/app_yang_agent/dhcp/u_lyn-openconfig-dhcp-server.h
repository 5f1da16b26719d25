// The DHCP server: its switch, its pools, and the addresses that it has given away.
#pragma once

#include "frame/unit.h"

extern "C" {

// All but the following are stubs: containers without settings of their own, what the switch only keeps, and
// DHCP for IPv6.
Status u_lyn_openconfig_dhcp_server_dhcp_server_edit(EDIT_ARGS);
Status u_lyn_openconfig_dhcp_server_config_edit(EDIT_ARGS);
Status u_lyn_openconfig_dhcp_server_static_allocation_edit(EDIT_ARGS, const char *pool, const char *address);
Status u_lyn_openconfig_dhcp_server_option_edit(EDIT_ARGS, const char *pool);
Status u_lyn_openconfig_dhcp_server_ip_telephony_edit(EDIT_ARGS, const char *pool);
Status u_lyn_openconfig_dhcp_server_data_edit(EDIT_ARGS, const char *pool);
Status u_lyn_openconfig_dhcp_server_voice_edit(EDIT_ARGS, const char *pool);
Status u_lyn_openconfig_dhcp_server_ipv6_config_edit(EDIT_ARGS);
Status u_lyn_openconfig_dhcp_server_dhcpv6_pool_edit(EDIT_ARGS, const char *pool);
Status u_lyn_openconfig_dhcp_server_state_get(tk::GetBlock *get2cb);
Status u_lyn_openconfig_dhcp_server_ipv4_state_get(tk::GetBlock *get2cb);
Status u_lyn_openconfig_dhcp_server_ipv6_state_get(tk::GetBlock *get2cb);
Status u_lyn_openconfig_dhcp_server_dhcpv4_pool_get(tk::GetBlock *get2cb, frame::OwnKey<const char *> pool);
Status u_lyn_openconfig_dhcp_server_dhcpv6_pool_get(tk::GetBlock *get2cb, frame::OwnKey<const char *> pool);

// Switches the server on or off, in `commit`, and at the start of the management server too. Refused, with a
// text, as long as the DHCP client is on.
Status u_lyn_openconfig_dhcp_server_ipv4_config_edit(EDIT_ARGS);

// Makes or removes a pool. The switch cannot change one, so a change makes it anew from all that it holds.
// Network and prefix length belong together.
Status u_lyn_openconfig_dhcp_server_dhcpv4_pool_edit(EDIT_ARGS, const char *pool);
// Five minutes to a year.
Status u_lyn_openconfig_dhcp_server_lease_time_edit(EDIT_ARGS, const char *pool);
// A range of addresses that are not given away.
Status u_lyn_openconfig_dhcp_server_excl_ip_address_range_edit(EDIT_ARGS, const char *pool, const char *low,
                                                               const char *high);
// An option of a pool, in one of five forms.
Status u_lyn_openconfig_dhcp_server_dhcp_option_edit(EDIT_ARGS, const char *pool, std::uint8_t option);

// The leases, those that were granted before the fixed ones. kInternal when the file of leases is there and
// holds none.
Status u_lyn_openconfig_dhcp_server_dhcp_server_binding_get(tk::GetBlock *get2cb,
                                                            frame::OwnKey<const char *> client);

// One lease: its key, which stays as it is when the client gave it, and the leaves that are wanted.
Status fill_obj_values(const tk::Object *binding, tk::GetBlock *get2cb, const char *key, const char *mac,
                       const char *ip, std::int32_t expiration, std::int32_t type);

} // extern "C"
