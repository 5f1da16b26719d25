// The system tree: host name, name servers, NTP, log hosts, AAA and its servers.
//
// Functions without a comment are stubs. Keys stand behind the arguments of an edit, outermost first.
#pragma once

#include "frame/call.h"

#include <cstdint>

extern "C" {

// System core, u_openconfig-system.cc.

Status u_openconfig_system_system_edit(EDIT_ARGS);
// `hostname` goes to the device in apply. kInternal for a merge or a replacement that holds no name, for one
// of more than 255 bytes, and when the device cannot be reached.
Status u_openconfig_system_system_config_edit(EDIT_ARGS);

// Name servers, u_openconfig-system-dns.cc.

Status u_openconfig_system_system_dns_edit(EDIT_ARGS);
Status u_openconfig_system_system_dns_config_edit(EDIT_ARGS);
// The whole list, as one request; its entries are quiet from then on until one of them commits or rolls back.
// kInternal with the device's text when it refuses.
Status u_openconfig_system_system_dns_servers_edit(EDIT_ARGS);
// One server, unless the list around it went out. What is there already, or gone, counts as done; kInternal
// with the device's text for any other refusal.
Status u_openconfig_system_system_dns_servers_server_edit(EDIT_ARGS, const char *address);
Status u_openconfig_system_system_dns_servers_server_config_edit(EDIT_ARGS, const char *address);
Status u_openconfig_system_system_dns_host_entries_edit(EDIT_ARGS);
Status u_openconfig_system_system_dns_host_entries_host_entry_edit(EDIT_ARGS, const char *hostname);
Status u_openconfig_system_system_dns_host_entries_host_entry_config_edit(EDIT_ARGS, const char *hostname);

// NTP, u_openconfig-system-ntp.cc.

Status u_openconfig_system_system_ntp_edit(EDIT_ARGS);
// `enabled`, and with it the global switch. kNotSupported with a text in FIPS mode without Common Criteria;
// kInternal when the device refuses or cannot be reached.
Status u_openconfig_system_system_ntp_config_edit(EDIT_ARGS);
Status u_openconfig_system_system_ntp_ntp_keys_edit(EDIT_ARGS);
Status u_openconfig_system_system_ntp_ntp_keys_ntp_key_edit(EDIT_ARGS, std::uint16_t key_id);
Status u_openconfig_system_system_ntp_ntp_keys_ntp_key_config_edit(EDIT_ARGS, std::uint16_t key_id);
Status u_openconfig_system_system_ntp_servers_edit(EDIT_ARGS);
Status u_openconfig_system_system_ntp_servers_server_edit(EDIT_ARGS, const char *address);
// One association. Refusals as above; one that is there already counts as done.
Status u_openconfig_system_system_ntp_servers_server_config_edit(EDIT_ARGS, const char *address);

// Logging, u_openconfig-system-logging.cc.

Status u_openconfig_system_system_logging_edit(EDIT_ARGS);
Status u_openconfig_system_system_logging_console_edit(EDIT_ARGS);
Status u_openconfig_system_system_logging_console_config_edit(EDIT_ARGS);
Status u_openconfig_system_system_logging_console_selectors_edit(EDIT_ARGS);
Status u_openconfig_system_system_logging_console_selectors_selector_edit(EDIT_ARGS, const char *facility,
                                                                          const char *severity);
Status u_openconfig_system_system_logging_console_selectors_selector_config_edit(EDIT_ARGS,
                                                                                 const char *facility,
                                                                                 const char *severity);
Status u_openconfig_system_system_logging_console_selectors_selector_state_get(tk::GetBlock *get2cb,
                                                                               const char *facility,
                                                                               const char *severity);
// A replacement removes every log host from the device; those that stay are told again. kNotSupported in
// Common Criteria mode.
Status u_openconfig_system_system_logging_remote_servers_edit(EDIT_ARGS);
Status u_openconfig_system_system_logging_remote_servers_remote_server_edit(EDIT_ARGS, const char *host);
// One log host: host and port are one line of the device, so a change is a removal and an addition.
// kNotSupported in Common Criteria mode, kInternal when the device cannot be reached in apply.
Status u_openconfig_system_system_logging_remote_servers_remote_server_config_edit(EDIT_ARGS,
                                                                                   const char *host);
Status u_openconfig_system_system_logging_remote_servers_remote_server_selectors_edit(EDIT_ARGS,
                                                                                      const char *host);
Status u_openconfig_system_system_logging_remote_servers_remote_server_selectors_selector_edit(
    EDIT_ARGS, const char *host, const char *facility, const char *severity);
Status u_openconfig_system_system_logging_remote_servers_remote_server_selectors_selector_config_edit(
    EDIT_ARGS, const char *host, const char *facility, const char *severity);
Status u_openconfig_system_system_logging_remote_servers_remote_server_selectors_selector_state_get(
    tk::GetBlock *get2cb, const char *host, const char *facility, const char *severity);

// Removes the log hosts that the device has, one at a time, until it has none or no longer answers. Always 0.
Status process_logging_remote_servers_delete_all_edit();

// The keys of the syslog plug-in.
extern const char *const config_key_name[13];
// Its facilities, in the order of their numbers.
extern const std::uint32_t facility_list_size;
extern const char *const facility_code[24];

// AAA, u_openconfig-system-aaa.cc.

Status u_openconfig_system_system_aaa_edit(EDIT_ARGS);
Status u_openconfig_system_system_aaa_config_edit(EDIT_ARGS);
Status u_openconfig_system_system_aaa_authentication_edit(EDIT_ARGS);
// The list `authentication-method` as one text. kInternal for a delete and when the device cannot be reached
// in apply.
Status u_openconfig_system_system_aaa_authentication_config_edit(EDIT_ARGS);
// A delete removes the admin user.
Status u_openconfig_system_system_aaa_authentication_admin_user_edit(EDIT_ARGS);
// The admin user's password, clear or hashed. kInvalidValue with a text for both; kInternal when the device
// cannot be reached.
Status u_openconfig_system_system_aaa_authentication_admin_user_config_edit(EDIT_ARGS);
Status u_openconfig_system_system_aaa_authentication_users_edit(EDIT_ARGS);
Status u_openconfig_system_system_aaa_authentication_users_user_edit(EDIT_ARGS, const char *username);
// One local user. kInternal when the device refuses, with its text, or cannot be reached in apply.
Status u_openconfig_system_system_aaa_authentication_users_user_config_edit(EDIT_ARGS, const char *username);
// A delete takes the method and the first event away.
Status u_openconfig_system_system_aaa_authorization_edit(EDIT_ARGS);
// The first `authorization-method`. kInternal when the device cannot be reached in apply, as in the next two.
Status u_openconfig_system_system_aaa_authorization_config_edit(EDIT_ARGS);
// A delete takes the first event away.
Status u_openconfig_system_system_aaa_authorization_events_edit(EDIT_ARGS);
Status u_openconfig_system_system_aaa_authorization_events_event_edit(EDIT_ARGS, const char *event_type);
// One event type.
Status u_openconfig_system_system_aaa_authorization_events_event_config_edit(EDIT_ARGS,
                                                                             const char *event_type);
Status u_openconfig_system_system_aaa_authorization_events_event_state_get(tk::GetBlock *get2cb,
                                                                           const char *event_type);
Status u_openconfig_system_system_aaa_accounting_edit(EDIT_ARGS);
Status u_openconfig_system_system_aaa_accounting_config_edit(EDIT_ARGS);
Status u_openconfig_system_system_aaa_accounting_events_edit(EDIT_ARGS);
Status u_openconfig_system_system_aaa_accounting_events_event_edit(EDIT_ARGS, const char *event_type);
Status u_openconfig_system_system_aaa_accounting_events_event_config_edit(EDIT_ARGS, const char *event_type);
Status u_openconfig_system_system_aaa_accounting_events_event_state_get(tk::GetBlock *get2cb,
                                                                        const char *event_type);

// Server groups, u_openconfig-system-servers.cc. A group only selects one of the device's two server tables.

Status u_openconfig_system_system_aaa_server_groups_edit(EDIT_ARGS);
// A delete is passed down to `servers`.
Status u_openconfig_system_system_aaa_server_groups_server_group_edit(EDIT_ARGS, const char *name);
// kInvalidValue with a text for a new group of a name that selects no table; `retransmit-attempts` of the
// TACACS+ group, kInternal when the device refuses or cannot be reached.
Status u_openconfig_system_system_aaa_server_groups_server_group_config_edit(EDIT_ARGS, const char *name);
// A delete is passed down to the first server.
Status u_openconfig_system_system_aaa_server_groups_server_group_servers_edit(EDIT_ARGS, const char *name);
// A delete is passed down to both `config`s; the status is that of the RADIUS one.
Status u_openconfig_system_system_aaa_server_groups_server_group_servers_server_edit(EDIT_ARGS,
                                                                                     const char *name,
                                                                                     const char *address);
// Keeps name and timeout for the RADIUS `config` of the same edit.
Status u_openconfig_system_system_aaa_server_groups_server_group_servers_server_config_edit(
    EDIT_ARGS, const char *name, const char *address);
Status u_openconfig_system_system_aaa_server_groups_server_group_servers_server_state_get(
    tk::GetBlock *get2cb, const char *name, const char *address);
// A delete is passed down to `config`.
Status u_openconfig_system_system_aaa_server_groups_server_group_servers_server_tacacs_edit(
    EDIT_ARGS, const char *name, const char *address);
// One TACACS+ server. kNotSupported in Common Criteria mode unless that allows any server, but for a delete;
// kInternal when the device cannot be reached in apply.
Status u_openconfig_system_system_aaa_server_groups_server_group_servers_server_tacacs_config_edit(
    EDIT_ARGS, const char *name, const char *address);
// A delete is passed down to `config`.
Status u_openconfig_system_system_aaa_server_groups_server_group_servers_server_radius_edit(
    EDIT_ARGS, const char *name, const char *address);
// One RADIUS server, with what the server's own `config` left. kInternal when the device cannot be reached in
// apply.
Status u_openconfig_system_system_aaa_server_groups_server_group_servers_server_radius_config_edit(
    EDIT_ARGS, const char *name, const char *address);
Status u_openconfig_system_system_aaa_server_groups_server_group_servers_server_radius_state_counters_get(
    tk::GetBlock *get2cb, const char *name, const char *address);

} // extern "C"
