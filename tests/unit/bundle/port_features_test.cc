// Edits that concern several units: what is rolled back when a later one fails.
#include "tests/unit/bundle/callback_test.h"

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;

std::string whole(const std::string &members)
{
    return R"({"ietf-restconf:data":{)" + members + "}}";
}

std::string port(const std::string &members)
{
    return R"("openconfig-interfaces:interfaces":{"interface":[{"name":"ethernet 1/1/1",)" + members + "}]}";
}

std::string broadcast(int limit)
{
    return R"("config":{"lyn-openconfig-stormcontrol:storm_control_config":{"broadcast":{"limit":)" +
        std::to_string(limit) + "}}}";
}

std::string sentLimit(int op, int limit)
{
    return R"(sec_protobuf_fe_config_handler {"message":"bum_rate_limit_msg","code":10027101,"sub_type":41,)"
           R"("msg_type":41,"op":)" +
        std::to_string(op) + R"(,"port_name":"ethernet 1/1/1","limit":)" + std::to_string(limit) +
        R"(,"kbps":0,"traffic_class":0})";
}

std::string ethernet(const std::string &members)
{
    return R"("openconfig-if-ethernet:ethernet":{)" + members + "}";
}

std::string trust(bool enabled)
{
    return std::string(R"("lyn-openconfig-if-trust-dscp-aug:trust-dscp":{"config":{"enabled":)") +
        (enabled ? "true" : "false") + "}}";
}

std::string sentTrust(int opcode)
{
    return R"(ui_fe_qos_port_oper {"opcode":)" + std::to_string(opcode) +
        R"(,"qos_mode":2,"port":{"name":"ethernet 1/1/1"}})";
}

std::string protect(const std::string &name)
{
    return R"("lyn-openconfig-protectedport:protectedport":{"interfaces":{"interface":[{"name":")" + name +
        R"(","config":{"protectedport":true}}]}})";
}

std::string sentProtect(const std::string &name)
{
    return R"(protected_port_config_apply {"opcode":1,"port_name":")" + name + R"("})";
}

const std::string
    kSentProfile = R"(ui_forwarding_profile_config_apply {"opcode":1,"profile_name":"wide"})",
    kProfile = R"("lyn-openconfig-forwarding-profile:forwarding-profile":{"current-profile-name":"wide"})";

struct Case {
    std::string name;
    std::string body;
    std::optional<switchsim::Fault> fault;
    Status status;
    std::vector<std::string> sent;

    friend void PrintTo(const Case &of, std::ostream *out) { *out << of.name; }
};

class TwoUnits : public testing::TestWithParam<Case> { };

TEST_P(TwoUnits, AreUndoneTogether)
{
    const Case &c = GetParam();
    SwitchBench bench(portsWith("," + broadcast(100) + "," + ethernet(trust(false))), 4);
    const std::string before = bench.running();
    if (c.fault)
        bench.device().addFault(*c.fault);
    const Outcome outcome = bench.patch("", c.body);
    EXPECT_EQ(outcome.status(), c.status);
    EXPECT_EQ(outcome.refusals.size(), 1u);
    EXPECT_THAT(bench.sent(), testing::ElementsAreArray(c.sent));
    EXPECT_EQ(bench.running(), before);
}

const Case kCases[] = {
    {"storm_control_gets_its_old_limit_back",
     whole(port(broadcast(200)) + "," + protect("ethernet 9/1/1")),
     {},
     1042,
     {sentLimit(1, 200), sentProtect("ethernet 9/1/1"), sentLimit(1, 100)}},
    {"trust_gets_its_old_value_back",
     whole(port(ethernet(trust(true))) + "," + protect("ethernet 9/1/1")),
     {},
     1042,
     {sentTrust(1), sentProtect("ethernet 9/1/1"), sentTrust(3)}},
    {"newest_first",
     whole(port(broadcast(200) + "," + ethernet(trust(true))) + "," + protect("ethernet 9/1/1")),
     {},
     1042,
     {sentLimit(1, 200), sentTrust(1), sentProtect("ethernet 9/1/1"), sentTrust(3), sentLimit(1, 100)}},
    {"a_protected_port_stays_so",
     whole(protect("ethernet 1/1/1") + "," + port(broadcast(200)) + "," + kProfile),
     refusal("ui_forwarding_profile_config_apply", "no"),
     1042,
     {sentLimit(1, 200), sentProtect("ethernet 1/1/1"), kSentProfile, sentLimit(1, 100)}},
    {"the_first_one_fails_alone",
     whole(port(broadcast(200)) + "," + protect("ethernet 1/1/1")),
     noAnswer("sec_protobuf_fe_config_handler"),
     4,
     {sentLimit(1, 200)}},
    {"a_failure_in_rollback_stops_nothing",
     whole(port(broadcast(200) + "," + ethernet(trust(true))) + "," + protect("ethernet 9/1/1")),
     noAnswer("ui_fe_qos_port_oper", 1),
     1042,
     {sentLimit(1, 200), sentTrust(1), sentProtect("ethernet 9/1/1"), sentTrust(3), sentLimit(1, 100)}},
};
INSTANTIATE_TEST_SUITE_P(Rollback, TwoUnits, testing::ValuesIn(kCases), CaseName());

TEST(DeadDevice, FailsEveryEditThatSendsAndTheNextOneWorks)
{
    SwitchBench bench(portsWith(), 4);
    const std::string before = bench.running();
    const std::string edits[] = {
        whole(port(broadcast(1))), whole(port(ethernet(trust(true)))),
        whole(port(ethernet(R"("lyn-openconfig-if-poe-aug:poe":{"config":{"priority":1}})"))),
        whole(protect("ethernet 1/1/1")), whole(kProfile)};
    bench.unplug();
    for (const std::string &edit : edits)
        EXPECT_EQ(bench.patch("", edit).status(), 4) << edit;
    EXPECT_EQ(bench.running(), before);
    bench.plugIn();
    for (const std::string &edit : edits)
        EXPECT_TRUE(bench.patch("", edit).ok()) << edit;
}

TEST(Startup, SendsNothing)
{
    SwitchBench bench(
        R"({)" +
            port(broadcast(5) + "," +
                 ethernet(trust(true) + R"(,"lyn-openconfig-if-poe-aug:poe":{"config":{"enabled":true}})")) +
            "," + protect("ethernet 1/1/1") + "," + kProfile + "}",
        4);
    EXPECT_NE(bench.running(), "");
    for (const auto &line : bench.device().journal().readAfter(0, 1000))
        EXPECT_THAT(line.call->name,
                    testing::Not(testing::AnyOf("sec_protobuf_fe_config_handler", "ui_fe_qos_port_oper",
                                                "ui_fe_poe_config_cmd_send", "protected_port_config_apply",
                                                "ui_forwarding_profile_config_apply")));
}

} // namespace
} // namespace test
