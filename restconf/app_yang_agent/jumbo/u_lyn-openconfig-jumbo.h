// Jumbo frames of the whole device: one switch, and its state.
#pragma once

#include "frame/call.h"

extern "C" {

// The node around: it cannot be deleted.
Status u_lyn_openconfig_jumbo_jumbo_edit(EDIT_ARGS);
// `enabled` goes to the device in apply. kNotSupported for a delete, kInternal when the device fails.
Status u_lyn_openconfig_jumbo_config_edit(EDIT_ARGS);
// `enabled` as the device has it. kFailed when the device refuses to tell.
Status u_lyn_openconfig_jumbo_operation_state_get(tk::GetBlock *get2cb);

// Switches jumbo frames on (non-zero) or off. 0, the device's error code, or 1 when it cannot be reached.
int jumbo_set_config(int enabled);

} // extern "C"
