#include "ping/command.h"

#include "backend/dns.h"
#include "backend/net_text.h"
#include "frame/owned.h"

#include <algorithm>
#include <cstring>

using namespace frame;

namespace ping {

namespace {

constexpr std::uint32_t kIpv4 = 1, kIpv6 = 2; // families
constexpr std::int32_t kAddressOfName = 1;

using DnsAnswer = Owned<DnsResolveResp, dns_resolve_resp__free_unpacked>;

const DnsResolveReq &queryTemplate()
{
    static const DnsResolveReq query = [] {
        DnsResolveReq made = DNS_RESOLVE_REQ__INIT;
        made.dns_kind = kAddressOfName;
        made.dns_afi = kIpv4;
        return made;
    }();
    return query;
}

void logFailure(const DnsAnswer &answer, const Command &command)
{
    if (!logsErrors())
        return;
    if (!answer)
        log_error("%s", command.nameUnanswered);
    else if (answer->reply && answer->reply->reply_buf)
        command.logNameRefused(answer->reply->reply_buf);
}

Status resolve(const Command &command, Destination &destination)
{
    DnsResolveReq query = queryTemplate();
    query.dns_hostname = const_cast<char *>(destination.name); // records have no const texts
    if (destination.family == kIpv6)
        query.dns_afi = kIpv6;
    DnsAnswer answer;
    const int result = ui_resolve_dns(&query, answer.slot());
    if (result || !answer) {
        logFailure(answer, command);
        return kInternal;
    }
    if (destination.family != kIpv6) {
        destination.ipv4 = answer->dns_ipv4;
        return kOk;
    }
    if (answer->dns_ipv6.len != destination.ipv6.size())
        return kInternal;
    std::copy_n(answer->dns_ipv6.data, destination.ipv6.size(), destination.ipv6.begin());
    destination.hasIpv6 = true;
    return kOk;
}

// False for a family that there is not.
bool readFamily(const Value *target, const char *module, std::uint32_t &family)
{
    const Value *leaf = val_find_child(target, module, "afi");
    if (!leaf)
        return true;
    const char *text = val_get_string(leaf);
    family = xml_strcmp(text, "IPV4") == 0 ? kIpv4 : xml_strcmp(text, "IPV6") == 0 ? kIpv6 : 0;
    return family != 0;
}

} // namespace

Status readDestination(Session *scb, Request *msg, const Value *target, const Command &command,
                       Destination &destination)
{
    if (!readFamily(target, command.module, destination.family))
        return refuseRequest(scb, msg, kUnservedInput, "Ping without afi is not supported");
    const Value *leaf = val_find_child(target, command.module, "destination");
    if (!leaf)
        return refuseRequest(scb, msg, kUnservedInput, command.noDestination);
    const char *text = val_get_string(leaf);
    if (ip_string_to_address(text, &destination.ipv4))
        return kOk;
    destination.hasIpv6 = ip6_string_to_address(text, destination.ipv6.data()) != 0;
    if (destination.hasIpv6)
        return kOk;
    if (!validate_string(text))
        return refuseRequest(scb, msg, kInvalidValue, "Destination ipv4 address or hostname is not valid");
    destination.name = text;
    return resolve(command, destination);
}

bool readNumber(const Value *target, const Command &command, const char *leaf, std::uint32_t &number)
{
    const Value *value = val_find_child(target, command.module, leaf);
    if (value)
        number = static_cast<std::uint32_t>(val_get_uint64(value));
    return value != nullptr;
}

Status carryOut(Request *msg, const Command &command, const std::function<int(CommonResp **)> &execute)
{
    const Object *output = outputOf(msg, command.module);
    if (!output)
        return kNotFound;
    Owned<CommonResp, common_resp__free_unpacked> printed;
    if (execute(printed.slot())) {
        if (printed && printed->reply_buf && logsDebug())
            log_debug("Error: %s\n", printed->reply_buf);
        return kInternal;
    }
    if (!printed) {
        if (logsErrors())
            log_error("%s", command.unanswered);
        return kInternal;
    }
    if (!printed->reply_buf || !*printed->reply_buf)
        return kOk;
    const Status status = returnResult(msg, output, command.module, printed->reply_buf);
    if (status && logsErrors())
        command.logNoLeaf(status);
    return status;
}

} // namespace ping

extern "C" int validate_string(const char *text)
{
    return std::strpbrk(text, ":\t ") ? 0 : 1;
}
