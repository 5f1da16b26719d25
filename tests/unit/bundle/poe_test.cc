// Power over Ethernet: a merge sends leaf by leaf in every phase, and the whole in apply.
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/bundle/log_capture.h"
#include "toolkit/toolkit.h"

extern "C" {
Status y_openconfig_if_poe_init(const char *, const char *);
Status y_openconfig_if_poe_init2();
void y_openconfig_if_poe_cleanup();
}

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;

const std::string kPoe = kEthernet + "/lyn-openconfig-if-poe-aug:poe", kConfig = kPoe + "/config",
                  kState = kPoe + "/state";
const std::string kCall = "ui_fe_poe_config_cmd_send";

// The port's state alone.
std::string power(int enabled)
{
    return R"(ui_fe_poe_config_cmd_send {"opcode":2,"port":"ethernet 1/1/1","port_config":{"enabled":)" +
        std::to_string(enabled) + "}}";
}

struct Whole {
    int enabled = 0, powerClass = 0, limit = 0, priority = 0;
};

std::string whole(int opcode, const Whole &values, int operType = 1)
{
    return R"(ui_fe_poe_config_cmd_send {"opcode":)" + std::to_string(opcode) +
        R"(,"port":"ethernet 1/1/1","oper":{"oper_type":)" + std::to_string(operType) +
        R"(},"ilp_config":{"power_class":)" + std::to_string(values.powerClass) + R"(,"power_limit":)" +
        std::to_string(values.limit) + R"(,"priority":)" + std::to_string(values.priority) +
        R"(},"port_config":{"enabled":)" + std::to_string(values.enabled) + "}}";
}

const std::string kAsked =
    R"(ui_fe_poe_config_cmd_send {"opcode":5,"port":"ethernet 1/1/1","selection":{"selector":12}})";
const std::string kRange = "PoE Error: Please specify the priority in the range 1..3.\n",
                  kTwoLimits = "Powerlimit and Power-class cannot be set together\n",
                  kThree = "Powerlimit, Priority  and Power-class all cannot be set together\n",
                  kThreeLogged = "Powerlimit, Priority and Power-class all cannot be set together\n";
const std::string kNone = "{}", kOn = R"({"enabled":true})", kOff = R"({"enabled":false})",
                  kOnLow = R"({"enabled":true,"priority":3})", kOnHigh = R"({"enabled":true,"priority":1})",
                  kLimit = R"({"power-limit":20000})", kClass = R"({"power-by-class":4})",
                  kBoth = R"({"power-by-class":4,"power-limit":20000})",
                  kAllThree = R"({"priority":2,"power-by-class":4,"power-limit":20000})",
                  kPriority0 = R"({"priority":0})", kPriority4 = R"({"priority":4})";
const std::optional<std::string> kAbsent;

Deed refused(const std::string &text, const std::string &logged)
{
    return {{}, 4, {"4 " + text}, logged};
}

class PoeConfig : public CallbackTest { };

TEST_P(PoeConfig, DoesExactlyThis)
{
    EXPECT_EQ(perform(kConfig, GetParam()), GetParam().deed);
}

const std::vector<std::string> kWalkOfOn = {power(1), whole(1, {.enabled = 1})},
                               kWalkOfPriority = {whole(1, {.priority = 1})};
const std::string kNotSet = "POE: Setting poe state to error Merge operation 1\n";

const Step kSteps[] = {
    // What a merge does in every phase is the walk; apply goes on with the whole node.
    {"merge_in_validate", validate, merge, kOff, kOn, {kWalkOfOn}},
    {"merge_in_commit", commit, merge, kOff, kOn, {kWalkOfOn}},
    {"merge_in_rollback", rollback, merge, kOff, kOn, {kWalkOfOn}},
    {"merge_in_apply",
     apply,
     merge,
     kOff,
     kOn,
     {{power(1), whole(1, {.enabled = 1}), power(1), whole(1, {.enabled = 1})}}},
    {"merge_of_one_leaf_in_validate_knows_only_it", validate, merge, kOnLow, kOnHigh, {kWalkOfPriority}},
    {"merge_of_one_leaf_in_apply_sends_all",
     apply,
     merge,
     kOnLow,
     kOnHigh,
     {{whole(1, {.priority = 1}), power(1), whole(1, {.enabled = 1, .priority = 1})}}},
    {"merge_of_false_removes", apply, merge, kOn, kOff, {{power(0), whole(3, {}), power(0), whole(3, {})}}},
    {"merge_of_a_limit", validate, merge, kNone, kLimit, {{whole(1, {.limit = 20000})}}},
    {"merge_of_a_class", validate, merge, kNone, kClass, {{whole(1, {.powerClass = 4})}}},
    {"merge_of_the_greatest_limit",
     validate,
     merge,
     kNone,
     R"({"power-limit":4294967295})",
     {{whole(1, {.limit = -1})}}},
    {"merge_passes_over_a_leaf_that_goes", validate, merge, kOnHigh, kOn, {{whole(1, {})}}},
    {"merge_from_a_class_to_a_limit",
     apply,
     merge,
     kClass,
     kLimit,
     {{whole(1, {.limit = 20000}), whole(1, {.limit = 20000})}}},

    {"replace", apply, replace, kOn, kOnHigh, {{power(1), whole(2, {.enabled = 1, .priority = 1})}}},
    {"replace_by_false_removes", apply, replace, kOn, kOff, {{power(0), whole(3, {})}}},
    {"replace_by_nothing", apply, replace, kOn, kNone, {{whole(2, {})}}},
    {"create", apply, create, kAbsent, kOnLow, {{power(1), whole(1, {.enabled = 1, .priority = 3})}}},
    {"create_of_a_class", apply, create, kAbsent, kClass, {{whole(1, {.powerClass = 4})}}},
    {"delete_sends_zeros", apply, del, kOnHigh, kAbsent, {{whole(3, {}, 3)}}},

    {"priority_0_is_refused_in_validate_of_merge", validate, merge, kNone, kPriority0,
     refused(kRange, kRange)},
    {"priority_4_is_refused_in_validate_of_merge", validate, merge, kNone, kPriority4,
     refused(kRange, kRange)},
    {"priority_0_is_refused_in_apply_of_replace", apply, replace, kOnLow, kPriority0,
     refused(kRange, kRange)},
    {"priority_4_is_refused_in_apply_of_create", apply, create, kAbsent, kPriority4, refused(kRange, kRange)},
    {"priority_4_passes_validate_of_create", validate, create, kAbsent, kPriority4},
    {"limit_and_class_merged_together", validate, merge, kNone, kBoth, refused(kTwoLimits, kTwoLimits)},
    {"limit_class_and_priority_merged_together", validate, merge, kNone, kAllThree,
     refused(kThree, kThreeLogged)},
    {"limit_and_class_replaced_together", apply, replace, kOn, kBoth, refused(kTwoLimits, kTwoLimits)},
    {"limit_class_and_priority_created_together", apply, create, kAbsent, kAllThree,
     refused(kThree, kThreeLogged)},
    {"limit_merged_beside_a_class",
     apply,
     merge,
     kClass,
     kBoth,
     {{whole(1, {.limit = 20000})}, 4, {"4 " + kTwoLimits}, kTwoLimits}},
    {"the_power_goes_on_before_a_priority_is_refused",
     apply,
     create,
     kAbsent,
     R"({"enabled":true,"priority":4})",
     {{power(1)}, 4, {"4 " + kRange}, kRange}},

    {"a_dead_device_fails_the_port_state", validate, merge, kOff, kOn, failure(4, {power(1)}, kNotSet),
     noAnswer(kCall)},
    {"a_dead_device_fails_the_walk", validate, merge, kOff, kOn, failure(4, kWalkOfOn), noAnswer(kCall, 1)},
    {"a_dead_device_fails_the_port_state_of_a_create", apply, create, kAbsent, kOn,
     failure(4, {power(1)}, kNotSet), noAnswer(kCall)},
    {"a_dead_device_fails_a_replace", apply, replace, kOff, kOn,
     failure(4, {power(1), whole(2, {.enabled = 1})}), noAnswer(kCall, 1)},
    {"a_dead_device_fails_a_delete", apply, del, kOn, kAbsent, failure(4, {whole(3, {}, 3)}),
     noAnswer(kCall)},
    {"a_refused_port_state_fails_without_words", apply, replace, kOff, kOn, failure(4, {power(1)}, kNotSet),
     refusal(kCall, "no")},
    {"a_refused_walk_is_only_logged",
     validate,
     merge,
     kNone,
     kClass,
     {{whole(1, {.powerClass = 4})}},
     refusal(kCall, "no")},
    {"a_refused_delete_is_only_logged", apply, del, kOn, kAbsent, {{whole(3, {}, 3)}}, refusal(kCall, "no")},
    {"a_refusal_in_the_devices_words",
     apply,
     create,
     kAbsent,
     kClass,
     {{whole(1, {.powerClass = 4})}, 4, {"4 no power left"}, "no power left\n"},
     refusal(kCall, "no power left")},
    {"a_refusal_without_words",
     apply,
     replace,
     kOn,
     kLimit,
     {{whole(2, {.limit = 20000})}, 4, {"4 "}, "\n"},
     refusal(kCall, std::nullopt)},
    {"an_unknown_phase_cannot_occur", static_cast<EditPhase>(4), replace, kOn, kOff,
     failure(4, {}, internalError("rules.h"))},
};
INSTANTIATE_TEST_SUITE_P(Table, PoeConfig,
                         testing::ValuesIn(andNothingElse({std::begin(kSteps), std::end(kSteps)}, kOff,
                                                          kOnHigh)),
                         CaseName());

std::string config(const std::string &value)
{
    return R"({"lyn-openconfig-if-poe-aug:config":)" + value + "}";
}

std::string portsWithPoe(const std::string &value)
{
    return portsWith(R"(,"openconfig-if-ethernet:ethernet":{"lyn-openconfig-if-poe-aug:poe":{"config":)" +
                     value + "}}");
}

TEST(PoeEdit, TheLastLeafToGoResetsThePort)
{
    SwitchBench bench(portsWithPoe(kClass));
    EXPECT_TRUE(bench.remove(kConfig + "/power-by-class").ok());
    EXPECT_THAT(bench.sent(), ElementsAre(whole(3, {}, 3)));
}

TEST(PoeEdit, ARefusalComesBeforeAnythingIsApplied)
{
    SwitchBench bench(portsWithPoe(kOn));
    const std::string before = bench.running();
    const Outcome refused = bench.patch(kConfig, config(kAllThree));
    EXPECT_EQ(refused.status(), 4);
    EXPECT_EQ(refused.message(), kThree);
    EXPECT_THAT(bench.sent(), ElementsAre());
    EXPECT_EQ(bench.running(), before);
}

TEST(PoeEdit, TheBudgetOfTheSwitchIsToldInItsOwnWords)
{
    SwitchBench bench(portsWith());
    bench.device().setValue("poe-budget", 20'000);
    const Outcome refused = bench.put(kConfig, config(R"({"priority":1,"power-limit":99999})"));
    EXPECT_EQ(refused.status(), 4);
    EXPECT_EQ(refused.message(), "Error: the power limit must be in the range 1000..95000\n");
    EXPECT_EQ(bench.read(kConfig), config("{}"));
    // The state alone has no text.
    EXPECT_EQ(bench.put(kConfig, config(kOn)).message(), statusInfo(4).text);
}

TEST(PoeState, IsWhatTheDeviceSays)
{
    SwitchBench bench(portsWith());
    bench.device().setValue("poe-draw", 6'500);
    bench.put(kConfig, config(R"({"enabled":true,"priority":2,"power-by-class":4})"));
    bench.sent();
    EXPECT_EQ(
        bench.read(kState, Content::all),
        R"({"lyn-openconfig-if-poe-aug:state":{"enabled":true,"priority":2,"power-class":4,"power-used":"6500","power-allocated":"30000"}})");
    EXPECT_THAT(bench.sent(), ElementsAre(kAsked));
    EXPECT_EQ(bench.read(kState + "/power-used", Content::all),
              R"({"lyn-openconfig-if-poe-aug:power-used":"6500"})");
    EXPECT_EQ(bench.read(kState + "/power-by-class", Content::all), ""); // configured only
    for (const auto &fault : {noAnswer(kCall), refusal(kCall, "no")}) {
        bench.device().clearFaults();
        bench.device().addFault(fault);
        EXPECT_THROW(
            try { bench.read(kState, Content::all); } catch (const Failure &failure) {
                EXPECT_EQ(failure.errors.at(0).status, 4);
                throw;
            },
            Failure);
    }
}

TEST(PoeState, HasNoNextInstance)
{
    SwitchBench bench;
    EXPECT_EQ(getNextInstance(bench,
                              "/oc-if:interfaces/oc-if:interface/oc-eth:ethernet/lyn-oc-if-poe-aug:poe"
                              "/lyn-oc-if-poe-aug:state",
                              kState, "ethernet 1/1/1"),
              1009);
    EXPECT_THAT(bench.sent(), ElementsAre());
}

TEST(PublicPoeModel, HasEntryPointsThatNoBundleCalls)
{
    {
        SwitchBench bench;
        EXPECT_EQ(ncx_find_module("openconfig-if-poe", nullptr), nullptr);
    }
    HostBench bench;
    EXPECT_EQ(y_openconfig_if_poe_init("openconfig-if-po", "2018-11-21"), 356);
    EXPECT_EQ(y_openconfig_if_poe_init("openconfig-if-poe", "2018-11-22"), 314);
    EXPECT_EQ(y_openconfig_if_poe_init("openconfig-if-poe", "2018-11-21"), 0);
    EXPECT_NE(ncx_find_module("openconfig-if-poe", "2018-11-21"), nullptr);
    EXPECT_EQ(y_openconfig_if_poe_init2(), 0);
    for (const char *path : {"", "/oc-poe:config", "/oc-poe:state"})
        EXPECT_EQ(bench.host().impl().registry.find(
                      "/oc-if:interfaces/oc-if:interface/oc-eth:ethernet/oc-poe:poe" + std::string(path)),
                  nullptr);
    y_openconfig_if_poe_cleanup();
}

} // namespace
} // namespace test
