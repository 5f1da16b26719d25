#include "network_instance/route_report.h"

#include "backend/net_text.h"
#include "frame/call.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <limits>

using namespace frame;

extern "C" const ipv4_route_type_row ipv4_route_type_info[10] = {
    {'L', "local", 0},  {'D', "connected", 0}, {'S', "static", 1}, {'R', "rip", 120},   {'O', "ospf", 110},
    {'I', "isis", 110}, {'B', "bgp", 20},      {'L', "mpls", 200}, {'M', "mcast", 255}, {'F', "bfd", 255},
};

namespace {

using namespace route;

constexpr std::uint32_t kStatic = 2, kOspf = 4, kBgp = 6; // types
constexpr std::uint32_t kBetweenInstances = 1;            // sub-type of a static route
constexpr std::uint32_t kMinute = 60, kHour = 60 * kMinute, kDay = 24 * kHour;

// A report that is being written. What does not fit makes the buffer grow.
class Report {
public:
    Report(char *&buffer, std::size_t &used, std::size_t &size)
        : buffer_(buffer)
        , used_(used)
        , size_(size)
    {
    }

    bool head(std::uint32_t total);
    bool entry(std::size_t number, const IpRouteEntry &entry);

private:
    bool columns(const char *number, const char *destination, const char *gateway, const char *port,
                 const char *cost, const char *type, const char *uptime);
    bool path(const char *number, const char *destination, const IpRoutePath &path);
    bool text(const char *line);
    bool grow();

    // Writes with write(to, room), which tells the length as snprintf does, until it fits.
    template <class Write>
    bool put(Write write)
    {
        for (;;) {
            const std::size_t room = size_ - used_;
            const int length = write(buffer_ + used_, room);
            if (length < 0)
                return false;
            if (static_cast<std::size_t>(length) < room) {
                used_ += static_cast<std::size_t>(length);
                return true;
            }
            if (!grow())
                return false;
        }
    }

    char *&buffer_;
    std::size_t &used_, &size_;
};

// Whole steps, at least one, and about half of what there is: steps of one size would copy a long report as
// often as it has lines.
std::size_t grown(std::size_t size)
{
    const std::size_t steps = size / 2 / kGrowth;
    const std::size_t more = (steps ? steps : 1) * kGrowth;
    return size > std::numeric_limits<std::size_t>::max() - more ? 0 : size + more;
}

bool Report::grow()
{
    const std::size_t size = grown(size_);
    char *bigger = size ? static_cast<char *>(sys_allocate_memory(size)) : nullptr;
    if (!bigger) {
        if (logsDebug())
            log_debug("Error: Extended memory allocation failed for Ip route.\n");
        return false;
    }
    std::memcpy(bigger, buffer_, used_);
    bigger[used_] = '\0';
    sys_free_memory(buffer_);
    buffer_ = bigger;
    size_ = size;
    return true;
}

bool Report::text(const char *line)
{
    return put([=](char *to, std::size_t room) { return std::snprintf(to, room, "%s", line); });
}

bool Report::columns(const char *number, const char *destination, const char *gateway, const char *port,
                     const char *cost, const char *type, const char *uptime)
{
    return put([=](char *to, std::size_t room) {
        return std::snprintf(to, room, "%-7s %-19s%-16s%-13s %-14s%-4s %-6s\n", number, destination, gateway,
                             port, cost, type, uptime);
    });
}

bool Report::head(std::uint32_t total)
{
    return text("show ip route\n") && put([=](char *to, std::size_t room) {
               return std::snprintf(to, room, "Total number of IP routes: %u\n", total);
           }) &&
        text("Type Codes - B:BGP D:Connected O:OSPF R:RIP S:Static; Cost - Dist/Metric\n") &&
        text("BGP  Codes - i:iBGP e:eBGP\n") &&
        text("OSPF Codes - i:Inter Area 1:External Type 1 2:External Type 2\n") &&
        text("STATIC Codes - v:Inter-VRF\n") &&
        columns("", "Destination", "Gateway", "Port", "Cost", "Type", "Uptime");
}

bool Report::path(const char *number, const char *destination, const IpRoutePath &path)
{
    char gateway[IP_ADDRESS_TEXT_BYTES] = "DIRECT", cost[24], type[kTypeBytes], uptime[kUptimeBytes];
    if (path.gateway)
        ip_address_to_string(path.gateway, gateway);
    std::snprintf(cost, sizeof cost, "%" PRId32 "/%" PRIu32, path.distance, path.metric);
    get_route_type_to_string(path.type, path.sub_type, type);
    format_route_uptime_to_string(uptime, path.uptime);
    return columns(number, destination, gateway, path.port ? path.port : "", cost, type, uptime);
}

bool Report::entry(std::size_t number, const IpRouteEntry &entry)
{
    if (entry.n_paths >= (size_ - used_) / kLineBytes && !grow())
        return false;
    char counted[24], address[IP_ADDRESS_TEXT_BYTES], destination[32];
    std::snprintf(counted, sizeof counted, "%zu", number);
    std::snprintf(destination, sizeof destination, "%s/%" PRIu32,
                  ip_address_to_string(entry.address, address), entry.prefix_length);
    for (std::size_t i = 0; i < entry.n_paths; ++i)
        if (!path(i == 0 ? counted : "", destination, *entry.paths[i]))
            return false;
    return true;
}

} // namespace

extern "C" void get_route_type_to_string(std::uint32_t type, std::uint32_t subType, char *text)
{
    constexpr char ospf[] = " i12e i12? ";
    constexpr std::uint32_t ospfKnown = 8, ospfStubFirst = 5, ospfStubLast = 8;
    *text++ = type < std::size(ipv4_route_type_info) ? ipv4_route_type_info[type].code : '?';
    if (type == kOspf) {
        *text++ = subType < ospfKnown ? ospf[subType] : '?';
        if (subType >= ospfStubFirst && subType <= ospfStubLast)
            *text++ = 's';
    } else if (type == kBgp) {
        *text++ = subType % 2 ? 'i' : 'e';
    } else if (type == kStatic && subType == kBetweenInstances) {
        *text++ = 'v';
    }
    *text = '\0';
}

extern "C" void format_route_uptime_to_string(char *text, std::uint32_t seconds)
{
    const auto part = [seconds](std::uint32_t unit, std::uint32_t whole) {
        return static_cast<int>(seconds % whole / unit);
    };
    const int days = static_cast<int>(seconds / kDay), hours = part(kHour, kDay),
              minutes = part(kMinute, kHour);
    if (days > 99)
        std::snprintf(text, kUptimeBytes, "%-dd\n", days);
    else if (days)
        std::snprintf(text, kUptimeBytes, "%-dd%-dh", days, hours);
    else if (hours)
        std::snprintf(text, kUptimeBytes, "%-dh%-dm", hours, minutes);
    else
        std::snprintf(text, kUptimeBytes, "%-dm%-ds", minutes, part(1, kMinute));
}

extern "C" int save_resp_to_result_buf(int isFirst, std::size_t before, const IpRouteGetResp *answer,
                                       char **buffer, std::size_t *used, std::size_t *size)
{
    Report report(*buffer, *used, *size);
    if (isFirst && !report.head(answer->total_routes))
        return 0;
    for (std::size_t i = 0; i < answer->n_entries; ++i)
        if (!report.entry(before + i + 1, *answer->entries[i]))
            return 0;
    return 1;
}
