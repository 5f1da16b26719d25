// A collection of support data, started by creating a node. The node stays: another collection needs it
// deleted and created anew.
#pragma once

#include "frame/call.h"

extern "C" {

// A create starts the collection in apply; kInternal when the switch cannot be reached. That the switch turns
// it down is only logged. A merge or replace is refused with kNotSupported in validate.
Status u_lyn_supportsave_invokeSS_edit(EDIT_ARGS);

} // extern "C"
