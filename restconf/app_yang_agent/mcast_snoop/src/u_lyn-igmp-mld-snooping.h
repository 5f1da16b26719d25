// IGMP snooping, for the whole switch and by VLAN.
#pragma once

#include "frame/call.h"

extern "C" {

Status u_lyn_igmp_mld_snooping_igmp_mld_snooping_edit(EDIT_ARGS);
Status u_lyn_igmp_mld_snooping_global_edit(EDIT_ARGS);
Status u_lyn_igmp_mld_snooping_igmp_edit(EDIT_ARGS);
// Mode and version go to the device in apply, those of a merge one by one, and again in rollback. kInternal
// when the device fails.
Status u_lyn_igmp_mld_snooping_config_edit(EDIT_ARGS);
Status u_lyn_igmp_mld_snooping_vlans_edit(EDIT_ARGS);
Status u_lyn_igmp_mld_snooping_vlan_edit(EDIT_ARGS, const char *vlanId);
Status u_lyn_igmp_mld_snooping_proto_edit(EDIT_ARGS, const char *vlanId);
Status u_lyn_igmp_mld_snooping_igmp_1_edit(EDIT_ARGS, const char *vlanId);
// The same for a VLAN; rollback sends nothing.
Status u_lyn_igmp_mld_snooping_config_1_edit(EDIT_ARGS, const char *vlanId);
// kInternal when the device does not answer.
Status u_lyn_igmp_mld_snooping_oper_get(tk::GetBlock *get2cb, const char *vlanId);

} // extern "C"
