// What the stack and its units report.
#include "stack/src/u_lyn-openconfig-stack.h"
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/platform/scripted_device.h"

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kState = "lyn-openconfig-stack:stack/state", kUnits = kState + "/stack-units/stack-unit",
                  kStatePath = "/lyn-oc-stack:stack/lyn-oc-stack:state",
                  kUnitsPath = kStatePath + "/lyn-oc-stack:stack-units/lyn-oc-stack:stack-unit",
                  kShown = R"(ui_fe_stack_show_cmd {"show_stack":10,"show_op":21})";

std::string leaf(const std::string &name, const std::string &value)
{
    return "{\"lyn-openconfig-stack:" + name + "\":" + value + "}";
}

TEST(StackState, IsReadWithOneRequest)
{
    SwitchBench bench;
    EXPECT_EQ(bench.read(kState + "/enabled", Content::all), leaf("enabled", "false"));
    EXPECT_THAT(bench.sent(), ElementsAre(R"(ui_stack_fe_get_all_apply {"get_all_op":1})"));
    EXPECT_EQ(bench.read(kState + "/mac-address", Content::all), leaf("mac-address", R"("---")"));
    EXPECT_EQ(bench.read(kState + "/suggested-id", Content::all), "");
    EXPECT_EQ(bench.read(kState + "/rear-module", Content::all), leaf("rear-module", R"("other")"));
    bench.patch(
        "lyn-openconfig-stack:stack/config",
        R"({"lyn-openconfig-stack:config":{"enabled":true,"mac-address":"AABB.CCDD.EEFF","suggested-id":12,)"
        R"("zero-touch-enable":true,"ztp-force":true}})");
    for (const auto &[name, value] : {std::pair{"enabled", "true"},
                                      {"mac-address", R"("aabb.ccdd.eeff")"},
                                      {"suggested-id", "12"},
                                      {"zero-touch-enable", "true"},
                                      {"ztp-force", "true"}})
        EXPECT_EQ(bench.read(kState + "/" + name, Content::all), leaf(name, value));
}

struct Record {
    std::string name;
    void (*fill)(Stack__GlobalRecord &record);
    std::string leafName, value; // empty: it is not shown
};
class StackRecord : public testing::TestWithParam<Record> { };

TEST_P(StackRecord, IsShownThus)
{
    SwitchBench bench("", 3);
    // The platform is asked of the same switch.
    char rear[] = "rear-module uplink-40g";
    std::uint8_t mac[] = {0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff};
    CommonResp reply = COMMON_RESP__INIT;
    Stack__GlobalRecord record;
    stack__global_record__init(&record);
    record.rear_module = rear;
    record.has_mac_bytes = record.has_mac_len = 1;
    record.mac_bytes = {sizeof mac, mac};
    record.mac_len = sizeof mac;
    record.has_suggested_id = record.has_stack_enabled = record.has_ztp_enabled = record.has_ztp_force = 1;
    GetParam().fill(record);
    Stack__GetAllResp answer;
    stack__get_all_resp__init(&answer);
    answer.reply = &reply;
    answer.global = &record;
    const Says says(bench, answer);
    EXPECT_EQ(bench.read(kState + "/" + GetParam().leafName, Content::all),
              GetParam().value.empty() ? "" : leaf(GetParam().leafName, GetParam().value));
}
using Global = Stack__GlobalRecord;
const Record kRecords[] = {
    {"enabled_is_exactly_1", [](Global &record) { record.stack_enabled = 2; }, "enabled", "false"},
    {"ztp_is_anything_but_0", [](Global &record) { record.ztp_enabled = -2; }, "zero-touch-enable", "true"},
    {"forced_is_anything_but_0", [](Global &record) { record.ztp_force = 2; }, "ztp-force", "true"},
    {"id_0", [](Global &record) { record.suggested_id = 0; }, "suggested-id", ""},
    {"id_1", [](Global &record) { record.suggested_id = 1; }, "suggested-id", "1"},
    {"id_12", [](Global &record) { record.suggested_id = 12; }, "suggested-id", "12"},
    {"id_13", [](Global &record) { record.suggested_id = 13; }, "suggested-id", ""},
    {"id_negative", [](Global &record) { record.suggested_id = -1; }, "suggested-id", ""},
    {"mac_length_0", [](Global &record) { record.mac_len = 0; }, "mac-address", R"("---")"},
    {"mac_shorter_than_told", [](Global &record) { record.mac_len = 100, record.mac_bytes.len = 4; },
     "mac-address", R"("aabb.ccdd")"},
};
INSTANTIATE_TEST_SUITE_P(Table, StackRecord, testing::ValuesIn(kRecords), CaseName());

TEST(StackState, RearModuleIsToldByOnePlatformFromTheWordStackOn)
{
    SwitchBench bench("", 3);
    const auto read = [&] { return bench.read(kState + "/rear-module", Content::all); };
    EXPECT_EQ(read(), leaf("rear-module", R"("stack-40g")"));
    bench.patch("lyn-openconfig-stack:stack/config",
                R"({"lyn-openconfig-stack:config":{"rear-module":"uplink-100g"}})");
    EXPECT_EQ(read(), leaf("rear-module", R"("rear-module uplink-100g")"));
    bench.device().setValue("platform-type", 4);
    EXPECT_EQ(read(), leaf("rear-module", R"("other")"));
}

TEST(StackState, WithoutAGoodAnswerThereIsNone)
{
    SwitchBench bench;
    const std::string call = "ui_stack_fe_get_all_apply";
    for (const auto &fault : {noAnswer(call), refusal(call, "no", 0, 1), refusal(call, "no", 1, 0)}) {
        bench.device().clearFaults();
        bench.device().addFault(fault);
        EXPECT_EQ(getByHand(bench, kStatePath, kState, getValue), Got{1009});
    }
    bench.device().clearFaults();
    Stack__GetAllResp empty;
    stack__get_all_resp__init(&empty);
    const Says says(bench, empty);
    EXPECT_EQ(getByHand(bench, kStatePath, kState, getValue), Got{1009});
}

struct Walk {
    std::string name;
    std::string key; // "=2", or nothing
    GetMode mode;
    Got got;
};
class StackUnitWalk : public testing::TestWithParam<Walk> { };

TEST_P(StackUnitWalk, FindsThisUnit)
{
    SwitchBench bench;
    EXPECT_EQ(getByHand(bench, kUnitsPath, kUnits + GetParam().key, GetParam().mode), GetParam().got);
    EXPECT_THAT(bench.sent(), ElementsAre(kShown));
}
const Walk kWalks[] = {
    {"the_first_one", "", getValue, {0, {"1"}, true}},
    {"the_first_one_by_next", "", getNext, {0, {"1"}, true}},
    {"one_by_its_key", "=2", getValue, {0, {"2"}, true}},
    {"the_last_one_by_its_key", "=3", getValue, {0, {"3"}, false}},
    {"the_next_one", "=1", getNext, {0, {"2"}, true}},
    {"the_next_to_last_one", "=2", getNext, {0, {"3"}, false}},
    {"none_behind_the_last", "=3", getNext, {1009}},
    {"the_empty_slot", "=0", getValue, {1009}},
    {"the_next_behind_the_empty_slot", "=0", getNext, {0, {"1"}, true}},
    {"none_that_is_not_there", "=4", getValue, {1009}},
};
INSTANTIATE_TEST_SUITE_P(Table, StackUnitWalk, testing::ValuesIn(kWalks), CaseName());

TEST(StackUnits, AreNoneWithoutAGoodAnswer)
{
    SwitchBench bench;
    for (const auto &fault : {noAnswer("ui_fe_stack_show_cmd"), refusal("ui_fe_stack_show_cmd", "no")}) {
        bench.device().clearFaults();
        bench.device().addFault(fault);
        EXPECT_EQ(getByHand(bench, kUnitsPath, kUnits, getValue), Got{1009});
        EXPECT_EQ(bench.read(kUnits, Content::all), "");
    }
    EXPECT_EQ(getByHand(bench, kUnitsPath, kUnits, static_cast<GetMode>(5)), Got{4});
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
    const std::string path = kUnitsPath + "/lyn-oc-stack:state";
    EXPECT_EQ(getByHand(bench, path, kUnits + "=1/state", getValue), Got{kOk});
    EXPECT_EQ(getByHand(bench, path, kUnits + "=2/state", getValue), Got{1009});
    EXPECT_EQ(getByHand(bench, kUnitsPath, kUnits + "=2", getValue), (Got{kOk, {"2"}}));
}

TEST(StackUnit, NeedsAKeyAboveZero)
{
    SwitchBench bench;
    const std::string path = kUnitsPath + "/lyn-oc-stack:state";
    EXPECT_EQ(u_lyn_oc_stack_state_1_get(nullptr, nullptr), 1006);
    EXPECT_EQ(getByHand(bench, path, kUnits + "=0/state", getValue), Got{4});
    EXPECT_EQ(getByHand(bench, path, kUnits + "=1/state", getNext), Got{1009});
    EXPECT_THAT(bench.sent(), IsEmpty());
    bench.device().addFault(noAnswer("ui_fe_stack_show_cmd"));
    EXPECT_EQ(getByHand(bench, path, kUnits + "=1/state", getValue), Got{1009});
}

TEST(StackContainers, WithoutContentAnswerOnly)
{
    SwitchBench bench;
    const std::string state = kUnits + "=1/state", path = kUnitsPath + "/lyn-oc-stack:state";
    struct Case {
        std::string registered, path;
        Status got, next;
    };
    for (const Case &c :
         {Case{kStatePath + "/lyn-oc-stack:stack-units", kState + "/stack-units", 0, 1009},
          {path + "/lyn-oc-stack:trunks", state + "/trunks", 0, 1009},
          {path + "/lyn-oc-stack:stack-ports", state + "/stack-ports", 0, 1009},
          {path + "/lyn-oc-stack:stack-ports/lyn-oc-stack:ports", state + "/stack-ports/ports", 0, 1009},
          {path + "/lyn-oc-stack:stack-ports/lyn-oc-stack:ports/lyn-oc-stack:port",
           state + "/stack-ports/ports/port=1", 1009, 1009}}) {
        EXPECT_EQ(getByHand(bench, c.registered, c.path, getValue), Got{c.got}) << c.path;
        EXPECT_EQ(getByHand(bench, c.registered, c.path, getNext), Got{c.next}) << c.path;
    }
    EXPECT_THAT(bench.sent(), IsEmpty());
}

} // namespace
} // namespace test
