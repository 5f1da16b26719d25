// Settings of the stack: only what really changes goes out, and what may not be set is refused with a text.
#include "stack/src/mac_text.h"
#include "stack/src/u_lyn-openconfig-stack.h"
#include "tests/unit/bundle/callback_test.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace test {
namespace {

const std::string kStack = "lyn-openconfig-stack:stack", kConfig = kStack + "/config",
                  kUnit = kConfig + "/stack-units/stack-unit=2", kGlobalCall = "ui_fe_stack_glb_config_cmd",
                  kUnitCall = "ui_fe_stack_unit_config_cmd", kShowCall = "ui_fe_stack_show_cmd",
                  kShown = kShowCall + R"( {"show_stack":10,"show_op":21})";

const Pattern globalOf{kGlobalCall + R"( {"oper":$,"global_config_op":3,"settings":{$}})"},
    global{globalOf(1, "$")};

const Pattern unit{kUnitCall + R"( {"oper":1,"settings":{"unit":2,$}})"};

const std::string kNone = "{}", kOn = R"({"enabled":true})", kOff = R"({"enabled":false})",
                  kEnable = R"("stack_enable_op":1,"stack_enable":1)",
                  kDisable = R"("stack_enable_op":3,"stack_enable":0)", kId3 = R"({"suggested-id":3})";

const Pattern mac{R"({"mac-address":"$"})"};
const Pattern rear{R"({"rear-module":"$"})"};
const Pattern rearSent{global(R"("rear_module_$_op":1)")}, rearGone{globalOf(3, R"("rear_module_$_op":3)")};

// What the log has of an edit from off to on that was refused.
const std::string kDumped = "\nnew\nconfig\n  enabled true\n\ncur\nconfig\n  enabled false\n";
const Pattern refusalLines{"\nstack editop ui_err:$, app err:$" + kDumped};

const std::string kZeroMac = R"("mac_addr_op":3,"mac_addr":"00:00:00:00:00:00")",
                  kMac = R"("mac_addr_op":1,"mac_addr":"aa:bb:cc:dd:ee:ff")";
const std::vector<Cell> kGlobalCells = {
    merged("on from nothing", kNone, kOn, {global(kEnable)}),
    merged("off from nothing is a removal", kNone, kOff, {global(kDisable)}),
    merged("one that goes is off", kOn, kNone, {global(kDisable)}),
    merged("one that goes and was off", kOff, kNone),
    replaced("", kOff, kOn, {global(kEnable)}),
    replaced("nothing changed", kOn, kOn),
    in(rollback, merged("rollback sends what it is given", kOn, kOff, {global(kDisable)})),
    in(validate, merged("validate sends nothing", kOff, kOn)),
    merged("a value that stays is left out", R"({"enabled":true,"ztp-force":false,"suggested-id":3})",
           R"({"enabled":true,"ztp-force":true,"suggested-id":3})",
           {global(R"("ztp_force_op":1,"ztp_force":1)")}),
    created("all in one request",
            R"({"enabled":true,"mac-address":"AABB.CCDD.EEFF","suggested-id":12,"zero-touch-enable":true,)"
            R"("ztp-force":false})",
            {global(kEnable + "," + kMac + R"(,"suggest_id_op":1,"suggest_id":12,)" +
                    R"("ztp_enable_op":1,"ztp_enable":1,"ztp_force_op":3,"ztp_force":0)")}),
    merged("suggested id that goes", kId3, kNone, {global(R"("suggest_id_op":1,"suggest_id":0)")}),

    merged("MAC of zeroes is a removal", kNone, mac("0000.0000.0000"), {global(kZeroMac)}),
    merged("MAC that goes is a removal", mac("aabb.ccdd.eeff"), kNone, {global(kZeroMac)}),
    in(validate, created("bad MAC", mac("aabb.ccdd.eef"), {}, 232, "Bad mac address len: exp:14, actual:13")),
    merged("bad MAC in apply sends nothing", kNone, R"({"enabled":true,"mac-address":"ffff.ffff.ffff"})", {},
           232, "Can't set mac addres to broadcast addr: ffff.ffff.ffff"),

    merged("rear module goes out by itself", rear("other"), rear("uplink-100g"), {rearSent("uplink_100g")}),
    merged("rear module before the rest", kOff, R"({"enabled":true,"rear-module":"stack-40g"})",
           {rearSent("stack_40g"), global(kEnable)}),
    created("rear module created", rear("uplink-40g"), {rearSent("uplink_40g")}),
    merged("rear module changed to other", rear("uplink-40g"), rear("other")),
    merged("rear module that goes", rear("uplink-100g"), kNone, {rearGone("uplink_100g")}),
    in(validate, merged("rear module in validate", rear("other"), rear("uplink-100g"))),
    in(rollback, merged("rear module in rollback", rear("other"), rear("uplink-100g"))),
    under(refusal(kGlobalCall, "no module", 5),
          merged("rear module refused", rear("other"), R"({"enabled":true,"rear-module":"uplink-100g"})",
                 {rearSent("uplink_100g")}, 274, "Setting uplink_100G failed. Error=5,no module")),
    under(noAnswer(kGlobalCall),
          merged("rear module of a dead switch", rear("other"), rear("stack-40g"), {rearSent("stack_40g")},
                 274, "Setting stack_40G failed. Error=0,")),

    under(refusal(kGlobalCall, "not now"),
          merged("refused with words", kOff, kOn, {global(kEnable)}, 4, "not now", refusalLines(1, 0))),
    under(refusal(kGlobalCall, "not now", 0, 7),
          in(rollback,
             merged("refused by app_err in rollback", kOff, kOn, {global(kEnable)}, 4, "not now",
                    refusalLines(0, 7)))),
    under(refusal(kGlobalCall),
          merged("refused without words", kOff, kOn, {global(kEnable)}, 4, "",
                 refusalLines(1, 0) + "\nstack editop result->response->reply_buf is NULL")),
    under(noAnswer(kGlobalCall),
          merged("a dead switch", kOff, kOn, {global(kEnable)}, 4, "",
                 "[u_lyn_oc_stack_config_edit] [n] cbtype [apply] editop [merge]" + kDumped)),
};

TEST(StackConfig, DoesExactlyThis)
{
    SwitchBench bench("", 3); // the platform with a rear module
    check(bench, kConfig, kGlobalCells, Quiet{kNone, kNone});
}

TEST(RearModule, IsOfOnePlatformOnlyInEveryPhase)
{
    SwitchBench bench("", 4);
    for (const EditPhase phase : {validate, apply, rollback})
        EXPECT_EQ(
            ended(bench.call(phase, merge, kConfig, kOn, R"({"enabled":true,"rear-module":"stack-40g"})")),
            Ended(227, {"Error - rear-module can only be set on a LYN4400"}));
    EXPECT_THAT(bench.sent(), IsEmpty());
}

TEST(RearModule, TakesThreeValuesAndCutsItsTextToTheRoomThatThereIs)
{
    SwitchBench bench("", 3);
    std::array<char, 32> error;
    error.fill('#');
    for (const int value : {0, 4, -1})
        EXPECT_EQ(stack_rear_module_set(merge, value, error.data(), 20), kOk) << value;
    EXPECT_THAT(bench.sent(), IsEmpty());
    EXPECT_EQ(stack_rear_module_set(del, 3, error.data(), 20), kOk);
    EXPECT_THAT(bench.sent(), ElementsAre(rearGone("uplink_40g")));
    bench.device().addFault(refusal(kGlobalCall, std::string(2000, 'x')));
    EXPECT_EQ(stack_rear_module_set(merge, 1, error.data(), 20), 274);
    EXPECT_STREQ(error.data(), "Setting stack_40G f");
    EXPECT_EQ(error[20], '#');
}

TEST(MacText, IsTakenOrRefusedWithAText)
{
    const std::string chars = "Invalid chars in mac address string: ",
                      length = "Bad mac address len: exp:14, ",
                      broadcast = "Can't set mac addres to broadcast addr: ",
                      multicast = "Can't set mac addres to multicast addr:";
    using Case = std::pair<std::string, std::string>; // without a refusal it is good
    for (const auto &[text, said] : {Case{"0A1b.c2d3.e4f5", ""},
                                     {" 0a1b.c2d3.e4f5 ", ""},
                                     {"0a1b.c2d3.e4f", length + "actual:13"},
                                     {"0a1b.c2d3.e4f56789abcdef", length + "actual:15"},
                                     {"", length + "actual:0"},
                                     {"0a.1bc2.d3e4f5", chars + "0a.1bc2.d3e4f5"},
                                     {"0a1b.c2d3.e4.5", chars + "0a1b.c2d3.e4.5"},
                                     {"0a1bc2d3e4f5aa", chars + "0a1bc2d3e4f5aa"},
                                     {"0a1g.c2d3.e4f5", chars + "0a1g.c2d3.e4f5"},
                                     {"FFFF.ffff.ffff", broadcast + "FFFF.ffff.ffff"},
                                     {"0100.0000.0000", multicast + "0100.0000.0000"},
                                     {"ffff.ffff.fffe", multicast + "ffff.ffff.fffe"}}) {
        std::uint8_t bytes[STACK_MAC_SIZE];
        std::array<char, STACK_ERROR_SIZE> error{};
        const Status status = stack::readMac(text.c_str(), bytes, error.data(), error.size());
        EXPECT_EQ(status, said.empty() ? 0 : 232) << text;
        EXPECT_EQ(std::string(error.data()), said);
        if (!status) {
            EXPECT_THAT(bytes, ElementsAre(0x0a, 0x1b, 0xc2, 0xd3, 0xe4, 0xf5));
        }
    }
}

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
    EXPECT_EQ(build(3), "aa0b.cc");
    EXPECT_EQ(build(8), "aa0b.ccdd.eeff") << "no more than there is room for";
    const LogCapture log;
    EXPECT_EQ(build(0, 0), "");
    EXPECT_EQ(log.errors(), "");
    EXPECT_EQ(build(0), "");
    EXPECT_EQ(log.errors(), "\nStack conf edit mac addr len zero!!!");
}

const Pattern named{R"({"unit-name":"$"})"};
const Pattern priority{R"({"priority":$})"};
const Pattern nameSent{unit(R"("stack_name_op":1,"stack_name":"$")")};

const std::string kUnitDumped = "\nnew\nconfig\n  priority 2\n\ncur\nconfig\n",
                  kPriority2 = unit(R"("priority_op":1,"priority":2)"),
                  kBadPriority = "Priority:256 out of range:0 - 255", kBadUnit = "stack-id 4 is invalid",
                  kTooLongName = std::string(2000, 'n') + " ";
const std::vector<Cell> kUnitCells = {
    merged("priority", priority("1"), priority("2"), {kPriority2}),
    created("priority 0", priority("0"), {unit(R"("priority_op":1,"priority":0)")}),
    replaced("priority 255", kNone, priority("255"), {unit(R"("priority_op":1,"priority":255)")}),
    in(validate, merged("priority 256", kNone, priority("256"), {}, 288, kBadPriority)),
    merged("priority 256 in apply", kNone, priority("256"), {}, 288, kBadPriority),
    merged("priority that stays", R"({"priority":1,"unit-name":"a"})", R"({"priority":1,"unit-name":"b"})",
           {nameSent("b")}),
    created("both", R"({"priority":1,"unit-name":"b"})",
            {unit(R"("priority_op":1,"priority":1,"stack_name_op":1,"stack_name":"b")")}),
    created("what is not used", R"({"ignore-temp-shutdown":true,"legacy-inline-power":true})"),

    merged("name of all marks", kNone, named("a-b_c@$/:.#&9Z"), {nameSent("a-b_c@$/:.#&9Z")}),
    in(validate,
       merged("empty name", kNone, named(""), {}, 228, "Error! unit-name must start with an alphabet")),
    in(validate, replaced("blank", kNone, named("a b"), {}, 228, "\" \" is not allowed in name \"a b\" \n")),
    merged("a byte above 127", kNone, named("\xc3\xa4"), {}, 228,
           "\"\xc3\" is not allowed in name \"\xc3\xa4\" \n"),
    merged("name cut to 63", kNone, named(std::string(80, 'n')), {nameSent(std::string(63, 'n'))}),
    in(validate,
       merged("name whose refusal is cut", kNone, named(kTooLongName), {}, 228,
              ("\" \" is not allowed in name \"" + kTooLongName).substr(0, STACK_ERROR_SIZE - 1))),

    in(validate, created("unit that is there", R"({"unit-id":2})", {kShown})),
    in(validate, created("unit that is not there", R"({"unit-id":4})", {kShown}, 225, kBadUnit)),
    created("an empty slot is no unit 0", R"({"unit-id":7})", {kShown}, 225, "stack-id 7 is invalid"),
    under(noAnswer(kShowCall),
          created("unit of a dead switch", R"({"unit-id":2,"priority":1})", {kShown}, 225,
                  "stack-id 2 is invalid")),
    // The walk goes on behind a unit that is not there; a later refusal takes its place.
    in(validate,
       created("unit and priority refused", R"({"unit-id":4,"priority":256})", {kShown}, 288, kBadPriority)),
    created("unit refused and name good", R"({"unit-id":4,"unit-name":"a"})", {kShown}, 225, kBadUnit),
    under(noAnswer(kUnitCall),
          merged("a dead switch", kNone, priority("2"), {kPriority2}, 4, "",
                 "[u_lyn_oc_stack_config_1_edit] [n] cbtype [apply] editop [merge]" + kUnitDumped)),
    under(refusal(kUnitCall, "too late", 2, 3),
          merged("refused with words", kNone, priority("2"), {kPriority2}, 4, "too late",
                 "\nstack editop ui_err:2, app err:3" + kUnitDumped)),
};

TEST(StackUnitConfig, DoesExactlyThis)
{
    check(kUnit + "/config", kUnitCells, Quiet{priority("1"), priority("1")});
}

TEST(StackUnitKey, IsANumberAboveZero)
{
    SwitchBench bench;
    Request request;
    const auto edit = [&](const char *key) {
        return u_lyn_oc_stack_config_1_edit(nullptr, &request, commit, merge, nullptr, nullptr, key);
    };
    EXPECT_EQ(edit(nullptr), 1006);
    for (const char *key : {"0", "-1", "", "x", "99999999999999999999", "2147483648"})
        EXPECT_EQ(edit(key), 4) << key;
    EXPECT_EQ(edit("2"), kOk);
}

TEST(StackNames, FlagsAndTheLastOnesAreExported)
{
    SwitchBench bench;
    std::memset(allow_char_in_name, 1, sizeof allow_char_in_name);
    bench.call(apply, merge, kUnit + "/config", kNone, named("unit-b"));
    EXPECT_STREQ(unit_name, "unit-b");
    EXPECT_EQ(std::count(std::begin(allow_char_in_name), std::end(allow_char_in_name), 1), 10 + 26 + 26 + 9);
    EXPECT_EQ(allow_char_in_name[static_cast<unsigned char>(' ')], 0);
    bench.call(validate, merge, kConfig, kNone, mac("0a1b.c2d3.e4f5"));
    EXPECT_THAT(mac_addr_stacking, ElementsAre(0x0a, 0x1b, 0xc2, 0xd3, 0xe4, 0xf5));
}

TEST(StackContainer, CannotBeRemoved)
{
    SwitchBench bench("", 1);
    check(bench, kStack,
          {in(commit,
              deleted("", kNone, {}, 273, "",
                      "\nEnter u_stack_edit callback for commit phase, editop(delete) not supported"))},
          Quiet{kNone, kNone});
}

const std::string kStart =
    R"({"lyn-openconfig-stack:stack":{"config":{"enabled":false,"stack-units":{"stack-unit":[{"unit-id":2,)"
    R"("config":{"unit-id":2}}]}}}})";

const Pattern config{R"({"lyn-openconfig-stack:config":$})"};

TEST(StackEdit, ARollbackSendsTheEditTheOtherWayRound)
{
    SwitchBench bench(kStart);
    // The unit's settings come after the global ones.
    bench.device().addFault(refusal(kUnitCall, "no"));
    const Outcome refused =
        bench.patch(kConfig,
                    config(R"({"enabled":true,"suggested-id":3,"stack-units":{"stack-unit":[{"unit-id":2,)"
                           R"("config":{"priority":7}}]}})"));
    EXPECT_EQ(refused.message(), "no");
    EXPECT_EQ(refused.status(), 4);
    EXPECT_THAT(bench.sent(),
                ElementsAre(kShown, global(kEnable + R"(,"suggest_id_op":1,"suggest_id":3)"), kShown,
                            unit(R"("priority_op":1,"priority":7)"),
                            global(kDisable + R"(,"suggest_id_op":1,"suggest_id":0)")));
    EXPECT_EQ(bench.device().show("stack").at("suggested-id"), 0);
    EXPECT_EQ(bench.read(kConfig + "/enabled"), R"({"lyn-openconfig-stack:enabled":false})");
}

} // namespace
} // namespace test
