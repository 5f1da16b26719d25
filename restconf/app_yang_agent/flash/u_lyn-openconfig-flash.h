// What the flash of the switch holds: read-outs only.
#pragma once

#include "frame/call.h"

extern "C" {

// Stub: there is nothing to configure.
Status u_lyn_openconfig_flash_flash_edit(EDIT_ARGS);

// One item each. No leaves, and kOk, without a good answer of the switch; kNoInstance for a get-next.
Status u_lyn_openconfig_flash_running_get(tk::GetBlock *get2cb);
Status u_lyn_openconfig_flash_primary_get(tk::GetBlock *get2cb);
Status u_lyn_openconfig_flash_secondary_get(tk::GetBlock *get2cb);
Status u_lyn_openconfig_flash_freespace_get(tk::GetBlock *get2cb);

} // extern "C"
