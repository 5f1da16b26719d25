// What the stack and its units report.
#include "stack/src/u_lyn-openconfig-stack.h"
#include "tests/unit/platform/scripted_device.h"

namespace test {
namespace {

const std::string kState = "lyn-openconfig-stack:stack/state", kUnits = kState + "/stack-units/stack-unit",
                  kStatePath = "/lyn-oc-stack:stack/lyn-oc-stack:state",
                  kUnitsPath = kStatePath + "/lyn-oc-stack:stack-units/lyn-oc-stack:stack-unit",
                  kUnitState = kUnitsPath + "/lyn-oc-stack:state", kShowCall = "ui_fe_stack_show_cmd",
                  kShown = kShowCall + R"( {"show_stack":10,"show_op":21})";

std::string leaf(const std::string &name, const std::string &value)
{
    return value.empty() ? "" : "{\"lyn-openconfig-stack:" + name + "\":" + value + "}";
}
std::string readLeaf(SwitchBench &bench, const std::string &name)
{
    return bench.read(kState + "/" + name, Content::all);
}
void configure(SwitchBench &bench, const std::string &config)
{
    bench.patch("lyn-openconfig-stack:stack/config", R"({"lyn-openconfig-stack:config":)" + config + "}");
}

TEST(StackState, IsReadWithOneRequest)
{
    SwitchBench bench;
    EXPECT_EQ(readLeaf(bench, "mac-address"), leaf("mac-address", R"("---")"));
    EXPECT_THAT(bench.sent(), ElementsAre(R"(ui_stack_fe_get_all_apply {"get_all_op":1})"));
    configure(
        bench,
        R"({"enabled":true,"mac-address":"AABB.CCDD.EEFF","suggested-id":12,"zero-touch-enable":true})");
    for (const auto &[name, value] : {std::pair{"enabled", "true"},
                                      {"mac-address", R"("aabb.ccdd.eeff")"},
                                      {"suggested-id", "12"},
                                      {"zero-touch-enable", "true"},
                                      {"ztp-force", "false"}})
        EXPECT_EQ(readLeaf(bench, name), leaf(name, value));
}

TEST(StackState, IsShownThus)
{
    using Global = Stack__GlobalRecord;
    struct Case {
        void (*fill)(Global &record);
        std::string leafName, value; // empty: it is not shown
    };
    SwitchBench bench("", 3);
    for (const auto &[fill, name, value] :
         {Case{[](Global &record) { record.stack_enabled = 2; }, "enabled", "false"},
          {[](Global &record) { record.ztp_enabled = -2; }, "zero-touch-enable", "true"},
          {[](Global &record) { record.ztp_force = 2; }, "ztp-force", "true"},
          {[](Global &record) { record.suggested_id = 0; }, "suggested-id", ""},
          {[](Global &record) { record.suggested_id = 1; }, "suggested-id", "1"},
          {[](Global &record) { record.suggested_id = 12; }, "suggested-id", "12"},
          {[](Global &record) { record.suggested_id = 13; }, "suggested-id", ""},
          {[](Global &record) { record.suggested_id = -1; }, "suggested-id", ""},
          {[](Global &record) { record.mac_len = 0; }, "mac-address", R"("---")"},
          {[](Global &record) { record.mac_len = 100, record.mac_bytes.len = 4; }, "mac-address",
           R"("aabb.ccdd")"}}) {
        // The platform is asked of the same switch.
        char rear[] = "rear-module uplink-40g";
        std::uint8_t mac[] = {0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff};
        CommonResp reply = COMMON_RESP__INIT;
        Global record;
        stack__global_record__init(&record);
        record.rear_module = rear;
        record.has_mac_bytes = record.has_mac_len = 1;
        record.mac_bytes = {sizeof mac, mac};
        record.mac_len = sizeof mac;
        record.has_suggested_id = record.has_stack_enabled = record.has_ztp_enabled = record.has_ztp_force =
            1;
        fill(record);
        Stack__GetAllResp answer;
        stack__get_all_resp__init(&answer);
        answer.reply = &reply;
        answer.global = &record;
        const Says says(bench, answer);
        EXPECT_EQ(readLeaf(bench, name), leaf(name, value));
    }
}

TEST(StackState, RearModuleIsToldByOnePlatformFromTheWordStackOn)
{
    SwitchBench bench("", 3);
    EXPECT_EQ(readLeaf(bench, "rear-module"), leaf("rear-module", R"("stack-40g")"));
    configure(bench, R"({"rear-module":"uplink-100g"})");
    EXPECT_EQ(readLeaf(bench, "rear-module"), leaf("rear-module", R"("rear-module uplink-100g")"));
    bench.device().setValue("platform-type", 4);
    EXPECT_EQ(readLeaf(bench, "rear-module"), leaf("rear-module", R"("other")"));
}

TEST(StackState, WithoutAGoodAnswerThereIsNone)
{
    SwitchBench bench;
    const std::string call = "ui_stack_fe_get_all_apply";
    for (const auto &fault : {noAnswer(call), refusal(call, "no", 0, 1), refusal(call, "no", 1, 0)}) {
        strike(bench, fault);
        EXPECT_EQ(getByHand(bench, kStatePath, kState, getValue), Got{1009});
    }
    Stack__GetAllResp empty;
    stack__get_all_resp__init(&empty);
    const Says says(bench, empty);
    EXPECT_EQ(getByHand(bench, kStatePath, kState, getValue), Got{1009});
}

TEST(StackUnits, AreWalked)
{
    struct Case {
        std::string key; // "=2", or nothing
        GetMode mode;
        Got got;
    };
    SwitchBench bench;
    for (const Case &c : {Case{"", getValue, {0, {"1"}, true}},
                          {"", getNext, {0, {"1"}, true}},
                          {"=2", getValue, {0, {"2"}, true}},
                          {"=3", getValue, {0, {"3"}, false}},
                          {"=1", getNext, {0, {"2"}, true}},
                          {"=2", getNext, {0, {"3"}, false}},
                          {"=3", getNext, {1009}},
                          {"=0", getValue, {1009}}, // the empty slot
                          {"=0", getNext, {0, {"1"}, true}},
                          {"=4", getValue, {1009}}}) {
        bench.sent();
        EXPECT_EQ(getByHand(bench, kUnitsPath, kUnits + c.key, c.mode), c.got) << c.key << " " << c.mode;
        EXPECT_THAT(bench.sent(), ElementsAre(kShown));
    }
    for (const auto &fault : {noAnswer(kShowCall), refusal(kShowCall, "no")}) {
        strike(bench, fault);
        EXPECT_EQ(getByHand(bench, kUnitsPath, kUnits, getValue), Got{1009});
        EXPECT_EQ(getByHand(bench, kUnitState, kUnits + "=1/state", getValue), Got{1009});
        EXPECT_EQ(bench.read(kUnits, Content::all), "");
    }
}

TEST(StackUnits, AreListedAndReadByKey)
{
    SwitchBench bench;
    const auto unit = [](int id, const char *source, const char *role, const char *state) {
        const std::string number = std::to_string(id);
        return R"({"unit-id":)" + number + R"(,"state":{"unit-id":)" + number + R"(,"dynamic-static":")" +
            source + R"(","unit-type":"LYN3200-24","role":")" + role + R"(","mac-address":"0200.5e10.0)" +
            number + R"(00","priority":128,"state":")" + state + R"(","comment":"Ready","unit-name":"unit)" +
            number + R"("}})";
    };
    const std::string active = unit(1, "S", "active", "local"), standby = unit(2, "D", "standby", "remote"),
                      member = unit(3, "D", "member", "remote");
    EXPECT_EQ(bench.read(kState + "/stack-units", Content::all),
              leaf("stack-units", R"({"stack-unit":[)" + active + "," + standby + "," + member + "]}"));
    EXPECT_EQ(bench.read(kUnits + "=3", Content::all), leaf("stack-unit", "[" + member + "]"));
    EXPECT_EQ(bench.read(kUnits + "=4", Content::all), "");
    EXPECT_EQ(bench.read(kUnits + "=0", Content::all), "");
}

TEST(StackUnit, ThatStandsBeyondTheCountOfEntriesIsHidden)
{
    SwitchBench bench;
    // Without an empty slot in front the last unit's number is the count.
    Stack__UnitEntry one, two;
    stack__unit_entry__init(&one);
    stack__unit_entry__init(&two);
    one.stack_id = 1;
    two.stack_id = 2;
    Stack__UnitEntry *entries[] = {&one, &two};
    CommonResp reply = COMMON_RESP__INIT;
    Stack__ShowCmd answer;
    stack__show_cmd__init(&answer);
    answer.reply = &reply;
    answer.n_units = 2;
    answer.units = entries;
    const Says says(bench, answer);
    EXPECT_EQ(getByHand(bench, kUnitState, kUnits + "=1/state", getValue), Got{kOk});
    EXPECT_EQ(getByHand(bench, kUnitState, kUnits + "=2/state", getValue), Got{1009});
    EXPECT_EQ(getByHand(bench, kUnitsPath, kUnits + "=2", getValue), (Got{kOk, {"2"}}));
}

TEST(StackContainers, WithoutContentAnswerOnly)
{
    SwitchBench bench;
    const std::string state = kUnits + "=1/state", ports = "/lyn-oc-stack:stack-ports";
    struct Case {
        std::string registered, path;
        Status got;
    };
    for (const Case &c : {Case{kStatePath + "/lyn-oc-stack:stack-units", kState + "/stack-units", 0},
                          {kUnitState + ports + "/lyn-oc-stack:ports", state + "/stack-ports/ports", 0},
                          {kUnitState + ports + "/lyn-oc-stack:ports/lyn-oc-stack:port",
                           state + "/stack-ports/ports/port=1", 1009}}) {
        EXPECT_EQ(getByHand(bench, c.registered, c.path, getValue), Got{c.got}) << c.path;
        EXPECT_EQ(getByHand(bench, c.registered, c.path, getNext), Got{1009}) << c.path;
    }
    // A unit needs a key above zero.
    EXPECT_EQ(u_lyn_oc_stack_state_1_get(nullptr, nullptr), 1006);
    EXPECT_EQ(getByHand(bench, kUnitState, kUnits + "=0/state", getValue), Got{4});
    EXPECT_EQ(getByHand(bench, kUnitState, kUnits + "=1/state", getNext), Got{1009});
    EXPECT_THAT(bench.sent(), IsEmpty());
}

} // namespace
} // namespace test
