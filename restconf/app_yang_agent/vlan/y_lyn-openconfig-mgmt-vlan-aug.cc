#include "vlan/u_lyn-openconfig-mgmt-vlan-aug.h"

#include "frame/unit.h"

namespace {

constexpr frame::Row kRows[] = {
    EDIT("/oc-netinst:network-instances/oc-netinst:network-instance/oc-netinst:vlans/oc-netinst:vlan"
         "/oc-netinst:config/lyn-openconfig-mgmt-vlan-aug:management_vlan_container",
         u_lyn_openconfig_mgmt_vlan_aug_management_vlan_container_edit),
};

} // namespace

DEFINE_UNIT(lyn_openconfig_mgmt_vlan_aug, "lyn-openconfig-mgmt-vlan-aug", "2022-06-06", kRows);
