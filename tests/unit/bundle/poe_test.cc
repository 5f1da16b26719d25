// Power over Ethernet: a merge sends leaf by leaf in every phase, and the whole in apply.
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/bundle/port_paths.h"

namespace test {
namespace {

const std::string kPoe = kEthernet + "/lyn-openconfig-if-poe-aug:poe", kConfig = kPoe + "/config",
                  kState = kPoe + "/state", kCall = "ui_fe_poe_config_cmd_send";

// The port's state alone.
const Pattern power{kCall + R"( {"opcode":2,"port":"ethernet 1/1/1","port_config":{"enabled":$}})"};

struct Whole {
    int enabled = 0, powerClass = 0, limit = 0, priority = 0;
};

std::string whole(int opcode, const Whole &values, int operType = 1)
{
    return kCall + R"( {"opcode":)" + std::to_string(opcode) +
        R"(,"port":"ethernet 1/1/1","oper":{"oper_type":)" + std::to_string(operType) +
        R"(},"ilp_config":{"power_class":)" + std::to_string(values.powerClass) + R"(,"power_limit":)" +
        std::to_string(values.limit) + R"(,"priority":)" + std::to_string(values.priority) +
        R"(},"port_config":{"enabled":)" + std::to_string(values.enabled) + "}}";
}

const std::string kAsked = kCall + R"( {"opcode":5,"port":"ethernet 1/1/1","selection":{"selector":12}})",
                  kRange = "PoE Error: Please specify the priority in the range 1..3.\n",
                  kTwoLimits = "Powerlimit and Power-class cannot be set together\n",
                  kThree = "Powerlimit, Priority  and Power-class all cannot be set together\n",
                  kThreeLogged = "Powerlimit, Priority and Power-class all cannot be set together\n",
                  kNotSet = "POE: Setting poe state to error Merge operation 1\n";
const std::string kNone = "{}", kOn = R"({"enabled":true})", kOff = R"({"enabled":false})",
                  kOnLow = R"({"enabled":true,"priority":3})", kOnHigh = R"({"enabled":true,"priority":1})",
                  kLimit = R"({"power-limit":20000})", kClass = R"({"power-by-class":4})",
                  kBoth = R"({"power-by-class":4,"power-limit":20000})",
                  kAllThree = R"({"priority":2,"power-by-class":4,"power-limit":20000})",
                  kPriority0 = R"({"priority":0})", kPriority4 = R"({"priority":4})";
const std::string kPower = power(1), kWholeOn = whole(1, {.enabled = 1}),
                  kWholeHigh = whole(1, {.priority = 1}), kWholeLimit = whole(1, {.limit = 20000}),
                  kWholeClass = whole(1, {.powerClass = 4}), kReset = whole(3, {}, 3),
                  kRemoved = whole(3, {});

const std::vector<Cell> kCells = {
    // What a merge does in every phase is the walk; apply goes on with the whole node.
    in(validate, merged("the walk", kOff, kOn, {kPower, kWholeOn})),
    in(commit, merged("the walk", kOff, kOn, {kPower, kWholeOn})),
    in(rollback, merged("the walk", kOff, kOn, {kPower, kWholeOn})),
    in(validate, merged("one leaf knows only itself", kOnLow, kOnHigh, {kWholeHigh})),
    merged("one leaf and all of them", kOnLow, kOnHigh,
           {kWholeHigh, kPower, whole(1, {.enabled = 1, .priority = 1})}),
    merged("a merge of false removes", kOn, kOff, {power(0), kRemoved, power(0), kRemoved}),
    in(validate, merged("a class", kNone, kClass, {kWholeClass})),
    in(validate,
       merged("the greatest limit", kNone, R"({"power-limit":4294967295})", {whole(1, {.limit = -1})})),
    in(validate, merged("a leaf that goes is passed over", kOnHigh, kOn, {whole(1, {})})),
    merged("from a class to a limit", kClass, kLimit, {kWholeLimit, kWholeLimit}),

    replaced("", kOn, kOnHigh, {kPower, whole(2, {.enabled = 1, .priority = 1})}),
    replaced("replace by false removes", kOn, kOff, {power(0), kRemoved}),
    replaced("replace by nothing", kOn, kNone, {whole(2, {})}),
    created("", kOnLow, {kPower, whole(1, {.enabled = 1, .priority = 3})}),
    created("create of a class", kClass, {kWholeClass}),
    deleted("delete sends zeros", kOnHigh, {kReset}),

    in(validate, merged("priority 0", kNone, kPriority0, {}, 4, kRange, kRange)),
    in(validate, merged("priority 4", kNone, kPriority4, {}, 4, kRange, kRange)),
    replaced("priority 0", kOnLow, kPriority0, {}, 4, kRange, kRange),
    created("the power goes on before a priority is refused", R"({"enabled":true,"priority":4})", {kPower}, 4,
            kRange, kRange),
    in(validate, created("priority 4 passes validate of create", kPriority4)),
    in(validate, merged("limit and class", kNone, kBoth, {}, 4, kTwoLimits, kTwoLimits)),
    in(validate, merged("all three", kNone, kAllThree, {}, 4, kThree, kThreeLogged)),
    replaced("limit and class", kOn, kBoth, {}, 4, kTwoLimits, kTwoLimits),
    created("all three", kAllThree, {}, 4, kThree, kThreeLogged),
    merged("limit beside a class", kClass, kBoth, {kWholeLimit}, 4, kTwoLimits, kTwoLimits),

    under(noAnswer(kCall), in(validate, merged("a dead device", kOff, kOn, {kPower}, 4, "", kNotSet))),
    under(noAnswer(kCall, 1), in(validate, merged("a dead device", kOff, kOn, {kPower, kWholeOn}, 4))),
    under(noAnswer(kCall), created("a dead device", kOn, {kPower}, 4, "", kNotSet)),
    under(noAnswer(kCall, 1), replaced("a dead device", kOff, kOn, {kPower, whole(2, {.enabled = 1})}, 4)),
    under(noAnswer(kCall), deleted("a dead device", kOn, {kReset}, 4)),
    under(refusal(kCall, "no"), replaced("a refused port state", kOff, kOn, {kPower}, 4, "", kNotSet)),
    under(refusal(kCall, "no"),
          in(validate, merged("a refused walk is only logged", kNone, kClass, {kWholeClass}))),
    under(refusal(kCall, "no"), deleted("a refused delete is only logged", kOn, {kReset})),
    under(refusal(kCall, "no power"), created("refused", kClass, {kWholeClass}, 4, "no power", "no power\n")),
    under(refusal(kCall), replaced("without words", kOn, kLimit, {whole(2, {.limit = 20000})}, 4, "", "\n")),
};

TEST(PoeConfig, DoesExactlyThis)
{
    check(kConfig, kCells, Quiet{kOff, kOnHigh});
}

TEST(PoeEdit, TheLastLeafToGoResetsThePort)
{
    SwitchBench bench(portsWith(
        R"(,"openconfig-if-ethernet:ethernet":{"lyn-openconfig-if-poe-aug:poe":{"config":)" + kClass + "}}"));
    EXPECT_TRUE(bench.remove(kConfig + "/power-by-class").ok());
    EXPECT_THAT(bench.sent(), ElementsAre(kReset));
}

TEST(PoeState, IsWhatTheDeviceSays)
{
    SwitchBench bench(portsWith());
    bench.device().setValue("poe-draw", 6'500);
    bench.put(kConfig,
              R"({"lyn-openconfig-if-poe-aug:config":{"enabled":true,"priority":2,"power-by-class":4}})");
    bench.sent();
    EXPECT_EQ(bench.read(kState, Content::all),
              R"({"lyn-openconfig-if-poe-aug:state":{"enabled":true,"priority":2,"power-class":4,)"
              R"("power-used":"6500","power-allocated":"30000"}})");
    EXPECT_THAT(bench.sent(), ElementsAre(kAsked));
    EXPECT_EQ(bench.read(kState + "/power-by-class", Content::all), ""); // configured only
    for (const auto &fault : {noAnswer(kCall), refusal(kCall, "no")}) {
        strike(bench, fault);
        EXPECT_EQ(readFailure(bench, kState), 4);
    }
    bench.sent();
    EXPECT_EQ(getByHand(bench,
                        "/oc-if:interfaces/oc-if:interface/oc-eth:ethernet/lyn-oc-if-poe-aug:poe"
                        "/lyn-oc-if-poe-aug:state",
                        kState, getNext),
              Got{1009});
    EXPECT_THAT(bench.sent(), ElementsAre());
}

} // namespace
} // namespace test
