#include "dhcp_relay_agent/u_openconfig-relay-agent.h"

#include "frame/unit.h"

namespace {

#define DHCP "/oc-relay:relay-agent/oc-relay:dhcp"
#define DHCPV6 "/oc-relay:relay-agent/oc-relay:dhcpv6"

constexpr frame::Row kRows[] = {
    EDIT("/oc-relay:relay-agent", u_openconfig_relay_agent_relay_agent_edit),
    EDIT(DHCP, u_openconfig_relay_agent_relay_agent_dhcp_edit),
    EDIT(DHCP "/oc-relay:config", u_openconfig_relay_agent_relay_agent_dhcp_config_edit),
    GET(DHCP "/oc-relay:state", u_openconfig_relay_agent_relay_agent_dhcp_state_get),
    EDIT(DHCP "/oc-relay:agent-information-option",
         u_openconfig_relay_agent_relay_agent_dhcp_agent_information_option_edit),
    EDIT(DHCP "/oc-relay:agent-information-option/oc-relay:config",
         u_openconfig_relay_agent_relay_agent_dhcp_agent_information_option_config_edit),
    GET(DHCP "/oc-relay:agent-information-option/oc-relay:state",
        u_openconfig_relay_agent_relay_agent_dhcp_agent_information_option_state_get),
    EDIT(DHCP "/oc-relay:interfaces", u_openconfig_relay_agent_relay_agent_dhcp_interfaces_edit),
    EDIT(DHCP "/oc-relay:interfaces/oc-relay:interface",
         u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_edit),
    EDIT(DHCP "/oc-relay:interfaces/oc-relay:interface/oc-relay:config",
         u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_config_edit),
    GET(DHCP "/oc-relay:interfaces/oc-relay:interface/oc-relay:state",
        u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_state_get),
    GET(DHCP "/oc-relay:interfaces/oc-relay:interface/oc-relay:state/oc-relay:counters",
        u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_state_counters_get),
    EDIT(DHCP "/oc-relay:interfaces/oc-relay:interface/oc-relay:interface-ref",
         u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_interface_ref_edit),
    EDIT(DHCP "/oc-relay:interfaces/oc-relay:interface/oc-relay:interface-ref/oc-relay:config",
         u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_interface_ref_config_edit),
    GET(DHCP "/oc-relay:interfaces/oc-relay:interface/oc-relay:interface-ref/oc-relay:state",
        u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_interface_ref_state_get),
    EDIT(DHCP "/oc-relay:interfaces/oc-relay:interface/oc-relay:agent-information-option",
         u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_agent_information_option_edit),
    EDIT(DHCP "/oc-relay:interfaces/oc-relay:interface/oc-relay:agent-information-option/oc-relay:config",
         u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_agent_information_option_config_edit),
    GET(DHCP "/oc-relay:interfaces/oc-relay:interface/oc-relay:agent-information-option/oc-relay:state",
        u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_agent_information_option_state_get),
    EDIT(DHCPV6, u_openconfig_relay_agent_relay_agent_dhcpv6_edit),
    EDIT(DHCPV6 "/oc-relay:config", u_openconfig_relay_agent_relay_agent_dhcpv6_config_edit),
    GET(DHCPV6 "/oc-relay:state", u_openconfig_relay_agent_relay_agent_dhcpv6_state_get),
    EDIT(DHCPV6 "/oc-relay:options", u_openconfig_relay_agent_relay_agent_dhcpv6_options_edit),
    EDIT(DHCPV6 "/oc-relay:options/oc-relay:config",
         u_openconfig_relay_agent_relay_agent_dhcpv6_options_config_edit),
    GET(DHCPV6 "/oc-relay:options/oc-relay:state",
        u_openconfig_relay_agent_relay_agent_dhcpv6_options_state_get),
    EDIT(DHCPV6 "/oc-relay:interfaces", u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_edit),
    EDIT(DHCPV6 "/oc-relay:interfaces/oc-relay:interface",
         u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_edit),
    EDIT(DHCPV6 "/oc-relay:interfaces/oc-relay:interface/oc-relay:config",
         u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_config_edit),
    GET(DHCPV6 "/oc-relay:interfaces/oc-relay:interface/oc-relay:state",
        u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_state_get),
    GET(DHCPV6 "/oc-relay:interfaces/oc-relay:interface/oc-relay:state/oc-relay:counters",
        u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_state_counters_get),
    EDIT(DHCPV6 "/oc-relay:interfaces/oc-relay:interface/oc-relay:interface-ref",
         u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_interface_ref_edit),
    EDIT(DHCPV6 "/oc-relay:interfaces/oc-relay:interface/oc-relay:interface-ref/oc-relay:config",
         u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_interface_ref_config_edit),
    GET(DHCPV6 "/oc-relay:interfaces/oc-relay:interface/oc-relay:interface-ref/oc-relay:state",
        u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_interface_ref_state_get),
    EDIT(DHCPV6 "/oc-relay:interfaces/oc-relay:interface/oc-relay:options",
         u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_options_edit),
    EDIT(DHCPV6 "/oc-relay:interfaces/oc-relay:interface/oc-relay:options/oc-relay:config",
         u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_options_config_edit),
    GET(DHCPV6 "/oc-relay:interfaces/oc-relay:interface/oc-relay:options/oc-relay:state",
        u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_options_state_get),
};

#undef DHCP
#undef DHCPV6

} // namespace

DEFINE_UNIT(openconfig_relay_agent, "openconfig-relay-agent", "2018-11-21", kRows, "relay-agent");
