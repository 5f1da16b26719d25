// Network policies that are announced to media endpoints. A policy is its keys; what changes are its ports.
#pragma once

#include "frame/call.h"

#include <cstdint>

extern "C" {

// The device's number for an application, such as "voice". kInternal for one that it does not know, with
// *code left as it is.
Status process_lldp_application_type(const char *text, std::int32_t *code);

Status u_lyn_openconfig_lldp_aug_med_edit(EDIT_ARGS);
Status u_lyn_openconfig_lldp_aug_network_policy_edit(EDIT_ARGS);
// Ports that go are removed in apply; those of a new or replaced policy are added in commit, those of a
// merged one in apply, unless the same edit removes some. kInternal when the device fails or turns it down.
Status u_lyn_openconfig_lldp_aug_tagged_edit(EDIT_ARGS, const char *application, const char *name,
                                             std::uint16_t vlan, std::uint8_t priority, std::uint8_t dscp);
Status u_lyn_openconfig_lldp_aug_priority_tagged_edit(EDIT_ARGS, const char *application, const char *name,
                                                      std::uint8_t priority, std::uint8_t dscp);
Status u_lyn_openconfig_lldp_aug_untagged_edit(EDIT_ARGS, const char *application, const char *name,
                                               std::uint8_t dscp);

} // extern "C"
