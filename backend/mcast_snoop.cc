#include "backend/mcast_snoop.h"

#include "backend/call.h"

namespace {

template <class Record>
void setMode(Record &record, int32_t oper, int32_t mode)
{
    record.mode_op = oper;
    record.has_mode = 1;
    record.mode = mode;
}

template <class Record>
void setVersion(Record &record, int32_t oper, uint32_t version)
{
    record.version_op = oper;
    record.has_version = 1;
    record.version = version;
}

} // namespace

void mcast_snoop_global_config_init(McastSnoopGlobalConfig *record, int32_t afi)
{
    mcast_snoop_global_config__init(record);
    record->afi = afi;
}

void mcast_snoop_vlan_config_init(McastSnoopVlanConfig *record, int32_t afi, uint32_t vlan)
{
    mcast_snoop_vlan_config__init(record);
    record->afi = afi;
    record->vlan_id = vlan;
}

void mcast_snoop_global_mode_set(McastSnoopGlobalConfig *record, int32_t oper, int32_t mode)
{
    setMode(*record, oper, mode);
}

void mcast_snoop_global_version_set(McastSnoopGlobalConfig *record, int32_t oper, uint32_t version)
{
    setVersion(*record, oper, version);
}

void mcast_snoop_vlan_mode_set(McastSnoopVlanConfig *record, int32_t oper, int32_t mode)
{
    setMode(*record, oper, mode);
}

void mcast_snoop_vlan_version_set(McastSnoopVlanConfig *record, int32_t oper, uint32_t version)
{
    setVersion(*record, oper, version);
}

int mcast_snoop_global_config_apply(McastSnoopGlobalConfig *record, int32_t)
{
    return backend::applyAndRead("mcast_snoop_global_config_apply", record, nullptr);
}

int mcast_snoop_vlan_config_apply(McastSnoopVlanConfig *record, int32_t)
{
    return backend::applyAndRead("mcast_snoop_vlan_config_apply", record, nullptr);
}

McastSnoopVlanOper *mcast_snoop_vlan_oper_fe_get(int32_t afi, uint32_t vlan, int32_t)
{
    McastSnoopVlanOperReq request = MCAST_SNOOP_VLAN_OPER_REQ__INIT;
    request.afi = afi;
    request.vlan_id = vlan;
    return backend::ask<McastSnoopVlanOper>("mcast_snoop_vlan_oper_fe_get", request,
                                            mcast_snoop_vlan_oper__descriptor);
}

void mcast_snoop_vlan_oper_free(McastSnoopVlanOper *answer)
{
    mcast_snoop_vlan_oper__free_unpacked(answer, nullptr);
}
