// The interface list: what its edits send, and the state of ports.
#include "tests/unit/interfaces/cells.h"
#include "tests/unit/interfaces/paths.h"
#include "toolkit/toolkit.h"

#include <chrono>

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;
using testing::IsSupersetOf;

std::string config(const std::string &type, const std::string &more = "")
{
    return R"({"type":"iana-if-type:)" + type + "\"" + more + "}";
}
const std::string kDescribed = R"(,"description":"uplink")", kOther = R"(,"description":"other")",
                  kOff = R"(,"enabled":false)";

const std::string kPort = "ethernet 1/1/1";
std::string setPort(const std::string &fields)
{
    return R"(ui_fe_interface_config_msg {"operation":2,"name":"ethernet 1/1/1")" + fields + "}";
}
std::string setVe(const std::string &fields)
{
    return R"(ui_set_intf_config {"name":"ve 20","id":20,"if_type":4)" + fields + "}";
}

class PortConfig : public Cells { };
TEST_P(PortConfig, Sends)
{
    check(interfacePath(kPort, "/config"));
}

const std::string kEthernet = "ethernetCsmacd";
const std::string kEnabledOnly = R"(,"description_op":3,"enabled_op":2,"enabled":0)";
const Cell kPortCells[] = {
    {"merge_of_a_description",
     apply,
     merge,
     config(kEthernet),
     config(kEthernet, kDescribed),
     {setPort(R"(,"description_op":2,"description":"uplink")")}},
    {"merge_of_both",
     apply,
     merge,
     config(kEthernet),
     config(kEthernet, kDescribed + kOff),
     {setPort(R"(,"description_op":2,"description":"uplink","enabled_op":2,"enabled":0)")}},
    {"merge_that_deletes_the_description_sends_it_once_more",
     apply,
     merge,
     config(kEthernet, kDescribed),
     config(kEthernet),
     {setPort(R"(,"description_op":2,"description":"uplink")")}},
    {"merge_of_nothing_known",
     apply,
     merge,
     config(kEthernet),
     config(kEthernet, R"(,"mtu":9000)"),
     {setPort("")}},
    {"replace",
     apply,
     replace,
     config(kEthernet, kDescribed),
     config(kEthernet, kOff),
     {setPort(kEnabledOnly)}},
    {"create",
     apply,
     create,
     kAbsent,
     config(kEthernet, kDescribed),
     {setPort(R"(,"description_op":2,"description":"uplink","enabled_op":3)")}},
    {"delete",
     apply,
     del,
     config(kEthernet, kDescribed),
     kAbsent,
     {setPort(R"(,"description_op":3,"enabled_op":3)")}},
    {"load_fills_nothing", apply, load, kAbsent, config(kEthernet, kDescribed), {setPort("")}},
    {"rollback_of_merge",
     rollback,
     merge,
     config(kEthernet, kOff),
     config(kEthernet, kDescribed),
     {setPort(kEnabledOnly)}},
    {"rollback_of_replace",
     rollback,
     replace,
     config(kEthernet, kOff),
     config(kEthernet, kDescribed),
     {setPort(kEnabledOnly)}},
    {"rollback_of_create_has_nothing_to_go_back_to",
     rollback,
     create,
     kAbsent,
     config(kEthernet, kDescribed),
     {setPort("")}},
    {"rollback_of_delete_has_nothing_to_go_on_to",
     rollback,
     del,
     config(kEthernet, kDescribed),
     kAbsent,
     {setPort("")}},
    {"rollback_of_load", rollback, load, kAbsent, config(kEthernet, kDescribed), {setPort("")}},
    {"validate_sends_nothing", validate, create, kAbsent, config(kEthernet, kDescribed)},
    {"commit_sends_nothing", commit, del, config(kEthernet, kDescribed), kAbsent},
    {"without_a_type", validate, merge, "{}", R"({"description":"uplink"})", {}, 4},
    {"a_type_that_is_none_of_ours", apply, create, kAbsent, config("tunnel"), {}, 4},
    {"the_new_type_counts",
     apply,
     merge,
     config("tunnel"),
     config(kEthernet, kDescribed),
     {setPort(R"(,"description_op":2,"description":"uplink")")}},
};
INSTANTIATE_TEST_SUITE_P(Table, PortConfig, testing::ValuesIn(kPortCells), CaseName());

class VeConfig : public Cells { };
TEST_P(VeConfig, Sends)
{
    check(interfacePath("ve 20", "/config"));
}

const std::string kVe = "l3ipvlan";
const std::string kSetUplink = R"("description":"uplink","description_op":2)";
const Cell kVeCells[] = {
    {"create", apply, create, kAbsent, config(kVe, kDescribed), {setVe(R"(,"operation":1,)" + kSetUplink)}},
    {"create_without_description", apply, create, kAbsent, config(kVe, kOff), {setVe(R"(,"operation":1)")}},
    {"merge_of_a_description",
     apply,
     merge,
     config(kVe),
     config(kVe, kDescribed),
     {setVe(R"(,"operation":2,)" + kSetUplink)}},
    {"merge_of_mtu_says_nothing", apply, merge, config(kVe), config(kVe, R"(,"mtu":9000)"), {setVe("")}},
    {"merge_of_enabled_says_nothing", apply, merge, config(kVe), config(kVe, kOff), {setVe("")}},
    {"merge_that_deletes_the_description",
     apply,
     merge,
     config(kVe, kDescribed),
     config(kVe, kOff),
     {setVe(R"(,"operation":2,"description_op":3,"description_clear":1)")}},
    {"replace",
     apply,
     replace,
     config(kVe, kOther),
     config(kVe, kDescribed),
     {setVe(R"(,"operation":2,)" + kSetUplink)}},
    {"replace_without_description",
     apply,
     replace,
     config(kVe, kOther),
     config(kVe),
     {setVe(R"(,"operation":2)")}},
    {"delete_takes_the_description_only",
     apply,
     del,
     config(kVe, kDescribed),
     kAbsent,
     {setVe(R"(,"operation":2,"description_op":3)")}},
    {"load_fills_nothing", apply, load, kAbsent, config(kVe, kDescribed), {setVe("")}},
    {"rollback_of_merge",
     rollback,
     merge,
     config(kVe),
     config(kVe, kDescribed),
     {setVe(R"(,"operation":1)")}},
    {"rollback_of_replace",
     rollback,
     replace,
     config(kVe),
     config(kVe, kDescribed),
     {setVe(R"(,"operation":1)")}},
    {"rollback_of_delete", rollback, del, config(kVe, kDescribed), kAbsent, {setVe(R"(,"operation":3)")}},
    {"rollback_of_load", rollback, load, kAbsent, config(kVe), {setVe("")}},
    {"rollback_of_create", rollback, create, kAbsent, config(kVe, kDescribed), {setVe(R"(,"operation":1)")}},
    {"validate_sends_nothing", validate, del, config(kVe), kAbsent},
    {"commit_sends_nothing", commit, create, kAbsent, config(kVe)},
};
INSTANTIATE_TEST_SUITE_P(Table, VeConfig, testing::ValuesIn(kVeCells), CaseName());

TEST(Interfaces, RoutedNamesAreSplit)
{
    SwitchBench bench;
    const auto create = [&](const char *name, const char *type) {
        return bench.call(apply, tk::create, interfacePath(name, "/config"), kAbsent, config(type)).status;
    };
    EXPECT_EQ(create("loopback 1", "softwareLoopback"), kOk);
    EXPECT_EQ(create("ve 65556", "l3ipvlan"), kDeviceText); // the number is cut, and the device sees that
    EXPECT_THAT(bench.sent(),
                ElementsAre(R"(ui_set_intf_config {"name":"loopback 1","id":1,"if_type":2,"operation":1})",
                            R"(ui_set_intf_config {"name":"ve 65556","id":20,"if_type":4,"operation":1})"));
    EXPECT_EQ(create("ve20", "l3ipvlan"), kInternal);
    EXPECT_EQ(create("loopback", "softwareLoopback"), kInternal);
    EXPECT_THAT(bench.sent(), ElementsAre());
}

TEST(Interfaces, ARefusedPortIsAFailureARefusedLagIsNot)
{
    SwitchBench bench;
    bench.device().addFault(faultOf("ui_fe_interface_config_msg", switchsim::FaultKind::refuse, "not now"));
    const Callback port = bench.call(apply, replace, interfacePath(kPort, "/config"), config(kEthernet),
                                     config(kEthernet, kOff));
    EXPECT_EQ(port.status, kDeviceText);
    ASSERT_EQ(port.records.size(), 1u);
    EXPECT_EQ(port.records[0].text, "not now");
    const auto lag = [&] {
        return bench.call(apply, replace, interfacePath("lag 5", "/config"), config("ieee8023adLag"),
                          config("ieee8023adLag", kOff));
    };
    EXPECT_EQ(lag().status, kOk);
    bench.unplug();
    const Callback silent = lag();
    EXPECT_EQ(silent.status, kDeviceText);
    ASSERT_EQ(silent.records.size(), 1u);
    EXPECT_EQ(silent.records[0].text, "u_openconfig_interfaces_interfaces_interface_config_set failed  \n");
    const Callback ve = bench.call(apply, create, interfacePath("ve 20", "/config"), kAbsent, config(kVe));
    EXPECT_EQ(ve.status, kDeviceText);
    ASSERT_EQ(ve.records.size(), 1u);
    EXPECT_EQ(ve.records[0].text, "u_openconfig_interfaces_interfaces_interface_config_set failed \n");
}

// Of each kind of interface in each phase: only a port's existence is defended, only a routed one is deleted.
TEST(InterfaceEntry, PortsStayAndRoutedInterfacesGoInCommit)
{
    SwitchBench bench;
    const auto entry = [](const std::string &name, const std::string &type) {
        return R"({"name":")" + name + R"(","config":)" + config(type) + "}";
    };
    struct {
        std::string name, type;
        std::string deleted; // the request in commit of a delete
    } kinds[] = {
        {kPort, kEthernet, ""},
        {"lag 5", "ieee8023adLag", ""},
        {"ve 20", kVe, setVe(R"(,"operation":3)")},
        {"loopback 1", "softwareLoopback",
         R"(ui_set_intf_config {"name":"loopback 1","id":1,"if_type":2,"operation":3})"},
    };
    for (const auto &kind : kinds)
        for (const EditPhase phase : {validate, apply, commit, rollback})
            for (const EditOp op : {merge, replace, create, del, load}) {
                const auto value = entry(kind.name, kind.type);
                const bool isNew = op == create || op == load;
                const auto status = bench
                                        .call(phase, op, interfacePath(kind.name), isNew ? kAbsent : value,
                                              op == del ? kAbsent : value)
                                        .status;
                const bool refused = kind.type == kEthernet && phase == validate && op != merge && op != load;
                EXPECT_EQ(status, refused ? 273 : 0) << kind.name << " " << phase << " " << op;
                const bool isDeleted = phase == commit && op == del && !kind.deleted.empty();
                EXPECT_EQ(bench.sent(),
                          isDeleted ? std::vector<std::string>{kind.deleted} : std::vector<std::string>{});
            }
}

TEST(InterfaceEntry, ADeletionThatIsRefusedFailsAndOneUnheardDoesNot)
{
    SwitchBench bench;
    const auto remove = [&](const std::string &name) {
        return bench.call(commit, del, interfacePath(name),
                          R"({"name":")" + name + R"(","config":)" + config(kVe) + "}", kAbsent);
    };
    EXPECT_EQ(remove("ve").status, kInternal);
    bench.device().addFault(faultOf("ui_set_intf_config", switchsim::FaultKind::refuse, "in use"));
    const Callback refused = remove("ve 20");
    EXPECT_EQ(refused.status, kDeviceText);
    ASSERT_EQ(refused.records.size(), 1u);
    EXPECT_EQ(refused.records[0].text, "in use");
    bench.unplug();
    EXPECT_EQ(remove("ve 20").status, kOk);
}

TEST(InterfaceEntry, OfAVeComesAndGoes)
{
    SwitchBench bench;
    EXPECT_TRUE(bench
                    .post("openconfig-interfaces:interfaces",
                          R"({"openconfig-interfaces:interface":[{"name":"ve 20","config":{"name":"ve 20",)" +
                              config(kVe, kDescribed).substr(1) + "}]}")
                    .ok());
    EXPECT_EQ(bench.device().show("ip")["ve 20"]["description"], "uplink");
    bench.sent();
    EXPECT_TRUE(bench.remove(interfacePath("ve 20", "/config/description")).ok());
    EXPECT_THAT(bench.sent(),
                ElementsAre(setVe(R"(,"operation":2,"description_op":3,"description_clear":1)")));
    EXPECT_TRUE(bench.remove(interfacePath("ve 20")).ok());
    EXPECT_THAT(bench.sent(),
                ElementsAre(setVe(R"(,"operation":2,"description_op":3)"), setVe(R"(,"operation":3)")));
    EXPECT_TRUE(bench.device().show("ip").empty());
}

TEST(Subinterface, IndexZeroIsTheOnlyOne)
{
    SwitchBench bench;
    const auto add = [&](const std::string &index, EditPhase phase, EditOp op) {
        const auto entry = R"({"index":)" + index + "}";
        return bench.call(phase, op, interfacePath(kPort, "/subinterfaces/subinterface=" + index),
                          op == create ? kAbsent : entry, entry);
    };
    EXPECT_EQ(add("0", apply, create).status, kOk);
    const Callback refused = add("1", apply, create);
    EXPECT_EQ(refused.status, 258);
    ASSERT_EQ(refused.records.size(), 1u);
    EXPECT_EQ(refused.records[0].text, "Subinterface is not supported, index should be 0");
    EXPECT_EQ(add("1", validate, create).status, kOk);
    EXPECT_EQ(add("1", apply, replace).status, kOk);
    EXPECT_THAT(bench.sent(), ElementsAre());
}

const std::string kStartup =
    R"({"openconfig-interfaces:interfaces":{"interface":[{"name":"ethernet 1/1/1","config":{"name":"ethernet 1/1/1",)"
    R"("type":"iana-if-type:ethernetCsmacd"}}]}})";

TEST(InterfaceState, IsWhatTheDeviceSays)
{
    SwitchBench bench(kStartup);
    bench.patch(interfacePath(kPort, "/config"),
                R"({"openconfig-interfaces:config":{"description":"uplink","enabled":false}})");
    bench.sent();
    const std::string asked =
        R"(ui_fe_interface_config_msg {"operation":5,"name":"ethernet 1/1/1","enabled_op":5,"state_selector":3})";
    const auto state = bench.read(interfacePath(kPort, "/state"), Content::all);
    for (const char *leaf : {R"("name":"ethernet 1/1/1")", R"("type":"iana-if-type:ethernetCsmacd")",
                             R"("description":"uplink")", R"("enabled":false)", R"("ifindex":1)",
                             R"("admin-status":"DOWN")", R"("oper-status":"DOWN")"})
        EXPECT_THAT(state, testing::HasSubstr(leaf));
    for (const char *leaf : {"mtu", "loopback-mode", "last-change", "logical"})
        EXPECT_THAT(state, testing::Not(testing::HasSubstr(leaf)));
    EXPECT_THAT(bench.sent(), testing::Contains(asked));
    bench.remove(interfacePath(kPort, "/config/enabled"));
    EXPECT_EQ(
        bench.read(interfacePath(kPort, "/state/oper-status"), Content::all),
        R"({"openconfig-interfaces:oper-status":"DOWN"})"); // the deleted leaf's value went out once more
    bench.put(interfacePath(kPort, "/config"),
              R"({"openconfig-interfaces:config":{"type":"iana-if-type:ethernetCsmacd"}})");
    EXPECT_EQ(bench.read(interfacePath(kPort, "/state/oper-status"), Content::all),
              R"({"openconfig-interfaces:oper-status":"UP"})");
    bench.device().setValue("unplugged-port", 1);
    EXPECT_EQ(bench.read(interfacePath(kPort, "/state/oper-status"), Content::all),
              R"({"openconfig-interfaces:oper-status":"DOWN"})");
    EXPECT_EQ(bench.read(interfacePath(kPort, "/state/admin-status"), Content::all),
              R"({"openconfig-interfaces:admin-status":"UP"})");
}

TEST(InterfaceState, CountersGrow)
{
    SwitchBench bench(kStartup);
    const auto packets = [&] {
        const auto text = bench.read(interfacePath(kPort, "/state/counters/in-pkts"), Content::all);
        return std::stoul(text.substr(text.rfind(":\"") + 2));
    };
    bench.sent();
    const auto before = packets();
    EXPECT_THAT(bench.sent(),
                testing::Contains(R"(ui_fe_interface_config_msg {"operation":5,)"
                                  R"("name":"ethernet 1/1/1","state_selector":3})"));
    EXPECT_GT(packets(), before);
    const auto all = bench.read(interfacePath(kPort, "/state/counters"), Content::all);
    for (const char *leaf :
         {"in-octets", "in-unicast-pkts", "in-broadcast-pkts", "in-multicast-pkts", "in-discards",
          "in-errors", "in-unknown-protos", "in-fcs-errors", "out-octets", "out-pkts", "out-unicast-pkts",
          "out-broadcast-pkts", "out-multicast-pkts", "out-discards", "out-errors"})
        EXPECT_THAT(all, testing::HasSubstr(std::string("\"") + leaf + "\":\"")) << all;
    for (const char *leaf : {"carrier-transitions", "last-clear"})
        EXPECT_THAT(all, testing::Not(testing::HasSubstr(leaf)));
}

TEST(InterfaceState, AQueryThatFailsIsAnError)
{
    SwitchBench bench(kStartup);
    for (const char *below : {"/state/name", "/state/counters"}) {
        for (const auto kind : {switchsim::FaultKind::refuse, switchsim::FaultKind::null}) {
            bench.device().addFault(faultOf("ui_fe_interface_config_msg", kind));
            try {
                bench.read(interfacePath(kPort, below), Content::all);
                ADD_FAILURE() << below << " has no error";
            } catch (const Failure &failure) {
                EXPECT_EQ(failure.errors.at(0).appTag, "4") << below;
            }
            bench.device().clearFaults();
        }
    }
}

TEST(InterfaceState, OneReadOfAllPortsAsksOnceForEachContainer)
{
    std::string entries;
    for (int port = 1; port <= 24; ++port)
        entries +=
            (port > 1 ? "," : "") + std::string(R"({"name":"ethernet 1/1/)") + std::to_string(port) + "\"}";
    SwitchBench bench(R"({"openconfig-interfaces:interfaces":{"interface":[)" + entries + "]}}");
    bench.sent();
    bench.read("openconfig-interfaces:interfaces", Content::all);
    std::map<std::string, int> counts;
    for (const std::string &request : bench.sent())
        if (request.find(R"("source")") == std::string::npos) // another feature's query
            ++counts[request];
    int states = 0, counters = 0, links = 0;
    for (const auto &[request, count] : counts) {
        EXPECT_EQ(count, 1) << request;
        const bool isLink = request.rfind("ui_fe_interface_ethernet_config_msg", 0) == 0;
        const bool isInterface = request.rfind("ui_fe_interface_config_msg", 0) == 0;
        const bool isState = request.find(R"("enabled_op":5)") != std::string::npos;
        links += isLink;
        states += isInterface && isState;
        counters += isInterface && !isState;
    }
    EXPECT_EQ(states, 24);
    EXPECT_EQ(counters, 24);
    EXPECT_EQ(links, 24);
}

// A failure behind the port takes it back to what it was.
TEST(Interfaces, ArePutBackWhenALaterNodeFails)
{
    SwitchBench bench(kStartup);
    bench.patch(interfacePath(kPort, "/config"), R"({"openconfig-interfaces:config":{"description":"old"}})");
    bench.sent();
    const std::string edit =
        R"({"openconfig-interfaces:interface":[{"name":"ethernet 1/1/1","config":{"description":"new"},)"
        R"("subinterfaces":{"subinterface":[{"index":3,"config":{"index":3}}]}}]})";
    const Outcome outcome = bench.patch(interfacePath(kPort), edit);
    EXPECT_EQ(outcome.status(), 258);
    EXPECT_THAT(bench.sent(),
                ElementsAre(setPort(R"(,"description_op":2,"description":"new")"),
                            setPort(R"(,"description_op":2,"description":"old","enabled_op":3)")));
    EXPECT_EQ(bench.device().show("interfaces")[kPort]["description"], "old");
}

} // namespace
} // namespace test
