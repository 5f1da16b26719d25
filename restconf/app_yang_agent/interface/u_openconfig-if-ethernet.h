// Ethernet ports: link settings, membership in a LAG, voice VLAN, and the switch of the DHCP client.
#pragma once

#include "backend/interface.h"
#include "backend/vlan.h"
#include "frame/call.h"

#include <cstdint>

extern "C" {

// A port that is there cannot be made or deleted: kNotSupported in validate.
Status u_openconfig_if_ethernet_interfaces_interface_ethernet_edit(EDIT_ARGS, const char *name);
// Each of the four things that the container holds has a request of its own, in apply; a LAG leaves out the
// link settings. kInternal when the device fails; what went out before stays.
Status u_openconfig_if_ethernet_interfaces_interface_ethernet_config_edit(EDIT_ARGS, const char *name);
// Link settings and what the link has settled on. kInternal when the device does not tell.
Status u_openconfig_if_ethernet_interfaces_interface_ethernet_state_get(tk::GetBlock *get2cb,
                                                                        const char *name);

// Fill the link settings of a request. Speed, duplex and clock travel together, so a merge asks the device
// for those that it does not change. kInternal when the request has no settings or the device does not tell.
Status validate_openconfig_if_speed_merge(tk::Value *newval, tk::Value *curval,
                                          InterfaceEthernetConfigParam *request, tk::Request *msg);
Status validate_openconfig_if_speed(const tk::Value *config, InterfaceEthernetConfigParam *request,
                                    tk::EditOp editop);

// A voice VLAN of a port, added (operation 1) or removed (3). The interface text may have a blank behind it.
void restconf_vlan_adapter_cli_to_proto(VlanConfigReq *request, const char *interfaceText, std::uint32_t vlan,
                                        int operation);
// Sends it: 0, or -1 when it was not delivered. A refusal is not looked at.
int process_voice_vlan_set_config(const char *interfaceText, std::uint32_t vlan, int operation);

// The DHCP client's two switches of a port. The first: 0, also when the port is in that state already, or
// kInternal.
Status process_set_dhclient_intf_no_enable(const char *interfaceText, int noEnable);
// The second tells the client's own process: 0, 1 without an answer, or the answer's error.
std::uint16_t process_dhclient_set_intf_no_enbl(const char *interfaceText, int noEnable);

} // extern "C"
