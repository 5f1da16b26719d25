// Ping and traceroute: what each input asks the switch for, what it refuses, and what a failure leaves.
#include "backend/dns.h"
#include "backend/ping.h"
#include "ping/command.h"
#include "ping/u_lyn-openconfig-ping.h"
#include "traceroute/u_lyn-openconfig-traceroute.h"

#include "tests/unit/backend/scripted_transport.h"
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/bundle/rpc_call.h"

namespace test {
namespace {

// One of the two commands.
struct Twin {
    const char *rpc;
    RpcCallback validate, invoke;
    std::string call;

    std::string sent(const std::string &fields) const { return call + " {" + fields + "}"; }
    RpcAnswer run(HostBench &bench, const MaybeText &input, bool validates = false) const
    {
        return callRpc(bench, validates ? validate : invoke, std::string("lyn-openconfig-") + rpc, rpc,
                       input);
    }
};
const Twin kPing{"ping", u_lyn_openconfig_ping_ping_validate, u_lyn_openconfig_ping_ping_invoke,
                 "ui_execute_ping"};
const Twin kTrace{"traceroute", u_lyn_openconfig_traceroute_traceroute_validate,
                  u_lyn_openconfig_traceroute_traceroute_invoke, "ui_execute_trace_route"};

const std::string kAddress = R"("destination":"192.0.2.7")";
const Pattern target{R"({"target":{$}})"};
std::string to(const std::string &destination, const std::string &family = "")
{
    return target((family.empty() ? "" : R"("afi":")" + family + "\",") + R"("destination":")" + destination +
                  "\"");
}
const Pattern query{R"(ui_resolve_dns {"dns_kind":1,"dns_afi":$,"dns_hostname":"$"})"};

struct Case {
    std::string input;
    Texts requests;
    Status status = kOk;
    Texts texts = {};
};
void expectAll(const Twin &twin, const std::vector<Case> &cases)
{
    SwitchBench bench;
    for (const Case &c : cases) {
        SCOPED_TRACE(c.input);
        EXPECT_EQ(twin.run(bench, c.input, true).status, kOk);
        EXPECT_THAT(bench.sent(), IsEmpty());
        const RpcAnswer answer = twin.run(bench, c.input);
        EXPECT_EQ(answer.status, c.status);
        EXPECT_EQ(answer.texts, c.texts);
        EXPECT_EQ(bench.sent(), c.requests);
        EXPECT_THAT(answer.output, SizeIs(c.status == kOk ? 1 : 0));
    }
}

const std::string kName = "server.example.net", kNoAfi = "Ping without afi is not supported",
                  kBadName = "Destination ipv4 address or hostname is not valid";

TEST(Ping, AsksForExactlyThis)
{
    const std::string v4 = R"("ping_dest_set":1,"ping_dest_ipv4":"192.0.2.7")",
                      v6 = R"("ping_dest_set":1,"ping_afi":2,"ping_dest_ipv6":"2001:db8::7")",
                      counted = R"("ping_mask":16,)" + v4 + R"(,"ping_count":)",
                      times = R"(,"timeout":"700","interval":"300")",
                      timesSent = R"(,"ping_timeout":700,"ping_interval":300)";
    expectAll(
        kPing,
        {
            {target(R"("afi":"IPV4",)" + kAddress + R"(,"count":"2")" + times + R"(,"vrf":"blue")"),
             {kPing.sent(
                 R"("ping_mask":16,"ping_dest_set":1,"ping_afi":1,"ping_dest_ipv4":"192.0.2.7","ping_count":2)" +
                 timesSent + R"(,"ping_vrf":"blue")")}},
            {target(kAddress + times), {kPing.sent(v4 + timesSent)}}, // only the count has a mask bit
            // The low half of a number, and more than the switch sends.
            {target(kAddress + R"(,"count":"4294967298")"), {kPing.sent(counted + "2")}},
            {target(kAddress + R"(,"count":"1001")"), {kPing.sent(counted + "1001")}, 4},
            {to("2001:db8::7", "IPV6"), {kPing.sent(v6)}},
            {to(kName), {query(1, kName), kPing.sent(v4)}},
            {to(kName, "IPV6"), {query(2, kName), kPing.sent(v6)}},
            {"{}", {kPing.sent("")}, 4}, // without a target the message is empty
            {to("192.0.2.7", "UNKNOWN"), {}, 263, {kNoAfi}},
            {target(R"("afi":"IPV4")"), {}, 263, {"Ping without destination is not supported"}},
            {to("a:b"), {}, 261, {kBadName}},
            {to("nobody"), {query(1, "nobody")}, 4},
            {to("legacy.example.net", "IPV6"), {query(2, "legacy.example.net")}, 4},
        });
}

TEST(Traceroute, AsksForExactlyThis)
{
    const std::string v4 = R"("trace_dest_set":1,"trace_dest_ipv4":"192.0.2.7")";
    expectAll(
        kTrace,
        {
            {target(R"("afi":"IPV4",)" + kAddress +
                    R"(,"source-ip":"192.0.2.1","maxttl":"9","minttl":"2","timeout":"700","vrf":"blue")"),
             {kTrace.sent(R"("trace_dest_set":1,"trace_afi":1,"trace_dest_ipv4":"192.0.2.7",)"
                          R"("trace_source_ipv4":"192.0.2.1","trace_maxttl":9,"trace_minttl":2,)"
                          R"("trace_timeout":700,"trace_vrf":"blue")")}},
            {to(kName), {query(1, kName), kTrace.sent(v4 + R"(,"trace_hostname":")" + kName + "\"")}},
            {to("gateway.example.net", "IPV6"),
             {query(2, "gateway.example.net"),
              kTrace.sent(R"("trace_dest_set":1,"trace_afi":2,"trace_dest_ipv6":"2001:db8::1",)"
                          R"("trace_hostname":"gateway.example.net")")}},
            {"{}", {kTrace.sent("")}, 4},
            {to("192.0.2.7", "UNKNOWN"), {}, 263, {kNoAfi}},
            {target(""), {}, 263, {"Traceroute without valid destination is not supported"}},
            {to("1:2"), {}, 261, {kBadName}},
            {target(kAddress + R"(,"source-ip":"2001:db8::1")"),
             {},
             261,
             {"Source ipv4 address is not valid"}},
            {to("nobody"), {query(1, "nobody")}, 4},
            // Hops the wrong way round.
            {target(kAddress + R"(,"maxttl":"2","minttl":"3")"),
             {kTrace.sent(v4 + R"(,"trace_maxttl":2,"trace_minttl":3)")},
             4},
        });
}

class BothCommands : public testing::TestWithParam<Twin> { };
INSTANTIATE_TEST_SUITE_P(Table, BothCommands, testing::Values(kPing, kTrace),
                         [](const auto &of) { return std::string(of.param.rpc); });

TEST_P(BothCommands, NeedAnInputAndReturnTheWholeText)
{
    SwitchBench bench;
    EXPECT_EQ(GetParam().run(bench, std::nullopt).status, 274);
    EXPECT_THAT(bench.sent(), IsEmpty());
    const auto answer = GetParam().run(bench, target(kAddress));
    ASSERT_THAT(answer.output, SizeIs(1));
    EXPECT_THAT(answer.output[0], HasSubstr("192.0.2.7"));
    EXPECT_THAT(answer.output[0], testing::EndsWith("\n"));
    strike(bench, refusal(GetParam().call, std::nullopt, 0)); // nothing is printed
    EXPECT_EQ(GetParam().run(bench, target(kAddress)), RpcAnswer{});
}

// A failure of the back end has no text for the client; the log tells what it was.
TEST_P(BothCommands, TellFailuresToTheLogOnly)
{
    const Twin &twin = GetParam();
    const std::string word = twin.rpc == std::string("ping") ? "Ping" : "Traceroute",
                      dnsCall = "ui_resolve_dns";
    SwitchBench bench;
    for (const auto &[fault, logged] :
         {std::pair{noAnswer(dnsCall), word + " Failed DNS: DNS query timed out...failed to resolve\n"},
          {refusal(dnsCall, "it is gone"), word + " Failed it is gone\n"},
          {refusal(dnsCall), ""},
          {noAnswer(twin.call), ""},
          {refusal(twin.call, "no route"), "Error: no route\n"}}) {
        strike(bench, fault);
        const LogCapture log(8);
        EXPECT_EQ(twin.run(bench, to(kName)), RpcAnswer{4});
        EXPECT_THAT(log.errors() + log.debug(), HasSubstr(logged));
    }
}

// Not sixteen bytes: no address.
TEST_P(BothCommands, MeasureTheAddressOfAResolver)
{
    SwitchBench bench;
    for (const std::size_t length : {4, 15, 17}) {
        std::vector<std::uint8_t> bytes(length, 1);
        DnsResolveResp made = DNS_RESOLVE_RESP__INIT;
        made.has_dns_ipv6 = 1;
        made.dns_ipv6 = {length, bytes.data()};
        const auto transport = std::make_shared<backend::ScriptedTransport>();
        transport->answer = backend::envelopeAround(backend::packed(made.base));
        const backend::UseTransport use(transport);
        EXPECT_EQ(GetParam().run(bench, to("host", "IPV6")).status, 4) << length;
        EXPECT_THAT(transport->requests, SizeIs(1)) << length;
    }
}

// Whether the machine has the tools or not.
TEST_P(BothCommands, ReachLoopback)
{
    SwitchBench bench;
    const std::string count = GetParam().call == kPing.call ? R"(,"count":"1")" : "";
    for (const auto &[afi, address] :
         {std::pair<std::string, std::string>{"IPV4", "127.0.0.1"}, {"IPV6", "::1"}}) {
        const auto answer = GetParam().run(
            bench, target(R"("afi":")" + afi + R"(","destination":")" + address + "\"" + count));
        EXPECT_EQ(answer.status, kOk);
        ASSERT_THAT(answer.output, SizeIs(1));
        EXPECT_THAT(answer.output[0], HasSubstr(address));
    }
}

TEST(PingMask, KeepsWhatWasMarkedBefore)
{
    std::uint32_t mask = 0;
    for (const std::uint32_t bit : {0u, 4u, 31u, 32u, 33u, 4'294'967'295u}) // it has no bits above 31
        set_ping_data_mask(&mask, bit);
    EXPECT_EQ(mask, 0x80000011u);
}

TEST(HostName, HasNoColonTabOrBlank)
{
    for (const char *good : {"", "host-1.example.net", "ä"})
        EXPECT_EQ(validate_string(good), 1) << good;
    for (const char *bad : {":", " ", "\t", "ab "})
        EXPECT_EQ(validate_string(bad), 0) << bad;
}

} // namespace
} // namespace test
