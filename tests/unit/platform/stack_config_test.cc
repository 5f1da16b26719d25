// Settings of the stack: only what really changes goes out, and what may not be set is refused with a text.
#include "stack/src/mac_text.h"
#include "stack/src/u_lyn-openconfig-stack.h"
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/bundle/log_capture.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kStack = "lyn-openconfig-stack:stack", kConfig = kStack + "/config",
                  kUnit = kConfig + "/stack-units/stack-unit=2", kGlobalCall = "ui_fe_stack_glb_config_cmd",
                  kUnitCall = "ui_fe_stack_unit_config_cmd", kShowCall = "ui_fe_stack_show_cmd",
                  kShown = kShowCall + R"( {"show_stack":10,"show_op":21})";
const std::optional<std::string> kAbsent;

std::string global(const std::string &settings, int oper = 1)
{
    return kGlobalCall + R"( {"oper":)" + std::to_string(oper) + R"(,"global_config_op":3,"settings":{)" +
        settings + "}}";
}

std::string unit(const std::string &settings)
{
    return kUnitCall + R"( {"oper":1,"settings":{"unit":2,)" + settings + "}}";
}

Deed refused(Status status, const std::string &text, std::vector<std::string> sent = {})
{
    return {std::move(sent), status, {std::to_string(status) + " " + text}, ""};
}

// The table's switch is of the platform with a rear module.
class StackConfig : public CallbackTest {
protected:
    static void SetUpTestSuite()
    {
        CallbackTest::SetUpTestSuite();
        bench().device().setValue("platform-type", 3);
    }
};

TEST_P(StackConfig, DoesExactlyThis)
{
    EXPECT_EQ(perform(kConfig, GetParam()), GetParam().deed);
}

const std::string kNone = "{}", kOn = R"({"enabled":true})", kOff = R"({"enabled":false})",
                  kEnable = R"("stack_enable_op":1,"stack_enable":1)",
                  kDisable = R"("stack_enable_op":3,"stack_enable":0)";

std::string mac(const std::string &text)
{
    return R"({"mac-address":")" + text + R"("})";
}
std::string rear(const std::string &name)
{
    return R"({"rear-module":")" + name + R"("})";
}

// What the log has of an edit from off to on that was refused.
const std::string kDumped = "\nnew\nconfig\n  enabled true\n\ncur\nconfig\n  enabled false\n";
std::string refusalLines(int uiErr, int appErr)
{
    return "\nstack editop ui_err:" + std::to_string(uiErr) + ", app err:" + std::to_string(appErr) + kDumped;
}

const Step kGlobalSteps[] = {
    merged("on_from_nothing", kNone, kOn, {{global(kEnable)}}),
    merged("on_from_off", kOff, kOn, {{global(kEnable)}}),
    merged("off_from_on", kOn, kOff, {{global(kDisable)}}),
    merged("off_from_nothing_is_a_removal", kNone, kOff, {{global(kDisable)}}),
    merged("one_that_goes_is_off", kOn, kNone, {{global(kDisable)}}),
    merged("one_that_goes_and_was_off", kOff, kNone),
    {"create", apply, create, kAbsent, kOn, {{global(kEnable)}}},
    {"replace", apply, replace, kOff, kOn, {{global(kEnable)}}},
    {"rollback_sends_what_it_is_given", rollback, merge, kOn, kOff, {{global(kDisable)}}},
    {"validate_sends_nothing", validate, merge, kOff, kOn},
    merged("a_value_that_stays_is_left_out", R"({"enabled":true,"ztp-force":false,"suggested-id":3})",
           R"({"enabled":true,"ztp-force":true,"suggested-id":3})",
           {{global(R"("ztp_force_op":1,"ztp_force":1)")}}),
    {"all_in_one_request",
     apply,
     create,
     kAbsent,
     R"({"enabled":true,"mac-address":"aabb.ccdd.eeff","suggested-id":12,"zero-touch-enable":true,"ztp-force":false})",
     {{global(kEnable +
              R"(,"mac_addr_op":1,"mac_addr":"aa:bb:cc:dd:ee:ff","suggest_id_op":1,"suggest_id":12,)" +
              R"("ztp_enable_op":1,"ztp_enable":1,"ztp_force_op":3,"ztp_force":0)")}}},
    {"nothing_changed", apply, replace, kOn, kOn},

    merged("suggested_id", R"({"suggested-id":3})", R"({"suggested-id":4})",
           {{global(R"("suggest_id_op":1,"suggest_id":4)")}}),
    merged("suggested_id_that_goes", R"({"suggested-id":3})", kNone,
           {{global(R"("suggest_id_op":1,"suggest_id":0)")}}),

    merged("mac_of_capitals", mac("aabb.ccdd.ee00"), mac("AABB.CCDD.EEFF"),
           {{global(R"("mac_addr_op":1,"mac_addr":"aa:bb:cc:dd:ee:ff")")}}),
    merged("mac_of_zeroes_is_a_removal", kNone, mac("0000.0000.0000"),
           {{global(R"("mac_addr_op":3,"mac_addr":"00:00:00:00:00:00")")}}),
    merged("mac_that_goes_is_a_removal", mac("aabb.ccdd.eeff"), kNone,
           {{global(R"("mac_addr_op":3,"mac_addr":"00:00:00:00:00:00")")}}),
    {"bad_mac_in_validate", validate, create, kAbsent, mac("aabb.ccdd.eef"),
     refused(232, "Bad mac address len: exp:14, actual:13")},
    merged("bad_mac_in_apply_sends_nothing", kNone, R"({"enabled":true,"mac-address":"ffff.ffff.ffff"})",
           refused(232, "Can't set mac addres to broadcast addr: ffff.ffff.ffff")),

    merged("rear_module_goes_out_by_itself", rear("other"), rear("uplink-100g"),
           {{global(R"("rear_module_uplink_100g_op":1)")}}),
    merged("rear_module_before_the_rest", kOff, R"({"enabled":true,"rear-module":"stack-40g"})",
           {{global(R"("rear_module_stack_40g_op":1)"), global(kEnable)}}),
    {"rear_module_created",
     apply,
     create,
     kAbsent,
     rear("uplink-40g"),
     {{global(R"("rear_module_uplink_40g_op":1)")}}},
    {"rear_module_other_says_nothing", apply, create, kAbsent, rear("other")},
    merged("rear_module_changed_to_other_says_nothing", rear("uplink-40g"), rear("other")),
    merged("rear_module_that_goes_is_removed", rear("uplink-100g"), kNone,
           {{global(R"("rear_module_uplink_100g_op":3)", 3)}}),
    {"rear_module_in_validate", validate, merge, rear("other"), rear("uplink-100g")},
    {"rear_module_in_rollback", rollback, merge, rear("other"), rear("uplink-100g")},
    merged("rear_module_refused", rear("other"), R"({"enabled":true,"rear-module":"uplink-100g"})",
           refused(274, "Setting uplink_100G failed. Error=5,no module",
                   {global(R"("rear_module_uplink_100g_op":1)")}),
           refusal(kGlobalCall, "no module", 5)),
    merged("rear_module_of_a_dead_switch", rear("other"), rear("stack-40g"),
           refused(274, "Setting stack_40G failed. Error=0,", {global(R"("rear_module_stack_40g_op":1)")}),
           noAnswer(kGlobalCall)),

    merged("refused_with_words", kOff, kOn, {{global(kEnable)}, 4, {"4 not now"}, refusalLines(1, 0)},
           refusal(kGlobalCall, "not now")),
    {"refused_by_app_err_in_rollback",
     rollback,
     merge,
     kOff,
     kOn,
     {{global(kEnable)}, 4, {"4 not now"}, refusalLines(0, 7)},
     refusal(kGlobalCall, "not now", 0, 7)},
    merged("refused_without_words", kOff, kOn,
           {{global(kEnable)},
            4,
            {"4 "},
            refusalLines(1, 0) + "\nstack editop result->response->reply_buf is NULL"},
           refusal(kGlobalCall, std::nullopt)),
    merged("a_dead_switch", kOff, kOn,
           {{global(kEnable)},
            4,
            {"4 "},
            "[u_lyn_oc_stack_config_edit] [n] cbtype [apply] editop [merge]" + kDumped},
           noAnswer(kGlobalCall)),
    {"an_unknown_phase", static_cast<EditPhase>(4), merge, kOff, kOn,
     failure(4, {}, internalError("rules.h"))},
};
INSTANTIATE_TEST_SUITE_P(Table, StackConfig,
                         testing::ValuesIn(andNothingElse({std::begin(kGlobalSteps), std::end(kGlobalSteps)},
                                                          kNone, kNone)),
                         CaseName());

TEST(RearModule, IsOfOnePlatformOnlyInEveryPhase)
{
    SwitchBench bench("", 4);
    for (const EditPhase phase : {validate, apply, rollback}) {
        const Callback done =
            bench.call(phase, merge, kConfig, kOn, R"({"enabled":true,"rear-module":"stack-40g"})");
        EXPECT_EQ(done.status, 227);
        ASSERT_EQ(done.records.size(), 1U);
        EXPECT_EQ(done.records[0].text, "Error - rear-module can only be set on a LYN4400");
    }
    EXPECT_THAT(bench.sent(), IsEmpty());
}

TEST(RearModule, TakesThreeValues)
{
    SwitchBench bench("", 3);
    std::array<char, STACK_ERROR_SIZE> error{};
    for (const int value : {0, 4, -1, 99})
        EXPECT_EQ(stack_rear_module_set(merge, value, error.data(), error.size()), kOk) << value;
    EXPECT_THAT(bench.sent(), IsEmpty());
    EXPECT_EQ(stack_rear_module_set(del, 3, error.data(), error.size()), kOk);
    EXPECT_THAT(bench.sent(), ElementsAre(global(R"("rear_module_uplink_40g_op":3)", 3)));
}

TEST(RearModule, ItsTextIsCutToTheRoomThatThereIs)
{
    SwitchBench bench("", 3);
    bench.device().addFault(refusal(kGlobalCall, std::string(2000, 'x')));
    std::array<char, 32> error;
    error.fill('#');
    EXPECT_EQ(stack_rear_module_set(merge, 1, error.data(), 20), 274);
    EXPECT_STREQ(error.data(), "Setting stack_40G f");
    EXPECT_EQ(error[20], '#');
}

struct MacCase {
    std::string name, text;
    std::string refusal = {}; // empty: it is good
};
class MacText : public testing::TestWithParam<MacCase> { };

TEST_P(MacText, IsTakenOrRefusedWithAText)
{
    std::uint8_t bytes[STACK_MAC_SIZE];
    std::array<char, STACK_ERROR_SIZE> error{};
    const Status status = stack::readMac(GetParam().text.c_str(), bytes, error.data(), error.size());
    EXPECT_EQ(status, GetParam().refusal.empty() ? 0 : 232);
    EXPECT_EQ(std::string(error.data()), GetParam().refusal);
    if (status)
        return;
    std::array<char, 15> text{};
    stack_yang_build_mac_string(bytes, 1, STACK_MAC_SIZE, text.data());
    EXPECT_STREQ(text.data(), "0a1b.c2d3.e4f5");
}
const MacCase kMacs[] = {
    {"small_letters", "0a1b.c2d3.e4f5"},
    {"capitals", "0A1B.C2D3.E4F5"},
    {"blank_before", " 0a1b.c2d3.e4f5"},
    {"blank_behind", "0a1b.c2d3.e4f5 "},
    {"too_short", "0a1b.c2d3.e4f", "Bad mac address len: exp:14, actual:13"},
    {"too_long", "0a1b.c2d3.e4f56", "Bad mac address len: exp:14, actual:15"},
    {"much_too_long", "0a1b.c2d3.e4f56789abcdef", "Bad mac address len: exp:14, actual:15"},
    {"empty", "", "Bad mac address len: exp:14, actual:0"},
    {"dots_elsewhere", "0a.1bc2.d3e4f5", "Invalid chars in mac address string: 0a.1bc2.d3e4f5"},
    {"one_dot", "0a1b.c2d3e4f5a", "Invalid chars in mac address string: 0a1b.c2d3e4f5a"},
    {"three_dots", "0a1b.c2d3.e4.5", "Invalid chars in mac address string: 0a1b.c2d3.e4.5"},
    {"no_dots", "0a1bc2d3e4f5aa", "Invalid chars in mac address string: 0a1bc2d3e4f5aa"},
    {"no_digit", "0a1g.c2d3.e4f5", "Invalid chars in mac address string: 0a1g.c2d3.e4f5"},
    {"broadcast", "FFFF.ffff.ffff", "Can't set mac addres to broadcast addr: FFFF.ffff.ffff"},
    {"multicast", "0100.0000.0000", "Can't set mac addres to multicast addr:0100.0000.0000"},
    {"nearly_broadcast", "ffff.ffff.fffe", "Can't set mac addres to multicast addr:ffff.ffff.fffe"},
};
INSTANTIATE_TEST_SUITE_P(Table, MacText, testing::ValuesIn(kMacs), CaseName());

TEST(MacString, HasAPointBehindEverySecondByteButTheLast)
{
    const std::uint8_t bytes[] = {0xaa, 0x0b, 0xcc, 0xdd, 0xee, 0xff, 0x11, 0x22};
    const auto build = [&](std::size_t length, int present = 1) {
        std::array<char, 16> text;
        text.fill('#');
        stack_yang_build_mac_string(bytes, present, length, text.data());
        EXPECT_EQ(text.back(), '#');
        return std::string(text.data());
    };
    EXPECT_EQ(build(6), "aa0b.ccdd.eeff");
    EXPECT_EQ(build(4), "aa0b.ccdd");
    EXPECT_EQ(build(3), "aa0b.cc");
    EXPECT_EQ(build(8), "aa0b.ccdd.eeff") << "no more than there is room for";
    const LogCapture log;
    EXPECT_EQ(build(0, 0), "");
    EXPECT_EQ(log.errors(), "");
    EXPECT_EQ(build(0), "");
    EXPECT_EQ(log.errors(), "\nStack conf edit mac addr len zero!!!");
}

class StackUnitConfig : public CallbackTest { };

TEST_P(StackUnitConfig, DoesExactlyThis)
{
    EXPECT_EQ(perform(kUnit + "/config", GetParam()), GetParam().deed);
}

std::string named(const std::string &name)
{
    return R"({"unit-name":")" + name + R"("})";
}
std::string priority(const std::string &value)
{
    return R"({"priority":)" + value + "}";
}

const std::string kUnitDumped = "\nnew\nconfig\n  priority 2\n\ncur\nconfig\n";
const std::string kLongName(80, 'n'), kCutName(63, 'n'), kTooLongName = std::string(2000, 'n') + " ";
const Step kUnitSteps[] = {
    merged("priority", priority("1"), priority("2"), {{unit(R"("priority_op":1,"priority":2)")}}),
    {"priority_0", apply, create, kAbsent, priority("0"), {{unit(R"("priority_op":1,"priority":0)")}}},
    {"priority_255", apply, replace, kNone, priority("255"), {{unit(R"("priority_op":1,"priority":255)")}}},
    {"priority_256", validate, merge, kNone, priority("256"),
     refused(288, "Priority:256 out of range:0 - 255")},
    merged("priority_256_in_apply", kNone, priority("256"),
           refused(288, "Priority:256 out of range:0 - 255")),
    merged("priority_that_stays", R"({"priority":1,"unit-name":"a"})", R"({"priority":1,"unit-name":"b"})",
           {{unit(R"("stack_name_op":1,"stack_name":"b")")}}),
    {"both",
     apply,
     create,
     kAbsent,
     R"({"priority":1,"unit-name":"b"})",
     {{unit(R"("priority_op":1,"priority":1,"stack_name_op":1,"stack_name":"b")")}}},
    {"what_is_not_used", apply, create, kAbsent,
     R"({"ignore-temp-shutdown":true,"legacy-inline-power":true,"unit-type":"x"})"},

    merged("name_of_all_marks", kNone, named("a-b_c@$/:.#&9Z"),
           {{unit(R"("stack_name_op":1,"stack_name":"a-b_c@$/:.#&9Z")")}}),
    {"name_empty", validate, merge, kNone, named(""),
     refused(228, "Error! unit-name must start with an alphabet")},
    {"name_with_a_blank", validate, replace, kNone, named("a b"),
     refused(228, "\" \" is not allowed in name \"a b\" \n")},
    merged("name_with_a_star", kNone, named("ab*"), refused(228, "\"*\" is not allowed in name \"ab*\" \n")),
    merged("name_with_a_byte_above_127", kNone, named("\xc3\xa4"),
           refused(228, "\"\xc3\" is not allowed in name \"\xc3\xa4\" \n")),
    merged("name_cut_to_63", kNone, named(kLongName),
           {{unit(R"("stack_name_op":1,"stack_name":")" + kCutName + R"(")")}}),
    {"name_whose_refusal_is_cut", validate, merge, kNone, named(kTooLongName),
     refused(228, ("\" \" is not allowed in name \"" + kTooLongName).substr(0, STACK_ERROR_SIZE - 1))},

    {"unit_that_is_there", validate, create, kAbsent, R"({"unit-id":2})", {{kShown}}},
    {"unit_that_is_not_there", validate, create, kAbsent, R"({"unit-id":4})",
     refused(225, "stack-id 4 is invalid", {kShown})},
    {"an_empty_slot_is_no_unit_0", apply, create, kAbsent, R"({"unit-id":7})",
     refused(225, "stack-id 7 is invalid", {kShown})},
    {"unit_of_a_dead_switch", apply, create, kAbsent, R"({"unit-id":2,"priority":1})",
     refused(225, "stack-id 2 is invalid", {kShown}), noAnswer(kShowCall)},
    // The walk goes on behind a unit that is not there; a later refusal takes its place.
    {"unit_and_priority_refused", validate, create, kAbsent, R"({"unit-id":4,"priority":256})",
     refused(288, "Priority:256 out of range:0 - 255", {kShown})},
    {"unit_refused_and_name_good", apply, create, kAbsent, R"({"unit-id":4,"unit-name":"a"})",
     refused(225, "stack-id 4 is invalid", {kShown})},
    merged("a_dead_switch", kNone, priority("2"),
           {{unit(R"("priority_op":1,"priority":2)")},
            4,
            {"4 "},
            "[u_lyn_oc_stack_config_1_edit] [n] cbtype [apply] editop [merge]" + kUnitDumped},
           noAnswer(kUnitCall)),
    merged("refused_with_words", kNone, priority("2"),
           {{unit(R"("priority_op":1,"priority":2)")},
            4,
            {"4 too late"},
            "\nstack editop ui_err:2, app err:3" + kUnitDumped},
           refusal(kUnitCall, "too late", 2, 3)),
};
INSTANTIATE_TEST_SUITE_P(Table, StackUnitConfig,
                         testing::ValuesIn(andNothingElse({std::begin(kUnitSteps), std::end(kUnitSteps)},
                                                          priority("1"), priority("1"))),
                         CaseName());

TEST(StackUnitKey, IsANumberAboveZero)
{
    SwitchBench bench;
    Request request;
    for (const auto &[key, status] : {std::pair<const char *, Status>{nullptr, 1006},
                                      {"0", 4},
                                      {"-1", 4},
                                      {"", 4},
                                      {"x", 4},
                                      {"99999999999999999999", 4},
                                      {"2147483648", 4}})
        EXPECT_EQ(u_lyn_oc_stack_config_1_edit(nullptr, &request, commit, merge, nullptr, nullptr, key),
                  status)
            << (key ? key : "null");
    EXPECT_EQ(u_lyn_oc_stack_config_1_edit(nullptr, &request, commit, merge, nullptr, nullptr, "2"), kOk);
    EXPECT_THAT(bench.sent(), IsEmpty());
}

TEST(StackName, FlagsAndLastNameAreExported)
{
    SwitchBench bench;
    std::memset(allow_char_in_name, 1, sizeof allow_char_in_name);
    bench.call(apply, merge, kUnit + "/config", kNone, named("unit-b"));
    EXPECT_STREQ(unit_name, "unit-b");
    EXPECT_EQ(std::count(std::begin(allow_char_in_name), std::end(allow_char_in_name), 1), 10 + 26 + 26 + 9);
    EXPECT_EQ(allow_char_in_name[static_cast<unsigned char>('&')], 1);
    EXPECT_EQ(allow_char_in_name[static_cast<unsigned char>(' ')], 0);
}

TEST(StackMac, TheLastOneIsExported)
{
    SwitchBench bench;
    bench.call(validate, merge, kConfig, kNone, mac("0a1b.c2d3.e4f5"));
    EXPECT_THAT(mac_addr_stacking, ElementsAre(0x0a, 0x1b, 0xc2, 0xd3, 0xe4, 0xf5));
}

TEST(StackContainer, CannotBeRemoved)
{
    SwitchBench bench("", 1);
    for (const EditPhase phase : {validate, apply, rollback})
        EXPECT_EQ(bench.call(phase, del, kStack, kNone, kAbsent).status, kOk);
    const LogCapture log;
    const Callback done = bench.call(commit, del, kStack, kNone, kAbsent);
    EXPECT_EQ(done.status, 273);
    EXPECT_EQ(done.records.size(), 1U);
    EXPECT_EQ(log.errors(), "\nEnter u_stack_edit callback for commit phase, editop(delete) not supported");
    EXPECT_EQ(bench.call(commit, replace, kStack, kNone, kNone).status, kOk);
}

const std::string kStart =
    R"({"lyn-openconfig-stack:stack":{"config":{"enabled":false,"stack-units":{"stack-unit":[{"unit-id":2,"config":{"unit-id":2}}]}}}})";

std::string config(const std::string &value)
{
    return R"({"lyn-openconfig-stack:config":)" + value + "}";
}

TEST(StackEdit, SettingWhatIsSetSendsNothing)
{
    SwitchBench bench(kStart);
    const std::string all =
        R"({"enabled":true,"mac-address":"aabb.ccdd.eeff","suggested-id":3,"zero-touch-enable":true,"ztp-force":true})";
    EXPECT_TRUE(bench.patch(kConfig, config(all)).ok());
    EXPECT_EQ(bench.sent().size(), 1U);
    EXPECT_TRUE(bench.patch(kConfig, config(all)).ok());
    EXPECT_THAT(bench.sent(), IsEmpty());
}

TEST(StackEdit, ARollbackSendsTheEditTheOtherWayRound)
{
    SwitchBench bench(kStart);
    // The unit's settings come after the global ones.
    bench.device().addFault(refusal(kUnitCall, "no"));
    const Outcome refused = bench.patch(
        kConfig,
        config(
            R"({"enabled":true,"suggested-id":3,"stack-units":{"stack-unit":[{"unit-id":2,"config":{"priority":7}}]}})"));
    EXPECT_EQ(refused.message(), "no");
    EXPECT_EQ(refused.status(), 4);
    EXPECT_THAT(bench.sent(),
                ElementsAre(kShown, global(kEnable + R"(,"suggest_id_op":1,"suggest_id":3)"), kShown,
                            unit(R"("priority_op":1,"priority":7)"),
                            global(kDisable + R"(,"suggest_id_op":1,"suggest_id":0)")));
    EXPECT_EQ(bench.device().show("stack").at("suggested-id"), 0);
    EXPECT_EQ(bench.read(kConfig + "/enabled"), R"({"lyn-openconfig-stack:enabled":false})");
}

TEST(StackEdit, AUnitThatIsNotThereIsRefused)
{
    SwitchBench bench(kStart);
    const Outcome refused =
        bench.post(kConfig + "/stack-units",
                   R"({"lyn-openconfig-stack:stack-unit":[{"unit-id":4,"config":{"unit-id":4}}]})");
    EXPECT_EQ(refused.status(), 225);
    EXPECT_EQ(refused.message(), "stack-id 4 is invalid");
    bench.device().setValue("stack-units", 4);
    EXPECT_TRUE(bench
                    .post(kConfig + "/stack-units",
                          R"({"lyn-openconfig-stack:stack-unit":[{"unit-id":4,"config":{"unit-id":4}}]})")
                    .ok());
}

TEST(StackEdit, WhatTheSwitchDoesNotUseIsKeptInRunningOnly)
{
    SwitchBench bench(kStart);
    const std::string unused =
        R"({"trunks":{"trunk":["1/2/1"]},"stack-ports":{"port-id":["1/2/1"]},"unit-modules":{"unit-module":[{"module-id":1,"config":{"module-id":1}}]}})";
    EXPECT_TRUE(bench.patch(kUnit + "/config", config(unused)).ok());
    EXPECT_TRUE(bench.remove(kUnit + "/config/unit-modules").ok());
    EXPECT_TRUE(bench.remove(kUnit).ok());
    EXPECT_THAT(bench.sent(), testing::Not(testing::Contains(testing::Not(kShown))));
}

} // namespace
} // namespace test
