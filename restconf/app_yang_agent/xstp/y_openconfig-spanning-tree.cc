#include "xstp/u_openconfig-spanning-tree.h"

#include "frame/unit.h"

namespace {

constexpr frame::Row kRows[] = {
    EDIT("/oc-stp:stp", u_openconfig_spanning_tree_stp_edit),
    EDIT("/oc-stp:stp/oc-stp:rapid-pvst", u_openconfig_spanning_tree_stp_rapid_pvst_edit),
    EDIT("/oc-stp:stp/oc-stp:rapid-pvst/oc-stp:vlan", u_openconfig_spanning_tree_stp_rapid_pvst_vlan_edit),
    EDIT("/oc-stp:stp/oc-stp:rapid-pvst/oc-stp:vlan/oc-stp:config",
         u_openconfig_spanning_tree_stp_rapid_pvst_vlan_config_edit),
    GET("/oc-stp:stp/oc-stp:rapid-pvst/oc-stp:vlan/oc-stp:state",
        u_openconfig_spanning_tree_stp_rapid_pvst_vlan_state_get),
    EDIT("/oc-stp:stp/oc-stp:interfaces", u_openconfig_spanning_tree_stp_interfaces_edit),
    EDIT("/oc-stp:stp/oc-stp:interfaces/oc-stp:interface",
         u_openconfig_spanning_tree_stp_interfaces_interface_edit),
    EDIT("/oc-stp:stp/oc-stp:interfaces/oc-stp:interface/oc-stp:config",
         u_openconfig_spanning_tree_stp_interfaces_interface_config_edit),
    GET("/oc-stp:stp/oc-stp:interfaces/oc-stp:interface/oc-stp:state",
        u_openconfig_spanning_tree_stp_interfaces_interface_state_get),
};

} // namespace

DEFINE_UNIT(openconfig_spanning_tree, "openconfig-spanning-tree", "2018-11-21", kRows, "stp");
