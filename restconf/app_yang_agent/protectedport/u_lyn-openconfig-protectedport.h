// Protected ports: a list of ports, each with one switch.
#pragma once

#include "frame/call.h"

extern "C" {

// The nodes around: stubs.
Status u_lyn_oc_protectedport_protectedport_edit(EDIT_ARGS);
Status u_lyn_oc_protectedport_interfaces_edit(EDIT_ARGS);
Status u_lyn_oc_protectedport_interface_edit(EDIT_ARGS, const char *name);
// `protectedport` goes to the device in apply; a replace is passed over and nothing is rolled back.
// kDeviceText with the device's words when it refuses, kInternal when it cannot be reached.
Status u_lyn_oc_protectedport_config_edit(EDIT_ARGS, const char *name);

} // extern "C"
