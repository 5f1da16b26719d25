#include "traceroute/u_lyn-openconfig-traceroute.h"

#include "backend/net_text.h"
#include "backend/ping.h"
#include "frame/stub.h"
#include "ping/command.h"

using namespace frame;

USER_UNIT(lyn_openconfig_traceroute);

namespace {

const ping::Command kTraceroute = {
    "lyn-openconfig-traceroute",
    "Traceroute without valid destination is not supported",
    "Traceroute Failed DNS: DNS query timed out...failed to resolve\n",
    [](const char *words) { log_error("Traceroute Failed %s\n", words); },
    "Traceroute failed as resp is NULL\n",
    [](Status status) { log_error("Traceroute: agt_make_int64_leaf2 failed with reason : %d\n", status); },
};

// A traceroute and where its destination is kept.
struct Message {
    TraceRouteExecute record;
    ping::Destination destination;

    Message()
    {
        trace_route_execute__init(&record);
        record.trace_hostname = record.trace_vrf =
            const_cast<char *>(protobuf_c_empty_string); // records have no const texts
    }
    Message(const Message &) = delete;
    Message &operator=(const Message &) = delete;
};

void setDestination(Message &message)
{
    TraceRouteExecute &record = message.record;
    record.trace_dest_set = 1;
    record.trace_afi = message.destination.family;
    record.trace_dest_ipv4 = message.destination.ipv4;
    record.has_trace_dest_ipv6 = message.destination.hasIpv6;
    if (message.destination.hasIpv6)
        record.trace_dest_ipv6 = {message.destination.ipv6.size(), message.destination.ipv6.data()};
    if (message.destination.name)
        record.trace_hostname = const_cast<char *>(message.destination.name);
}

Status fill(Session *scb, Request *msg, const Value *target, Message &message)
{
    if (const Status status = ping::readDestination(scb, msg, target, kTraceroute, message.destination))
        return status;
    setDestination(message);
    TraceRouteExecute &record = message.record;
    const Value *source = val_find_child(target, kTraceroute.module, "source-ip");
    if (source && !ip_string_to_address(val_get_string(source), &record.trace_source_ipv4))
        return refuseRequest(scb, msg, kInvalidValue, "Source ipv4 address is not valid");
    ping::readNumber(target, kTraceroute, "maxttl", record.trace_maxttl);
    ping::readNumber(target, kTraceroute, "minttl", record.trace_minttl);
    ping::readNumber(target, kTraceroute, "timeout", record.trace_timeout);
    if (const Value *vrf = val_find_child(target, kTraceroute.module, "vrf"))
        record.trace_vrf = const_cast<char *>(val_get_string(vrf));
    return kOk;
}

} // namespace

extern "C" Status u_lyn_openconfig_traceroute_traceroute_validate(RPC_ARGS)
{
    return kOk;
}

extern "C" Status u_lyn_openconfig_traceroute_traceroute_invoke(RPC_ARGS)
{
    Message message;
    return ping::invoke(
        msg, kTraceroute, message,
        [&](const Value *target, Message &filled) { return fill(scb, msg, target, filled); },
        ui_execute_trace_route);
}
