#include "network_instance/u_lyn-openconfig-network-instance-aug.h"

#include "frame/unit.h"

namespace {

#define STEP(name) "/lyn-openconfig-ni-aug:" name
#define INTERNAL "/oc-netinst:network-instances/oc-netinst:network-instance" STEP("internal-use")
#define TABLE INTERNAL STEP("l2") STEP("mac-address-table")

constexpr frame::Row kRows[] = {
    EDIT(INTERNAL, u_lyn_openconfig_ni_aug_internal_use_edit),
    EDIT(INTERNAL STEP("l2"), u_lyn_openconfig_ni_aug_l2_edit),
    EDIT(TABLE, u_lyn_openconfig_ni_aug_mac_address_table_edit),
    EDIT(TABLE STEP("vlans"), u_lyn_openconfig_ni_aug_vlans_edit),
    EDIT(TABLE STEP("vlans") STEP("vlan"), u_lyn_openconfig_ni_aug_vlan_edit),
    EDIT(TABLE STEP("vlans") STEP("vlan") STEP("port"), u_lyn_openconfig_ni_aug_port_edit),
    EDIT(TABLE STEP("ports"), u_lyn_openconfig_ni_aug_ports_edit),
    EDIT(TABLE STEP("ports") STEP("port"), u_lyn_openconfig_ni_aug_port_1_edit),
    EDIT(TABLE STEP("ports") STEP("port") STEP("vlan"), u_lyn_openconfig_ni_aug_vlan_1_edit),
};

} // namespace

DEFINE_UNIT(lyn_openconfig_network_instance_aug, "lyn-openconfig-network-instance-aug", "2022-08-23", kRows);
