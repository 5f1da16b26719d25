// Access lists: their filters, and the interfaces that they are bound to. The device reports no state of
// them.
#pragma once

#include "frame/unit.h"

#include <cstdint>

extern "C" {

// Where nothing else is said: some operations give kNotSupported in apply, everything else passes.
Status u_openconfig_acl_acl_edit(EDIT_ARGS);
Status u_openconfig_acl_acl_config_edit(EDIT_ARGS);
Status u_openconfig_acl_acl_state_get(tk::GetBlock *get2cb);
Status u_openconfig_acl_acl_acl_sets_edit(EDIT_ARGS);
// A deletion removes the list in apply; rollback makes it and its filters again.
Status u_openconfig_acl_acl_acl_sets_acl_set_edit(EDIT_ARGS, const char *name, const char *type);
// A creation makes the list in apply; rollback removes it.
Status u_openconfig_acl_acl_acl_sets_acl_set_config_edit(EDIT_ARGS, const char *name, const char *type);
Status u_openconfig_acl_acl_acl_sets_acl_set_state_get(tk::GetBlock *get2cb, const char *name,
                                                       const char *type);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_edit(EDIT_ARGS, const char *name, const char *type);
// An entry goes to the device as a whole: its filter comes, goes or is replaced in apply. rollback the other
// way round.
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_edit(EDIT_ARGS, const char *name,
                                                                        const char *type,
                                                                        std::uint32_t sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_config_edit(EDIT_ARGS, const char *name,
                                                                               const char *type,
                                                                               std::uint32_t sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_state_get(tk::GetBlock *get2cb,
                                                                             const char *name,
                                                                             const char *type,
                                                                             const char *sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_l2_edit(EDIT_ARGS, const char *name,
                                                                           const char *type,
                                                                           std::uint32_t sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_l2_config_edit(EDIT_ARGS, const char *name,
                                                                                  const char *type,
                                                                                  std::uint32_t sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_l2_state_get(tk::GetBlock *get2cb,
                                                                                const char *name,
                                                                                const char *type,
                                                                                const char *sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv4_edit(EDIT_ARGS, const char *name,
                                                                             const char *type,
                                                                             std::uint32_t sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv4_config_edit(EDIT_ARGS,
                                                                                    const char *name,
                                                                                    const char *type,
                                                                                    std::uint32_t sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv4_state_get(tk::GetBlock *get2cb,
                                                                                  const char *name,
                                                                                  const char *type,
                                                                                  const char *sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv6_edit(EDIT_ARGS, const char *name,
                                                                             const char *type,
                                                                             std::uint32_t sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv6_config_edit(EDIT_ARGS,
                                                                                    const char *name,
                                                                                    const char *type,
                                                                                    std::uint32_t sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv6_state_get(tk::GetBlock *get2cb,
                                                                                  const char *name,
                                                                                  const char *type,
                                                                                  const char *sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_transport_edit(EDIT_ARGS, const char *name,
                                                                                  const char *type,
                                                                                  std::uint32_t sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_transport_config_edit(
    EDIT_ARGS, const char *name, const char *type, std::uint32_t sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_transport_state_get(tk::GetBlock *get2cb,
                                                                                       const char *name,
                                                                                       const char *type,
                                                                                       const char *sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_input_interface_edit(
    EDIT_ARGS, const char *name, const char *type, std::uint32_t sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_input_interface_config_edit(
    EDIT_ARGS, const char *name, const char *type, std::uint32_t sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_input_interface_state_get(
    tk::GetBlock *get2cb, const char *name, const char *type, const char *sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_input_interface_interface_ref_edit(
    EDIT_ARGS, const char *name, const char *type, std::uint32_t sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_input_interface_interface_ref_config_edit(
    EDIT_ARGS, const char *name, const char *type, std::uint32_t sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_input_interface_interface_ref_state_get(
    tk::GetBlock *get2cb, const char *name, const char *type, const char *sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_actions_edit(EDIT_ARGS, const char *name,
                                                                                const char *type,
                                                                                std::uint32_t sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_actions_config_edit(
    EDIT_ARGS, const char *name, const char *type, std::uint32_t sequence);
Status u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_actions_state_get(tk::GetBlock *get2cb,
                                                                                     const char *name,
                                                                                     const char *type,
                                                                                     const char *sequence);
Status u_openconfig_acl_acl_interfaces_edit(EDIT_ARGS);
// A deletion takes all lists off the interface in apply; rollback puts them back, as after a replacement.
Status u_openconfig_acl_acl_interfaces_interface_edit(EDIT_ARGS, const char *interface);
Status u_openconfig_acl_acl_interfaces_interface_config_edit(EDIT_ARGS, const char *interface);
Status u_openconfig_acl_acl_interfaces_interface_state_get(tk::GetBlock *get2cb, const char *interface);
Status u_openconfig_acl_acl_interfaces_interface_interface_ref_edit(EDIT_ARGS, const char *interface);
Status u_openconfig_acl_acl_interfaces_interface_interface_ref_config_edit(EDIT_ARGS, const char *interface);
Status u_openconfig_acl_acl_interfaces_interface_interface_ref_state_get(tk::GetBlock *get2cb,
                                                                         const char *interface);
Status u_openconfig_acl_acl_interfaces_interface_ingress_acl_sets_edit(EDIT_ARGS, const char *interface);
// A deletion takes the list off the interface in apply; rollback puts it back. validate looks at the key.
Status u_openconfig_acl_acl_interfaces_interface_ingress_acl_sets_ingress_acl_set_edit(EDIT_ARGS,
                                                                                       const char *interface,
                                                                                       const char *name,
                                                                                       const char *type);
// A creation or replacement puts the list on the interface in apply; rollback of a creation takes it off.
// validate looks at the key.
Status u_openconfig_acl_acl_interfaces_interface_ingress_acl_sets_ingress_acl_set_config_edit(
    EDIT_ARGS, const char *interface, const char *name, const char *type);
Status u_openconfig_acl_acl_interfaces_interface_ingress_acl_sets_ingress_acl_set_state_get(
    tk::GetBlock *get2cb, const char *interface, const char *name, const char *type);
Status u_openconfig_acl_acl_interfaces_interface_ingress_acl_sets_ingress_acl_set_acl_entries_get(
    tk::GetBlock *get2cb, const char *interface, const char *name, const char *type);
Status u_openconfig_acl_acl_interfaces_interface_ingress_acl_sets_ingress_acl_set_acl_entries_acl_entry_get(
    tk::GetBlock *get2cb, const char *interface, const char *name, const char *type,
    frame::OwnKey<std::uint32_t> sequence);
Status
u_openconfig_acl_acl_interfaces_interface_ingress_acl_sets_ingress_acl_set_acl_entries_acl_entry_state_get(
    tk::GetBlock *get2cb, const char *interface, const char *name, const char *type, const char *sequence);
Status u_openconfig_acl_acl_interfaces_interface_egress_acl_sets_edit(EDIT_ARGS, const char *interface);
// As for ingress; a MAC list is kNotSupported.
Status u_openconfig_acl_acl_interfaces_interface_egress_acl_sets_egress_acl_set_edit(EDIT_ARGS,
                                                                                     const char *interface,
                                                                                     const char *name,
                                                                                     const char *type);
Status u_openconfig_acl_acl_interfaces_interface_egress_acl_sets_egress_acl_set_config_edit(
    EDIT_ARGS, const char *interface, const char *name, const char *type);
Status u_openconfig_acl_acl_interfaces_interface_egress_acl_sets_egress_acl_set_state_get(
    tk::GetBlock *get2cb, const char *interface, const char *name, const char *type);
Status u_openconfig_acl_acl_interfaces_interface_egress_acl_sets_egress_acl_set_acl_entries_get(
    tk::GetBlock *get2cb, const char *interface, const char *name, const char *type);
Status u_openconfig_acl_acl_interfaces_interface_egress_acl_sets_egress_acl_set_acl_entries_acl_entry_get(
    tk::GetBlock *get2cb, const char *interface, const char *name, const char *type,
    frame::OwnKey<std::uint32_t> sequence);
Status
u_openconfig_acl_acl_interfaces_interface_egress_acl_sets_egress_acl_set_acl_entries_acl_entry_state_get(
    tk::GetBlock *get2cb, const char *interface, const char *name, const char *type, const char *sequence);

} // extern "C"
