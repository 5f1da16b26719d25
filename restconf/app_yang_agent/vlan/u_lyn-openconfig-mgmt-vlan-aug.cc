#include "vlan/u_lyn-openconfig-mgmt-vlan-aug.h"

#include "frame/rules.h"
#include "frame/unit.h"
#include "vlan/vlan_request.h"

#include <cstdlib>

using namespace frame;

USER_UNIT(lyn_openconfig_mgmt_vlan_aug);

namespace {

constexpr const char *kModule = "lyn-openconfig-mgmt-vlan-aug";

const Value *findLeaf(const Value *container)
{
    const Value *leaf = container ? val_find_child(container, kModule, "management_vlan") : nullptr;
    return leaf && val_get_status(leaf) == kOk ? leaf : nullptr;
}

Status send(const EditCall &call, const char *vlanId, int operation)
{
    vlan::Request request;
    request.select(static_cast<std::uint32_t>(std::strtol(vlanId, nullptr, 10)));
    request.record.management_vlan_op = operation;
    CommonResp *answer = nullptr;
    if (ui_restconf_vlan_config_apply_send_cleanup(&request.record, &answer, call.scb, call.msg) == kOk)
        return kOk;
    if (logsErrors())
        log_error("\n ERROR: management_vlan: Send FAIL at line %d", __LINE__);
    locationLines(call);
    return kInternal;
}

Status sendNew(const EditCall &call, const char *, const char *vlanId)
{
    const Value *leaf = findLeaf(call.newval);
    return leaf ? send(call, vlanId, val_get_boolean(leaf) ? vlan::kAdd : vlan::kRemove) : kOk;
}

Status remove(const EditCall &call, const char *, const char *vlanId)
{
    return findLeaf(call.newval ? call.newval : call.curval) ? send(call, vlanId, vlan::kRemove) : kOk;
}

constexpr Rule<const char *, const char *> kEdit[] = {
    {inApply, onMerge | onCreate, sendNew},
    {inApply, onDelete, remove},
};
static_assert(noneHidden(kEdit));

} // namespace

extern "C" Status u_lyn_openconfig_mgmt_vlan_aug_management_vlan_container_edit(EDIT_ARGS,
                                                                                const char *instance,
                                                                                const char *vlanId)
{
    return run(kEdit, EDIT_CALL, instance, vlanId);
}
