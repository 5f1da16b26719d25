// Edits that concern several units: what is rolled back when a later one fails.
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/bundle/port_paths.h"

namespace test {
namespace {

const Pattern whole{R"({"ietf-restconf:data":{$}})"};
const Pattern port{R"("openconfig-interfaces:interfaces":{"interface":[{"name":"ethernet 1/1/1",$}]})"};
const Pattern broadcast{
    R"("config":{"lyn-openconfig-stormcontrol:storm_control_config":{"broadcast":{"limit":$}}})"};
const Pattern sentLimit{
    R"(sec_protobuf_fe_config_handler {"message":"bum_rate_limit_msg","code":10027101,"sub_type":41)"
    R"(,"msg_type":41,"op":$,"port_name":"ethernet 1/1/1","limit":$,"kbps":0,"traffic_class":0})"};
const Pattern ethernet{R"("openconfig-if-ethernet:ethernet":{$})"};

const Pattern trust{R"("lyn-openconfig-if-trust-dscp-aug:trust-dscp":{"config":{"enabled":$}})"};

const Pattern sentTrust{R"(ui_fe_qos_port_oper {"opcode":$,"qos_mode":2,"port":{"name":"ethernet 1/1/1"}})"};
const Pattern protect{
    R"("lyn-openconfig-protectedport:protectedport":{"interfaces":{"interface":[{"name":"$","config)"
    R"(":{"protectedport":true}}]}})"};
const Pattern sentProtect{R"(protected_port_config_apply {"opcode":1,"port_name":"$"})"};

const std::string
    kSentProfile = R"(ui_forwarding_profile_config_apply {"opcode":1,"profile_name":"wide"})",
    kProfile = R"("lyn-openconfig-forwarding-profile:forwarding-profile":{"current-profile-name":"wide"})";

TEST(TwoUnits, AreUndoneTogether)
{
    const std::string badPort = protect("ethernet 9/1/1"), sentBadPort = sentProtect("ethernet 9/1/1"),
                      both = whole(port(broadcast(200) + "," + ethernet(trust("true"))) + "," + badPort);
    const Texts undone = {sentLimit(1, 200), sentTrust(1), sentBadPort, sentTrust(3), sentLimit(1, 100)};
    struct Case {
        std::string name, body;
        Texts sent;
        std::optional<switchsim::Fault> fault;
    };
    for (const Case &c :
         {Case{"newest first", both, undone, {}},
          Case{"a failure in rollback stops nothing", both, undone, noAnswer("ui_fe_qos_port_oper", 1)},
          Case{"a protected port stays so",
               whole(protect("ethernet 1/1/1") + "," + port(broadcast(200)) + "," + kProfile),
               {sentLimit(1, 200), sentProtect("ethernet 1/1/1"), kSentProfile, sentLimit(1, 100)},
               refusal("ui_forwarding_profile_config_apply", "no")}}) {
        SCOPED_TRACE(c.name);
        SwitchBench bench(portsWith("," + broadcast(100) + "," + ethernet(trust("false"))), 4);
        const std::string before = bench.running();
        if (c.fault)
            bench.device().addFault(*c.fault);
        const Outcome outcome = bench.patch("", c.body);
        EXPECT_EQ(outcome.status(), 1042);
        EXPECT_EQ(outcome.refusals.size(), 1u);
        EXPECT_EQ(bench.sent(), c.sent);
        EXPECT_EQ(bench.running(), before);
    }
}

} // namespace
} // namespace test
