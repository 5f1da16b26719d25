#include "lldp/u_openconfig-lldp.h"

using namespace tk;

namespace {

#define INTERFACE "/oc-lldp:lldp/oc-lldp:interfaces/oc-lldp:interface"
#define NEIGHBOR INTERFACE "/oc-lldp:neighbors/oc-lldp:neighbor"
#define TLV NEIGHBOR "/oc-lldp:custom-tlvs/oc-lldp:tlv"
#define CAPABILITY NEIGHBOR "/oc-lldp:capabilities/oc-lldp:capability"

constexpr frame::Row kRows[] = {
    EDIT("/oc-lldp:lldp", u_openconfig_lldp_lldp_edit, refusesDelete),
    EDIT("/oc-lldp:lldp/oc-lldp:config", u_openconfig_lldp_lldp_config_edit, refusesDelete | withDefaults),
    GET("/oc-lldp:lldp/oc-lldp:state", u_openconfig_lldp_lldp_state_get),
    GET("/oc-lldp:lldp/oc-lldp:state/oc-lldp:counters", u_openconfig_lldp_lldp_state_counters_get),
    EDIT("/oc-lldp:lldp/oc-lldp:interfaces", u_openconfig_lldp_lldp_interfaces_edit),
    EDIT(INTERFACE, u_openconfig_lldp_lldp_interfaces_interface_edit),
    EDIT(INTERFACE "/oc-lldp:config", u_openconfig_lldp_lldp_interfaces_interface_config_edit, withDefaults),
    GET(INTERFACE "/oc-lldp:state", u_openconfig_lldp_lldp_interfaces_interface_state_get),
    GET(INTERFACE "/oc-lldp:state/oc-lldp:counters",
        u_openconfig_lldp_lldp_interfaces_interface_state_counters_get),
    GET(INTERFACE "/oc-lldp:neighbors", u_openconfig_lldp_lldp_interfaces_interface_neighbors_get),
    GET(NEIGHBOR, u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_get),
    GET(NEIGHBOR "/oc-lldp:config",
        u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_config_get),
    GET(NEIGHBOR "/oc-lldp:state", u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_state_get),
    GET(NEIGHBOR "/oc-lldp:custom-tlvs",
        u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_custom_tlvs_get),
    GET(TLV, u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_custom_tlvs_tlv_get),
    GET(TLV "/oc-lldp:config",
        u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_custom_tlvs_tlv_config_get),
    GET(TLV "/oc-lldp:state",
        u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_custom_tlvs_tlv_state_get),
    GET(NEIGHBOR "/oc-lldp:capabilities",
        u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_capabilities_get),
    GET(CAPABILITY,
        u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_capabilities_capability_get),
    GET(CAPABILITY "/oc-lldp:config",
        u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_capabilities_capability_config_get),
    GET(CAPABILITY "/oc-lldp:state",
        u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_capabilities_capability_state_get),
};

} // namespace

DEFINE_UNIT(openconfig_lldp, "openconfig-lldp", "2018-11-21", kRows, "lldp");
