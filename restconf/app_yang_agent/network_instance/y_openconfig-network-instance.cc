#include "network_instance/u_openconfig-network-instance.h"

#include "frame/unit.h"

namespace {

#define INSTANCE "/oc-netinst:network-instances/oc-netinst:network-instance"

constexpr frame::Row kRows[] = {
    EDIT("/oc-netinst:network-instances", u_openconfig_network_instance_network_instances_edit),
    EDIT(INSTANCE, u_openconfig_network_instance_network_instances_network_instance_edit, tk::refusesDelete),
    EDIT(INSTANCE "/oc-netinst:fdb",
         u_openconfig_network_instance_network_instances_network_instance_fdb_edit),
    EDIT(INSTANCE "/oc-netinst:fdb/oc-netinst:config",
         u_openconfig_network_instance_network_instances_network_instance_fdb_config_edit),
    GET(INSTANCE "/oc-netinst:fdb/oc-netinst:state",
        u_openconfig_network_instance_network_instances_network_instance_fdb_state_get),
    EDIT(INSTANCE "/oc-netinst:fdb/oc-netinst:mac-table",
         u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_edit),
    EDIT(INSTANCE "/oc-netinst:fdb/oc-netinst:mac-table/oc-netinst:entries",
         u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_edit),
    EDIT(INSTANCE "/oc-netinst:fdb/oc-netinst:mac-table/oc-netinst:entries/oc-netinst:entry",
         u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_edit),
    EDIT(
        INSTANCE "/oc-netinst:fdb/oc-netinst:mac-table/oc-netinst:entries/oc-netinst:entry/oc-netinst:config",
        u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_config_edit),
    GET(INSTANCE "/oc-netinst:fdb/oc-netinst:mac-table/oc-netinst:entries/oc-netinst:entry/oc-netinst:state",
        u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_state_get),
    EDIT(
        INSTANCE
        "/oc-netinst:fdb/oc-netinst:mac-table/oc-netinst:entries/oc-netinst:entry/oc-netinst:interface",
        u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_interface_edit),
    EDIT(
        INSTANCE "/oc-netinst:fdb/oc-netinst:mac-table/oc-netinst:entries/oc-netinst:entry/"
                 "oc-netinst:interface/oc-netinst:interface-ref",
        u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_interface_interface_ref_edit),
    EDIT(
        INSTANCE "/oc-netinst:fdb/oc-netinst:mac-table/oc-netinst:entries/oc-netinst:entry/"
                 "oc-netinst:interface/oc-netinst:interface-ref/oc-netinst:config",
        u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_interface_interface_ref_config_edit,
        tk::emptiedIsDelete | tk::firstFillIsCreate),
    GET(INSTANCE "/oc-netinst:fdb/oc-netinst:mac-table/oc-netinst:entries/oc-netinst:entry/"
                 "oc-netinst:interface/oc-netinst:interface-ref/oc-netinst:state",
        u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_interface_interface_ref_state_get),
    EDIT(INSTANCE "/oc-netinst:config",
         u_openconfig_network_instance_network_instances_network_instance_config_edit),
    GET(INSTANCE "/oc-netinst:state",
        u_openconfig_network_instance_network_instances_network_instance_state_get),
    EDIT(INSTANCE "/oc-netinst:interfaces",
         u_openconfig_network_instance_network_instances_network_instance_interfaces_edit),
    EDIT(INSTANCE "/oc-netinst:interfaces/oc-netinst:interface",
         u_openconfig_network_instance_network_instances_network_instance_interfaces_interface_edit),
    EDIT(INSTANCE "/oc-netinst:interfaces/oc-netinst:interface/oc-netinst:config",
         u_openconfig_network_instance_network_instances_network_instance_interfaces_interface_config_edit),
    GET(INSTANCE "/oc-netinst:interfaces/oc-netinst:interface/oc-netinst:state",
        u_openconfig_network_instance_network_instances_network_instance_interfaces_interface_state_get),
    EDIT(INSTANCE "/oc-netinst:vlans",
         u_openconfig_network_instance_network_instances_network_instance_vlans_edit),
    EDIT(INSTANCE "/oc-netinst:vlans/oc-netinst:vlan",
         u_openconfig_network_instance_network_instances_network_instance_vlans_vlan_edit),
    EDIT(INSTANCE "/oc-netinst:vlans/oc-netinst:vlan/oc-netinst:config",
         u_openconfig_network_instance_network_instances_network_instance_vlans_vlan_config_edit,
         tk::toldFirst),
    GET(INSTANCE "/oc-netinst:vlans/oc-netinst:vlan/oc-netinst:state",
        u_openconfig_network_instance_network_instances_network_instance_vlans_vlan_state_get),
    EDIT(INSTANCE "/oc-netinst:protocols",
         u_openconfig_network_instance_network_instances_network_instance_protocols_edit),
};

} // namespace

DEFINE_UNIT(openconfig_network_instance, "openconfig-network-instance", "2018-11-21", kRows,
            "network-instances");
