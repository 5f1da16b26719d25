// Multicast snooping, for the whole switch and by VLAN.
#pragma once

#include "backend/proto/common.pb-c.h"
#include "backend/proto/mcast_snoop.pb-c.h"

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Families and operations.
#define MCAST_SNOOP_IGMP 1
#define MCAST_SNOOP_SET 1
#define MCAST_SNOOP_REMOVE 3

// Clear a record. That of a VLAN has no vlan_type: the caller links one that lives until it was sent.
void mcast_snoop_global_config_init(McastSnoopGlobalConfig *record, int32_t afi);
void mcast_snoop_vlan_config_init(McastSnoopVlanConfig *record, int32_t afi, uint32_t vlan);

// Put a setting into a record.
void mcast_snoop_global_mode_set(McastSnoopGlobalConfig *record, int32_t oper, int32_t mode);
void mcast_snoop_global_version_set(McastSnoopGlobalConfig *record, int32_t oper, uint32_t version);
void mcast_snoop_vlan_mode_set(McastSnoopVlanConfig *record, int32_t oper, int32_t mode);
void mcast_snoop_vlan_version_set(McastSnoopVlanConfig *record, int32_t oper, uint32_t version);

// Send a record and wait. 0: done; else it was not delivered or turned down. The flag is 0.
int mcast_snoop_global_config_apply(McastSnoopGlobalConfig *record, int32_t flag);
int mcast_snoop_vlan_config_apply(McastSnoopVlanConfig *record, int32_t flag);

// What snooping does in a VLAN; null when the switch does not answer. The flag is 0.
McastSnoopVlanOper *mcast_snoop_vlan_oper_fe_get(int32_t afi, uint32_t vlan, int32_t flag);
void mcast_snoop_vlan_oper_free(McastSnoopVlanOper *answer);

#ifdef __cplusplus
}
#endif
