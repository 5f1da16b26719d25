// Access lists on their way to the device: the definition of a list, and one filter for each of its entries.
#pragma once

#include "acl/src/acl_names.h"
#include "backend/security.h"
#include "frame/security.h"

namespace acl {

// A leaf or container without which nothing can be sent.
inline constexpr Status kMissing = kMissingParameter;

// Operations of a message.
inline constexpr std::uint32_t kAdd = 1, kRemove = 3;
// app_err of an answer that turns a request down; any other is none.
inline constexpr std::int32_t kRefused = 2;

inline constexpr const char *kAugModule = "lyn-openconfig-acl-aug";

// Sends a message of this family and waits. The result is the handler's; one that is not 0 is logged with the
// caller's place.
int exchange(ProtobufCMessage &message, std::uint32_t type, std::uint32_t messageCode, SecurityAnswer &answer,
             const char *function = __builtin_FUNCTION(), int line = __builtin_LINE());

// The leaf that makes an IPv4 list a standard one. False without it.
bool isStandard(const Value *set);

// Requests for the entries of a kind of list.
struct Kind {
    std::uint32_t type;
    // One filter out of one `acl-entry`: added by a create, removed by any other operation.
    Status (*filter)(EditOp op, const char *name, const Value *entry);
    // The definition of an `acl-set` and a filter for each of its entries, in their order. Only a create does
    // anything. The first failure ends it.
    Status (*wholeList)(const char *name, const char *type, const Value *set, EditOp op);
};
// Null for a kind that the device does not have.
const Kind *findKind(const char *type);

} // namespace acl

extern "C" {

// Makes (create) or removes (delete) a list; any other operation sends nothing. `standard` counts for IPv4.
// kInternal when it cannot be delivered or is refused.
Status restconf_acl_process_create_delete_request(const char *name, const char *type, tk::EditOp op,
                                                  int standard);
// The name and the type that the `config` of a set holds. An argument is left alone when there is none.
Status restconf_acl_parse_acl_params(const tk::Value *config, const char **name, const char **type);
// Removes the list that the value's keys name.
Status acl_delete_by_key(const tk::Value *set);
// The same for each set below `acl-sets`, until one fails.
Status restconf_remove_all_acls_in_acl_sets(const tk::Value *sets);

// See acl::Kind.
Status restconf_ipv4acl_filter_config(tk::EditOp op, const char *name, const tk::Value *entry);
Status restconf_acl_ipv6_configure_acl_entry(tk::EditOp op, const char *name, const tk::Value *entry);
Status restconf_l2acl_filter_config(tk::EditOp op, const char *name, const tk::Value *entry);
Status restconf_ipv4_config_acl_def_and_filters(const char *name, const char *type, const tk::Value *set,
                                                tk::EditOp op);
Status restconf_ipv6_config_acl_def_and_filters(const char *name, const char *type, const tk::Value *set,
                                                tk::EditOp op);
Status restconf_l2_config_acl_def_and_filters(const char *name, const char *type, const tk::Value *set,
                                              tk::EditOp op);

// Steps of a filter: each fills its part out of the entry. kMissingParameter without what it needs.
Status restconf_acl_ipv4_parse_sequence_params(const tk::Value *entry, Ipv4AclFilter *filter);
Status restconf_acl_ipv4_parse_filter_params(const tk::Value *entry, Ipv4AclFilter *filter);
// Only for TCP, UDP and protocols without a name here. Needs `protocol_number`.
Status restconf_acl_ipv4_parse_port_params(const tk::Value *entry, Ipv4AclFilter *filter);
Status restconf_acl_ipv4_parse_action_params(const tk::Value *entry, Ipv4AclFilter *filter);
Status restconf_acl_ipv6_parse_sequence_params(const tk::Value *entry, Ipv6AclFilter *filter);
Status restconf_acl_ipv6_parse_filter_params(const tk::Value *entry, Ipv6AclFilter *filter);
Status restconf_acl_parse_port_params(const tk::Value *entry, Ipv6AclFilter *filter);
Status restconf_acl_ipv6_parse_action_params(const tk::Value *entry, Ipv6AclFilter *filter);
Status restconf_acl_mac_parse_sequence_params(const tk::Value *entry, MacAclFilter *filter);
Status restconf_acl_mac_parse_filter_params(const tk::Value *entry, MacAclFilter *filter);
Status restconf_acl_mac_parse_action_params(const tk::Value *entry, MacAclFilter *filter);

// "80", "100..200", "gt 1023". The high port is written for a range only.
Status restconf_acl_parse_port(const char *text, std::uint32_t *low, std::uint32_t *high,
                               std::uint32_t *portOperator);

// Send one filter. kInternal when it cannot be delivered or is refused.
Status restconf_acl_ipv4_filter_apply(Ipv4AclFilter *filter);
Status restconf_acl_ipv6_filter_apply(Ipv6AclFilter *filter);
Status restconf_acl_mac_filter_apply(MacAclFilter *filter);

// What an answer means; frees it. kInternal for none and for a refusal, whose text goes to the log only.
Status restconf_process_acl_config_common_response(CommonResp *answer);

} // extern "C"
