// DSCP trust of a port: one switch, and a state that takes two questions.
#include "backend/qos.h"
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/bundle/log_capture.h"

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;

const std::string kTrust = kEthernet + "/lyn-openconfig-if-trust-dscp-aug:trust-dscp";
const std::string kConfig = kTrust + "/config", kState = kTrust + "/state";
const std::string kPortCall = "ui_fe_qos_port_oper", kInterfaceCall = "ui_fe_interface_config_msg";

std::string portRequest(int opcode, int mode)
{
    return R"(ui_fe_qos_port_oper {"opcode":)" + std::to_string(opcode) + R"(,"qos_mode":)" +
        std::to_string(mode) + R"(,"port":{"name":"ethernet 1/1/1"}})";
}

const std::string kSentOn = portRequest(1, 2), kSentOff = portRequest(3, 2), kAskedMode = portRequest(5, 0),
                  kAskedInterface =
                      R"(ui_fe_interface_config_msg {"operation":5,"name":"ethernet 1/1/1","source":3})";
const std::string kOn = R"({"enabled":true})", kOff = R"({"enabled":false})", kNone = "{}";
const std::optional<std::string> kAbsent;

std::string failed(const std::string &operation, int value)
{
    return "trust_dscp_config_edit: Setting state to error " + operation + " operation ethernet 1/1/1/" +
        std::to_string(value) + "\n";
}

Deed refusedIn(const std::string &phase)
{
    return failure(273, {},
                   "\nDelete u_trust_dscp_config_edit callback for " + phase +
                       " phase, editop(4) not supported");
}

class TrustDscpConfig : public CallbackTest { };

TEST_P(TrustDscpConfig, DoesExactlyThis)
{
    EXPECT_EQ(perform(kConfig, GetParam()), GetParam().deed);
}

const Step kSteps[] = {
    {"merge", apply, merge, kOff, kOn, {{kSentOn}}},
    {"replace", apply, replace, kOn, kOff, {{kSentOff}}},
    {"create", apply, create, kAbsent, kOn, {{kSentOn}}},
    {"create_of_false_is_sent_too", apply, create, kAbsent, kOff, {{kSentOff}}},
    {"merge_without_the_leaf_is_quiet", apply, merge, kOn, kNone},
    {"replace_without_the_leaf_is_quiet", apply, replace, kOn, kNone},
    {"rollback_of_merge_sends_the_old_value", rollback, merge, kOff, kOn, {{kSentOff}}},
    {"rollback_of_replace", rollback, replace, kOn, kOff, {{kSentOn}}},
    {"rollback_without_an_old_value_is_quiet", rollback, merge, kNone, kOn},
    {"rollback_of_create_is_quiet", rollback, create, kAbsent, kOn},
    {"delete_is_not_refused_in_validate", validate, del, kOn, kAbsent},
    {"delete_is_refused_in_apply", apply, del, kOn, kAbsent, refusedIn("apply")},
    {"delete_is_refused_in_commit", commit, del, kOn, kAbsent, refusedIn("commit")},
    {"delete_is_refused_in_rollback", rollback, del, kOn, kAbsent, refusedIn("rollback")},

    {"a_dead_device_fails_a_merge", apply, merge, kOff, kOn, failure(4, {kSentOn}, failed("Merge", 1)),
     noAnswer(kPortCall)},
    {"a_refusal_fails_a_merge", apply, merge, kOn, kOff, failure(4, {kSentOff}, failed("Merge", 0)),
     refusal(kPortCall, "no")},
    {"a_refusal_fails_a_replace", apply, replace, kOff, kOn, failure(4, {kSentOn}, failed("Replace", 1)),
     refusal(kPortCall, "no")},
    {"a_refusal_fails_a_create", apply, create, kAbsent, kOn, failure(4, {kSentOn}, failed("Create", 1)),
     refusal(kPortCall, "no")},
    {"what_the_daemon_itself_says_does_not_count",
     apply,
     merge,
     kOff,
     kOn,
     {{kSentOn}},
     refusal(kPortCall, "no", 0, 2)},
    {"a_failure_in_rollback_is_only_logged",
     rollback,
     merge,
     kOff,
     kOn,
     {{kSentOff}, 0, {}, failed("Merge", 0)},
     noAnswer(kPortCall)},
};
INSTANTIATE_TEST_SUITE_P(Table, TrustDscpConfig,
                         testing::ValuesIn(andNothingElse({std::begin(kSteps), std::end(kSteps)}, kOff, kOn)),
                         CaseName());

TEST(TrustDscpRollback, SaysThatItBegins)
{
    SwitchBench bench;
    const LogCapture log(4); // the line has no test of the callbacks' debug level
    bench.call(rollback, replace, kConfig, kOff, kOn);
    EXPECT_EQ(log.debug(), "u_trust_dscp_config_edit: Start ROLLBACK Stage. Editop=2\n");
}

std::string config(const std::string &value)
{
    return R"({"lyn-openconfig-if-trust-dscp-aug:config":)" + value + "}";
}

std::string portsWithTrust(const std::string &value)
{
    return portsWith(
        R"(,"openconfig-if-ethernet:ethernet":{"lyn-openconfig-if-trust-dscp-aug:trust-dscp":{"config":)" +
        value + "}}");
}

TEST(TrustDscpEdit, CannotBeTakenAwayInAnyWay)
{
    SwitchBench bench(portsWithTrust(kOn));
    const std::string before = bench.running();
    for (const Outcome &outcome : {bench.remove(kConfig), bench.remove(kConfig + "/enabled"),
                                   bench.remove(kTrust), bench.put(kConfig, config(kNone))}) {
        EXPECT_EQ(outcome.status(), 273);
        EXPECT_EQ(outcome.tag(), "operation-not-supported");
    }
    EXPECT_THAT(bench.sent(), ElementsAre());
    EXPECT_EQ(bench.running(), before);
}

struct StateCase {
    std::string name;
    std::optional<switchsim::Fault> fault;
    std::string errors;
    std::vector<std::string> sent = {kAskedInterface, kAskedMode};

    friend void PrintTo(const StateCase &of, std::ostream *out) { *out << of.name; }
};

class TrustDscpState : public testing::TestWithParam<StateCase> { };

TEST_P(TrustDscpState, FailsWhenTheDeviceDoesNotTell)
{
    SwitchBench bench(portsWith());
    bench.device().addFault(*GetParam().fault);
    const LogCapture log;
    try {
        bench.read(kState, Content::all);
        FAIL() << "no refusal";
    } catch (const Failure &failure) {
        EXPECT_EQ(failure.errors.at(0).status, 4);
    }
    EXPECT_EQ(log.errors(), GetParam().errors);
    EXPECT_THAT(bench.sent(), testing::ElementsAreArray(GetParam().sent));
}

const StateCase kStateCases[] = {
    {"no_answer_about_the_interface",
     noAnswer(kInterfaceCall),
     "\nu_trust_dscp_state_get call ui_fe_interface_config_msg return NULL\n",
     {kAskedInterface}},
    {"a_refusal_about_the_interface",
     refusal(kInterfaceCall, "no", 9),
     "\nu_trust_dscp_state_get call ui_fe_interface_config_msg response return error: 9\n",
     {kAskedInterface}},
    {"no_answer_about_the_mode", noAnswer(kPortCall),
     "\nu_trust_dscp_state_get call ui_fe_qos_port_oper return NULL\n"},
    {"a_refusal_about_the_mode", refusal(kPortCall, "no", 9),
     "\nu_trust_dscp_state_get call ui_fe_qos_port_oper response return error: 9\n"},
};
INSTANTIATE_TEST_SUITE_P(Table, TrustDscpState, testing::ValuesIn(kStateCases), CaseName());

TEST(TrustDscpState, IsTrueForTheOneModeOnly)
{
    SwitchBench bench(portsWith());
    const auto state = [&] { return bench.read(kState, Content::all); };
    const std::string off = R"({"lyn-openconfig-if-trust-dscp-aug:state":{"enabled":false}})";
    EXPECT_EQ(state(), off);
    EXPECT_THAT(bench.sent(), ElementsAre(kAskedInterface, kAskedMode));
    bench.patch(kConfig, config(kOn));
    EXPECT_EQ(state(), R"({"lyn-openconfig-if-trust-dscp-aug:state":{"enabled":true}})");

    // Somebody else gives the port another mode.
    QosPortId port = QOS_PORT_ID__INIT;
    std::string name = "ethernet 1/1/1";
    port.name = {name.size(), reinterpret_cast<std::uint8_t *>(name.data())};
    QosPortRequest request = QOS_PORT_REQUEST__INIT;
    request.opcode = 1;
    request.qos_mode = 1;
    request.port = &port;
    ui_fe_qos_port_post_op(ui_fe_qos_port_oper(&request, 2));
    EXPECT_EQ(state(), off);
}

TEST(TrustDscpState, AsksForTheInterfaceEvenWithoutANextInstance)
{
    SwitchBench bench;
    EXPECT_EQ(
        getNextInstance(bench,
                        "/oc-if:interfaces/oc-if:interface/oc-eth:ethernet/lyn-oc-trust-dscp-aug:trust-dscp"
                        "/lyn-oc-trust-dscp-aug:state",
                        kState, "ethernet 1/1/1"),
        1009);
    EXPECT_THAT(bench.sent(), ElementsAre(kAskedInterface));
}

} // namespace
} // namespace test
