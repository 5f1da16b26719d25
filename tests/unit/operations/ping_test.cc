// Ping and traceroute: what each input asks the switch for, what it refuses, and what a failure leaves.
#include "backend/dns.h"
#include "backend/ping.h"
#include "ping/command.h"
#include "ping/u_lyn-openconfig-ping.h"
#include "traceroute/u_lyn-openconfig-traceroute.h"

#include "tests/unit/backend/scripted_transport.h"
#include "tests/unit/bundle/log_capture.h"
#include "tests/unit/interfaces/cells.h"
#include "tests/unit/operations/rpc_call.h"

namespace test {
namespace {

using namespace tk;
using switchsim::FaultKind;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// One of the two commands.
struct Twin {
    const char *rpc;
    RpcCallback validate, invoke;
    const char *call;

    std::string module() const { return std::string("lyn-openconfig-") + rpc; }
    std::string sent(const std::string &fields) const { return std::string(call) + " {" + fields + "}"; }
    RpcAnswer run(HostBench &bench, const std::optional<std::string> &input) const
    {
        return callRpc(bench, invoke, module(), rpc, input);
    }
};
const Twin kPing{"ping", u_lyn_openconfig_ping_ping_validate, u_lyn_openconfig_ping_ping_invoke,
                 "ui_execute_ping"};
const Twin kTrace{"traceroute", u_lyn_openconfig_traceroute_traceroute_validate,
                  u_lyn_openconfig_traceroute_traceroute_invoke, "ui_execute_trace_route"};

std::string query(const char *name, int family)
{
    return R"(ui_resolve_dns {"dns_kind":1,"dns_afi":)" + std::to_string(family) + R"(,"dns_hostname":")" +
        name + "\"}";
}

struct Case {
    std::string name;
    Twin twin;
    std::optional<std::string> target; // nothing: no target in the input
    Status status;
    std::vector<std::string> texts, requests;
};
void PrintTo(const Case &c, std::ostream *out)
{
    *out << c.name;
}
class Reaching : public testing::TestWithParam<Case> { };

TEST_P(Reaching, AsksForExactlyThis)
{
    const Case &c = GetParam();
    SwitchBench bench;
    const auto input = c.target ? "{\"target\":" + *c.target + "}" : "{}";
    EXPECT_EQ(callRpc(bench, c.twin.validate, c.twin.module(), c.twin.rpc, input).status, kOk);
    EXPECT_THAT(bench.sent(), IsEmpty());
    const RpcAnswer answer = c.twin.run(bench, input);
    EXPECT_EQ(answer.status, c.status);
    EXPECT_EQ(answer.texts, c.texts);
    EXPECT_THAT(bench.sent(), ElementsAreArray(c.requests));
    EXPECT_THAT(answer.output, SizeIs(c.status == kOk ? 1 : 0));
}

const std::string kNoAfi = "Ping without afi is not supported",
                  kBadName = "Destination ipv4 address or hostname is not valid";
const Case kPings[] = {
    {"address",
     kPing,
     R"({"destination":"192.0.2.7"})",
     0,
     {},
     {kPing.sent(R"("ping_dest_set":1,"ping_dest_ipv4":"192.0.2.7")")}},
    {"everything",
     kPing,
     R"({"afi":"IPV4","destination":"192.0.2.7","count":"2","timeout":"700","interval":"300","vrf":"blue"})",
     0,
     {},
     {kPing.sent(
         R"("ping_mask":16,"ping_dest_set":1,"ping_afi":1,"ping_dest_ipv4":"192.0.2.7","ping_count":2,"ping_timeout":700,"ping_interval":300,"ping_vrf":"blue")")}},
    {"only_the_count_has_a_mask_bit",
     kPing,
     R"({"destination":"192.0.2.7","timeout":"700","interval":"300"})",
     0,
     {},
     {kPing.sent(
         R"("ping_dest_set":1,"ping_dest_ipv4":"192.0.2.7","ping_timeout":700,"ping_interval":300)")}},
    {"the_low_half_of_a_number",
     kPing,
     R"({"destination":"192.0.2.7","count":"4294967298"})",
     0,
     {},
     {kPing.sent(R"("ping_mask":16,"ping_dest_set":1,"ping_dest_ipv4":"192.0.2.7","ping_count":2)")}},
    {"ipv6_address",
     kPing,
     R"({"afi":"IPV6","destination":"2001:db8::7"})",
     0,
     {},
     {kPing.sent(R"("ping_dest_set":1,"ping_afi":2,"ping_dest_ipv6":"2001:db8::7")")}},
    {"name",
     kPing,
     R"({"destination":"server.example.net"})",
     0,
     {},
     {query("server.example.net", 1), kPing.sent(R"("ping_dest_set":1,"ping_dest_ipv4":"192.0.2.7")")}},
    {"name_of_ipv6",
     kPing,
     R"({"afi":"IPV6","destination":"server.example.net"})",
     0,
     {},
     {query("server.example.net", 2),
      kPing.sent(R"("ping_dest_set":1,"ping_afi":2,"ping_dest_ipv6":"2001:db8::7")")}},
    {"no_target_is_an_empty_message", kPing, std::nullopt, 4, {}, {kPing.sent("")}},
    {"unknown_family", kPing, R"({"afi":"UNKNOWN","destination":"192.0.2.7"})", 263, {kNoAfi}, {}},
    {"no_destination", kPing, R"({"afi":"IPV4"})", 263, {"Ping without destination is not supported"}, {}},
    {"colon_in_a_name", kPing, R"({"destination":"a:b"})", 261, {kBadName}, {}},
    {"blank_in_a_name", kPing, R"({"destination":"192.0.2.7 "})", 261, {kBadName}, {}},
    {"tab_in_a_name", kPing, "{\"destination\":\"a\\tb\"}", 261, {kBadName}, {}},
    {"unknown_name", kPing, R"({"destination":"nobody"})", 4, {}, {query("nobody", 1)}},
    {"name_without_that_family",
     kPing,
     R"({"afi":"IPV6","destination":"legacy.example.net"})",
     4,
     {},
     {query("legacy.example.net", 2)}},
    {"more_requests_than_the_switch_sends",
     kPing,
     R"({"destination":"192.0.2.7","count":"1001"})",
     4,
     {},
     {kPing.sent(R"("ping_mask":16,"ping_dest_set":1,"ping_dest_ipv4":"192.0.2.7","ping_count":1001)")}},
};
INSTANTIATE_TEST_SUITE_P(Ping, Reaching, testing::ValuesIn(kPings), CaseName());

const Case kTraces[] = {
    {"address",
     kTrace,
     R"({"destination":"192.0.2.7"})",
     0,
     {},
     {kTrace.sent(R"("trace_dest_set":1,"trace_dest_ipv4":"192.0.2.7")")}},
    {"everything",
     kTrace,
     R"({"afi":"IPV4","destination":"192.0.2.7","source-ip":"192.0.2.1","maxttl":"9","minttl":"2","timeout":"700","vrf":"blue"})",
     0,
     {},
     {kTrace.sent(
         R"("trace_dest_set":1,"trace_afi":1,"trace_dest_ipv4":"192.0.2.7","trace_source_ipv4":"192.0.2.1","trace_maxttl":9,"trace_minttl":2,"trace_timeout":700,"trace_vrf":"blue")")}},
    {"a_name_is_kept",
     kTrace,
     R"({"destination":"server.example.net"})",
     0,
     {},
     {query("server.example.net", 1),
      kTrace.sent(
          R"("trace_dest_set":1,"trace_dest_ipv4":"192.0.2.7","trace_hostname":"server.example.net")")}},
    {"name_of_ipv6",
     kTrace,
     R"({"afi":"IPV6","destination":"gateway.example.net"})",
     0,
     {},
     {query("gateway.example.net", 2),
      kTrace.sent(
          R"("trace_dest_set":1,"trace_afi":2,"trace_dest_ipv6":"2001:db8::1","trace_hostname":"gateway.example.net")")}},
    {"no_target_is_an_empty_message", kTrace, std::nullopt, 4, {}, {kTrace.sent("")}},
    {"unknown_family", kTrace, R"({"afi":"UNKNOWN","destination":"192.0.2.7"})", 263, {kNoAfi}, {}},
    {"no_destination", kTrace, "{}", 263, {"Traceroute without valid destination is not supported"}, {}},
    {"colon_in_a_name", kTrace, R"({"destination":"1:2"})", 261, {kBadName}, {}},
    {"bad_source",
     kTrace,
     R"({"destination":"192.0.2.7","source-ip":"2001:db8::1"})",
     261,
     {"Source ipv4 address is not valid"},
     {}},
    {"unknown_name", kTrace, R"({"destination":"nobody"})", 4, {}, {query("nobody", 1)}},
    {"hops_the_wrong_way_round",
     kTrace,
     R"({"destination":"192.0.2.7","maxttl":"2","minttl":"3"})",
     4,
     {},
     {kTrace.sent(R"("trace_dest_set":1,"trace_dest_ipv4":"192.0.2.7","trace_maxttl":2,"trace_minttl":3)")}},
};
INSTANTIATE_TEST_SUITE_P(Traceroute, Reaching, testing::ValuesIn(kTraces), CaseName());

class BothCommands : public testing::TestWithParam<Twin> { };
INSTANTIATE_TEST_SUITE_P(Table, BothCommands, testing::Values(kPing, kTrace),
                         [](const auto &of) { return std::string(of.param.rpc); });

TEST_P(BothCommands, NeedAnInput)
{
    SwitchBench bench;
    EXPECT_EQ(GetParam().run(bench, std::nullopt).status, 274);
    EXPECT_THAT(bench.sent(), IsEmpty());
}

TEST_P(BothCommands, ReturnTheWholeText)
{
    SwitchBench bench;
    const auto answer = GetParam().run(bench, R"({"target":{"destination":"192.0.2.7"}})");
    ASSERT_THAT(answer.output, SizeIs(1));
    EXPECT_THAT(answer.output[0], HasSubstr("192.0.2.7"));
    EXPECT_THAT(answer.output[0], testing::EndsWith("\n"));
}

// A failure of the back end has no text for the client; the log tells what it was.
TEST_P(BothCommands, TellFailuresToTheLogOnly)
{
    const Twin &twin = GetParam();
    const std::string word = twin.rpc == std::string("ping") ? "Ping" : "Traceroute";
    struct Failure {
        std::string call;
        FaultKind kind;
        std::string words, logged;
    };
    for (const Failure &c :
         {Failure{"ui_resolve_dns", FaultKind::null, "",
                  word + " Failed DNS: DNS query timed out...failed to resolve\n"},
          Failure{"ui_resolve_dns", FaultKind::refuse, "it is gone", word + " Failed it is gone\n"},
          Failure{"ui_resolve_dns", FaultKind::refuse, "", ""}, Failure{twin.call, FaultKind::null, "", ""},
          Failure{twin.call, FaultKind::refuse, "no route", "Error: no route\n"}}) {
        SwitchBench bench;
        bench.device().addFault(faultOf(c.call, c.kind, c.words));
        const LogCapture log(8);
        const RpcAnswer answer = twin.run(bench, R"({"target":{"destination":"server.example.net"}})");
        EXPECT_EQ(answer.status, 4);
        EXPECT_THAT(answer.texts, IsEmpty());
        EXPECT_THAT(answer.output, IsEmpty());
        EXPECT_THAT(log.errors() + log.debug(), HasSubstr(c.logged));
    }
}

TEST_P(BothCommands, ThatPrintNothingAnswerWithNothing)
{
    SwitchBench bench;
    auto fault = faultOf(GetParam().call, FaultKind::refuse);
    fault.uiErr = 0;
    bench.device().addFault(fault);
    const RpcAnswer answer = GetParam().run(bench, R"({"target":{"destination":"192.0.2.7"}})");
    EXPECT_EQ(answer.status, kOk);
    EXPECT_THAT(answer.output, IsEmpty());
}

// Not sixteen bytes: no address.
TEST_P(BothCommands, MeasureTheAddressOfAResolver)
{
    SwitchBench bench;
    for (const std::size_t length : {0, 4, 15, 17}) {
        std::vector<std::uint8_t> bytes(length, 1);
        DnsResolveResp made = DNS_RESOLVE_RESP__INIT;
        made.has_dns_ipv6 = 1;
        made.dns_ipv6 = {length, bytes.data()};
        const auto transport = std::make_shared<backend::ScriptedTransport>();
        transport->answer = backend::envelopeAround(backend::packed(made.base));
        const backend::UseTransport use(transport);
        const auto answer = GetParam().run(bench, R"({"target":{"afi":"IPV6","destination":"host"}})");
        EXPECT_EQ(answer.status, 4) << length;
        EXPECT_THAT(transport->requests, SizeIs(1)) << length;
    }
}

// Whether the machine has the tools or not.
TEST_P(BothCommands, ReachLoopback)
{
    SwitchBench bench;
    for (const char *target : {R"({"destination":"127.0.0.1")", R"({"afi":"IPV6","destination":"::1")"}) {
        const std::string count = GetParam().rpc == std::string("ping") ? R"(,"count":"1")" : "";
        const auto answer = GetParam().run(bench, std::string("{\"target\":") + target + count + "}}");
        EXPECT_EQ(answer.status, kOk);
        ASSERT_THAT(answer.output, SizeIs(1));
        EXPECT_THAT(answer.output[0], HasSubstr(target[2] == 'a' ? "::1" : "127.0.0.1"));
    }
}

TEST(PingMask, KeepsWhatWasMarkedBefore)
{
    std::uint32_t mask = 0;
    for (const std::uint32_t bit : {0, 4, 31})
        set_ping_data_mask(&mask, bit);
    EXPECT_EQ(mask, 0x80000011u);
    for (const std::uint32_t bit : {32u, 33u, 4'294'967'295u}) // it has no such bits
        set_ping_data_mask(&mask, bit);
    EXPECT_EQ(mask, 0x80000011u);
}

TEST(HostName, HasNoColonTabOrBlank)
{
    for (const char *good : {"", "a", "host-1.example.net", "ä"})
        EXPECT_EQ(validate_string(good), 1) << good;
    for (const char *bad : {":", " ", "\t", "a b", "a:b", "ab "})
        EXPECT_EQ(validate_string(bad), 0) << bad;
}

} // namespace
} // namespace test
