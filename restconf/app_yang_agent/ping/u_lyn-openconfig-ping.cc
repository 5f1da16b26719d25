#include "ping/u_lyn-openconfig-ping.h"

#include "backend/ping.h"
#include "frame/stub.h"
#include "ping/command.h"

using namespace frame;

USER_UNIT(lyn_openconfig_ping);

namespace {

const ping::Command kPing = {
    "lyn-openconfig-ping",
    "Ping without destination is not supported",
    "Ping Failed DNS: DNS query timed out...failed to resolve\n",
    [](const char *words) { log_error("Ping Failed %s\n", words); },
    "Ping failed as resp is NULL\n",
    [](Status status) { log_error("Ping: agt_make_leaf2 failed with reason : %d\n", status); },
};

// A ping and where its destination is kept.
struct Entry {
    PingEntry record;
    ping::Destination destination;

    Entry()
    {
        ping_entry__init(&record);
        record.ping_vrf = const_cast<char *>(protobuf_c_empty_string); // records have no const texts
    }
    Entry(const Entry &) = delete;
    Entry &operator=(const Entry &) = delete;
};

void setDestination(Entry &entry)
{
    PingEntry &record = entry.record;
    record.ping_dest_set = 1;
    record.ping_afi = entry.destination.family;
    record.ping_dest_ipv4 = entry.destination.ipv4;
    record.has_ping_dest_ipv6 = entry.destination.hasIpv6;
    if (entry.destination.hasIpv6)
        record.ping_dest_ipv6 = {entry.destination.ipv6.size(), entry.destination.ipv6.data()};
}

Status fill(Session *scb, Request *msg, const Value *target, Entry &entry)
{
    if (const Status status = ping::readDestination(scb, msg, target, kPing, entry.destination))
        return status;
    setDestination(entry);
    PingEntry &record = entry.record;
    if (ping::readNumber(target, kPing, "count", record.ping_count))
        set_ping_data_mask(&record.ping_mask, PING_MASK_COUNT);
    ping::readNumber(target, kPing, "timeout", record.ping_timeout);
    ping::readNumber(target, kPing, "interval", record.ping_interval);
    if (const Value *vrf = val_find_child(target, kPing.module, "vrf"))
        record.ping_vrf = const_cast<char *>(val_get_string(vrf));
    return kOk;
}

} // namespace

extern "C" Status u_lyn_openconfig_ping_ping_validate(RPC_ARGS)
{
    return kOk;
}

extern "C" Status u_lyn_openconfig_ping_ping_invoke(RPC_ARGS)
{
    Entry entry;
    return ping::invoke(
        msg, kPing, entry, [&](const Value *target, Entry &filled) { return fill(scb, msg, target, filled); },
        ui_execute_ping);
}
