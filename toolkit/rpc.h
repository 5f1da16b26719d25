// RPCs and actions: their input and output.
#pragma once

#include "toolkit/types.h"

extern "C" {

// The request's input node, or null when there is none.
tk::Value *agt_get_rpc_input(tk::Request *msg);
// Adds a child of the output; the value belongs to the reply afterwards.
void agt_rpc_add_return_val(tk::Value *value, tk::Request *msg);

} // extern "C"
