// The interface list: ports, LAGs, ve and loopback interfaces, their settings, state and counters.
#pragma once

#include "backend/interface.h"
#include "backend/ip_interface.h"
#include "frame/call.h"

extern "C" {

// The kind (interfaces::Kind) that `config` containers speak of: that of newval's type, else of curval's.
// Either may be null. 0 if there is no type that is known.
int get_interface_type(const tk::Value *curval, const tk::Value *newval);

// Take settings from a whole config container; null changes nothing. The record borrows the strings.
// Of a port or LAG: a leaf that is absent is removed from the device.
void update_interface_protbuf(const tk::Value *config, InterfaceConfigParam *request);
// Of a ve and of a loopback: the description, if there is one.
void update_ve_interface_protbuf(const tk::Value *config, Ip__Interface__Config *request);
void update_lb_interface_protbuf(const tk::Value *config, Ip__Interface__Config *request);

// Walk the edited leaves of a merge.
void update_interface_protobuf_merge(const frame::EditCall &call, InterfaceConfigParam *request);
// A removed description ends the walk.
void update_ve_interface_protobuf_merge(const frame::EditCall &call, Ip__Interface__Config *request);

Status u_openconfig_interfaces_interfaces_edit(EDIT_ARGS);
// Entries of ports exist by themselves: kNotSupported in validate for anything but a merge. In commit of a
// delete a ve or loopback goes away; kDeviceText if the device refuses.
Status u_openconfig_interfaces_interfaces_interface_edit(EDIT_ARGS, const char *name);
// One request with the settings in apply, and one that takes them back in rollback. kInternal for a name or
// type that no request can be made of, kDeviceText when the device fails; what it says of a LAG is not looked
// at.
Status u_openconfig_interfaces_interfaces_interface_config_edit(EDIT_ARGS, const char *name);
// What the device says; kInternal when it does not.
Status u_openconfig_interfaces_interfaces_interface_state_get(tk::GetBlock *get2cb, const char *name);
Status u_openconfig_interfaces_interfaces_interface_state_counters_get(tk::GetBlock *get2cb,
                                                                       const char *name);
Status u_openconfig_interfaces_interfaces_interface_hold_time_edit(EDIT_ARGS, const char *name);
Status u_openconfig_interfaces_interfaces_interface_hold_time_config_edit(EDIT_ARGS, const char *name);
Status u_openconfig_interfaces_interfaces_interface_hold_time_state_get(tk::GetBlock *get2cb,
                                                                        const char *name);
Status u_openconfig_interfaces_interfaces_interface_subinterfaces_edit(EDIT_ARGS, const char *name);
// Index 0 is the only one; it carries the addresses. Status 258 in apply of a create for another.
Status u_openconfig_interfaces_interfaces_interface_subinterfaces_subinterface_edit(EDIT_ARGS,
                                                                                    const char *name,
                                                                                    const char *index);
Status u_openconfig_interfaces_interfaces_interface_subinterfaces_subinterface_config_edit(EDIT_ARGS,
                                                                                           const char *name,
                                                                                           const char *index);
Status u_openconfig_interfaces_interfaces_interface_subinterfaces_subinterface_state_get(tk::GetBlock *get2cb,
                                                                                         const char *name,
                                                                                         const char *index);
Status u_openconfig_interfaces_interfaces_interface_subinterfaces_subinterface_state_counters_get(
    tk::GetBlock *get2cb, const char *name, const char *index);

} // extern "C"
