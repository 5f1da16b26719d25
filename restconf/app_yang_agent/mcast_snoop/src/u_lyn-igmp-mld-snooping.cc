#include "mcast_snoop/src/u_lyn-igmp-mld-snooping.h"

#include "frame/leaves.h"
#include "frame/owned.h"
#include "frame/rules.h"
#include "frame/stub.h"
#include "mcast_snoop/src/mcast_snoop_yang_agent.h"
#include "vlan/vlan_request.h"

#include <cstdlib>

using namespace frame;

USER_UNIT(lyn_igmp_mld_snooping);

STUB_EDIT(u_lyn_igmp_mld_snooping_igmp_mld_snooping_edit);
STUB_EDIT(u_lyn_igmp_mld_snooping_global_edit);
STUB_EDIT(u_lyn_igmp_mld_snooping_igmp_edit);
STUB_EDIT(u_lyn_igmp_mld_snooping_vlans_edit);
STUB_EDIT(u_lyn_igmp_mld_snooping_vlan_edit, const char *);
STUB_EDIT(u_lyn_igmp_mld_snooping_proto_edit, const char *);
STUB_EDIT(u_lyn_igmp_mld_snooping_igmp_1_edit, const char *);

namespace {

constexpr const char *kModule = "lyn-igmp-mld-snooping";

std::uint32_t vlanOf(const char *text)
{
    return static_cast<std::uint32_t>(std::strtol(text, nullptr, 10));
}

// Sends what a node says, in a record of its own: of the whole switch, or of a VLAN.

Status sendNode(bool isLeaf, EditOp op, Value *curval, Value *newval)
{
    McastSnoopGlobalConfig record;
    mcast_snoop_global_config_init(&record, MCAST_SNOOP_IGMP);
    return msnoop_rconf_parse_global_params(isLeaf, op, curval, newval, &record);
}

Status sendNode(bool isLeaf, EditOp op, Value *curval, Value *newval, const char *vlanId)
{
    McastSnoopVlanConfig record;
    VlanType type;
    mcast_snoop_vlan_config_init(&record, MCAST_SNOOP_IGMP, vlanOf(vlanId));
    vlan_init_type_proto(&type, record.vlan_id);
    record.vlan_type = &type;
    return msnoop_rconf_parse_vlan_params(isLeaf, op, curval, newval, &record);
}

// One request a leaf; the last one's status is the result.
template <class... Keys>
Status sendLeaves(const EditCall &call, Keys... keys)
{
    Status status = kOk;
    walkChildEdits(call, [&](const EditedLeaf &leaf) {
        status = sendNode(true, leaf.op, leaf.curval, leaf.newval, keys...);
        return kOk;
    });
    return status;
}

template <class... Keys>
Status sendConfig(const EditCall &call, Keys... keys)
{
    return sendNode(false, call.op, call.curval, call.newval, keys...);
}

constexpr Rule<> kConfigEdit[] = {
    // when, on, act
    {inApply, onMerge, sendLeaves},
    {inApply, onReplace | onCreate | onDelete, sendConfig},
    {inRollback, anyOp, sendConfig},
};
static_assert(noneHidden(kConfigEdit));

constexpr Rule<const char *> kVlanConfigEdit[] = {
    {inApply, onMerge, sendLeaves},
    {inApply, onReplace | onCreate | onDelete, sendConfig},
};
static_assert(noneHidden(kVlanConfigEdit));

Value *unlessZero(LeafMaker &leaf, std::uint32_t value)
{
    return value ? leaf.number(value) : nullptr;
}

constexpr Leaf<McastSnoopVlanOper> kOper[] = {
    {"querier-mode", [](LeafMaker &leaf, const auto &oper) { return unlessZero(leaf, oper.oper_mode); }},
    {"version", [](LeafMaker &leaf, const auto &oper) { return unlessZero(leaf, oper.oper_version); }},
};

} // namespace

extern "C" {

Status u_lyn_igmp_mld_snooping_config_edit(EDIT_ARGS)
{
    return run(kConfigEdit, EDIT_CALL);
}

Status u_lyn_igmp_mld_snooping_config_1_edit(EDIT_ARGS, const char *vlanId)
{
    return run(kVlanConfigEdit, EDIT_CALL, vlanId);
}

Status u_lyn_igmp_mld_snooping_oper_get(GetBlock *get2cb, const char *vlanId)
{
    if (const Status status = beginContainer(get2cb))
        return status;
    const Owned<McastSnoopVlanOper, mcast_snoop_vlan_oper_free> answer(
        mcast_snoop_vlan_oper_fe_get(MCAST_SNOOP_IGMP, vlanOf(vlanId), 0));
    if (!answer) {
        if (logsErrors())
            log_error("u_lyn_igmp_mld_snooping_oper_get failed \n");
        return kInternal;
    }
    const Status status = returnLeaves(get2cb, kModule, *answer, kOper);
    if (status && logsErrors())
        log_error("%s::%d: agt_make_uint_leaf2 failed with reason : %d\n", __func__, __LINE__, status);
    return status;
}

} // extern "C"
