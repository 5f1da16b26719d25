// Ping, traceroute and the resolver. Nothing is ever sent beyond this machine: loopback addresses are asked
// with the machine's own tools, where it has them, and everybody else's answers are computed.
#include "backend/dns.h"
#include "backend/net_text.h"
#include "backend/ping.h"
#include "backend/program.h"
#include "switchsim/family.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <optional>

#include <arpa/inet.h>

namespace switchsim {
namespace {

constexpr std::int32_t kIpv6 = 2; // family
constexpr std::uint32_t kMostRequests = 1'000;
constexpr std::uint32_t kMostHops = 255;
constexpr std::uint32_t kRequests = 5, kHops = 30, kTimeout = 5'000,
                        kInterval = 1'000;   // where nothing was said
constexpr std::chrono::seconds kToolTime{8}; // below what the management server waits

struct Host {
    const char *name, *ipv4, *ipv6; // an empty text: no address of that family
};
// All but localhost are of blocks that are kept for examples. Those of 192.0.2.0/24 and 2001:db8::/64 answer.
constexpr Host kHosts[] = {
    {"localhost", "127.0.0.1", "::1"},
    {"gateway.example.net", "192.0.2.1", "2001:db8::1"},
    {"server.example.net", "192.0.2.7", "2001:db8::7"},
    {"legacy.example.net", "192.0.2.8", ""},
    {"silent.example.net", "198.51.100.9", "2001:db8:1::9"},
};
constexpr const char *kGateway = "192.0.2.1", *kGateway6 = "2001:db8::1";

// Whom a command is for.
struct Target {
    std::string text;
    bool isIpv6 = false, isLoopback = false, answers = false;

    const char *gateway() const { return isIpv6 ? kGateway6 : kGateway; }
};

Target targetOf(std::uint32_t address)
{
    char text[IP_ADDRESS_TEXT_BYTES];
    Target target{ip_address_to_string(address, text)};
    target.isLoopback = address >> 24 == 127;
    target.answers = target.isLoopback || target.text.starts_with("192.0.2.");
    return target;
}

std::optional<Target> targetOf(const ProtobufCBinaryData &bytes)
{
    std::array<char, INET6_ADDRSTRLEN> text{};
    if (bytes.len != 16 || inet_ntop(AF_INET6, bytes.data, text.data(), text.size()) == nullptr)
        return std::nullopt;
    static constexpr std::array<std::uint8_t, 8> examples = {0x20, 0x01, 0x0d, 0xb8};
    Target target{text.data()};
    target.isIpv6 = true;
    target.isLoopback = target.text == "::1";
    target.answers = target.isLoopback || std::equal(examples.begin(), examples.end(), bytes.data);
    return target;
}

std::string seconds(std::uint32_t milliseconds)
{
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "%u.%03u", milliseconds / 1000, milliseconds % 1000);
    return text.data();
}

// What a tool of the machine prints. Nothing: it is not there, or may not do this here.
std::optional<std::string> printedBy(const std::vector<std::string> &arguments)
{
    backend::ProgramLimits limits;
    limits.time = kToolTime;
    const auto result = backend::runProgram(arguments, limits);
    const bool didRun = result.timedOut || result.exitStatus == 0 || result.exitStatus == 1;
    return didRun && !result.output.empty() ? std::optional(result.output) : std::nullopt;
}

struct Requests {
    std::uint32_t count = kRequests, timeout = kTimeout, interval = kInterval;
};

std::optional<std::string> askLoopback(const Target &target, const Requests &requests)
{
    constexpr std::uint32_t shortest = 200; // what everybody may ask for
    return printedBy({"ping", "-n", "-c", std::to_string(requests.count), "-i",
                      seconds(std::max(requests.interval, shortest)), "-W", seconds(requests.timeout), "-w",
                      std::to_string(kToolTime.count() - 1), target.text});
}

std::string computedPing(const Target &target, const Requests &requests)
{
    std::string text = "ping " + target.text + ": " + std::to_string(requests.count) + " requests, timeout " +
        std::to_string(requests.timeout) + " ms\n";
    for (std::uint32_t i = 1; i <= requests.count; i++)
        text += std::to_string(i) + ": " +
            (target.answers ? "answer from " + target.text + " in 1 ms" : "no answer") + "\n";
    return text + std::to_string(requests.count) + " sent, " +
        std::to_string(target.answers ? requests.count : 0) + " received\n";
}

struct Hops {
    std::uint32_t least = 1, most = kHops, timeout = kTimeout;
};

std::optional<std::string> traceLoopback(const Target &target, const Hops &hops)
{
    return printedBy({"traceroute", "-n", "-f", std::to_string(hops.least), "-m", std::to_string(hops.most),
                      "-w", seconds(hops.timeout), target.text});
}

std::string computedTrace(const Target &target, const std::string &name, const Hops &hops)
{
    std::string text = "way to " + (name.empty() ? "" : name + " ") + target.text + ", at most " +
        std::to_string(hops.most) + " hops\n";
    const bool isNear = target.isLoopback || target.text == target.gateway();
    const std::uint32_t distance = isNear ? 1 : 2;
    for (std::uint32_t ttl = hops.least; ttl <= hops.most; ttl++) {
        const bool isThere = target.answers && ttl >= distance;
        text += std::to_string(ttl) + "  " +
            (isThere              ? target.text + "  1 ms"
                 : ttl < distance ? target.gateway() + std::string("  1 ms")
                                  : "*") +
            "\n";
        if (isThere)
            break;
    }
    return text;
}

class Reachability : public Family {
public:
    std::string_view word() const override { return "hosts"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<DnsResolveReq, DnsResolveResp>("ui_resolve_dns", dns_resolve_req__descriptor,
                                                dns_resolve_resp__descriptor, resolve);
        calls
            .on<PingEntry, CommonResp>("ui_execute_ping", ping_entry__descriptor, common_resp__descriptor,
                                       ping)
            .slow();
        calls
            .on<TraceRouteExecute, CommonResp>("ui_execute_trace_route", trace_route_execute__descriptor,
                                               common_resp__descriptor, trace)
            .slow();
    }

    Json show() const override
    {
        Json hosts = Json::object();
        for (const Host &host : kHosts)
            hosts[host.name] = {{"ipv4", host.ipv4}, {"ipv6", host.ipv6}};
        return hosts;
    }

private:
    static void resolve(const DnsResolveReq &request, DnsResolveResp &answer, Answering &answering)
    {
        const std::string name = request.dns_hostname == nullptr ? "" : request.dns_hostname;
        const auto host = std::find_if(std::begin(kHosts), std::end(kHosts),
                                       [&](const Host &known) { return known.name == name; });
        if (host == std::end(kHosts))
            return answering.refuse("Error: host " + name + " is not known");
        if (*(request.dns_afi == kIpv6 ? host->ipv6 : host->ipv4) == '\0')
            return answering.refuse("Error: host " + name + " has no address of this family");
        if (request.dns_afi != kIpv6) {
            answer.has_dns_ipv4 = 1;
            ip_string_to_address(host->ipv4, &answer.dns_ipv4);
            return;
        }
        std::string bytes(16, '\0');
        ip6_string_to_address(host->ipv6, reinterpret_cast<std::uint8_t *>(bytes.data()));
        answer.has_dns_ipv6 = 1;
        answer.dns_ipv6 = {bytes.size(), reinterpret_cast<std::uint8_t *>(answering.keep(bytes))};
    }

    // Nothing: no destination that can be asked.
    static std::optional<Target> targetIn(bool isSet, bool hasIpv6, const ProtobufCBinaryData &ipv6,
                                          std::uint32_t ipv4, Answering &answering)
    {
        const auto target = !isSet ? std::nullopt : hasIpv6 ? targetOf(ipv6) : std::optional(targetOf(ipv4));
        if (!target)
            answering.refuse("Error: there is no destination\n");
        return target;
    }

    static void ping(const PingEntry &entry, CommonResp &answer, Answering &answering)
    {
        const auto target = targetIn(entry.ping_dest_set != 0, entry.has_ping_dest_ipv6 != 0,
                                     entry.ping_dest_ipv6, entry.ping_dest_ipv4, answering);
        if (!target)
            return;
        Requests requests;
        if (entry.ping_mask >> PING_MASK_COUNT & 1U)
            requests.count = entry.ping_count;
        if (entry.ping_timeout != 0)
            requests.timeout = entry.ping_timeout;
        if (entry.ping_interval != 0)
            requests.interval = entry.ping_interval;
        if (requests.count == 0 || requests.count > kMostRequests)
            return answering.refuse("Error: a ping has 1 to " + std::to_string(kMostRequests) +
                                    " requests\n");
        const auto printed = target->isLoopback ? askLoopback(*target, requests) : std::nullopt;
        answer.reply_buf = answering.keep(printed ? *printed : computedPing(*target, requests));
    }

    static void trace(const TraceRouteExecute &message, CommonResp &answer, Answering &answering)
    {
        const auto target = targetIn(message.trace_dest_set != 0, message.has_trace_dest_ipv6 != 0,
                                     message.trace_dest_ipv6, message.trace_dest_ipv4, answering);
        if (!target)
            return;
        Hops hops;
        if (message.trace_minttl != 0)
            hops.least = message.trace_minttl;
        if (message.trace_maxttl != 0)
            hops.most = message.trace_maxttl;
        if (message.trace_timeout != 0)
            hops.timeout = message.trace_timeout;
        if (hops.most > kMostHops || hops.least > hops.most)
            return answering.refuse("Error: the hops must be from 1 to " + std::to_string(kMostHops) + "\n");
        const auto printed = target->isLoopback ? traceLoopback(*target, hops) : std::nullopt;
        const char *name = message.trace_hostname;
        answer.reply_buf =
            answering.keep(printed ? *printed : computedTrace(*target, name == nullptr ? "" : name, hops));
    }
};

} // namespace

std::unique_ptr<Family> makeReachability(Device &)
{
    return std::make_unique<Reachability>();
}

} // namespace switchsim
