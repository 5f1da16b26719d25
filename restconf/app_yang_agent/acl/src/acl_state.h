// State of access lists: from a filter or binding, as the device would answer with it, to the leaves of a
// `state` container.
#pragma once

#include "acl/src/acl_names.h"
#include "backend/proto/security.pb-c.h"

namespace acl {

// Returns the leaves that a request wants. The answer is the filter message of that code of a kind of list,
// or an acl_interf_binding.
using StateBuilder = Status (*)(GetBlock *get2cb, std::uint32_t type, const ProtobufCMessage *answer);

} // namespace acl

extern "C" {

Status restconf_make_sequence_node(tk::GetBlock *get2cb, std::uint32_t type, const ProtobufCMessage *answer);
Status restconf_make_ipv4_state_node(tk::GetBlock *get2cb, std::uint32_t type,
                                     const ProtobufCMessage *answer);
Status restconf_make_ipv6_state_node(tk::GetBlock *get2cb, std::uint32_t type,
                                     const ProtobufCMessage *answer);
Status restconf_make_l2_state_node(tk::GetBlock *get2cb, std::uint32_t type, const ProtobufCMessage *answer);
Status restconf_make_action_node(tk::GetBlock *get2cb, std::uint32_t type, const ProtobufCMessage *answer);
Status restconf_make_transport_node(tk::GetBlock *get2cb, std::uint32_t type, const ProtobufCMessage *answer);
Status restconf_make_interf_acl_set_node(tk::GetBlock *get2cb, std::uint32_t type,
                                         const ProtobufCMessage *answer);

// The builder's status; frees the answer.
Status restconf_process_get_response(tk::GetBlock *get2cb, std::uint32_t type, ProtobufCMessage *answer,
                                     acl::StateBuilder build);

// Queries about a filter and about what is bound to an interface (direction 1 ingress, 2 egress). The device
// has no request for them, so they build nothing. 0.
Status restconf_get_acl_filter(const char *name, std::uint32_t type, std::uint32_t sequence,
                               acl::StateBuilder build, tk::GetBlock *get2cb);
Status restconf_get_acl_interface_bindings(const char *interface, const char *type, std::uint32_t direction,
                                           acl::StateBuilder build, tk::GetBlock *get2cb);

} // extern "C"
