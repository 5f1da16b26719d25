// DSCP trust of a port: one switch, and a state that takes two questions.
#include "backend/qos.h"
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/bundle/port_paths.h"

namespace test {
namespace {

const std::string kTrust = kEthernet + "/lyn-openconfig-if-trust-dscp-aug:trust-dscp",
                  kConfig = kTrust + "/config", kState = kTrust + "/state", kPortCall = "ui_fe_qos_port_oper",
                  kInterfaceCall = "ui_fe_interface_config_msg";

const Pattern portRequest{kPortCall + R"( {"opcode":$,"qos_mode":$,"port":{"name":"ethernet 1/1/1"}})"};

const std::string kSentOn = portRequest(1, 2), kSentOff = portRequest(3, 2), kAskedMode = portRequest(5, 0),
                  kAskedInterface = kInterfaceCall + R"( {"operation":5,"name":"ethernet 1/1/1","source":3})",
                  kOn = R"({"enabled":true})", kOff = R"({"enabled":false})", kNone = "{}";

const Pattern failed{"trust_dscp_config_edit: Setting state to error $ operation ethernet 1/1/1/$\n"};

Cell refusedDelete(EditPhase phase)
{
    return in(phase,
              deleted("", kOn, {}, 273, "",
                      std::string("\nDelete u_trust_dscp_config_edit callback for ") +
                          agt_cbtype_name(phase) + " phase, editop(4) not supported"));
}

const std::vector<Cell> kCells = {
    merged("", kOff, kOn, {kSentOn}),
    merged("merge without the leaf", kOn, kNone),
    replaced("", kOn, kOff, {kSentOff}),
    replaced("replace without the leaf", kOn, kNone),
    created("create of false is sent too", kOff, {kSentOff}),
    in(rollback, merged("rollback of merge sends the old value", kOff, kOn, {kSentOff})),
    in(rollback, merged("rollback without an old value", kNone, kOn)),
    in(rollback, replaced("", kOn, kOff, {kSentOn})),
    refusedDelete(apply), // and not in validate
    refusedDelete(commit),
    refusedDelete(rollback),
    under(noAnswer(kPortCall), merged("a dead device", kOff, kOn, {kSentOn}, 4, "", failed("Merge", 1))),
    under(refusal(kPortCall), replaced("refused", kOn, kOff, {kSentOff}, 4, "", failed("Replace", 0))),
    under(refusal(kPortCall), created("refused", kOn, {kSentOn}, 4, "", failed("Create", 1))),
    under(refusal(kPortCall, "no", 0, 2), merged("the daemon itself does not count", kOff, kOn, {kSentOn})),
    under(
        noAnswer(kPortCall),
        in(rollback,
           merged("a failure in rollback is only logged", kOff, kOn, {kSentOff}, 0, "", failed("Merge", 0)))),
};

TEST(TrustDscpConfig, DoesExactlyThis)
{
    SwitchBench bench;
    check(bench, kConfig, kCells, Quiet{kOff, kOn});
    const LogCapture log(4); // the line has no test of the callbacks' debug level
    bench.call(rollback, replace, kConfig, kOff, kOn);
    EXPECT_EQ(log.debug(), "u_trust_dscp_config_edit: Start ROLLBACK Stage. Editop=2\n");
}

TEST(TrustDscpEdit, CannotBeTakenAwayInAnyWay)
{
    SwitchBench bench(portsWith(R"(,"openconfig-if-ethernet:ethernet":{"lyn-openconfig-if-trust-dscp-aug:)"
                                R"(trust-dscp":{"config":)" +
                                kOn + "}}"));
    const std::string before = bench.running();
    for (const Outcome &outcome : {bench.remove(kConfig + "/enabled"), bench.remove(kTrust),
                                   bench.put(kConfig, R"({"lyn-openconfig-if-trust-dscp-aug:config":{}})")})
        EXPECT_EQ(outcome.status(), 273);
    EXPECT_THAT(bench.sent(), ElementsAre());
    EXPECT_EQ(bench.running(), before);
}

TEST(TrustDscpState, FailsWhenTheDeviceDoesNotTell)
{
    struct Case {
        switchsim::Fault fault;
        std::string errors;
        Texts sent = {kAskedInterface, kAskedMode};
    };
    SwitchBench bench(portsWith());
    for (const Case &c :
         {Case{noAnswer(kInterfaceCall), kInterfaceCall + " return NULL\n", {kAskedInterface}},
          Case{refusal(kInterfaceCall, "no", 9),
               kInterfaceCall + " response return error: 9\n",
               {kAskedInterface}},
          Case{noAnswer(kPortCall), kPortCall + " return NULL\n"},
          Case{refusal(kPortCall, "no", 9), kPortCall + " response return error: 9\n"}}) {
        strike(bench, c.fault);
        bench.sent();
        const LogCapture log;
        EXPECT_EQ(readFailure(bench, kState), 4);
        EXPECT_EQ(log.errors(), "\nu_trust_dscp_state_get call " + c.errors);
        EXPECT_EQ(bench.sent(), c.sent);
    }
}

TEST(TrustDscpState, IsTrueForTheOneModeOnly)
{
    SwitchBench bench(portsWith());
    const auto state = [&] { return bench.read(kState, Content::all); };
    const std::string off = R"({"lyn-openconfig-if-trust-dscp-aug:state":{"enabled":false}})";
    EXPECT_EQ(state(), off);
    EXPECT_THAT(bench.sent(), ElementsAre(kAskedInterface, kAskedMode));
    bench.call(apply, merge, kConfig, kOff, kOn);
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
    bench.sent();
    EXPECT_EQ(getByHand(bench,
                        "/oc-if:interfaces/oc-if:interface/oc-eth:ethernet/lyn-oc-trust-dscp-aug:trust-dscp"
                        "/lyn-oc-trust-dscp-aug:state",
                        kState, getNext),
              Got{1009});
    EXPECT_THAT(bench.sent(), ElementsAre(kAskedInterface)); // even without a next instance
}

} // namespace
} // namespace test
