// The chassis: one answer of the switch for all units, and the one setting.
#include "backend/chassis.h"
#include "platform/u_openconfig-platform.h"
#include "tests/unit/platform/scripted_device.h"

namespace test {
namespace {

const std::string kComponent = "openconfig-platform:components/component=chassis",
                  kPath = "/oc-platform:components/oc-platform:component",
                  kStart = R"({"openconfig-platform:components":{"component":[{"name":"chassis"}]}})",
                  kQuery = "ui_fe_send_restconf_chassis_config", kSend = "ui_fe_chassis_info";

// The two leaves of a unit's setting; negative for one that is absent.
std::string setting(long unit, long warning)
{
    std::string text = R"({"name":"chassis")";
    if (unit >= 0)
        text += R"(,"lyn-openconfig-platform-aug:stack_id":)" + std::to_string(unit);
    if (warning >= 0)
        text += R"(,"lyn-openconfig-platform-aug:warning_temperature":)" + std::to_string(warning);
    return text + "}";
}

Texts sent(int unit, const std::string &level)
{
    return {kSend + R"( {"thermal_stack_id":)" + std::to_string(unit) +
            R"(,"thermal_op":2,"thermal_warning_level":)" + level + "}"};
}

const std::string kNoUnit = "Provide stack id for which the warning temperature has to set\n",
                  kUnitRange = "The value of stack id should be between 1 and 12\n",
                  kLevelRange = "Bad value: warning level on this unit can have value from 0 to 62";
const std::string kOld = setting(1, 45);

const std::vector<Cell> kCells = {
    replaced("", setting(2, 60), setting(3, 45), sent(3, "45.0")),
    created("", kOld, sent(1, "45.0")),
    merged("the same unit", kOld, setting(1, 46), sent(1, "46.0")),
    merged("level 0", kOld, setting(1, 0), sent(1, "0.0")),
    merged("level 62", kOld, setting(1, 62), sent(1, "62.0")),
    merged("level 63", kOld, setting(1, 63), {}, 4, kLevelRange, kLevelRange),
    created("the highest level", setting(1, 4294967295), {}, 4, kLevelRange, kLevelRange),
    merged("unit 12", kOld, setting(12, 45), sent(12, "45.0")),
    merged("unit 0", kOld, setting(0, 45), {}, 4, kUnitRange, kUnitRange),
    created("unit 13 without a level", setting(13, -1), {}, 4, kUnitRange, kUnitRange),
    merged("level without a unit", kOld, setting(-1, 46), {}, 4, kNoUnit, kNoUnit),
    merged("unit without a level", kOld, setting(2, -1)),
    under(refusal(kSend, "no"), merged("a refusal is not seen", kOld, setting(1, 46), sent(1, "46.0"))),
    under(noAnswer(kSend), merged("a dead switch", kOld, setting(1, 46), sent(1, "46.0"), 4)),
};

TEST(WarningTemperature, DoesExactlyThis)
{
    check(kComponent + "/config", kCells, Quiet{kOld, setting(13, 63)});
}

// A part of the state and everything that its retrieval is told by.
struct Part {
    std::string name;
    std::string below; // the component
    std::string registered;
    int query;
    std::string value; // of a new switch of three units
    std::string unanswered, refused;
    std::string leaf = ""; // that is read
};
class Chassis : public testing::TestWithParam<Part> { };

TEST_P(Chassis, IsReadWithOneQuery)
{
    SwitchBench bench(kStart);
    const auto &[name, below, registered, query, value, unanswered, refused, leaf] = GetParam();
    EXPECT_EQ(bench.read(kComponent + below + leaf, Content::all), value);
    EXPECT_EQ(bench.sent().back(),
              kQuery + R"( {"chassis_op":5,"chassis_query":)" + std::to_string(query) + "}");
    const auto get = [&](GetMode mode) {
        return getByHand(bench, kPath + GetParam().registered, kComponent + GetParam().below, mode);
    };
    EXPECT_EQ(get(getNext), Got{1009});
    EXPECT_THAT(bench.sent(), ElementsAre());
    for (const auto &[fault, text] : {std::pair{noAnswer(kQuery), unanswered}, {refusal(kQuery), refused}}) {
        strike(bench, fault);
        const LogCapture log;
        EXPECT_EQ(get(getValue), Got{4});
        EXPECT_EQ(log.errors(), text);
    }
}

const std::string kProperty =
                      "u_openconfig_platform_components_component_properties_property_state_get failed ",
                  kTemperature = "u_openconfig_platform_temperature_get failed ",
                  kFan = "u_openconfig_platform_state_5_get failed ", kBuffer = "with response buff\n";
const Part kParts[] = {
    {"model", "/state", "/oc-platform:state", 23,
     R"({"lyn-openconfig-platform-aug:switch-model":"LYN3200-24"})", kProperty + "get_switch_model\n",
     kProperty + kBuffer, "/lyn-openconfig-platform-aug:switch-model"},
    {"temperature", "/state/temperature", "/oc-platform:state/oc-platform:temperature", 22,
     R"({"openconfig-platform:temperature":{)"
     R"("lyn-openconfig-platform-aug:stack_id":[1,2,3],"lyn-openconfig-platform-aug:actual_temperature":[35,38,40],)"
     R"("lyn-openconfig-platform-aug:warning_temperature":[60,60,60],)"
     R"("lyn-openconfig-platform-aug:shutdown_temperature":[75,75,75]}})",
     kTemperature + "\n", kTemperature + kBuffer},
    {"power_supply", "/power-supply/state", "/oc-platform:power-supply/oc-platform:state", 20,
     R"({"openconfig-platform:state":{"lyn-openconfig-platform-aug:stack_id":[1,2,3],)"
     R"("lyn-openconfig-platform-aug:power-supply-1-status":["status ok","status ok","status ok"],)"
     R"("lyn-openconfig-platform-aug:power-supply-2-status":["status ok","status nonexist","status bad"]}})",
     kProperty + "\n", kProperty + kBuffer},
    {"fan", "/fan/state", "/oc-platform:fan/oc-platform:state", 19,
     R"({"openconfig-platform:state":{"lyn-openconfig-platform-aug:stack_id":[1,2,3],)"
     R"("lyn-openconfig-platform-aug:fan-1-status":["ok, speed auto","ok, speed auto","ok, speed 2"],)"
     R"("lyn-openconfig-platform-aug:fan-2-status":["ok, speed 1","ok, speed 1","ok, speed 2"],)"
     R"("lyn-openconfig-platform-aug:fan-3-status":["failed"],"lyn-openconfig-platform-aug:fan-4-status":["ok, speed 2"],)"
     R"("lyn-openconfig-platform-aug:fan-5-status":["ok, speed 2"],)"
     R"("lyn-openconfig-platform-aug:fan-6-status":["ok, speed 3"]}})",
     kFan + "\n", kFan + kBuffer},
};
INSTANTIATE_TEST_SUITE_P(Parts, Chassis, testing::ValuesIn(kParts), CaseName());

TEST(ChassisUnits, AreThoseThatHaveAValue)
{
    SwitchBench bench(kStart);
    // Seventeen units, one more than there can be; 0 belongs to nobody.
    std::uint32_t ids[18] = {99, 1, 2, 3}, degrees[18] = {99, 71, 0, 1};
    ids[16] = 16, ids[17] = 17, degrees[16] = 4294967295;
    char ok[] = "ok", none[] = "";
    char *supplies[] = {ok, none, ok};
    Chassis__RestconfChassisConfig answer;
    chassis__restconf_chassis_config__init(&answer);
    answer.n_stack_id = answer.n_actual_temperature = 18;
    answer.stack_id = ids;
    answer.actual_temperature = degrees;
    answer.n_power_supply_1_status = 3; // fewer than units
    answer.power_supply_1_status = supplies;
    const Says says(bench, answer);
    EXPECT_EQ(bench.read(kComponent + "/state/temperature", Content::all),
              R"({"openconfig-platform:temperature":{"lyn-openconfig-platform-aug:stack_id":[1,2,3,16],)"
              R"("lyn-openconfig-platform-aug:actual_temperature":[35,0,2147483647]}})");
    EXPECT_EQ(bench.read(kComponent + "/power-supply/state/lyn-openconfig-platform-aug:power-supply-1-status",
                         Content::all),
              R"({"lyn-openconfig-platform-aug:power-supply-1-status":["ok"]})");
}

TEST(ChassisTexts, AreBounded)
{
    EXPECT_STREQ(get_pwrsupply_status_string(0), "status undefined");
    EXPECT_STREQ(get_pwrsupply_status_string(4), "status nonexist");
    EXPECT_STREQ(get_fan_speed_string(4), "speed (4)");
    EXPECT_STREQ(get_fan_speed_string(5), "speed (auto)");
    for (const int index : {-1, 6, INT32_MAX})
        EXPECT_EQ(get_fan_speed_string(index), nullptr);
    for (const int index : {-1, 5, INT32_MAX})
        EXPECT_EQ(get_pwrsupply_status_string(index), nullptr);
}

} // namespace
} // namespace test
