#include "lldp/u_lyn-openconfig-lldp-aug.h"

#include "frame/unit.h"

using namespace tk;

namespace {

#define MED "/oc-lldp:lldp/lyn-oc-lldp-aug:med"
#define POLICY MED "/lyn-oc-lldp-aug:network-policy"

constexpr frame::Row kRows[] = {
    EDIT(MED, u_lyn_openconfig_lldp_aug_med_edit),
    EDIT(POLICY, u_lyn_openconfig_lldp_aug_network_policy_edit),
    EDIT(POLICY "/lyn-oc-lldp-aug:tagged", u_lyn_openconfig_lldp_aug_tagged_edit, mergedCurrent),
    EDIT(POLICY "/lyn-oc-lldp-aug:priority-tagged", u_lyn_openconfig_lldp_aug_priority_tagged_edit,
         mergedCurrent),
    EDIT(POLICY "/lyn-oc-lldp-aug:untagged", u_lyn_openconfig_lldp_aug_untagged_edit, mergedCurrent),
};

} // namespace

DEFINE_UNIT(lyn_openconfig_lldp_aug, "lyn-openconfig-lldp-aug", "2021-12-20", kRows);
