#include "poe/src/u_lyn-openconfig-if-poe-aug.h"

#include "frame/unit.h"

namespace {

constexpr frame::Row kRows[] = {
    EDIT("/oc-if:interfaces/oc-if:interface/oc-eth:ethernet/lyn-oc-if-poe-aug:poe",
         u_lyn_openconfig_if_poe_aug_interfaces_interface_ethernet_poe_edit),
    EDIT("/oc-if:interfaces/oc-if:interface/oc-eth:ethernet/lyn-oc-if-poe-aug:poe/lyn-oc-if-poe-aug:config",
         u_lyn_openconfig_if_poe_aug_interfaces_interface_ethernet_poe_config_edit, tk::emptiedIsDelete),
    GET("/oc-if:interfaces/oc-if:interface/oc-eth:ethernet/lyn-oc-if-poe-aug:poe/lyn-oc-if-poe-aug:state",
        u_lyn_openconfig_if_poe_aug_interfaces_interface_ethernet_poe_state_get),
};

} // namespace

DEFINE_UNIT(lyn_openconfig_if_poe_aug, "lyn-openconfig-if-poe-aug", "2020-01-04", kRows);
