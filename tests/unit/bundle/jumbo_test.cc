// Jumbo frames: one switch, that is not removed and whose rollback sends the new value once more.
#include "tests/unit/bundle/callback_test.h"

namespace test {
namespace {

const std::string kJumbo = "lyn-openconfig-jumbo:jumbo", kConfig = kJumbo + "/config",
                  kState = kJumbo + "/operation-state", kCall = "ui_fe_qos_jumbo",
                  kOn = R"({"enabled":true})", kOff = R"({"enabled":false})",
                  kSentOn = kCall + R"( {"opcode":1,"value":1})",
                  kSentOff = kCall + R"( {"opcode":1,"value":0})",
                  kAsked = kCall + R"( {"opcode":10,"value":0})";

const std::vector<Cell> kCells = {
    merged("", kOff, kOn, {kSentOn}),
    merged("merge without the leaf", kOn, "{}"),
    replaced("", kOn, kOff, {kSentOff}),
    created("", kOn, {kSentOn}),
    in(rollback, merged("", kOff, kOn, {kSentOn})),
    in(rollback, replaced("", kOn, kOff, {kSentOff})),
    in(rollback, created("", kOn, {kSentOn})),
    in(validate, deleted("", kOn, {}, 273)),
    deleted("", kOn, {}, 273),
    in(commit, deleted("", kOn, {}, 273)),
    in(rollback, deleted("", kOn, {}, 273)),
    under(refusal(kCall, "no"), merged("refused", kOff, kOn, {kSentOn}, 4)),
    under(noAnswer(kCall), created("a dead device", kOn, {kSentOn}, 4)),
    under(refusal(kCall, "no"),
          in(rollback,
             merged("refused in rollback", kOff, kOn, {kSentOn}, 0, "",
                    "Jumbo: Setting state to error Merge operation 1\n"))),
};

TEST(JumboConfig, DoesExactlyThis)
{
    SwitchBench bench;
    check(bench, kConfig, kCells, Quiet{kOff, kOn});
    // What cannot occur: an operation and a phase that nobody knows.
    EXPECT_EQ(bench.call(apply, static_cast<EditOp>(6), kConfig, kOff, kOn).status, 4);
    const LogCapture log;
    EXPECT_EQ(bench.call(static_cast<EditPhase>(4), merge, kConfig, kOff, kOn).status, 4);
    EXPECT_EQ(log.errors(), internalError("rules.h"));
}

TEST(Jumbo, CannotBeDeletedAsAWhole)
{
    SwitchBench bench(R"({"lyn-openconfig-jumbo:jumbo":{"config":)" + kOn + "}}");
    EXPECT_EQ(bench.remove(kJumbo).status(), 273);
    EXPECT_THAT(bench.sent(), ElementsAre());
    EXPECT_EQ(bench.read(kConfig), R"({"lyn-openconfig-jumbo:config":)" + kOn + "}");
}

TEST(JumboState, IsWhatTheDeviceSays)
{
    SwitchBench bench;
    const auto state = [&] { return bench.read(kState, Content::all); };
    EXPECT_EQ(state(), R"({"lyn-openconfig-jumbo:operation-state":{"enabled":false}})");
    EXPECT_THAT(bench.sent(), ElementsAre(kAsked));
    bench.patch(kConfig, R"({"lyn-openconfig-jumbo:config":)" + kOn + "}");
    EXPECT_EQ(state(), R"({"lyn-openconfig-jumbo:operation-state":{"enabled":true}})");
    strike(bench, noAnswer(kCall));
    EXPECT_EQ(state(), R"({"lyn-openconfig-jumbo:operation-state":{}})"); // no answer, no leaf
    strike(bench, refusal(kCall));
    EXPECT_EQ(readFailure(bench, kState), 274);
    bench.sent();
    EXPECT_EQ(
        getByHand(bench, "/lyn-openconfig-jumbo:jumbo/lyn-openconfig-jumbo:operation-state", kState, getNext),
        Got{1009});
    EXPECT_THAT(bench.sent(), ElementsAre());
}

} // namespace
} // namespace test
