// The hardware's forwarding profile, chosen by name. Served on platforms of the types 4 and 5 only.
#pragma once

#include "frame/call.h"

extern "C" {

// `current-profile-name` goes to the device in commit; a replace is passed over. kMissingValue or kBadData
// without a name, kDeviceText with the device's words when it refuses, kInternal when it fails without any.
Status u_lyn_openconfig_forwarding_profile_forwarding_profile_edit(EDIT_ARGS);

} // extern "C"
