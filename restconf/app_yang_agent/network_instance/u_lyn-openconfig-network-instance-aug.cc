#include "network_instance/u_lyn-openconfig-network-instance-aug.h"

#include "frame/stub.h"

USER_UNIT(lyn_openconfig_network_instance_aug);

STUB_EDIT(u_lyn_openconfig_ni_aug_internal_use_edit, const char *);
STUB_EDIT(u_lyn_openconfig_ni_aug_l2_edit, const char *);
STUB_EDIT(u_lyn_openconfig_ni_aug_mac_address_table_edit, const char *);
STUB_EDIT(u_lyn_openconfig_ni_aug_vlans_edit, const char *);
STUB_EDIT(u_lyn_openconfig_ni_aug_vlan_edit, const char *, std::uint16_t);
STUB_EDIT(u_lyn_openconfig_ni_aug_port_edit, const char *, std::uint16_t, const char *);
STUB_EDIT(u_lyn_openconfig_ni_aug_ports_edit, const char *);
STUB_EDIT(u_lyn_openconfig_ni_aug_port_1_edit, const char *, const char *);
STUB_EDIT(u_lyn_openconfig_ni_aug_vlan_1_edit, const char *, const char *, std::uint16_t);
