#include "acl/src/u_lyn-openconfig-acl-aug.h"

#include "acl/src/limited_edit.h"

using namespace frame;

USER_UNIT(lyn_openconfig_acl_aug);

#define ENTRY_KEYS const char *, const char *, std::uint32_t

LIMITED_EDIT(
    u_lyn_openconfig_acl_aug_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv4_config_internal_priority_marking_edit,
    onMerge | onReplace, ENTRY_KEYS);
LIMITED_EDIT(
    u_lyn_openconfig_acl_aug_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv4_config_dscp_marking_edit,
    onMerge | onReplace, ENTRY_KEYS);
LIMITED_EDIT(
    u_lyn_openconfig_acl_aug_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv6_config_internal_priority_marking_edit,
    onMerge | onReplace, ENTRY_KEYS);
LIMITED_EDIT(
    u_lyn_openconfig_acl_aug_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv6_config_dscp_marking_edit,
    onMerge | onReplace, ENTRY_KEYS);
