#include "xstp/u_lyn-openconfig-spanning-tree-aug.h"

#include "frame/rules.h"
#include "frame/stub.h"
#include "xstp/vlan_tree.h"

using namespace frame;
using namespace xstp;

USER_UNIT(lyn_openconfig_spanning_tree_aug);

STUB_EDIT(u_lyn_openconfig_spanning_tree_aug_stp_pvst_edit);
STUB_GET(u_lyn_openconfig_spanning_tree_aug_stp_pvst_vlan_state_get, const char *);

namespace {

constexpr Kind<StpConfig> kClassic{"lyn-openconfig-spanning-tree-aug", "pvst-priority", stp_config__init,
                                   ui_stp_config_apply, STP_ENABLED};

Status turnOn(const EditCall &call, const char *)
{
    return kClassic.sendConfig(call);
}

Status turnOff(const EditCall &call, const char *vlanId)
{
    return kClassic.sendRemoval(call, vlanId);
}

constexpr Rule<const char *> kVlanEdit[] = {
    {inApply, onDelete, turnOff},
};
constexpr Rule<const char *> kConfigEdit[] = {
    {inApply, onMerge | onCreate, turnOn},
};

} // namespace

extern "C" Status u_lyn_openconfig_spanning_tree_aug_stp_pvst_vlan_edit(EDIT_ARGS, const char *vlanId)
{
    return run(kVlanEdit, EDIT_CALL, vlanId);
}

extern "C" Status u_lyn_openconfig_spanning_tree_aug_stp_pvst_vlan_config_edit(EDIT_ARGS, const char *vlanId)
{
    return run(kConfigEdit, EDIT_CALL, vlanId);
}
