#include "xstp/u_lyn-openconfig-spanning-tree-aug.h"

#include "frame/unit.h"

namespace {

#define PVST "/oc-stp:stp/lyn-openconfig-spanning-tree-aug:pvst"
#define VLAN PVST "/lyn-openconfig-spanning-tree-aug:vlan"

constexpr frame::Row kRows[] = {
    EDIT(PVST, u_lyn_openconfig_spanning_tree_aug_stp_pvst_edit),
    EDIT(VLAN, u_lyn_openconfig_spanning_tree_aug_stp_pvst_vlan_edit),
    EDIT(VLAN "/lyn-openconfig-spanning-tree-aug:config",
         u_lyn_openconfig_spanning_tree_aug_stp_pvst_vlan_config_edit),
    GET(VLAN "/lyn-openconfig-spanning-tree-aug:state",
        u_lyn_openconfig_spanning_tree_aug_stp_pvst_vlan_state_get),
};

} // namespace

DEFINE_UNIT(lyn_openconfig_spanning_tree_aug, "lyn-openconfig-spanning-tree-aug", "2018-11-21", kRows);
