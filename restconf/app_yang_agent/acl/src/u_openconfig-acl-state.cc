// State of access lists. The device has no query for it, so each container reads back empty.
#include "acl/src/acl_state.h"
#include "acl/src/u_openconfig-acl.h"
#include "frame/leaves.h"
#include "frame/stub.h"

#include <cstdlib>

using namespace acl;

namespace {

constexpr std::uint32_t kIngress = 1, kEgress = 2;

Status filterState(GetBlock *get2cb, const char *name, const char *type, const char *sequence,
                   StateBuilder build)
{
    if (const Status status = beginContainer(get2cb))
        return status;
    const auto number = static_cast<std::uint32_t>(std::strtoul(sequence, nullptr, 10));
    return restconf_get_acl_filter(name, get_acl_type(type), number, build, get2cb);
}

Status bindingState(GetBlock *get2cb, const char *interface, const char *type, std::uint32_t direction)
{
    if (const Status status = beginContainer(get2cb))
        return status;
    return restconf_get_acl_interface_bindings(interface, type, direction, restconf_make_interf_acl_set_node,
                                               get2cb);
}

} // namespace

#define FILTER_STATE(function, build)                                                                        \
    extern "C" Status function(tk::GetBlock *get2cb, const char *name, const char *type,                     \
                               const char *sequence)                                                         \
    {                                                                                                        \
        return filterState(get2cb, name, type, sequence, build);                                             \
    }                                                                                                        \
    static_assert(true)
#define BINDING_STATE(function, direction)                                                                   \
    extern "C" Status function(tk::GetBlock *get2cb, const char *interface, const char *, const char *type)  \
    {                                                                                                        \
        return bindingState(get2cb, interface, type, direction);                                             \
    }                                                                                                        \
    static_assert(true)

#define FILTER_KEYS const char *, const char *, const char *
#define RULE_KEYS const char *, const char *, const char *, const char *

STUB_GET(u_openconfig_acl_acl_state_get);
STUB_GET(u_openconfig_acl_acl_acl_sets_acl_set_state_get, const char *, const char *);
FILTER_STATE(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_state_get,
             restconf_make_sequence_node);
FILTER_STATE(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_l2_state_get,
             restconf_make_l2_state_node);
FILTER_STATE(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv4_state_get,
             restconf_make_ipv4_state_node);
FILTER_STATE(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_ipv6_state_get,
             restconf_make_ipv6_state_node);
FILTER_STATE(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_transport_state_get,
             restconf_make_transport_node);
STUB_GET(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_input_interface_state_get, FILTER_KEYS);
STUB_GET(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_input_interface_interface_ref_state_get,
         FILTER_KEYS);
FILTER_STATE(u_openconfig_acl_acl_acl_sets_acl_set_acl_entries_acl_entry_actions_state_get,
             restconf_make_action_node);
STUB_GET(u_openconfig_acl_acl_interfaces_interface_state_get, const char *);
STUB_GET(u_openconfig_acl_acl_interfaces_interface_interface_ref_state_get, const char *);
BINDING_STATE(u_openconfig_acl_acl_interfaces_interface_ingress_acl_sets_ingress_acl_set_state_get, kIngress);
STUB_GET_LIST(u_openconfig_acl_acl_interfaces_interface_ingress_acl_sets_ingress_acl_set_acl_entries_get,
              FILTER_KEYS);
STUB_GET_LIST(
    u_openconfig_acl_acl_interfaces_interface_ingress_acl_sets_ingress_acl_set_acl_entries_acl_entry_get,
    FILTER_KEYS, OwnKey<std::uint32_t>);
STUB_GET(
    u_openconfig_acl_acl_interfaces_interface_ingress_acl_sets_ingress_acl_set_acl_entries_acl_entry_state_get,
    RULE_KEYS);
BINDING_STATE(u_openconfig_acl_acl_interfaces_interface_egress_acl_sets_egress_acl_set_state_get, kEgress);
STUB_GET_LIST(u_openconfig_acl_acl_interfaces_interface_egress_acl_sets_egress_acl_set_acl_entries_get,
              FILTER_KEYS);
STUB_GET_LIST(
    u_openconfig_acl_acl_interfaces_interface_egress_acl_sets_egress_acl_set_acl_entries_acl_entry_get,
    FILTER_KEYS, OwnKey<std::uint32_t>);
STUB_GET(
    u_openconfig_acl_acl_interfaces_interface_egress_acl_sets_egress_acl_set_acl_entries_acl_entry_state_get,
    RULE_KEYS);
