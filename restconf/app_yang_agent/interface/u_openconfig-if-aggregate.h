// LAGs: made, renamed and deleted through their aggregation container.
#pragma once

#include "frame/call.h"

extern "C" {

Status u_openconfig_if_aggregate_interfaces_interface_aggregation_edit(EDIT_ARGS, const char *name);
// In apply a type makes or deletes the LAG, a name alone renames it; rollback deletes what the edit made.
// kInternal for an interface that is no LAG and when the device fails.
Status u_openconfig_if_aggregate_interfaces_interface_aggregation_config_edit(EDIT_ARGS, const char *name);
Status u_openconfig_if_aggregate_interfaces_interface_aggregation_state_get(tk::GetBlock *get2cb,
                                                                            const char *name);

} // extern "C"
