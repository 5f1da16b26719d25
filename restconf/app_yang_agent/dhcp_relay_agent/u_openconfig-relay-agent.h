// The DHCP relay agent: helper addresses of interfaces, to which the switch relays what DHCP clients there
// ask.
#pragma once

#include "frame/call.h"

extern "C" {

// In apply each helper address that comes or goes is a request of its own; nothing is taken back. `id` goes
// out unchanged. kInvalidValue for what is no address, kDeviceText when the switch turns one down: the others
// are still sent, but for a replacement. kNotSupported for a changed value.
Status u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_config_edit(EDIT_ARGS, const char *id);

// The rest of the tree: nothing is stored, nothing is returned.
Status u_openconfig_relay_agent_relay_agent_edit(EDIT_ARGS);
Status u_openconfig_relay_agent_relay_agent_dhcp_edit(EDIT_ARGS);
Status u_openconfig_relay_agent_relay_agent_dhcp_config_edit(EDIT_ARGS);
Status u_openconfig_relay_agent_relay_agent_dhcp_state_get(tk::GetBlock *get2cb);
Status u_openconfig_relay_agent_relay_agent_dhcp_agent_information_option_edit(EDIT_ARGS);
Status u_openconfig_relay_agent_relay_agent_dhcp_agent_information_option_config_edit(EDIT_ARGS);
Status u_openconfig_relay_agent_relay_agent_dhcp_agent_information_option_state_get(tk::GetBlock *get2cb);
Status u_openconfig_relay_agent_relay_agent_dhcp_interfaces_edit(EDIT_ARGS);
Status u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_edit(EDIT_ARGS, const char *id);
Status u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_state_get(tk::GetBlock *get2cb,
                                                                                const char *id);
Status u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_state_counters_get(tk::GetBlock *get2cb,
                                                                                         const char *id);
Status u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_interface_ref_edit(EDIT_ARGS,
                                                                                         const char *id);
Status
u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_interface_ref_config_edit(EDIT_ARGS,
                                                                                         const char *id);
Status
u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_interface_ref_state_get(tk::GetBlock *get2cb,
                                                                                       const char *id);
Status
u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_agent_information_option_edit(EDIT_ARGS,
                                                                                             const char *id);
Status u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_agent_information_option_config_edit(
    EDIT_ARGS, const char *id);
Status u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_agent_information_option_state_get(
    tk::GetBlock *get2cb, const char *id);
Status u_openconfig_relay_agent_relay_agent_dhcpv6_edit(EDIT_ARGS);
Status u_openconfig_relay_agent_relay_agent_dhcpv6_config_edit(EDIT_ARGS);
Status u_openconfig_relay_agent_relay_agent_dhcpv6_state_get(tk::GetBlock *get2cb);
Status u_openconfig_relay_agent_relay_agent_dhcpv6_options_edit(EDIT_ARGS);
Status u_openconfig_relay_agent_relay_agent_dhcpv6_options_config_edit(EDIT_ARGS);
Status u_openconfig_relay_agent_relay_agent_dhcpv6_options_state_get(tk::GetBlock *get2cb);
Status u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_edit(EDIT_ARGS);
Status u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_edit(EDIT_ARGS, const char *id);
Status u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_config_edit(EDIT_ARGS,
                                                                                    const char *id);
Status u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_state_get(tk::GetBlock *get2cb,
                                                                                  const char *id);
Status
u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_state_counters_get(tk::GetBlock *get2cb,
                                                                                    const char *id);
Status u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_interface_ref_edit(EDIT_ARGS,
                                                                                           const char *id);
Status
u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_interface_ref_config_edit(EDIT_ARGS,
                                                                                           const char *id);
Status
u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_interface_ref_state_get(tk::GetBlock *get2cb,
                                                                                         const char *id);
Status u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_options_edit(EDIT_ARGS,
                                                                                     const char *id);
Status u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_options_config_edit(EDIT_ARGS,
                                                                                            const char *id);
Status
u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_options_state_get(tk::GetBlock *get2cb,
                                                                                   const char *id);

} // extern "C"
