// Marking by a filter: told to the device with the whole entry, so a change by itself is kNotSupported in
// apply.
#pragma once

#include "frame/unit.h"

#include <cstdint>

extern "C" {

Status
u_lyn_openconfig_acl_aug_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv4_config_internal_priority_marking_edit(
    EDIT_ARGS, const char *name, const char *type, std::uint32_t sequence);
Status u_lyn_openconfig_acl_aug_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv4_config_dscp_marking_edit(
    EDIT_ARGS, const char *name, const char *type, std::uint32_t sequence);
Status
u_lyn_openconfig_acl_aug_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv6_config_internal_priority_marking_edit(
    EDIT_ARGS, const char *name, const char *type, std::uint32_t sequence);
Status u_lyn_openconfig_acl_aug_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv6_config_dscp_marking_edit(
    EDIT_ARGS, const char *name, const char *type, std::uint32_t sequence);

} // extern "C"
