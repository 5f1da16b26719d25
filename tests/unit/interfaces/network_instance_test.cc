// Network instances: VLANs, static MAC addresses, and what cannot be changed.
#include "tests/unit/interfaces/cells.h"
#include "tests/unit/interfaces/paths.h"
#include "toolkit/toolkit.h"

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;

std::string addVlan(const std::string &name)
{
    return R"(ui_vlan_config_apply {"operation":1,"vlan_type":{"kind":2,"multi_vlan":{"vlan_mask":"10"}},)"
           R"("name_op":1,"name":")" +
        name + "\"}";
}
const std::string kRemoveVlan =
    R"(ui_vlan_config_apply {"operation":3,"vlan_type":{"kind":2,"multi_vlan":{"vlan_mask":"10"}}})";
const std::string kRemoveAll =
    R"(ui_vlan_config_apply {"operation":3,"vlan_type":{"kind":2,"multi_vlan":{"vlan_mask":"1 to 4095"}}})";

std::string named(const std::string &name)
{
    return R"({"vlan-id":10,"name":")" + name + "\"}";
}
const std::string kPlain = R"({"vlan-id":10})", kSuspended = R"({"vlan-id":10,"status":"SUSPENDED"})";

class VlanConfig : public Cells { };
TEST_P(VlanConfig, Sends)
{
    check(vlanPath("10", "/config"));
}
const Cell kConfigCells[] = {
    {"create", apply, create, kAbsent, named("a"), {addVlan("a")}},
    {"create_without_name", apply, create, kAbsent, kPlain, {addVlan("")}},
    {"create_of_the_default_vlan_goes_by_number",
     apply,
     create,
     kAbsent,
     named("DEFAULT-VLAN"),
     {R"(ui_vlan_config_apply {"operation":1,"vlan_type":{"kind":1,"id":10},"default_vlan":1})"}},
    {"merge_of_a_new_name", apply, merge, kPlain, named("a"), {addVlan("a")}},
    {"merge_of_another_name", apply, merge, named("a"), named("b"), {addVlan("b")}},
    {"merge_that_deletes_the_name", apply, merge, named("a"), kPlain, {addVlan("")}},
    {"merge_that_leaves_the_name_alone_loses_it", apply, merge, kPlain, kSuspended, {addVlan("")}},
    {"replace", apply, replace, named("a"), named("b"), {addVlan("b")}},
    {"delete", apply, del, named("a"), kAbsent, {kRemoveVlan}},
    {"load", apply, load, kAbsent, named("a")},
    {"rollback_of_merge_goes_back_to_the_old_name", rollback, merge, named("a"), named("b"), {addVlan("a")}},
    {"rollback_of_merge_that_deleted_the_name", rollback, merge, named("a"), kPlain, {addVlan("a")}},
    {"rollback_of_merge_that_gave_a_name", rollback, merge, kPlain, named("a"), {addVlan("")}},
    {"rollback_of_replace_removes_the_vlan", rollback, replace, named("a"), named("b"), {kRemoveVlan}},
    {"rollback_of_create", rollback, create, kAbsent, named("a"), {kRemoveVlan}},
    {"rollback_of_delete", rollback, del, named("a"), kAbsent, {addVlan("a")}},
    {"rollback_of_load", rollback, load, kAbsent, named("a")},
    {"validate", validate, create, kAbsent, named("a")},
    {"commit", commit, del, named("a"), kAbsent},
};
INSTANTIATE_TEST_SUITE_P(Table, VlanConfig, testing::ValuesIn(kConfigCells), CaseName());

class VlanEntry : public Cells { };
TEST_P(VlanEntry, Sends)
{
    check(vlanPath("10"));
}
const std::string kEntry = R"({"vlan-id":10,"config":)" + named("a") + "}";
const Cell kEntryCells[] = {
    {"create", apply, create, kAbsent, kEntry},
    {"replace", apply, replace, kEntry, kEntry},
    {"delete", apply, del, kEntry, kAbsent, {kRemoveVlan}},
    {"rollback_of_delete", rollback, del, kEntry, kAbsent, {addVlan("a")}},
    {"rollback_of_create", rollback, create, kAbsent, kEntry},
    {"validate", validate, del, kEntry, kAbsent},
};
INSTANTIATE_TEST_SUITE_P(Table, VlanEntry, testing::ValuesIn(kEntryCells), CaseName());

class AllVlans : public Cells { };
TEST_P(AllVlans, Sends)
{
    check(instancePath("/vlans"));
}
const std::string kVlans = R"({"vlan":[)" + kEntry + "]}";
const Cell kVlansCells[] = {
    {"delete", apply, del, kVlans, kAbsent, {kRemoveAll}},
    {"replace", apply, replace, kVlans, "{}"},
    {"rollback_of_delete", rollback, del, kVlans, kAbsent},
    {"commit_of_delete", commit, del, kVlans, kAbsent},
};
INSTANTIATE_TEST_SUITE_P(Table, AllVlans, testing::ValuesIn(kVlansCells), CaseName());

TEST(Vlans, AFailureRecordsTheDevicesWordsFirst)
{
    SwitchBench bench;
    const auto edit = [&] {
        return bench.call(apply, create, vlanPath("10", "/config"), kAbsent, named("a"));
    };
    bench.device().addFault(faultOf("ui_vlan_config_apply", switchsim::FaultKind::refuse, "no room"));
    const Callback refused = edit();
    EXPECT_EQ(refused.status, 4);
    ASSERT_EQ(refused.records.size(), 2u);
    EXPECT_EQ(refused.records[0].text, "no room");
    EXPECT_EQ(refused.records[1].text, "Error: Clam Call failure\n");
    bench.unplug();
    const Callback silent = edit();
    ASSERT_EQ(silent.records.size(), 1u);
    EXPECT_EQ(silent.records[0].text, "Error: Clam Call failure\n");
}

const std::string kStartup =
    R"({"openconfig-network-instance:network-instances":{"network-instance":[{"name":"default","vlans":{"vlan":[)"
    R"({"vlan-id":1,"config":{"vlan-id":1,"name":"DEFAULT-VLAN"}},{"vlan-id":10,"config":{"vlan-id":10}}]}}]},)"
    R"("openconfig-interfaces:interfaces":{"interface":[{"name":"ethernet 1/1/1"}]}})";

TEST(NetworkInstance, IsNeitherMadeNorDeleted)
{
    SwitchBench bench(kStartup);
    const std::string text = "Error: Network instance creation/deletion not allowed\n";
    const Outcome created = bench.post(
        "openconfig-network-instance:network-instances",
        R"({"openconfig-network-instance:network-instance":[{"name":"red","config":{"name":"red"}}]})");
    EXPECT_EQ(created.status(), kDeviceText);
    EXPECT_EQ(created.message(), text);
    const Outcome deleted = bench.remove(instancePath());
    EXPECT_EQ(deleted.status(), kDeviceText);
    EXPECT_EQ(deleted.message(), text);
    EXPECT_THAT(bench.sent(), ElementsAre()); // refused before any VLAN is removed
    for (const EditOp op : {merge, replace})
        EXPECT_EQ(
            bench.call(apply, op, instancePath(), R"({"name":"default"})", R"({"name":"default"})").status,
            kOk);
}

TEST(Vlans, ExistBeforePortsJoinAndGoAfterTheyLeave)
{
    SwitchBench bench(kStartup);
    const auto body = [](const std::string &membership) {
        return R"({"ietf-restconf:data":{"openconfig-interfaces:interfaces":{"interface":[{"name":"ethernet 1/1/1",)"
               R"("openconfig-if-ethernet:ethernet":{"openconfig-vlan:switched-vlan":{"config":)" +
            membership +
            R"(}}}]},"openconfig-network-instance:network-instances":{"network-instance":[{"name":"default",)"
            R"("vlans":{"vlan":[{"vlan-id":20,"config":{"vlan-id":20,"name":"voice"}}]}}]}}})";
    };
    EXPECT_TRUE(bench.patch("", body(R"({"access-vlan":20})")).ok());
    EXPECT_THAT(bench.sent(),
                ElementsAre(testing::HasSubstr(R"("name":"voice")"), testing::HasSubstr("untagged_ports")));
    EXPECT_EQ(bench.device().show("vlan")["20"]["untagged"], switchsim::Json::array({"ethernet 1/1/1"}));
    EXPECT_TRUE(bench.remove(instancePath("/vlans")).ok());
    const auto sent = bench.sent();
    ASSERT_FALSE(sent.empty());
    EXPECT_EQ(sent.back(), kRemoveAll);
    EXPECT_EQ(bench.device().show("vlan").size(), 1u);
}

// Static addresses

std::string macPath(const std::string &below = "")
{
    return instancePath("/fdb/mac-table/entries/entry=00%3A11%3A22%3A33%3A44%3A55,10" + below);
}
std::string mac(int operation)
{
    const auto word = std::to_string(operation);
    return R"(ui_mac_config_apply {"entries":[{"mac_op":)" + word +
        R"(,"mac_address":"00:11:22:33:44:55","vlan_op":)" + word +
        R"(,"vlan_type":{"kind":1,"id":10},"port_op":)" + word +
        R"(,"port":"ethernet 1/1/1","entry_flag":1}]})";
}

class MacInterface : public Cells {
protected:
    MacInterface() { bench_->call(apply, create, vlanPath("10", "/config"), kAbsent, kPlain); }
};
TEST_P(MacInterface, Sends)
{
    check(macPath("/interface/interface-ref/config"));
}
const std::string kOn = R"({"interface":"ethernet 1/1/1"})";
const Cell kMacCells[] = {
    {"create", apply, create, kAbsent, kOn, {mac(1)}},
    {"merge", apply, merge, "{}", kOn, {mac(1)}},
    {"merge_that_leaves_none", apply, merge, kOn, "{}"},
    {"replace_changes_nothing", apply, replace, kOn, kOn},
    {"delete", apply, del, kOn, kAbsent, {mac(3)}},
    {"load", apply, load, kAbsent, kOn},
    {"rollback_leaves_it_in_place", rollback, create, kAbsent, kOn},
    {"rollback_of_delete", rollback, del, kOn, kAbsent},
    {"validate", validate, create, kAbsent, kOn},
    {"commit", commit, create, kAbsent, kOn},
};
INSTANTIATE_TEST_SUITE_P(Table, MacInterface, testing::ValuesIn(kMacCells), CaseName());

TEST(MacInterface, FailuresOfTheTwoDirections)
{
    SwitchBench bench;
    const auto path = macPath("/interface/interface-ref/config");
    const auto add = [&] { return bench.call(apply, create, path, kAbsent, kOn); };
    const auto remove = [&] { return bench.call(apply, del, path, kOn, kAbsent); };
    struct {
        int uiErr;
        Status add, remove;
        bool hasText[2];
    } cases[] = {{1, 1042, 1042, {true, true}}, {2, 4, 1042, {false, true}}};
    for (const auto &c : cases) {
        auto fault = faultOf("ui_mac_config_apply", switchsim::FaultKind::refuse, "table full");
        fault.uiErr = c.uiErr;
        bench.device().addFault(fault);
        const Callback added = add(), removed = remove();
        EXPECT_EQ(added.status, c.add);
        EXPECT_EQ(removed.status, c.remove);
        EXPECT_EQ(added.records.at(0).text, c.hasText[0] ? "table full" : "");
        EXPECT_EQ(removed.records.at(0).text, c.hasText[1] ? "table full" : "");
        bench.device().clearFaults();
    }
    bench.unplug();
    EXPECT_EQ(add().status, 4);
    EXPECT_EQ(remove().status, 4);
}

TEST(MacEntry, AgreesWithItsKeys)
{
    SwitchBench bench;
    const auto entry = [&](const std::string &config, EditPhase phase = apply, EditOp op = create) {
        const auto value = R"({"mac-address":"00:11:22:33:44:55","vlan":10,"config":)" + config + "}";
        std::vector<std::string> texts;
        const Callback done = bench.call(phase, op, macPath(), op == create ? kAbsent : value, value);
        for (const auto &record : done.records)
            texts.push_back(record.text);
        EXPECT_EQ(done.status, texts.empty() ? kOk : kDeviceText);
        return texts;
    };
    const std::string wrongMac = "Key MAC and config MAC value not matching \n",
                      wrongVlan = "Key VLAN and config VLAN value not matching \n";
    EXPECT_THAT(entry(R"({"mac-address":"00:11:22:33:44:55","vlan":10})"), ElementsAre());
    EXPECT_THAT(entry("{}"), ElementsAre());
    EXPECT_THAT(entry(R"({"vlan":11})"), ElementsAre(wrongVlan));
    EXPECT_THAT(entry(R"({"mac-address":"00:11:22:33:44:56","vlan":10})"), ElementsAre(wrongMac));
    const std::string both = R"({"mac-address":"00:11:22:33:44:56","vlan":11})";
    EXPECT_THAT(entry(both), ElementsAre(wrongMac, wrongVlan));
    EXPECT_THAT(entry(both, apply, merge), ElementsAre(wrongMac, wrongVlan));
    EXPECT_THAT(entry(both, apply, replace), ElementsAre());
    EXPECT_THAT(entry(both, validate), ElementsAre());
    EXPECT_THAT(bench.sent(), ElementsAre());
}

TEST(MacEntry, ComesAndGoesWithItsInterface)
{
    SwitchBench bench(kStartup);
    ASSERT_TRUE(
        bench.patch(vlanPath("10", "/config"), R"({"openconfig-network-instance:config":{"name":"a"}})")
            .ok());
    bench.sent();
    const auto ref = macPath("/interface/interface-ref/config");
    EXPECT_TRUE(bench
                    .put(macPath(),
                         R"({"openconfig-network-instance:entry":[{"mac-address":"00:11:22:33:44:55",)"
                         R"("vlan":10,"config":{"mac-address":"00:11:22:33:44:55","vlan":10},)"
                         R"("interface":{"interface-ref":{"config":{"interface":"ethernet 1/1/1"}}}}]})")
                    .ok());
    EXPECT_THAT(bench.sent(), ElementsAre(mac(1)));
    EXPECT_TRUE(bench.remove(ref + "/interface").ok());
    EXPECT_THAT(bench.sent(), ElementsAre(mac(3)));
    EXPECT_TRUE(bench.put(ref, R"({"openconfig-network-instance:config":)" + kOn + "}").ok());
    EXPECT_THAT(bench.sent(), ElementsAre(mac(1)));
    EXPECT_EQ(bench.device().show("static-mac")[0]["port"], "ethernet 1/1/1");
    EXPECT_TRUE(bench.remove(macPath()).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(mac(3)));
    EXPECT_TRUE(bench.device().show("static-mac").empty());
}

} // namespace
} // namespace test
