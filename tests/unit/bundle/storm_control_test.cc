// Storm control: limits of three classes of traffic on a port.
#include "stormcontrol/src/u_lyn-openconfig-stormcontrol.h"

#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/bundle/log_capture.h"

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;

const std::string kStormControl = kPort + "/config/lyn-openconfig-stormcontrol:storm_control_config";
const std::string kBroadcast = kStormControl + "/broadcast";
const std::string kHandler = "sec_protobuf_fe_config_handler";

std::string message(int op, int limit, int kbps, int trafficClass = 0)
{
    return R"(sec_protobuf_fe_config_handler {"message":"bum_rate_limit_msg","code":10027101,"sub_type":41,)"
           R"("msg_type":41,"op":)" +
        std::to_string(op) + R"(,"port_name":"ethernet 1/1/1","limit":)" + std::to_string(limit) +
        R"(,"kbps":)" + std::to_string(kbps) + R"(,"traffic_class":)" + std::to_string(trafficClass) + "}";
}

std::string add(int limit, int kbps)
{
    return message(1, limit, kbps);
}

std::string removal(int limit, int kbps)
{
    return message(3, limit, kbps);
}

class StormControlLimit : public CallbackTest { };

TEST_P(StormControlLimit, DoesExactlyThis)
{
    EXPECT_EQ(perform(kBroadcast, GetParam()), GetParam().deed);
}

const std::string kNone = "{}", kSlow = R"({"limit":100})", kFast = R"({"limit":200})",
                  kSlowKbps = R"({"limit":100,"kbps":true})", kFastKbps = R"({"limit":200,"kbps":true})",
                  kZero = R"({"limit":0,"kbps":false})", kZeroKbps = R"({"limit":0,"kbps":true})",
                  kKbpsAlone = R"({"kbps":true})";
const std::optional<std::string> kAbsent;
const std::string kItcFailed = "ITC failed : 1 \n";

const Step kSteps[] = {
    {"merge_of_the_limit_keeps_kbps", apply, merge, kSlowKbps, kFastKbps, {{add(200, 1)}}},
    {"merge_of_kbps_keeps_the_limit", apply, merge, kSlow, kSlowKbps, {{add(100, 1)}}},
    {"merge_of_kbps_to_false", apply, merge, kSlowKbps, kSlow, {{add(100, 0)}}},
    {"merge_of_the_first_values", apply, merge, kNone, kSlowKbps, {{add(100, 1)}}},
    {"merge_of_kbps_without_a_limit_is_quiet", apply, merge, kNone, kKbpsAlone},
    {"merge_of_a_limit_of_zero_is_sent", apply, merge, kNone, kZero, {{add(0, 0)}}},
    {"merge_that_takes_the_limit_away", apply, merge, kSlowKbps, kKbpsAlone, {{add(0, 1)}}},
    {"replace", apply, replace, kSlow, kFastKbps, {{add(200, 1)}}},
    {"replace_that_takes_the_limit_away", apply, replace, kSlow, kKbpsAlone, {{add(0, 1)}}},
    {"replace_without_limits_is_quiet", apply, replace, kZero, kKbpsAlone},
    {"replace_of_zero_by_zero_is_quiet", apply, replace, kZeroKbps, kZero},
    {"create", apply, create, kAbsent, kSlowKbps, {{add(100, 1)}}},
    {"create_of_a_limit_of_zero_is_sent", apply, create, kAbsent, kZero, {{add(0, 0)}}},
    {"create_without_a_limit_is_quiet", apply, create, kAbsent, kKbpsAlone},
    {"delete_removes_what_was_set", apply, del, kSlowKbps, kAbsent, {{removal(100, 1)}}},
    {"delete_of_a_limit_in_packets", apply, del, kSlow, kAbsent, {{removal(100, 0)}}},
    {"delete_of_zero_and_false_is_quiet", apply, del, kZero, kAbsent},
    {"delete_of_zero_kilobits_is_sent", apply, del, kZeroKbps, kAbsent, {{removal(0, 1)}}},
    {"delete_without_a_limit_is_quiet", apply, del, kKbpsAlone, kAbsent},
    {"rollback_of_merge_sends_the_old_values", rollback, merge, kSlowKbps, kFast, {{add(100, 1)}}},
    {"rollback_of_replace", rollback, replace, kSlow, kFastKbps, {{add(100, 0)}}},
    {"rollback_of_delete_adds_again", rollback, del, kSlowKbps, kAbsent, {{add(100, 1)}}},
    {"rollback_of_create_sets_the_limit_to_zero", rollback, create, kAbsent, kSlowKbps, {{add(0, 0)}}},

    {"a_dead_device_fails_a_merge", apply, merge, kSlow, kFast, failure(4, {add(200, 0)}, kItcFailed),
     noAnswer(kHandler)},
    {"a_dead_device_fails_a_replace", apply, replace, kSlow, kFast, failure(4, {add(200, 0)}, kItcFailed),
     noAnswer(kHandler)},
    {"a_dead_device_fails_a_create", apply, create, kAbsent, kFast, failure(4, {add(200, 0)}, kItcFailed),
     noAnswer(kHandler)},
    {"a_dead_device_fails_a_delete", apply, del, kSlow, kAbsent, failure(4, {removal(100, 0)}, kItcFailed),
     noAnswer(kHandler)},
    {"a_dead_device_fails_a_rollback", rollback, merge, kSlow, kFast, failure(4, {add(100, 0)}, kItcFailed),
     noAnswer(kHandler)},
    {"a_refusal_is_ignored", apply, merge, kSlow, kFast, {{add(200, 0)}}, refusal(kHandler, "no", 1, 2)},
    {"a_refused_delete_is_ignored",
     apply,
     del,
     kSlow,
     kAbsent,
     {{removal(100, 0)}},
     refusal(kHandler, "no", 1, 2)},
    {"an_unknown_operation_cannot_occur", apply, static_cast<EditOp>(6), kSlow, kFast,
     failure(4, {}, internalError("rules.h"))},
};
INSTANTIATE_TEST_SUITE_P(Table, StormControlLimit,
                         testing::ValuesIn(andNothingElse({std::begin(kSteps), std::end(kSteps)}, kSlowKbps,
                                                          kFast)),
                         CaseName());

TEST(StormControl, ClassesDifferInNothingElse)
{
    SwitchBench bench;
    const char *const classes[] = {"broadcast", "multicast", "unknown-unicast"};
    for (int i = 0; i < 3; ++i) {
        const std::string path = kStormControl + "/" + classes[i];
        EXPECT_EQ(bench.call(apply, create, path, kAbsent, kSlowKbps).status, 0);
        EXPECT_EQ(bench.call(apply, del, path, kSlowKbps, kAbsent).status, 0);
        EXPECT_THAT(bench.sent(), ElementsAre(message(1, 100, 1, i), message(3, 100, 1, i)));
    }
}

// A container made by hand, which has no edited leaves around it.
struct HandMade {
    explicit HandMade(SwitchBench &bench, const std::string &limit, const std::string &kbps)
    {
        const Object *object = bench.host().impl().context.objectOf(bench.target(kBroadcast).node().schema());
        val_init_from_template(value, object);
        Status status = kOk;
        for (const auto &[name, text] : {std::pair{"limit", limit}, std::pair{"kbps", kbps}})
            val_add_child(val_make_simval_obj(obj_find_child(object, nullptr, name), text.c_str(), &status),
                          value);
    }
    ~HandMade() { val_free_value(value); }
    Value *value = val_new_value();
};

TEST(StormControl, KbpsThatChangedWithoutBeingEditedFails)
{
    SwitchBench bench;
    HandMade before(bench, "100", "false"), after(bench, "100", "true");
    RequestFrame request;
    EXPECT_EQ(u_lyn_oc_stormcontrol_broadcast_edit(&request.session, &request.request, apply, merge,
                                                   after.value, before.value, "ethernet 1/1/1"),
              4);
    EXPECT_EQ(request.header.records.size(), 1u);
    EXPECT_THAT(bench.sent(), ElementsAre());
}

BumRateLimitResp *answerWith(const std::optional<CommonResp> &reply)
{
    BumRateLimitResp answer = BUM_RATE_LIMIT_RESP__INIT;
    CommonResp copy = reply.value_or(CommonResp COMMON_RESP__INIT);
    answer.reply = reply ? &copy : nullptr;
    std::vector<std::uint8_t> packed(bum_rate_limit_resp__get_packed_size(&answer));
    bum_rate_limit_resp__pack(&answer, packed.data());
    return bum_rate_limit_resp__unpack(nullptr, packed.size(), packed.data());
}

TEST(StormControlAnswer, IsLoggedAndFreed)
{
    CommonResp reply = COMMON_RESP__INIT;
    reply.app_err = 6;
    reply.reply_buf = const_cast<char *>("50% is too much");
    EXPECT_EQ(restconf_bum_rate_limit_response_processor(nullptr), 2);
    EXPECT_EQ(restconf_bum_rate_limit_response_processor(answerWith({})), 2);
    for (const int level : {8, 9}) {
        const LogCapture log(level);
        EXPECT_EQ(restconf_bum_rate_limit_response_processor(answerWith(reply)), 6);
        EXPECT_EQ(log.debug(), level > 8 ? "50% is too much" : "");
    }
}

TEST(StormControlMessage, IsPrintedAtDebugLevel)
{
    SwitchBench bench;
    const LogCapture log(8);
    EXPECT_EQ(restconf_set_mcast_limit_config("ethernet 1/1/1", 7, 1, 0), 0);
    EXPECT_EQ(log.debug(),
              " Attr#1 msg_type::41\n Attr#2 op::3\n Attr#3 port_name::ethernet 1/1/1\n Attr#4 limit::7\n"
              " Attr#5 kbps::1\n Attr#6 traffic_class::1\n Attr#7 text::\n");
}

std::string broadcast(const std::string &value)
{
    return R"({"lyn-openconfig-stormcontrol:broadcast":)" + value + "}";
}

std::string portsWithBroadcast(const std::string &value)
{
    return portsWith(R"(,"config":{"lyn-openconfig-stormcontrol:storm_control_config":{"broadcast":)" +
                     value + "}}");
}

TEST(StormControlEdit, OneLeafMergedAloneKeepsTheOther)
{
    SwitchBench bench(portsWithBroadcast(kSlowKbps));
    EXPECT_TRUE(bench.patch(kBroadcast, broadcast(kFast)).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(add(200, 1)));
    EXPECT_EQ(bench.read(kBroadcast), broadcast(kFastKbps));
    EXPECT_TRUE(bench.put(kBroadcast + "/kbps", R"({"lyn-openconfig-stormcontrol:kbps":false})").ok());
    EXPECT_THAT(bench.sent(), ElementsAre(add(200, 0)));
    EXPECT_EQ(bench.read(kBroadcast), broadcast(R"({"limit":200,"kbps":false})"));
}

TEST(StormControlEdit, ClassesGoLastFirstWithTheNodeAroundThem)
{
    SwitchBench bench(
        portsWith(R"(,"config":{"lyn-openconfig-stormcontrol:storm_control_config":{"broadcast":{"limit":1},)"
                  R"("multicast":{"limit":2},"unknown-unicast":{"limit":3}}})"));
    EXPECT_TRUE(bench.remove(kStormControl).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(message(3, 3, 0, 2), message(3, 2, 0, 1), message(3, 1, 0, 0)));
}

TEST(StormControlEdit, ARefusalIsNotSeenADeadDeviceIs)
{
    SwitchBench bench(portsWithBroadcast(kSlow));
    bench.device().addFault(refusal(kHandler, "no", 1, 2));
    EXPECT_TRUE(bench.patch(kBroadcast, broadcast(kFast)).ok());
    EXPECT_EQ(bench.read(kBroadcast), broadcast(kFast));
    bench.unplug();
    const Outcome refused = bench.patch(kBroadcast, broadcast(kSlow));
    EXPECT_EQ(refused.status(), 4);
    EXPECT_EQ(refused.refusals.size(), 1u);
    EXPECT_EQ(bench.read(kBroadcast), broadcast(kFast));
}

} // namespace
} // namespace test
