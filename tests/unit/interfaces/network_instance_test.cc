// Network instances: VLANs, static MAC addresses, and what cannot be changed.
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/interfaces/paths.h"

namespace test {
namespace {

const std::string kCall = "ui_vlan_config_apply";
const Pattern removal{kCall + R"( {"operation":3,"vlan_type":{"kind":2,"multi_vlan":{"vlan_mask":"$"}}})"};
const Pattern addVlan{
    kCall +
    R"( {"operation":1,"vlan_type":{"kind":2,"multi_vlan":{"vlan_mask":"10"}},"name_op":1,"name":"$)"
    R"("})"};
const std::string kRemoveVlan = removal("10"), kRemoveAll = removal("1 to 4095");

const Pattern named{R"({"vlan-id":10,"name":"$"})"};
const std::string kPlain = R"({"vlan-id":10})", kA = named("a"), kB = named("b"),
                  kEntry = R"({"vlan-id":10,"config":)" + kA + "}", kVlans = R"({"vlan":[)" + kEntry + "]}",
                  kSilent = "Error: Clam Call failure\n",
                  kNotSent = "\n Error: Send to remote failed with error 1 for VLAN 10\n",
                  kNotDone = "\n Error: Backend processing failed with error  6 for VLAN 10";

const std::vector<Cell> kConfigCells = {
    created("", kA, {addVlan("a")}),
    created("without name", kPlain, {addVlan("")}),
    created("the default VLAN goes by number", named("DEFAULT-VLAN"),
            {kCall + R"( {"operation":1,"vlan_type":{"kind":1,"id":10},"default_vlan":1})"}),
    merged("another name", kA, kB, {addVlan("b")}),
    merged("a name that goes", kA, kPlain, {addVlan("")}),
    merged("a name that is left alone is lost", kPlain, R"({"vlan-id":10,"status":"SUSPENDED"})",
           {addVlan("")}),
    replaced("", kA, kB, {addVlan("b")}),
    deleted("", kA, {kRemoveVlan}),
    in(rollback, merged("back to the old name", kA, kB, {addVlan("a")})),
    in(rollback, merged("a name that went", kA, kPlain, {addVlan("a")})),
    in(rollback, merged("a name that was given", kPlain, kA, {addVlan("")})),
    in(rollback, replaced("rollback of replace removes the VLAN", kA, kB, {kRemoveVlan})),
    in(rollback, created("", kA, {kRemoveVlan})),
    in(rollback, deleted("", kA, {addVlan("a")})),
    under(noAnswer(kCall), created("silent", kA, {addVlan("a")}, 4, kSilent)),
    under(refusal(kCall, "", 6), created("an empty text is none", kA, {addVlan("a")}, 4, kSilent)),
    under(refusal(kCall, "odd", 0, 2), created("the daemon itself does not count", kA, {addVlan("a")})),
};

TEST(Vlans, DoExactlyThis)
{
    SwitchBench bench;
    check(bench, vlanPath("10", "/config"), kConfigCells, Quiet{kA, kA});
    check(bench, vlanPath("10"),
          {deleted("", kEntry, {kRemoveVlan}), in(rollback, deleted("", kEntry, {addVlan("a")}))},
          Quiet{kEntry, kEntry});
    check(bench, instancePath("/vlans"), {deleted("", kVlans, {kRemoveAll})}, Quiet{kVlans, kVlans});
    // A failure records the device's words first.
    strike(bench, refusal(kCall, "no room"));
    EXPECT_EQ(ended(bench.call(apply, create, vlanPath("10", "/config"), kAbsent, kA)),
              Ended(4, {"no room", kSilent}));
    for (const auto &[fault, said] :
         {std::pair{noAnswer(kCall), kNotSent}, {refusal(kCall, "", 6), kNotDone}}) {
        strike(bench, fault);
        const LogCapture log;
        bench.call(apply, create, vlanPath("10", "/config"), kAbsent, kA);
        EXPECT_THAT(log.errors(), HasSubstr(said));
    }
}

const std::string kStartup =
    R"({"openconfig-network-instance:network-instances":{"network-instance":[{"name":"default","vlans":{"vlan":[)"
    R"({"vlan-id":1,"config":{"vlan-id":1,"name":"DEFAULT-VLAN"}},{"vlan-id":10,"config":{"vlan-id":10}}]}}]},)"
    R"("openconfig-interfaces:interfaces":{"interface":[{"name":"ethernet 1/1/1"}]}})";

TEST(NetworkInstance, IsNeitherMadeNorDeleted)
{
    SwitchBench bench(kStartup);
    const Outcome created = bench.post(
        "openconfig-network-instance:network-instances",
        R"({"openconfig-network-instance:network-instance":[{"name":"red","config":{"name":"red"}}]})");
    for (const Outcome &outcome : {created, bench.remove(instancePath())}) {
        EXPECT_EQ(outcome.status(), kDeviceText);
        EXPECT_EQ(outcome.message(), "Error: Network instance creation/deletion not allowed\n");
    }
    EXPECT_THAT(bench.sent(), ElementsAre()); // refused before any VLAN is removed
    const std::string instance = R"({"name":"default"})";
    check(bench, instancePath(), {merged("", instance, instance), replaced("", instance, instance)});
}

TEST(Vlans, ExistBeforePortsJoinAndGoAfterTheyLeave)
{
    SwitchBench bench(kStartup);
    EXPECT_TRUE(
        bench
            .patch(
                "",
                R"({"ietf-restconf:data":{"openconfig-interfaces:interfaces":{"interface":[{"name":"ethernet 1/1/1",)"
                R"("openconfig-if-ethernet:ethernet":{"openconfig-vlan:switched-vlan":{"config":{"access-vlan":20}}}}]},)"
                R"("openconfig-network-instance:network-instances":{"network-instance":[{"name":"default",)"
                R"("vlans":{"vlan":[{"vlan-id":20,"config":{"vlan-id":20,"name":"voice"}}]}}]}}})")
            .ok());
    EXPECT_THAT(bench.sent(), ElementsAre(HasSubstr(R"("name":"voice")"), HasSubstr("untagged_ports")));
    EXPECT_EQ(bench.device().show("vlan")["20"]["untagged"], switchsim::Json::array({"ethernet 1/1/1"}));
    EXPECT_TRUE(bench.remove(instancePath("/vlans")).ok());
    const auto sent = bench.sent();
    ASSERT_FALSE(sent.empty());
    EXPECT_EQ(sent.back(), kRemoveAll);
    EXPECT_EQ(bench.device().show("vlan").size(), 1u);
}

// Static addresses

const std::string kMacCall = "ui_mac_config_apply", kOn = R"({"interface":"ethernet 1/1/1"})";
std::string macPath(const std::string &below = "")
{
    return instancePath("/fdb/mac-table/entries/entry=00%3A11%3A22%3A33%3A44%3A55,10" + below);
}
std::string mac(int operation)
{
    const auto word = std::to_string(operation);
    return kMacCall + R"( {"entries":[{"mac_op":)" + word +
        R"(,"mac_address":"00:11:22:33:44:55","vlan_op":)" + word +
        R"(,"vlan_type":{"kind":1,"id":10},"port_op":)" + word +
        R"(,"port":"ethernet 1/1/1","entry_flag":1}]})";
}
const std::vector<Cell> kMacCells = {
    created("", kOn, {mac(1)}),
    merged("", "{}", kOn, {mac(1)}),
    merged("merge that leaves none", kOn, "{}"),
    deleted("", kOn, {mac(3)}),
    under(refusal(kMacCall, "full"), created("refused", kOn, {mac(1)}, 1042, "full")),
    under(refusal(kMacCall, "full", 2), created("another code", kOn, {mac(1)}, 4)),
    under(refusal(kMacCall, "full", 2), deleted("another code", kOn, {mac(3)}, 1042, "full")),
    under(noAnswer(kMacCall), created("silent", kOn, {mac(1)}, 4)),
    under(noAnswer(kMacCall), deleted("silent", kOn, {mac(3)}, 4)),
};

TEST(MacInterface, DoesExactlyThis)
{
    SwitchBench bench;
    bench.call(apply, create, vlanPath("10", "/config"), kAbsent, kPlain);
    check(bench, macPath("/interface/interface-ref/config"), kMacCells, Quiet{kOn, kOn});
}

TEST(MacEntry, AgreesWithItsKeys)
{
    SwitchBench bench;
    const auto entry = [](const std::string &config) {
        return R"({"mac-address":"00:11:22:33:44:55","vlan":10,"config":)" + config + "}";
    };
    const std::string wrongMac = "Key MAC and config MAC value not matching \n",
                      wrongVlan = "Key VLAN and config VLAN value not matching \n",
                      both = entry(R"({"mac-address":"00:11:22:33:44:56","vlan":11})");
    check(bench, macPath(),
          {created("right", entry(R"({"mac-address":"00:11:22:33:44:55","vlan":10})")),
           created("none", entry("{}")),
           created("wrong VLAN", entry(R"({"vlan":11})"), {}, kDeviceText, wrongVlan),
           created("wrong MAC", entry(R"({"mac-address":"00:11:22:33:44:56"})"), {}, kDeviceText, wrongMac),
           replaced("", both, both), in(validate, created("", both))});
    EXPECT_EQ(ended(bench.call(apply, merge, macPath(), both, both)),
              Ended(kDeviceText, {wrongMac, wrongVlan}));
}

} // namespace
} // namespace test
