#include "acl/src/u_lyn-openconfig-acl-aug.h"

#include "frame/unit.h"

namespace {

#define ENTRY "/oc-acl:acl/oc-acl:acl-sets/oc-acl:acl-set/oc-acl:acl-entries/oc-acl:acl-entry"

constexpr frame::Row kRows[] = {
    EDIT(
        ENTRY "/oc-acl:ipv4/oc-acl:config/lyn-openconfig-acl-aug:internal-priority-marking",
        u_lyn_openconfig_acl_aug_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv4_config_internal_priority_marking_edit),
    EDIT(ENTRY "/oc-acl:ipv4/oc-acl:config/lyn-openconfig-acl-aug:dscp-marking",
         u_lyn_openconfig_acl_aug_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv4_config_dscp_marking_edit),
    EDIT(
        ENTRY "/oc-acl:ipv6/oc-acl:config/lyn-openconfig-acl-aug:internal-priority-marking",
        u_lyn_openconfig_acl_aug_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv6_config_internal_priority_marking_edit),
    EDIT(ENTRY "/oc-acl:ipv6/oc-acl:config/lyn-openconfig-acl-aug:dscp-marking",
         u_lyn_openconfig_acl_aug_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv6_config_dscp_marking_edit),
};

} // namespace

DEFINE_UNIT(lyn_openconfig_acl_aug, "lyn-openconfig-acl-aug", "2022-01-19", kRows);
