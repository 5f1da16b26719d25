// From an `acl-entry` to the filter of its kind of list.
#include "acl/src/acl_request.h"

#include <cstdlib>
#include <cstring>

namespace acl {

namespace {

enum PortOperator : std::uint32_t { equal = 1, notEqual = 2, above = 3, below = 4, range = 5 };

const Value *configIn(const Value *entry, const char *container)
{
    return child(child(entry, container), "config");
}

bool is(const Value *leaf, const char *name)
{
    return leaf && xml_strcmp(val_get_string(leaf), name) == 0;
}

// "any" matches whatever the field holds, as no text does.
char *textOf(const Value *leaf)
{
    return is(leaf, "any") ? nullptr : const_cast<char *>(val_get_string(leaf));
}

Status noContainer(const char *name)
{
    if (logsErrors())
        log_error("%s container not found \n", name);
    return kMissing;
}

Status missing(const char *what, const char *function = __builtin_FUNCTION())
{
    if (logsErrors())
        log_error("[%s] Missing %s", function, what);
    return kMissing;
}

// One filter: the steps in their order, and nothing is sent after one that failed.
template <class Filter>
using Step = Status (*)(const Value *entry, Filter *filter);

template <class Filter, std::size_t N>
Status configure(EditOp op, const char *name, const Value *entry, Filter filter,
                 const Step<Filter> (&steps)[N], Status (*send)(Filter *))
{
    filter.acl_name = const_cast<char *>(name);
    filter.operation = op == create ? kAdd : kRemove;
    for (const Step<Filter> step : steps)
        if (const Status status = step(entry, &filter))
            return status;
    return send(&filter);
}

template <class Filter>
Status send(Filter &filter, std::uint32_t type, std::uint32_t messageCode,
            const char *function = __builtin_FUNCTION(), int line = __builtin_LINE())
{
    SecurityAnswer answer;
    if (exchange(filter.base, type, messageCode, answer, function, line))
        return kInternal;
    return restconf_process_acl_config_common_response(reinterpret_cast<CommonResp *>(answer.release()));
}

template <class Filter>
bool takeSequence(const Value *entry, Filter &filter)
{
    const Value *sequence = child(child(entry, "config"), "sequence-id");
    if (!sequence)
        return false;
    filter.sequence = static_cast<std::uint32_t>(val_get_uint64(sequence));
    filter.has_sequence = 1;
    return true;
}

// Fields of an IP header. A leaf of another base type is passed over.
template <class Filter>
struct IpField {
    const char *leaf;
    BaseType type;
    void (*take)(Filter &filter, const Value *leaf);
};
template <class Filter>
constexpr IpField<Filter> kIpFields[] = {
    {"source-address", btString, [](Filter &filter, const Value *leaf) { filter.source_ip = textOf(leaf); }},
    {"destination-address", btString,
     [](Filter &filter, const Value *leaf) { filter.destination_ip = textOf(leaf); }},
    {"protocol", btUint8,
     [](Filter &filter, const Value *leaf) {
         filter.protocol_number = static_cast<std::uint32_t>(val_get_uint64(leaf));
     }},
    {"protocol", btIdentityref,
     [](Filter &filter, const Value *leaf) {
         set_protocol_type(val_get_string(leaf), &filter.protocol_number);
     }},
    {"dscp", btUint8,
     [](Filter &filter, const Value *leaf) {
         filter.dscp = static_cast<std::uint32_t>(val_get_uint64(leaf));
         filter.has_dscp = 1;
     }},
};

void takeMarking(const Value *config, const char *leaf, std::uint32_t &marking, protobuf_c_boolean &isGiven)
{
    const Value *value = val_find_child(config, kAugModule, leaf);
    if (!value)
        return;
    marking = static_cast<std::uint32_t>(static_cast<std::int8_t>(val_get_int64(value)));
    isGiven = 1;
}

template <class Filter>
void takeIpFields(const Value *config, Filter &filter)
{
    filter.has_protocol_number = 1; // 0: any protocol
    for (const auto &field : kIpFields<Filter>)
        if (const Value *leaf = child(config, field.leaf); leaf && val_get_btyp(leaf) == field.type)
            field.take(filter, leaf);
    takeMarking(config, "dscp-marking", filter.dscp_marking, filter.has_dscp_marking);
    takeMarking(config, "internal-priority-marking", filter.internal_priority_marking,
                filter.has_internal_priority_marking);
}

struct PortFields {
    std::uint32_t &low, &high, &portOperator;
    protobuf_c_boolean &hasLow, &hasHigh;
};

void takePort(const Value *leaf, PortFields fields)
{
    if (!leaf)
        return;
    const char *text = val_get_string(leaf);
    restconf_acl_parse_port(text, &fields.low, &fields.high, &fields.portOperator);
    fields.hasLow = 1;
    fields.hasHigh = std::strstr(text, "..") ? 1 : fields.hasHigh;
}

template <class Filter>
void takePorts(const Value *config, Filter &filter)
{
    takePort(child(config, "source-port"),
             {filter.source_low_port, filter.source_high_port, filter.source_port_operator,
              filter.has_source_low_port, filter.has_source_high_port});
    takePort(child(config, "destination-port"),
             {filter.destination_low_port, filter.destination_high_port, filter.destination_port_operator,
              filter.has_destination_low_port, filter.has_destination_high_port});
}

// What an IPv6 or L2 filter does; an IPv4 one has no words for denying and logging.
template <class Filter>
void takeAction(const Value *config, const Value *action, Filter &filter)
{
    (is(action, "ACCEPT") ? filter.permit : filter.deny) = 1;
    if (is(child(config, "log-action"), "LOG_SYSLOG"))
        filter.log_enable = 1;
}

struct MacField {
    const char *leaf;
    char *MacAclFilter::*text;
};
constexpr MacField kMacFields[] = {
    {"source-mac", &MacAclFilter::source_mac},
    {"source-mac-mask", &MacAclFilter::source_mask},
    {"destination-mac", &MacAclFilter::destination_mac},
    {"destination-mac-mask", &MacAclFilter::destination_mask},
};

void takeEthertype(const Value *leaf, MacAclFilter &filter)
{
    if (leaf && val_get_btyp(leaf) == btUint16)
        filter.ethertype = static_cast<std::uint32_t>(val_get_uint64(leaf));
    else if (leaf && val_get_btyp(leaf) == btIdentityref)
        set_l2_ethertype(val_get_string(leaf), &filter.ethertype);
}

std::uint32_t portIn(const char *text)
{
    return static_cast<std::uint32_t>(std::strtol(text, nullptr, 10));
}

} // namespace

} // namespace acl

using namespace acl;

extern "C" {

// IPv4

Status restconf_acl_ipv4_parse_sequence_params(const Value *entry, Ipv4AclFilter *filter)
{
    return takeSequence(entry, *filter) ? kOk : kMissing;
}

Status restconf_acl_ipv4_parse_filter_params(const Value *entry, Ipv4AclFilter *filter)
{
    const Value *config = configIn(entry, "ipv4");
    if (!child(config, "source-address"))
        return kMissing;
    takeIpFields(config, *filter);
    return kOk;
}

Status restconf_acl_ipv4_parse_port_params(const Value *entry, Ipv4AclFilter *filter)
{
    const char *name = nullptr;
    if (get_protocol_type(filter->protocol_number, &name) && xml_strcmp(name, "IP_TCP") != 0 &&
        xml_strcmp(name, "IP_UDP") != 0) {
        if (logsDebug())
            log_debug("not a transport protocol, hence returning\n");
        return kOk;
    }
    const Value *config = configIn(entry, "transport");
    if (!config)
        return kMissing;
    takePorts(config, *filter);
    return kOk;
}

Status restconf_acl_ipv4_parse_action_params(const Value *entry, Ipv4AclFilter *filter)
{
    const Value *action = child(configIn(entry, "actions"), "forwarding-action");
    if (!action)
        return kMissing;
    // `permit` alone tells the device what to do.
    if (is(action, "ACCEPT"))
        filter->permit = 1;
    else
        filter->deny = 0;
    return kOk;
}

Status restconf_acl_ipv4_filter_apply(Ipv4AclFilter *filter)
{
    return send(*filter, kIpv4, SEC_MSG_ACL_IPV4_FILTER);
}

Status restconf_ipv4acl_filter_config(EditOp op, const char *name, const Value *entry)
{
    return configure<Ipv4AclFilter>(
        op, name, entry, IPV4_ACL_FILTER__INIT,
        {restconf_acl_ipv4_parse_sequence_params, restconf_acl_ipv4_parse_filter_params,
         restconf_acl_ipv4_parse_port_params, restconf_acl_ipv4_parse_action_params},
        restconf_acl_ipv4_filter_apply);
}

// IPv6

Status restconf_acl_ipv6_parse_sequence_params(const Value *entry, Ipv6AclFilter *filter)
{
    if (takeSequence(entry, *filter))
        return kOk;
    return noContainer(child(entry, "config") ? "sequence-id" : "config");
}

Status restconf_acl_ipv6_parse_filter_params(const Value *entry, Ipv6AclFilter *filter)
{
    const Value *config = configIn(entry, "ipv6");
    if (!config) {
        logPlace();
        if (logsErrors())
            log_error(" %s container not found \n", child(entry, "ipv6") ? "config" : "ipv6");
        return kMissing;
    }
    takeIpFields(config, *filter);
    return kOk;
}

Status restconf_acl_parse_port_params(const Value *entry, Ipv6AclFilter *filter)
{
    takePorts(configIn(entry, "transport"), *filter);
    return kOk;
}

Status restconf_acl_ipv6_parse_action_params(const Value *entry, Ipv6AclFilter *filter)
{
    const Value *config = configIn(entry, "actions");
    if (!config)
        return noContainer(child(entry, "actions") ? "config" : "actions");
    const Value *action = child(config, "forwarding-action");
    if (!action) {
        if (logsErrors())
            log_error("Failed to retrieve action\n");
        return kMissing;
    }
    takeAction(config, action, *filter);
    return kOk;
}

Status restconf_acl_ipv6_filter_apply(Ipv6AclFilter *filter)
{
    return send(*filter, kIpv6, SEC_MSG_ACL_IPV6_FILTER);
}

Status restconf_acl_ipv6_configure_acl_entry(EditOp op, const char *name, const Value *entry)
{
    return configure<Ipv6AclFilter>(op, name, entry, IPV6_ACL_FILTER__INIT,
                                    {restconf_acl_ipv6_parse_sequence_params,
                                     restconf_acl_ipv6_parse_filter_params, restconf_acl_parse_port_params,
                                     restconf_acl_ipv6_parse_action_params},
                                    restconf_acl_ipv6_filter_apply);
}

// L2

Status restconf_acl_mac_parse_sequence_params(const Value *entry, MacAclFilter *filter)
{
    return takeSequence(entry, *filter) ? kOk : missing("sequence-id");
}

Status restconf_acl_mac_parse_filter_params(const Value *entry, MacAclFilter *filter)
{
    const Value *config = configIn(entry, "l2");
    for (const MacField &field : kMacFields) {
        const Value *leaf = child(config, field.leaf);
        if (!leaf)
            return missing(field.leaf);
        filter->*field.text = textOf(leaf);
    }
    takeEthertype(child(config, "ethertype"), *filter);
    return kOk;
}

Status restconf_acl_mac_parse_action_params(const Value *entry, MacAclFilter *filter)
{
    const Value *actions = child(entry, "actions");
    if (!actions)
        return missing("actions");
    const Value *config = child(actions, "config");
    if (!config)
        return missing("config");
    const Value *action = child(config, "forwarding-action");
    if (!action) {
        if (logsDebug())
            log_debug("[%s] Missing forwarding action", __func__);
        return kMissing;
    }
    takeAction(config, action, *filter);
    return kOk;
}

Status restconf_acl_mac_filter_apply(MacAclFilter *filter)
{
    return send(*filter, kL2, SEC_MSG_ACL_MAC_FILTER);
}

Status restconf_l2acl_filter_config(EditOp op, const char *name, const Value *entry)
{
    return configure<MacAclFilter>(op, name, entry, MAC_ACL_FILTER__INIT,
                                   {restconf_acl_mac_parse_sequence_params,
                                    restconf_acl_mac_parse_filter_params,
                                    restconf_acl_mac_parse_action_params},
                                   restconf_acl_mac_filter_apply);
}

// Ports

Status restconf_acl_parse_port(const char *text, std::uint32_t *low, std::uint32_t *high,
                               std::uint32_t *portOperator)
{
    struct Word {
        const char *text;
        PortOperator portOperator;
    };
    if (const char *dots = std::strstr(text, "..")) {
        *low = portIn(text);
        *high = portIn(dots + 2);
        *portOperator = range;
        return kOk;
    }
    // "neq" holds "eq", so it is looked for first.
    for (const Word &word : {Word{"gt", above}, Word{"lt", below}, Word{"neq", notEqual}, Word{"eq", equal}})
        if (const char *at = std::strstr(text, word.text)) {
            *low = portIn(at + std::strlen(word.text));
            *portOperator = word.portOperator;
            return kOk;
        }
    *low = portIn(text);
    *portOperator = equal;
    return kOk;
}

} // extern "C"
