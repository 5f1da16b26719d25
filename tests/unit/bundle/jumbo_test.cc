#include "tests/unit/support/switch_bench.h"
#include "toolkit/toolkit.h"

#include <gmock/gmock.h>

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;
using testing::ElementsAreArray;

const std::string kConfig = "lyn-openconfig-jumbo:jumbo/config";
const std::string kOn = R"({"enabled":true})", kOff = R"({"enabled":false})";
const std::string kSentOn = R"(ui_fe_qos_jumbo {"opcode":1,"value":1})",
                  kSentOff = R"(ui_fe_qos_jumbo {"opcode":1,"value":0})",
                  kAsked = R"(ui_fe_qos_jumbo {"opcode":10,"value":0})";

std::string running(const std::string &config)
{
    return R"({"lyn-openconfig-jumbo:jumbo":{"config":)" + config + "}}";
}

std::string body(const std::string &config)
{
    return R"({"lyn-openconfig-jumbo:config":)" + config + "}";
}

switchsim::Fault fault(switchsim::FaultKind kind, int uiErr = 1)
{
    switchsim::Fault made;
    made.call = "ui_fe_qos_jumbo";
    made.kind = kind;
    made.uiErr = uiErr;
    return made;
}

struct Cell {
    std::string name;
    EditPhase phase;
    EditOp op;
    std::optional<std::string> before, after;
    std::vector<std::string> requests = {};
    Status status = kOk;
    Status whenRefused = kOk; // the status when the device refuses
};

class JumboConfig : public testing::TestWithParam<Cell> { };

TEST_P(JumboConfig, MakesExactlyTheseRequests)
{
    const Cell &c = GetParam();
    SwitchBench bench;
    EXPECT_EQ(bench.call(c.phase, c.op, kConfig, c.before, c.after).status, c.status);
    EXPECT_THAT(bench.sent(), ElementsAreArray(c.requests));
    bench.device().addFault(fault(switchsim::FaultKind::refuse));
    const Callback refused = bench.call(c.phase, c.op, kConfig, c.before, c.after);
    EXPECT_EQ(refused.status, c.requests.empty() ? c.status : c.whenRefused);
    EXPECT_EQ(refused.records.size(), refused.status ? 1u : 0u);
}

const Cell kCells[] = {
    {"merge_sends_in_apply", apply, merge, kOff, kOn, {kSentOn}, 0, 4},
    {"replace_sends_in_apply", apply, replace, kOn, kOff, {kSentOff}, 0, 4},
    {"create_sends_in_apply", apply, create, std::nullopt, kOn, {kSentOn}, 0, 4},
    {"merge_without_the_leaf_is_quiet", apply, merge, kOn, "{}"},
    {"replace_without_the_leaf_is_quiet", apply, replace, kOn, "{}"},
    {"load_is_quiet", apply, load, std::nullopt, kOn},
    {"validate_of_merge", validate, merge, kOff, kOn},
    {"validate_of_create", validate, create, std::nullopt, kOn},
    {"commit_of_replace", commit, replace, kOn, kOff},
    {"rollback_of_merge_sends_the_new_value_again", rollback, merge, kOff, kOn, {kSentOn}, 0, 0},
    {"rollback_of_replace", rollback, replace, kOn, kOff, {kSentOff}, 0, 0},
    {"rollback_of_create", rollback, create, std::nullopt, kOn, {kSentOn}, 0, 0},
    {"rollback_of_load", rollback, load, std::nullopt, kOn},
    {"delete_is_refused_in_validate", validate, del, kOn, std::nullopt, {}, 273},
    {"delete_is_refused_in_apply", apply, del, kOn, std::nullopt, {}, 273},
    {"delete_is_refused_in_commit", commit, del, kOn, std::nullopt, {}, 273},
    {"delete_is_refused_in_rollback", rollback, del, kOn, std::nullopt, {}, 273},
    {"an_unknown_operation_cannot_occur", apply, static_cast<EditOp>(6), kOff, kOn, {}, 4},
    {"an_unknown_phase_cannot_occur", static_cast<EditPhase>(4), merge, kOff, kOn, {}, 4},
};
INSTANTIATE_TEST_SUITE_P(Table, JumboConfig, testing::ValuesIn(kCells), CaseName());

TEST(Jumbo, PatchTwiceSendsOnce)
{
    SwitchBench bench;
    EXPECT_TRUE(bench.patch(kConfig, body(kOn)).ok());
    EXPECT_TRUE(bench.patch(kConfig, body(kOn)).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(kSentOn));
    EXPECT_TRUE(bench.put(kConfig, body(kOff)).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(kSentOff));
}

TEST(Jumbo, NeitherLevelCanBeDeleted)
{
    SwitchBench bench(running(kOn));
    for (const char *path : {"lyn-openconfig-jumbo:jumbo/config", "lyn-openconfig-jumbo:jumbo"}) {
        const Outcome outcome = bench.remove(path);
        EXPECT_EQ(outcome.status(), 273) << path;
        EXPECT_EQ(outcome.tag(), "operation-not-supported") << path;
    }
    EXPECT_THAT(bench.sent(), ElementsAre());
    EXPECT_EQ(bench.read(kConfig), body(kOn));
}

TEST(Jumbo, LoadSendsNothing)
{
    SwitchBench bench(running(kOn));
    const auto lines = bench.device().journal().readAfter(0, 100);
    EXPECT_TRUE(std::none_of(lines.begin(), lines.end(), [](const auto &line) {
        return line.call->name == std::string("ui_fe_qos_jumbo");
    }));
}

TEST(Jumbo, ARefusalIsOneGenericRecordAndRunningStays)
{
    SwitchBench bench(running(kOff));
    bench.device().addFault(fault(switchsim::FaultKind::refuse, 7));
    EXPECT_THAT(bench.put(kConfig + "/enabled", R"({"lyn-openconfig-jumbo:enabled":true})").refusals,
                ElementsAre(Refusal{4, "operation-failed", "/lyn-openconfig-jumbo:jumbo/config",
                                    statusInfo(4).text}));
    EXPECT_EQ(bench.read(kConfig), body(kOff));
    bench.device().clearFaults();
    bench.unplug();
    EXPECT_EQ(bench.patch(kConfig, body(kOn)).status(), 4);
    bench.plugIn();
    EXPECT_TRUE(bench.patch(kConfig, body(kOn)).ok());
}

Status refuseLate(Session *, Request *, EditPhase phase, EditOp, Value *, Value *)
{
    return phase == apply ? 261 : kOk;
}

TEST(Jumbo, IsRolledBackWhenALaterNodeFails)
{
    SwitchBench bench(running(kOff), 1, [](Host &host) {
        host.loadServerModule("toy");
        agt_cb_register_edit2_callback("toy", "/t:late", nullptr, refuseLate);
    });
    const std::string edit =
        R"({"ietf-restconf:data":{"lyn-openconfig-jumbo:jumbo":{"config":{"enabled":true}},"toy:late":{"plain":"x"}}})";
    EXPECT_EQ(bench.patch("", edit).status(), 261);
    EXPECT_THAT(bench.sent(), ElementsAre(kSentOn, kSentOn)); // rollback sends the new value once more
    EXPECT_EQ(bench.read(kConfig), body(kOff));
    // A failure in rollback changes nothing of what the client sees.
    auto later = fault(switchsim::FaultKind::refuse);
    later.after = 1;
    bench.device().addFault(later);
    EXPECT_EQ(bench.patch("", edit).status(), 261);
    EXPECT_EQ(bench.read(kConfig), body(kOff));
}

TEST(JumboState, IsWhatTheDeviceSays)
{
    SwitchBench bench;
    const auto state = [&](const char *below = "") {
        return bench.read("lyn-openconfig-jumbo:jumbo/operation-state" + std::string(below), Content::all);
    };
    EXPECT_EQ(state(), R"({"lyn-openconfig-jumbo:operation-state":{"enabled":false}})");
    bench.patch(kConfig, body(kOn));
    bench.sent();
    EXPECT_EQ(state("/enabled"), R"({"lyn-openconfig-jumbo:enabled":true})");
    EXPECT_THAT(bench.sent(), ElementsAre(kAsked));
    bench.device().addFault(fault(switchsim::FaultKind::null));
    EXPECT_EQ(state(), R"({"lyn-openconfig-jumbo:operation-state":{}})"); // no answer, no leaf
    bench.device().clearFaults();
    bench.device().addFault(fault(switchsim::FaultKind::refuse));
    try {
        state();
        FAIL() << "no refusal";
    } catch (const Failure &failure) {
        EXPECT_EQ(failure.errors.at(0).appTag, "274");
    }
}

TEST(JumboState, HasNoNextInstance)
{
    SwitchBench bench;
    const auto &get = bench.host()
                          .impl()
                          .registry.find("/lyn-openconfig-jumbo:jumbo/lyn-openconfig-jumbo:operation-state")
                          ->get;
    GetBlock block;
    block.node = bench.target("lyn-openconfig-jumbo:jumbo/operation-state").node().schema();
    block.mode = getNext;
    EXPECT_EQ(get(nullptr, nullptr, &block), 1009);
    EXPECT_THAT(bench.sent(), ElementsAre());
    // The device is asked even when no child is wanted.
    const Selection nothing{{{nullptr, {}}}};
    block.mode = getValue;
    block.selection = &nothing;
    EXPECT_EQ(get(nullptr, nullptr, &block), 0);
    EXPECT_THAT(bench.sent(), ElementsAre(kAsked));
}

} // namespace
} // namespace test
