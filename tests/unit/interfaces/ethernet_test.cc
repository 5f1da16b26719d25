// Ethernet ports and LAGs: which of their four back ends an edit reaches, and the state of a link.
#include "interface/lag_request.h"
#include "tests/unit/interfaces/cells.h"
#include "tests/unit/interfaces/paths.h"
#include "toolkit/toolkit.h"

#include <cstring>

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const std::string kPort = "ethernet 1/1/1";
const std::string kConfigPath = interfacePath(kPort, "/openconfig-if-ethernet:ethernet/config");

// Requests
const std::string kQuery =
    R"(ui_fe_interface_ethernet_config_msg {"operation":5,"name":"ethernet 1/1/1","state_selector":6})";
std::string link(const std::string &settings, const std::string &operation = "2")
{
    return R"(ui_fe_interface_ethernet_config_msg {"operation":)" + operation +
        R"(,"name":"ethernet 1/1/1","interface_type":1,"settings":{)" + settings + "}}";
}
std::string voice(int vlan, int operation)
{
    return R"(ui_vlan_config_apply {"vlan_type":{"kind":1,"id":)" + std::to_string(vlan) +
        R"(},"interface_ports":"ethernet 1/1/1 ","voice_vlan_op":)" + std::to_string(operation) + "}";
}
std::string member(int operation)
{
    return R"(ui_lag_config_apply {"lag_id":5,"id_valid":1,"ports_op":)" + std::to_string(operation) +
        R"(,"ports":"ethernet 1/1/1"})";
}
std::string dhcpSetting(int noEnable)
{
    return R"(ui_fe_dhclientv4_set_intf_no_enable {"interface":"ethernet 1/1/1 ","no_enable":)" +
        std::to_string(noEnable) + "}";
}
std::string dhcpProcess(int operation)
{
    return R"(ui_fe_dhclientv4_send_be_request {"flag":2,"kind":5,"operation":)" + std::to_string(operation) +
        R"(,"port":"ethernet 1/1/1 "})";
}

// Values
std::string values(const std::string &members)
{
    return "{" + members + "}";
}
const std::string kAug = "lyn-openconfig-if-ethernet-aug:";
const std::string k100M = R"("port-speed":"SPEED_100MB")", k10M = R"("port-speed":"SPEED_10MB")",
                  kHalf = R"("duplex-mode":"HALF")", kMaster = "\"" + kAug + R"(ethernet-clock":"master")",
                  kQuad = R"("quad-port-configure-speed":true)",
                  kVoice10 = "\"" + kAug + R"(ip-voice-vlan":10)",
                  kVoice11 = "\"" + kAug + R"(ip-voice-vlan":11)",
                  kDhcpOn = "\"" + kAug + R"(ip-dhcp-client-enable":true)",
                  kDhcpOff = "\"" + kAug + R"(ip-dhcp-client-enable":false)",
                  kMember = R"("openconfig-if-aggregate:aggregate-id":"lag 5")";
const std::string kNone = "{}";

// The device before each cell: LAG 5, and a port at 100 Mbit/s, full duplex, slave.
class EthernetConfig : public Cells {
protected:
    EthernetConfig()
    {
        lag::Request request;
        lag_adapter_restconf_to_proto(5, "lg5", 1, 0, 0, nullptr, 0, &request.record);
        CommonResp *answer = nullptr;
        ui_lag_config_apply(&request.record, &answer);
        ui_lag_config_resp_free_unpacked(answer);
        bench_->call(apply, replace, kConfigPath, kNone,
                     values(k100M + ",\"" + kAug + R"(ethernet-clock":"slave")"));
    }
};
TEST_P(EthernetConfig, Sends)
{
    check(kConfigPath);
}

const std::string kAsItIs = R"("speed":3,"duplex":2,"clock":2)";
const Cell kCells[] = {
    {"merge_of_duplex_sends_the_triple",
     apply,
     merge,
     kNone,
     values(kHalf),
     {kQuery, link(R"("speed_op":2,"speed":3,"duplex":1,"clock":2)")}},
    {"merge_of_all_three",
     apply,
     merge,
     kNone,
     values(k10M + "," + kHalf + "," + kMaster),
     {kQuery, link(R"("speed_op":2,"speed":2,"duplex":1,"clock":1)")}},
    {"merge_that_deletes_the_speed_alone_leaves_it_out",
     apply,
     merge,
     values(k100M),
     kNone,
     {kQuery, link(R"("speed_op":2,"duplex":2,"clock":2)")}},
    {"merge_of_quad_port",
     apply,
     merge,
     kNone,
     values(kQuad),
     {kQuery, link(kAsItIs + R"(,"quad_port_op":2,"quad_port":1)")}},
    {"merge_of_the_voice_vlan_sends_link_settings_too",
     apply,
     merge,
     kNone,
     values(kVoice10),
     {voice(10, 1), kQuery, link(kAsItIs)}},
    {"merge_of_another_voice_vlan",
     apply,
     merge,
     values(kVoice10),
     values(kVoice11),
     {voice(11, 1), kQuery, link(kAsItIs)}},
    {"merge_that_deletes_the_voice_vlan",
     apply,
     merge,
     values(kVoice10),
     kNone,
     {voice(10, 3), kQuery, link(kAsItIs)}},
    {"merge_of_the_dhcp_client",
     apply,
     merge,
     kNone,
     values(kDhcpOff),
     {dhcpSetting(1), dhcpProcess(1), kQuery, link(kAsItIs)}},
    {"merge_of_the_dhcp_client_that_is_on_already",
     apply,
     merge,
     kNone,
     values(kDhcpOn),
     {dhcpSetting(0), dhcpProcess(3), kQuery, link(kAsItIs)}},
    {"merge_that_deletes_the_dhcp_client",
     apply,
     merge,
     values(kDhcpOn),
     kNone,
     {dhcpSetting(1), dhcpProcess(1), kQuery, link(kAsItIs)}},
    {"a_lag_wins_over_speed", apply, merge, kNone, values(kMember + "," + k10M), {member(1)}},
    {"merge_that_leaves_the_lag", apply, merge, values(kMember), kNone, {member(3)}},
    {"any_deletion_beside_a_lag_takes_the_port_out",
     apply,
     merge,
     values(kHalf),
     values(kMember),
     {member(3)}},
    {"a_lag_that_is_none", apply, merge, kNone, R"({"openconfig-if-aggregate:aggregate-id":"ve 5"})", {}, 4},
    {"replace_fills_in_what_is_absent",
     apply,
     replace,
     values(kHalf),
     values(k10M),
     {link(R"("speed_op":2,"speed":2,"duplex":2,"clock":3)")}},
    {"replace_without_speed", apply, replace, kNone, values(kMaster), {link(R"("duplex":2,"clock":1)")}},
    {"create_of_everything_but_a_lag",
     apply,
     create,
     kAbsent,
     values(kVoice10 + "," + kDhcpOff + "," + k100M + "," + kHalf + "," + kQuad),
     {voice(10, 1), dhcpSetting(1), dhcpProcess(1),
      link(R"("speed_op":2,"speed":3,"duplex":1,"clock":3,"quad_port_op":2,"quad_port":1)")}},
    {"create_in_a_lag", apply, create, kAbsent, values(kMember + "," + k10M), {member(1)}},
    {"delete",
     apply,
     del,
     values(kVoice10 + "," + kDhcpOff + "," + kMember + "," + k10M),
     kAbsent,
     {voice(10, 3), dhcpSetting(1), dhcpProcess(1), member(3), link(R"("speed_op":3)")}},
    {"delete_of_nothing_special", apply, del, values(k10M), kAbsent, {link(R"("speed_op":3)")}},
    {"load", apply, load, kAbsent, values(k10M + "," + kVoice10)},
    {"validate_of_merge_asks", validate, merge, kNone, values(kHalf), {kQuery}},
    {"validate_of_replace", validate, replace, kNone, values(kHalf)},
    {"validate_of_delete", validate, del, values(kHalf), kAbsent},
    {"commit", commit, merge, kNone, values(kHalf)},
    {"rollback_of_create", rollback, create, kAbsent, values(k10M), {link(R"("speed_op":3)")}},
    {"rollback_of_create_in_a_lag",
     rollback,
     create,
     kAbsent,
     values(kMember),
     {member(3), link(R"("speed_op":3)")}},
    {"rollback_of_merge_sends_the_edits_own_values",
     rollback,
     merge,
     kNone,
     values(kHalf),
     {kQuery, link(R"("speed_op":2,"speed":3,"duplex":1,"clock":2)")}},
    {"rollback_of_merge_leaves_the_voice_vlan",
     rollback,
     merge,
     kNone,
     values(kVoice10 + "," + kDhcpOff),
     {dhcpSetting(1), dhcpProcess(1), kQuery, link(kAsItIs)}},
    {"rollback_of_replace",
     rollback,
     replace,
     values(k10M),
     values(kHalf),
     {link(R"("speed_op":2,"speed":2,"duplex":2,"clock":3)")}},
    {"rollback_of_replace_in_a_lag",
     rollback,
     replace,
     values(k10M),
     values(kMember),
     {member(1), link(R"("speed_op":2,"speed":2,"duplex":2,"clock":3)")}},
    {"rollback_of_delete",
     rollback,
     del,
     values(kDhcpOff + "," + kMember + "," + k10M),
     kAbsent,
     {dhcpSetting(0), dhcpProcess(3), member(1), link(R"("speed_op":2,"speed":2,"duplex":2,"clock":3)")}},
    {"rollback_of_load", rollback, load, kAbsent, values(kDhcpOff), {link(R"("duplex":2,"clock":3)")}},
};
INSTANTIATE_TEST_SUITE_P(Table, EthernetConfig, testing::ValuesIn(kCells), CaseName());

TEST(EthernetConfig, FailuresByRequestAndOperation)
{
    const char *const linkCall = "ui_fe_interface_ethernet_config_msg",
                      *const lagCall = "ui_lag_config_apply", *const vlanCall = "ui_vlan_config_apply",
                      *const dhcpCall = "ui_fe_dhclientv4_set_intf_no_enable",
                      *const processCall = "ui_fe_dhclientv4_send_be_request";
    const auto refuse = switchsim::FaultKind::refuse, null = switchsim::FaultKind::null;
    struct {
        const char *call;
        switchsim::FaultKind kind;
        EditPhase phase;
        EditOp op;
        std::string leaves; // before for a delete, else after
        Status status;
        std::string text;
    } cases[] = {
        {linkCall, refuse, apply, create, k10M, 4, "no"},
        {linkCall, null, apply, create, k10M, 0, ""},
        {linkCall, null, apply, replace, k10M, 0, ""},
        {linkCall, null, apply, merge, k10M, 4, ""},
        {linkCall, null, validate, merge, k10M, 4, ""},
        {linkCall, null, apply, del, k10M, 0, ""},
        {linkCall, refuse, apply, del, k10M, 4, "no"},
        {linkCall, null, rollback, create, k10M, 4, ""},
        {lagCall, refuse, apply, create, kMember, 4, "no"},
        {lagCall, null, apply, create, kMember, 4, "Error: Clam Call failure\n"},
        {lagCall, refuse, apply, del, kMember, 4, "no"},
        {vlanCall, refuse, apply, create, kVoice10, 0, ""}, // a refusal is not looked at
        {vlanCall, null, apply, create, kVoice10, 4, ""},
        {dhcpCall, refuse, apply, create, kDhcpOn, 4, ""},
        {dhcpCall, null, apply, merge, kDhcpOn, 4, ""},
        {processCall, refuse, apply, create, kDhcpOff, 0, ""},
        {processCall, null, apply, create, kDhcpOff, 0, ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.call) + " " + c.leaves + " " + std::to_string(c.op));
        SwitchBench bench;
        bench.device().addFault(faultOf(c.call, c.kind, "no"));
        const auto value = values(c.leaves);
        const auto before = c.op == del ? std::optional(value)
            : c.op == create            ? kAbsent
                                        : std::optional(kNone);
        const Callback done = bench.call(c.phase, c.op, kConfigPath, before, c.op == del ? kAbsent : value);
        EXPECT_EQ(done.status, c.status);
        ASSERT_EQ(done.records.size(), c.status ? 1u : 0u);
        if (c.status) {
            EXPECT_EQ(done.records[0].text, c.text);
        }
    }
}

TEST(EthernetConfig, OnlyTheTextsOfAPortThatIsAsWantedPass)
{
    for (const auto &[text, status] :
         std::map<std::string, Status>{{"DHCP Client already disabled on interface ethernet 1/1/1", 0},
                                       {"DHCP Client already enabled on interface", 0},
                                       {"DHCP Client already enabled", 4},
                                       {" DHCP Client already enabled on interface", 4}}) {
        SwitchBench bench;
        bench.device().addFault(
            faultOf("ui_fe_dhclientv4_set_intf_no_enable", switchsim::FaultKind::refuse, text));
        EXPECT_EQ(bench.call(apply, create, kConfigPath, kAbsent, values(kDhcpOn)).status, status) << text;
    }
}

TEST(Ethernet, ContainerIsNeitherMadeNorDeleted)
{
    SwitchBench bench;
    const auto path = interfacePath(kPort, "/openconfig-if-ethernet:ethernet");
    for (const EditPhase phase : {validate, apply, commit, rollback})
        for (const EditOp op : {merge, replace, create, del, load}) {
            const bool refused = phase == validate && (op == create || op == del);
            EXPECT_EQ(bench
                          .call(phase, op, path, op == create || op == load ? kAbsent : kNone,
                                op == del ? kAbsent : kNone)
                          .status,
                      refused ? 273 : 0);
        }
    EXPECT_THAT(bench.sent(), ElementsAre());
}

const std::string kStartup =
    R"({"openconfig-interfaces:interfaces":{"interface":[{"name":"ethernet 1/1/1","config":{"name":"ethernet 1/1/1",)"
    R"("type":"iana-if-type:ethernetCsmacd"}}]}})";

TEST(EthernetState, IsThatOfTheLink)
{
    SwitchBench bench(kStartup);
    const auto state = [&] {
        return bench.read(interfacePath(kPort, "/openconfig-if-ethernet:ethernet/state"), Content::all);
    };
    const auto negotiating = state();
    for (const char *leaf :
         {R"("duplex-mode":"FULL")", R"("negotiated-duplex-mode":"FULL")",
          R"("negotiated-port-speed":"openconfig-if-ethernet:SPEED_1GB")", R"(negotiated-clock":"slave")",
          R"("lyn-openconfig-if-ethernet-aug:ethernet-clock":"slave")"})
        EXPECT_THAT(negotiating, HasSubstr(leaf));
    EXPECT_THAT(negotiating, Not(HasSubstr(R"("port-speed")"))); // the port decides
    bench.call(apply, replace, kConfigPath, kNone, values(k100M + "," + kHalf));
    EXPECT_THAT(state(), HasSubstr(R"("port-speed":"openconfig-if-ethernet:SPEED_100MB")"));
    EXPECT_THAT(state(), HasSubstr(R"("duplex-mode":"HALF")"));
    bench.device().addFault(faultOf("ui_fe_interface_ethernet_config_msg", switchsim::FaultKind::refuse));
    EXPECT_THROW(state(), Failure);
}

TEST(Ethernet, TheDeviceRefusesHalfDuplexAtAGigabit)
{
    SwitchBench bench(kStartup);
    const Outcome outcome = bench.put(kConfigPath,
                                      R"({"openconfig-if-ethernet:config":{"port-speed":"SPEED_1GB",)"
                                      R"("duplex-mode":"HALF"}})");
    EXPECT_EQ(outcome.status(), 4);
    EXPECT_THAT(outcome.message(), HasSubstr("half duplex"));
}

// LAGs

std::string lagPath(const std::string &below = "")
{
    return interfacePath("lag 5", "/openconfig-if-aggregate:aggregation/config" + below);
}
std::string lagRequest(int operation, const std::string &name, const std::string &mode = "1")
{
    return R"(ui_lag_config_apply {"operation":)" + std::to_string(operation) + R"(,"name":")" + name +
        R"(","lag_id":5,"id_valid":1)" + (mode.empty() ? "" : R"(,"lag_mode":)" + mode) + "}";
}
std::string renameRequest(const std::string &name)
{
    return R"(ui_lag_config_apply {"lag_id":5,"rename_op":1,"new_name":")" + name + "\"}";
}
const std::string kLacp = R"("lag-type":"LACP")", kStatic = R"("lag-type":"STATIC")",
                  kNamed = R"("openconfig-if-aggregate-aug:lag-name":"core")",
                  kRenamed = R"("openconfig-if-aggregate-aug:lag-name":"edge")", kLinks = R"("min-links":2)";
const std::string kLongName(64, 'n');

class LagConfig : public Cells {
protected:
    LagConfig() // renames need a LAG
    {
        bench_->call(apply, create, lagPath(), kAbsent, values(kLacp));
    }
};
TEST_P(LagConfig, Sends)
{
    check(lagPath());
}
const Cell kLagCells[] = {
    {"create_without_name", apply, create, kAbsent, values(kLacp), {lagRequest(1, "lg5")}},
    {"create_of_a_static_one", apply, create, kAbsent, values(kStatic), {lagRequest(1, "lg5", "0")}},
    {"create_with_name", apply, create, kAbsent, values(kLacp + "," + kNamed), {lagRequest(1, "core")}},
    {"create_with_the_longest_name",
     apply,
     create,
     kAbsent,
     values(kLacp + R"(,"openconfig-if-aggregate-aug:lag-name":")" + kLongName + "\""),
     {lagRequest(1, kLongName)}},
    {"create_of_a_name_renames", apply, create, kAbsent, values(kNamed), {renameRequest("core")}},
    {"create_of_neither", apply, create, kAbsent, values(kLinks)},
    {"merge_of_a_type", apply, merge, kNone, values(kLacp), {lagRequest(1, "lg5")}},
    {"merge_of_another_type", apply, merge, values(kLacp), values(kStatic), {lagRequest(1, "lg5", "0")}},
    {"merge_of_type_and_name_is_no_rename",
     apply,
     merge,
     values(kNamed),
     values(kLacp + "," + kRenamed),
     {lagRequest(1, "edge")}},
    {"merge_of_a_name_renames",
     apply,
     merge,
     values(kLacp),
     values(kLacp + "," + kNamed),
     {renameRequest("core")}},
    {"merge_that_deletes_the_type_deletes_the_lag",
     apply,
     merge,
     values(kStatic),
     kNone,
     {lagRequest(3, "lg5", "0")}},
    {"merge_that_deletes_the_name", apply, merge, values(kLacp + "," + kNamed), values(kLacp)},
    {"merge_of_neither", apply, merge, kNone, values(kLinks)},
    {"replace", apply, replace, values(kLacp), values(kStatic + "," + kNamed), {lagRequest(1, "core", "0")}},
    {"replace_of_a_name", apply, replace, values(kNamed), values(kRenamed), {renameRequest("edge")}},
    {"delete", apply, del, values(kLacp + "," + kNamed), kAbsent, {lagRequest(3, "core")}},
    {"delete_without_a_type", apply, del, values(kNamed), kAbsent},
    {"load", apply, load, kAbsent, values(kLacp)},
    {"rollback_of_create_deletes", rollback, create, kAbsent, values(kLacp), {lagRequest(3, "lg5")}},
    {"rollback_of_merge_deletes_what_has_a_type",
     rollback,
     merge,
     values(kLacp),
     values(kLacp + "," + kNamed),
     {lagRequest(3, "core")}},
    {"rollback_of_a_rename_renames_again", rollback, merge, kNone, values(kNamed), {renameRequest("core")}},
    {"rollback_of_delete_has_nothing_to_tell", rollback, del, values(kLacp), kAbsent},
    {"rollback_of_load", rollback, load, kAbsent, values(kLacp), {lagRequest(3, "lg5")}},
    {"validate", validate, create, kAbsent, values(kLacp)},
    {"commit", commit, create, kAbsent, values(kLacp)},
};
INSTANTIATE_TEST_SUITE_P(Table, LagConfig, testing::ValuesIn(kLagCells), CaseName());

TEST(LagConfig, IsForLagsOnlyAndPassesTheDevicesWordsOn)
{
    SwitchBench bench;
    const auto path = interfacePath("link 5", "/openconfig-if-aggregate:aggregation/config");
    EXPECT_EQ(bench.call(apply, create, path, kAbsent, values(kLacp)).status, 4);
    EXPECT_EQ(bench.call(apply, create, path, kAbsent, values(kNamed)).status, 4);
    EXPECT_THAT(bench.sent(), ElementsAre());
    const Callback unknown = bench.call(apply, create, lagPath(), kAbsent, values(kNamed));
    EXPECT_EQ(unknown.status, 4);
    EXPECT_THAT(unknown.records.at(0).text, HasSubstr("lag 5 does not exist"));
    bench.unplug();
    const Callback silent = bench.call(apply, create, lagPath(), kAbsent, values(kLacp));
    EXPECT_EQ(silent.status, 4);
    EXPECT_EQ(silent.records.at(0).text, "Error: Clam Call failure\n");
}

TEST(LagNames, AreReadAndMade)
{
    EXPECT_EQ(lag_get_id_from_name("lag 5"), 5);
    EXPECT_EQ(lag_get_id_from_name("lag  17"), 17);
    for (const char *bad : {"lag5", "lagg 5", " lag 5", "ethernet 1/1/1", "", "lag x"})
        EXPECT_EQ(lag_get_id_from_name(bad), 0) << bad;
    EXPECT_EQ(lag_get_id_from_name(nullptr), 0);
    char name[LAG_NAME_BYTES] = "as before";
    lag_autogenerate_name_from_id(12, name);
    EXPECT_STREQ(name, "lg12");
    lag_autogenerate_name_from_id(12, nullptr);
}

TEST(LagAdapter, FillsWhatItIsTold)
{
    lag::Request request;
    lag_adapter_restconf_to_proto(0, std::string(100, 'n').c_str(), 0, 0, 0, nullptr, 0, &request.record);
    EXPECT_EQ(std::strlen(request.record.name), 64u);
    EXPECT_EQ(request.record.operation, 1);
    EXPECT_EQ(request.record.id_valid, 0);
    lag::Request both;
    lag_adapter_restconf_to_proto(5, nullptr, 1, 1, 1, nullptr, 0, &both.record);
    EXPECT_EQ(both.record.lag_mode, 0);
    EXPECT_EQ(both.record.operation, 3);
    lag::Request port;
    lag_adapter_restconf_to_proto(5, nullptr, 0, 0, 1, "p", 1, &port.record);
    EXPECT_EQ(port.record.operation, 0); // only the port goes
    EXPECT_EQ(port.record.ports_op, 3);
}

TEST(Lag, IsThereBeforeItsMembersAndGoesBehindThem)
{
    SwitchBench bench(kStartup);
    const std::string edit =
        R"({"openconfig-interfaces:interfaces":{"interface":[{"name":"ethernet 1/1/1","openconfig-if-ethernet:ethernet":)"
        R"({"config":{"openconfig-if-aggregate:aggregate-id":"lag 5"}}},{"name":"lag 5","config":{"name":"lag 5",)"
        R"("type":"iana-if-type:ieee8023adLag","description":"core"},"openconfig-if-aggregate:aggregation":{"config":)"
        R"({"lag-type":"LACP"}}}]}})";
    EXPECT_TRUE(bench.patch("openconfig-interfaces:interfaces", edit).ok());
    auto lag = bench.device().show("lag")["lag 5"];
    EXPECT_EQ(lag["members"], switchsim::Json::array({kPort}));
    EXPECT_EQ(lag["description"], "core");
    bench.sent();
    EXPECT_TRUE(bench.remove(kConfigPath + "/openconfig-if-aggregate:aggregate-id").ok());
    EXPECT_THAT(bench.sent(), ElementsAre(kQuery, member(3)));
    EXPECT_TRUE(bench.remove(interfacePath("lag 5")).ok());
    EXPECT_THAT(
        bench.sent(),
        ElementsAre(HasSubstr(R"("name":"lag 5","description_op":3,"enabled_op":3)"), lagRequest(3, "lg5")));
    EXPECT_TRUE(bench.device().show("lag").empty());
}

} // namespace
} // namespace test
