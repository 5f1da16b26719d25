// What the switch has beside the public AAA model: method lists, port authentication, Change of
// Authorization.
#pragma once

#include "frame/call.h"

extern "C" {

// The method of port authentication: "radius" or "none". kInternal when the device cannot be reached.
Status u_lyn_openconfig_aaa_aug_system_aaa_authentication_dot1x_edit(EDIT_ARGS);

// Change of Authorization: `enable`, and the requests that are ignored. A false goes out as the deletion of
// the setting. kNotSupported for a delete of `coa`, kInternal when the device cannot be reached.
Status u_lyn_openconfig_aaa_aug_system_aaa_authorization_coa_edit(EDIT_ARGS);
Status u_lyn_openconfig_aaa_aug_system_aaa_authorization_coa_ignore_edit(EDIT_ARGS);

// Method lists. kInternal for one without methods (or, of commands, privilege), and when the device refuses
// or cannot be reached.
Status u_lyn_openconfig_aaa_aug_system_aaa_authentication_login_edit(EDIT_ARGS);
Status u_lyn_openconfig_aaa_aug_system_aaa_authorization_commands_edit(EDIT_ARGS);
Status u_lyn_openconfig_aaa_aug_system_aaa_authorization_exec_edit(EDIT_ARGS);
Status u_lyn_openconfig_aaa_aug_system_aaa_accounting_commands_edit(EDIT_ARGS);
Status u_lyn_openconfig_aaa_aug_system_aaa_accounting_exec_edit(EDIT_ARGS);

} // extern "C"
