// Storm control: limits of three classes of traffic on a port.
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/bundle/port_paths.h"

namespace test {
namespace {

const std::string kStormControl = kPort + "/config/lyn-openconfig-stormcontrol:storm_control_config",
                  kBroadcast = kStormControl + "/broadcast", kHandler = "sec_protobuf_fe_config_handler";

const Pattern message{kHandler +
                      R"( {"message":"bum_rate_limit_msg","code":10027101,"sub_type":41,"msg_type":41,)"
                      R"("op":$,"port_name":"ethernet 1/1/1","limit":$,"kbps":$,"traffic_class":$})"};

const std::string kNone = "{}", kSlow = R"({"limit":100})", kFast = R"({"limit":200})",
                  kSlowKbps = R"({"limit":100,"kbps":true})", kFastKbps = R"({"limit":200,"kbps":true})",
                  kZero = R"({"limit":0,"kbps":false})", kZeroKbps = R"({"limit":0,"kbps":true})",
                  kKbpsAlone = R"({"kbps":true})", kFailed = "ITC failed : 1 \n";

const std::vector<Cell> kCells = {
    merged("the limit keeps kbps", kSlowKbps, kFastKbps, {message(1, 200, 1, 0)}),
    merged("kbps keeps the limit", kSlow, kSlowKbps, {message(1, 100, 1, 0)}),
    merged("kbps to false", kSlowKbps, kSlow, {message(1, 100, 0, 0)}),
    merged("kbps without a limit", kNone, kKbpsAlone),
    merged("a limit of zero is sent", kNone, kZero, {message(1, 0, 0, 0)}),
    merged("the limit goes", kSlowKbps, kKbpsAlone, {message(1, 0, 1, 0)}),
    replaced("", kSlow, kFastKbps, {message(1, 200, 1, 0)}),
    replaced("the limit goes", kSlow, kKbpsAlone, {message(1, 0, 1, 0)}),
    replaced("without limits", kZero, kKbpsAlone),
    replaced("zero by zero", kZeroKbps, kZero),
    created("", kSlowKbps, {message(1, 100, 1, 0)}),
    created("a limit of zero is sent", kZero, {message(1, 0, 0, 0)}),
    created("without a limit", kKbpsAlone),
    deleted("delete removes what was set", kSlowKbps, {message(3, 100, 1, 0)}),
    deleted("of zero and false", kZero),
    deleted("of zero kilobits is sent", kZeroKbps, {message(3, 0, 1, 0)}),
    deleted("without a limit", kKbpsAlone),
    in(rollback, merged("rollback sends the old values", kSlowKbps, kFast, {message(1, 100, 1, 0)})),
    in(rollback, replaced("rollback sends the old values", kSlow, kFastKbps, {message(1, 100, 0, 0)})),
    in(rollback, deleted("rollback adds again", kSlowKbps, {message(1, 100, 1, 0)})),
    in(rollback, created("rollback sets the limit to zero", kSlowKbps, {message(1, 0, 0, 0)})),
    under(noAnswer(kHandler), merged("a dead device", kSlow, kFast, {message(1, 200, 0, 0)}, 4, "", kFailed)),
    under(noAnswer(kHandler),
          replaced("a dead device", kSlow, kFast, {message(1, 200, 0, 0)}, 4, "", kFailed)),
    under(noAnswer(kHandler), deleted("a dead device", kSlow, {message(3, 100, 0, 0)}, 4, "", kFailed)),
    under(noAnswer(kHandler),
          in(rollback, merged("a dead device", kSlow, kFast, {message(1, 100, 0, 0)}, 4, "", kFailed))),
    under(refusal(kHandler, "no", 1, 2),
          merged("a refusal is ignored", kSlow, kFast, {message(1, 200, 0, 0)})),
    under(refusal(kHandler, "no", 1, 2), deleted("a refusal is ignored", kSlow, {message(3, 100, 0, 0)})),
};

TEST(StormControl, DoesExactlyThis)
{
    SwitchBench bench;
    check(bench, kBroadcast, kCells, Quiet{kSlowKbps, kFast});
    const char *const classes[] = {"broadcast", "multicast", "unknown-unicast"};
    for (int i = 0; i < 3; ++i)
        check(bench, kStormControl + "/" + classes[i],
              {created(classes[i], kSlowKbps, {message(1, 100, 1, i)}),
               deleted(classes[i], kSlowKbps, {message(3, 100, 1, i)})});
}

TEST(StormControl, TheDevicesWordsGoToTheDebugLogAsTheyAre)
{
    SwitchBench bench;
    strike(bench, refusal(kHandler, "50% is too much", 0, 6));
    const LogCapture log(9);
    EXPECT_EQ(bench.call(apply, create, kBroadcast, kAbsent, kSlow).status, kOk);
    EXPECT_THAT(log.debug(), HasSubstr("50% is too much"));
}

TEST(StormControlEdit, ClassesGoLastFirstWithTheNodeAroundThem)
{
    SwitchBench bench(
        portsWith(R"(,"config":{"lyn-openconfig-stormcontrol:storm_control_config":{"broadcast":{"limit":1},)"
                  R"("multicast":{"limit":2},"unknown-unicast":{"limit":3}}})"));
    EXPECT_TRUE(bench.remove(kStormControl).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(message(3, 3, 0, 2), message(3, 2, 0, 1), message(3, 1, 0, 0)));
}

} // namespace
} // namespace test
