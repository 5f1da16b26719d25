// Default gateway and addresses below the system's config. They are only kept: nothing goes to the device.
// Functions without a comment are stubs.
#pragma once

#include "frame/call.h"

extern "C" {

Status u_lyn_openconfig_system_aug_system_config_default_gateway_edit(EDIT_ARGS);
// Checks in apply that a creation brings a value and a deletion has one. kInternal if not.
Status u_lyn_openconfig_system_aug_system_config_default_gateway_address_edit(EDIT_ARGS, const char *address);
Status u_lyn_openconfig_system_aug_system_config_default_gateway_address_config_edit(EDIT_ARGS,
                                                                                     const char *address);
Status u_lyn_openconfig_system_aug_system_config_default_gateway_address_state_get(tk::GetBlock *get2cb,
                                                                                   const char *address);
Status u_lyn_openconfig_system_aug_system_config_ipv4_edit(EDIT_ARGS);
// The same check.
Status u_lyn_openconfig_system_aug_system_config_ipv4_address_edit(EDIT_ARGS, const char *address);
Status u_lyn_openconfig_system_aug_system_config_ipv4_address_config_edit(EDIT_ARGS, const char *address);
Status u_lyn_openconfig_system_aug_system_config_ipv4_address_state_get(tk::GetBlock *get2cb,
                                                                        const char *address);
Status u_lyn_openconfig_system_aug_system_config_ipv6_edit(EDIT_ARGS);
// The same check; what is deleted must have had a `config`, too.
Status u_lyn_openconfig_system_aug_system_config_ipv6_address_edit(EDIT_ARGS, const char *address);
Status u_lyn_openconfig_system_aug_system_config_ipv6_address_config_edit(EDIT_ARGS, const char *address);
Status u_lyn_openconfig_system_aug_system_config_ipv6_address_state_get(tk::GetBlock *get2cb,
                                                                        const char *address);

} // extern "C"
