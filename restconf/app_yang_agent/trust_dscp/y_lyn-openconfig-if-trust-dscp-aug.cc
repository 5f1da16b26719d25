#include "trust_dscp/u_lyn-openconfig-if-trust-dscp-aug.h"

#include "frame/unit.h"

namespace {

constexpr frame::Row kRows[] = {
    EDIT("/oc-if:interfaces/oc-if:interface/oc-eth:ethernet/lyn-oc-trust-dscp-aug:trust-dscp",
         u_lyn_openconfig_if_trust_dscp_aug_interfaces_interface_ethernet_trust_dscp_edit),
    EDIT("/oc-if:interfaces/oc-if:interface/oc-eth:ethernet/lyn-oc-trust-dscp-aug:trust-dscp"
         "/lyn-oc-trust-dscp-aug:config",
         u_lyn_openconfig_if_trust_dscp_aug_interfaces_interface_ethernet_trust_dscp_config_edit,
         tk::emptiedIsDelete),
    GET("/oc-if:interfaces/oc-if:interface/oc-eth:ethernet/lyn-oc-trust-dscp-aug:trust-dscp"
        "/lyn-oc-trust-dscp-aug:state",
        u_lyn_openconfig_if_trust_dscp_aug_interfaces_interface_ethernet_trust_dscp_state_get),
};

} // namespace

DEFINE_UNIT(lyn_openconfig_if_trust_dscp_aug, "lyn-openconfig-if-trust-dscp-aug", "2022-03-10", kRows);
