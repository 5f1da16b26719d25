#include "acl/src/acl_state.h"

#include "backend/net_text.h"
#include "frame/leaves.h"
#include "frame/owned.h"

#include <type_traits>

namespace acl {

namespace {

constexpr std::uint32_t kRange = 5; // port operator

// A text that the answer doesn't have is no leaf.
Value *text(LeafMaker &leaf, const char *value)
{
    Value *made = value ? leaf.text(value) : nullptr;
    if (value && !made && logsDebug())
        log_debug("agt_make_leaf2 failed with reason : %d\n", leaf.status);
    return made;
}

Value *number(LeafMaker &leaf, std::uint32_t value)
{
    Value *made = leaf.number(value);
    if (!made && logsDebug())
        log_debug("agt_make_uint_leaf failed with reason : %d\n", leaf.status);
    return made;
}

Value *textOrNumber(LeafMaker &leaf, const char *name, std::uint32_t value)
{
    return name ? text(leaf, name) : number(leaf, value);
}

// Calls act with the record that a filter of this kind is.
template <class Act>
Status asFilter(std::uint32_t type, const ProtobufCMessage *answer, Act act)
{
    switch (type) {
    case kIpv4:
        return act(*reinterpret_cast<const Ipv4AclFilter *>(answer));
    case kIpv6:
        return act(*reinterpret_cast<const Ipv6AclFilter *>(answer));
    case kL2:
        return act(*reinterpret_cast<const MacAclFilter *>(answer));
    }
    return INTERNAL_ERROR();
}

template <class Filter>
Value *protocolOf(LeafMaker &leaf, const Filter &filter)
{
    return textOrNumber(leaf, convert_protocol_num_to_string(filter.protocol_number), filter.protocol_number);
}

Value *ethertypeOf(LeafMaker &leaf, const MacAclFilter &filter)
{
    const char *name = nullptr;
    get_l2_ethertype(filter.ethertype, &name);
    return textOrNumber(leaf, name, filter.ethertype);
}

Value *portOf(LeafMaker &leaf, std::uint32_t portOperator, std::uint32_t low, std::uint32_t high)
{
    if (portOperator != kRange)
        return number(leaf, low);
    char range[256];
    ksnprintf(range, sizeof range, "%d..%d", static_cast<int>(low), static_cast<int>(high));
    return text(leaf, range);
}

constexpr Leaf<std::uint32_t> kSequence[] = {
    {"sequence-id", [](LeafMaker &leaf, const std::uint32_t &sequence) { return number(leaf, sequence); }},
};
constexpr Leaf<Ipv4AclFilter> kIpv4Leaves[] = {
    {"source-address",
     [](LeafMaker &leaf, const Ipv4AclFilter &filter) { return text(leaf, filter.source_prefix); }},
    {"destination-address",
     [](LeafMaker &leaf, const Ipv4AclFilter &filter) { return text(leaf, filter.destination_prefix); }},
    {"protocol", protocolOf<Ipv4AclFilter>},
};
constexpr Leaf<Ipv6AclFilter> kIpv6Leaves[] = {
    {"source-address",
     [](LeafMaker &leaf, const Ipv6AclFilter &filter) { return text(leaf, filter.source_ip); }},
    {"destination-address",
     [](LeafMaker &leaf, const Ipv6AclFilter &filter) { return text(leaf, filter.destination_ip); }},
    {"protocol", protocolOf<Ipv6AclFilter>},
};
constexpr Leaf<MacAclFilter> kL2Leaves[] = {
    {"source-mac", [](LeafMaker &leaf, const MacAclFilter &filter) { return text(leaf, filter.source_mac); }},
    {"source-mac-mask",
     [](LeafMaker &leaf, const MacAclFilter &filter) { return text(leaf, filter.source_mask); }},
    {"destination-mac",
     [](LeafMaker &leaf, const MacAclFilter &filter) { return text(leaf, filter.destination_mac); }},
    {"destination-mac-mask",
     [](LeafMaker &leaf, const MacAclFilter &filter) { return text(leaf, filter.destination_mask); }},
    {"ethertype", ethertypeOf},
};
// Which comparison it is, is lost: the leaf has no words for it.
template <class Filter>
constexpr Leaf<Filter> kTransport[] = {
    {"source-port",
     [](LeafMaker &leaf, const Filter &filter) {
         return portOf(leaf, filter.source_port_operator, filter.source_low_port, filter.source_high_port);
     }},
    {"destination-port",
     [](LeafMaker &leaf, const Filter &filter) {
         return portOf(leaf, filter.destination_port_operator, filter.destination_low_port,
                       filter.destination_high_port);
     }},
};
constexpr Leaf<std::uint32_t> kAction[] = {
    {"forwarding-action",
     [](LeafMaker &leaf, const std::uint32_t &permit) {
         const char *name = nullptr;
         get_action(permit, &name);
         return text(leaf, name);
     }},
    {"log-action",
     [](LeafMaker &leaf, const std::uint32_t &) {
         return val_make_simval_obj(leaf.object, "LOG_NONE", &leaf.status);
     }},
};

struct BoundSet {
    const char *name, *type;
};
constexpr Leaf<BoundSet> kBoundSet[] = {
    {"set-name", [](LeafMaker &leaf, const BoundSet &set) { return text(leaf, set.name); }},
    {"type", [](LeafMaker &leaf, const BoundSet &set) { return text(leaf, set.type); }},
};

} // namespace

} // namespace acl

using namespace acl;

extern "C" {

Status restconf_make_sequence_node(GetBlock *get2cb, std::uint32_t type, const ProtobufCMessage *answer)
{
    return asFilter(type, answer, [get2cb](const auto &filter) {
        return returnLeaves(get2cb, kModule, filter.sequence, kSequence);
    });
}

Status restconf_make_ipv4_state_node(GetBlock *get2cb, std::uint32_t, const ProtobufCMessage *answer)
{
    return returnLeaves(get2cb, kModule, *reinterpret_cast<const Ipv4AclFilter *>(answer), kIpv4Leaves);
}

Status restconf_make_ipv6_state_node(GetBlock *get2cb, std::uint32_t, const ProtobufCMessage *answer)
{
    return returnLeaves(get2cb, kModule, *reinterpret_cast<const Ipv6AclFilter *>(answer), kIpv6Leaves);
}

Status restconf_make_l2_state_node(GetBlock *get2cb, std::uint32_t, const ProtobufCMessage *answer)
{
    return returnLeaves(get2cb, kModule, *reinterpret_cast<const MacAclFilter *>(answer), kL2Leaves);
}

Status restconf_make_action_node(GetBlock *get2cb, std::uint32_t type, const ProtobufCMessage *answer)
{
    return asFilter(type, answer, [get2cb](const auto &filter) {
        return returnLeaves(get2cb, kModule, filter.permit, kAction);
    });
}

Status restconf_make_transport_node(GetBlock *get2cb, std::uint32_t type, const ProtobufCMessage *answer)
{
    return asFilter(type, answer, [get2cb]<class Filter>(const Filter &filter) {
        if constexpr (std::is_same_v<Filter, MacAclFilter>)
            return kOk;
        else
            return returnLeaves(get2cb, kModule, filter, kTransport<Filter>);
    });
}

Status restconf_make_interf_acl_set_node(GetBlock *get2cb, std::uint32_t type, const ProtobufCMessage *answer)
{
    const char *const name = type == kIpv4 ? "ACL_IPV4" : type == kIpv6 ? "ACL_IPV6" : "ACL_L2";
    const BoundSet set{reinterpret_cast<const AclInterfBinding *>(answer)->acl_name, name};
    return returnLeaves(get2cb, kModule, set, kBoundSet);
}

Status restconf_process_get_response(GetBlock *get2cb, std::uint32_t type, ProtobufCMessage *answer,
                                     StateBuilder build)
{
    const Owned<ProtobufCMessage, protobuf_c_message_free_unpacked> owner(answer);
    return build(get2cb, type, answer);
}

// There is no message code yet to send these with.

Status restconf_get_acl_filter(const char *, std::uint32_t, std::uint32_t, StateBuilder, GetBlock *)
{
    [[maybe_unused]] const AclGetRequest request = ACL_GET_REQUEST__INIT;
    return kOk;
}

Status restconf_get_acl_interface_bindings(const char *interface, const char *, std::uint32_t direction,
                                           StateBuilder, GetBlock *)
{
    [[maybe_unused]] AclGetRequest request = ACL_GET_REQUEST__INIT;
    request.interface = const_cast<char *>(interface); // records have no const texts
    request.direction = direction;
    return kOk;
}

} // extern "C"
