// The chassis: one answer of the switch for all units, and the one setting.
#include "backend/chassis.h"
#include "platform/u_openconfig-platform.h"
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/bundle/log_capture.h"
#include "tests/unit/platform/scripted_device.h"

extern "C" {
Status y_openconfig_platform_psu_init(const char *, const char *);
Status y_openconfig_platform_psu_init2();
void y_openconfig_platform_psu_cleanup();
Status y_openconfig_platform_fan_init(const char *, const char *);
Status y_openconfig_platform_fan_init2();
void y_openconfig_platform_fan_cleanup();
}

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;

const std::string kComponent = "openconfig-platform:components/component=chassis",
                  kPath = "/oc-platform:components/oc-platform:component",
                  kStart = R"({"openconfig-platform:components":{"component":[{"name":"chassis"}]}})",
                  kQuery = "ui_fe_send_restconf_chassis_config", kSend = "ui_fe_chassis_info";
const std::optional<std::string> kAbsent;

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

std::string sent(int unit, const std::string &level)
{
    return kSend + R"( {"thermal_stack_id":)" + std::to_string(unit) +
        R"(,"thermal_op":2,"thermal_warning_level":)" + level + "}";
}

const std::string kNoUnit = "Provide stack id for which the warning temperature has to set\n",
                  kUnitRange = "The value of stack id should be between 1 and 12\n",
                  kLevelRange = "Bad value: warning level on this unit can have value from 0 to 62";

Deed refused(const std::string &text)
{
    return {{}, 4, {"4 " + text}, text};
}

class WarningTemperature : public CallbackTest { };

TEST_P(WarningTemperature, DoesExactlyThis)
{
    EXPECT_EQ(perform(kComponent + "/config", GetParam()), GetParam().deed);
}

const Step kSteps[] = {
    merged("merge", setting(-1, -1), setting(1, 45), {{sent(1, "45.0")}}),
    {"replace", apply, replace, setting(2, 60), setting(3, 45), {{sent(3, "45.0")}}},
    {"create", apply, create, kAbsent, setting(1, 45), {{sent(1, "45.0")}}},
    merged("a_new_level_of_the_same_unit", setting(1, 45), setting(1, 46), {{sent(1, "46.0")}}),
    merged("level_0", setting(1, 45), setting(1, 0), {{sent(1, "0.0")}}),
    merged("level_62", setting(1, 45), setting(1, 62), {{sent(1, "62.0")}}),
    merged("level_63", setting(1, 45), setting(1, 63), refused(kLevelRange)),
    {"the_highest_number_as_level", apply, create, kAbsent, setting(1, 4294967295), refused(kLevelRange)},
    merged("unit_12", setting(1, 45), setting(12, 45), {{sent(12, "45.0")}}),
    merged("unit_0", setting(1, 45), setting(0, 45), refused(kUnitRange)),
    {"unit_13", apply, replace, setting(1, 45), setting(13, 45), refused(kUnitRange)},
    {"unit_13_without_a_level", apply, create, kAbsent, setting(13, -1), refused(kUnitRange)},
    merged("level_without_a_unit", setting(1, 45), setting(-1, 46), refused(kNoUnit)),
    merged("unit_without_a_level", setting(1, 45), setting(2, -1)),
    {"neither", apply, replace, setting(1, 45), setting(-1, -1)},
    merged("what_the_switch_says_is_not_looked_at", setting(1, 45), setting(1, 46), {{sent(1, "46.0")}},
           refusal(kSend, "no")),
    merged("a_dead_switch", setting(1, 45), setting(1, 46), failure(4, {sent(1, "46.0")}), noAnswer(kSend)),
    {"an_unknown_operation", apply, static_cast<EditOp>(6), setting(1, 45), setting(1, 46),
     failure(4, {}, internalError("rules.h"))},
};
INSTANTIATE_TEST_SUITE_P(Table, WarningTemperature,
                         testing::ValuesIn(andNothingElse({std::begin(kSteps), std::end(kSteps)},
                                                          setting(1, 45), setting(13, 63))),
                         CaseName());

// A part of the state and everything that its retrieval is told by.
struct Part {
    std::string name;
    std::string below; // the component
    std::string registered;
    int query;
    std::string value; // of a new switch of three units
    std::string unanswered, refused;
};
class Chassis : public testing::TestWithParam<Part> {
protected:
    Chassis()
        : bench_(kStart)
    {
    }
    std::string read() { return bench_.read(kComponent + GetParam().below, Content::all); }

    Got get(GetMode mode)
    {
        return getByHand(bench_, kPath + GetParam().registered, kComponent + GetParam().below, mode);
    }

    SwitchBench bench_;
};

TEST_P(Chassis, IsReadWithOneQuery)
{
    EXPECT_EQ(read(), GetParam().value);
    EXPECT_EQ(bench_.sent().back(),
              kQuery + R"( {"chassis_op":5,"chassis_query":)" + std::to_string(GetParam().query) + "}");
}

TEST_P(Chassis, ADeadSwitchIsAFailure)
{
    bench_.device().addFault(noAnswer(kQuery));
    const LogCapture log;
    EXPECT_EQ(get(getValue), Got{4});
    EXPECT_EQ(log.errors(), GetParam().unanswered);
}

TEST_P(Chassis, ARefusalIsAFailure)
{
    bench_.device().addFault(refusal(kQuery, "no"));
    const LogCapture log;
    EXPECT_EQ(get(getValue), Got{4});
    EXPECT_EQ(log.errors(), GetParam().refused);
}

TEST_P(Chassis, HasNoNextInstance)
{
    EXPECT_EQ(get(getNext), Got{1009});
    EXPECT_EQ(get(static_cast<GetMode>(3)), Got{4});
    EXPECT_THAT(bench_.sent(), ElementsAre());
}

const std::string kProperty =
                      "u_openconfig_platform_components_component_properties_property_state_get failed ",
                  kRefusedProperty = kProperty + "with response buff\n";
const Part kParts[] = {
    {"temperature", "/state/temperature", "/oc-platform:state/oc-platform:temperature", 22,
     R"({"openconfig-platform:temperature":{)"
     R"("lyn-openconfig-platform-aug:stack_id":[1,2,3],"lyn-openconfig-platform-aug:actual_temperature":[35,38,40],)"
     R"("lyn-openconfig-platform-aug:warning_temperature":[60,60,60],)"
     R"("lyn-openconfig-platform-aug:shutdown_temperature":[75,75,75]}})",
     "u_openconfig_platform_temperature_get failed \n",
     "u_openconfig_platform_temperature_get failed with response buff\n"},
    {"power_supply", "/power-supply/state", "/oc-platform:power-supply/oc-platform:state", 20,
     R"({"openconfig-platform:state":{"lyn-openconfig-platform-aug:stack_id":[1,2,3],)"
     R"("lyn-openconfig-platform-aug:power-supply-1-status":["status ok","status ok","status ok"],)"
     R"("lyn-openconfig-platform-aug:power-supply-2-status":["status ok","status nonexist","status bad"]}})",
     kProperty + "\n", kRefusedProperty},
    {"fan", "/fan/state", "/oc-platform:fan/oc-platform:state", 19,
     R"({"openconfig-platform:state":{"lyn-openconfig-platform-aug:stack_id":[1,2,3],)"
     R"("lyn-openconfig-platform-aug:fan-1-status":["ok, speed auto","ok, speed auto","ok, speed 2"],)"
     R"("lyn-openconfig-platform-aug:fan-2-status":["ok, speed 1","ok, speed 1","ok, speed 2"],)"
     R"("lyn-openconfig-platform-aug:fan-3-status":["failed"],"lyn-openconfig-platform-aug:fan-4-status":["ok, speed 2"],)"
     R"("lyn-openconfig-platform-aug:fan-5-status":["ok, speed 2"],)"
     R"("lyn-openconfig-platform-aug:fan-6-status":["ok, speed 3"]}})",
     "u_openconfig_platform_state_5_get failed \n",
     "u_openconfig_platform_state_5_get failed with response buff\n"},
};
INSTANTIATE_TEST_SUITE_P(Parts, Chassis, testing::ValuesIn(kParts), CaseName());

TEST(ChassisModel, IsOneText)
{
    SwitchBench bench(kStart);
    const std::string model = kComponent + "/state/lyn-openconfig-platform-aug:switch-model";
    EXPECT_EQ(bench.read(model, Content::all),
              R"({"lyn-openconfig-platform-aug:switch-model":"LYN3200-24"})");
    EXPECT_THAT(bench.sent(), ElementsAre(kQuery + R"( {"chassis_op":5,"chassis_query":23})"));
    const std::string registered = kPath + "/oc-platform:state";
    EXPECT_EQ(getByHand(bench, registered, kComponent + "/state", getNext), Got{1009});
    for (const auto &[fault, text] : {std::pair{noAnswer(kQuery), kProperty + "get_switch_model\n"},
                                      {refusal(kQuery, "no"), kRefusedProperty}}) {
        bench.device().clearFaults();
        bench.device().addFault(fault);
        const LogCapture log;
        EXPECT_EQ(getByHand(bench, registered, kComponent + "/state", getValue), Got{4});
        EXPECT_EQ(log.errors(), text);
    }
}

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

TEST(WarningTemperatureEdit, IsReadBack)
{
    SwitchBench bench(kStart);
    EXPECT_TRUE(
        bench.patch(kComponent + "/config", R"({"openconfig-platform:config":)" + setting(2, 50) + "}").ok());
    EXPECT_EQ(bench.read(kComponent + "/state/temperature/lyn-openconfig-platform-aug:warning_temperature",
                         Content::all),
              R"({"lyn-openconfig-platform-aug:warning_temperature":[60,50,60]})");
}

TEST(ChassisTexts, AreExportedAndBounded)
{
    EXPECT_STREQ(chassis_pwrsupply_status[4], "status nonexist");
    EXPECT_STREQ(chassis_fan_speed[5], "speed (auto)");
    const char *supplies[] = {"status undefined", "status ok", "status bad", "status standby",
                              "status nonexist"};
    for (int i = 0; i < 5; ++i)
        EXPECT_STREQ(get_pwrsupply_status_string(i), supplies[i]);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(get_fan_speed_string(i), "speed (" + std::to_string(i) + ")");
    EXPECT_STREQ(get_fan_speed_string(5), "speed (auto)");
    for (const int index : {-1, 5, INT32_MAX, INT32_MIN})
        EXPECT_EQ(get_pwrsupply_status_string(index), nullptr);
    for (const int index : {-1, 6, INT32_MAX, INT32_MIN})
        EXPECT_EQ(get_fan_speed_string(index), nullptr);
}

struct PublicModel {
    std::string name;
    Status (*init)(const char *, const char *);
    Status (*init2)();
    void (*cleanup)();
};
class PublicPlatformModel : public testing::TestWithParam<PublicModel> { };

TEST_P(PublicPlatformModel, HasEntryPointsThatNoBundleCalls)
{
    const auto &[name, init, init2, cleanup] = GetParam();
    const std::string module = "openconfig-platform-" + name;
    {
        SwitchBench bench;
        EXPECT_EQ(ncx_find_module(module.c_str(), nullptr), nullptr);
    }
    HostBench bench;
    EXPECT_EQ(init((module + "s").c_str(), nullptr), 356);
    EXPECT_EQ(init(module.c_str(), "2018-11-22"), 314);
    EXPECT_EQ(init(module.c_str(), nullptr), 0);
    EXPECT_NE(ncx_find_module(module.c_str(), "2018-11-21"), nullptr);
    EXPECT_EQ(init2(), 0);
    cleanup();
}
const PublicModel kModels[] = {
    {"psu", y_openconfig_platform_psu_init, y_openconfig_platform_psu_init2,
     y_openconfig_platform_psu_cleanup},
    {"fan", y_openconfig_platform_fan_init, y_openconfig_platform_fan_init2,
     y_openconfig_platform_fan_cleanup},
};
INSTANTIATE_TEST_SUITE_P(Table, PublicPlatformModel, testing::ValuesIn(kModels), CaseName());

} // namespace
} // namespace test
