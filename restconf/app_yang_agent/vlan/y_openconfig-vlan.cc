#include "vlan/u_openconfig-vlan.h"

#include "frame/unit.h"

namespace {

#define INTERFACE "/oc-if:interfaces/oc-if:interface"

constexpr frame::Row kRows[] = {
    EDIT(INTERFACE "/oc-eth:ethernet/oc-vlan:switched-vlan",
         u_openconfig_vlan_interfaces_interface_ethernet_switched_vlan_edit),
    EDIT(INTERFACE "/oc-eth:ethernet/oc-vlan:switched-vlan/oc-vlan:config",
         u_openconfig_vlan_interfaces_interface_ethernet_switched_vlan_config_edit),
    GET(INTERFACE "/oc-eth:ethernet/oc-vlan:switched-vlan/oc-vlan:state",
        u_openconfig_vlan_interfaces_interface_ethernet_switched_vlan_state_get),
    EDIT(INTERFACE "/oc-lag:aggregation/oc-vlan:switched-vlan",
         u_openconfig_vlan_interfaces_interface_aggregation_switched_vlan_edit),
    EDIT(INTERFACE "/oc-lag:aggregation/oc-vlan:switched-vlan/oc-vlan:config",
         u_openconfig_vlan_interfaces_interface_aggregation_switched_vlan_config_edit),
    GET(INTERFACE "/oc-lag:aggregation/oc-vlan:switched-vlan/oc-vlan:state",
        u_openconfig_vlan_interfaces_interface_aggregation_switched_vlan_state_get),
    EDIT(INTERFACE "/oc-vlan:routed-vlan", u_openconfig_vlan_interfaces_interface_routed_vlan_edit),
    EDIT(INTERFACE "/oc-vlan:routed-vlan/oc-vlan:config",
         u_openconfig_vlan_interfaces_interface_routed_vlan_config_edit),
};

} // namespace

DEFINE_UNIT(openconfig_vlan, "openconfig-vlan", "2018-11-21", kRows);
