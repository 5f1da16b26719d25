// Ethernet ports and LAGs: which of their four back ends an edit reaches, and the state of a link.
#include "interface/lag_request.h"
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/interfaces/paths.h"

#include <cstring>

namespace test {
namespace {

const std::string kEthernet = interfacePath(kPort, "/openconfig-if-ethernet:ethernet"),
                  kConfigPath = kEthernet + "/config", kLink = "ui_fe_interface_ethernet_config_msg",
                  kLagCall = "ui_lag_config_apply", kVlanCall = "ui_vlan_config_apply",
                  kDhcpCall = "ui_fe_dhclientv4_set_intf_no_enable",
                  kProcessCall = "ui_fe_dhclientv4_send_be_request";

// Requests
const std::string kQuery = kLink + R"( {"operation":5,"name":"ethernet 1/1/1","state_selector":6})";
const Pattern link{kLink + R"( {"operation":2,"name":"ethernet 1/1/1","interface_type":1,"settings":{$}})"};
const Pattern voice{
    kVlanCall + R"( {"vlan_type":{"kind":1,"id":$},"interface_ports":"ethernet 1/1/1 ","voice_vlan_op":$})"};
const Pattern member{kLagCall + R"( {"lag_id":5,"id_valid":1,"ports_op":$,"ports":"ethernet 1/1/1"})"};
const Pattern dhcpSetting{kDhcpCall + R"( {"interface":"ethernet 1/1/1 ","no_enable":$})"};
const Pattern dhcpProcess{kProcessCall + R"( {"flag":2,"kind":5,"operation":$,"port":"ethernet 1/1/1 "})"};
const std::string kAsItIs = link(R"("speed":3,"duplex":2,"clock":2)"),
                  kHalved = link(R"("speed_op":2,"speed":3,"duplex":1,"clock":2)"),
                  kSent10M = link(R"("speed_op":2,"speed":2,"duplex":2,"clock":3)"),
                  kNoSpeed = link(R"("duplex":2,"clock":3)"), kReset = link(R"("speed_op":3)");
const Texts kDhcpStops = {dhcpSetting(1), dhcpProcess(1), kQuery, kAsItIs};

// Values
const Pattern values{"{$}"};
const Pattern aug{R"("lyn-openconfig-if-ethernet-aug:$)"};
const std::string k100M = R"("port-speed":"SPEED_100MB")", k10M = R"("port-speed":"SPEED_10MB")",
                  kHalf = R"("duplex-mode":"HALF")", kMaster = aug(R"(ethernet-clock":"master")"),
                  kQuad = R"("quad-port-configure-speed":true)", kVoice10 = aug(R"(ip-voice-vlan":10)"),
                  kDhcpOn = aug(R"(ip-dhcp-client-enable":true)"),
                  kDhcpOff = aug(R"(ip-dhcp-client-enable":false)"),
                  kInLag = R"("openconfig-if-aggregate:aggregate-id":"lag 5")",
                  kAlready = "DHCP Client already enabled on interface",
                  kSilentLag = "Error: Clam Call failure\n",
                  kRefusedDhcp = "[process_set_dhclient_intf_no_enable]: ip dhcp-client config Error: ",
                  kWasOff = "DHCP Client already disabled on interface",
                  kIsOff = kRefusedDhcp + kWasOff + " ethernet 1/1/1";
const std::string kNone = "{}", kSlow = values(k10M), kHalfOnly = values(kHalf), kMember = values(kInLag);

const std::vector<Cell> kCells = {
    merged("duplex sends the triple", kNone, kHalfOnly, {kQuery, kHalved}),
    merged("all three", kNone, values(k10M + "," + kHalf + "," + kMaster),
           {kQuery, link(R"("speed_op":2,"speed":2,"duplex":1,"clock":1)")}),
    merged("a speed that goes is left out", values(k100M), kNone,
           {kQuery, link(R"("speed_op":2,"duplex":2,"clock":2)")}),
    merged("quad port", kNone, values(kQuad),
           {kQuery, link(R"("speed":3,"duplex":2,"clock":2,"quad_port_op":2,"quad_port":1)")}),
    merged("the voice VLAN sends link settings too", kNone, values(kVoice10),
           {voice(10, 1), kQuery, kAsItIs}),
    merged("a voice VLAN that goes", values(kVoice10), kNone, {voice(10, 3), kQuery, kAsItIs}),
    merged("the DHCP client", kNone, values(kDhcpOff), kDhcpStops),
    merged("a DHCP client that is on already", kNone, values(kDhcpOn),
           {dhcpSetting(0), dhcpProcess(3), kQuery, kAsItIs}),
    merged("a DHCP client that goes", values(kDhcpOn), kNone, kDhcpStops),
    merged("a LAG wins over speed", kNone, values(kInLag + "," + k10M), {member(1)}),
    merged("one that leaves the LAG", kMember, kNone, {member(3)}),
    merged("any deletion beside a LAG takes the port out", kHalfOnly, kMember, {member(3)}),
    merged("a LAG that is none", kNone, R"({"openconfig-if-aggregate:aggregate-id":"ve 5"})", {}, 4),
    replaced("replace fills in what is absent", kHalfOnly, kSlow, {kSent10M}),
    replaced("replace without speed", kNone, values(kMaster), {link(R"("duplex":2,"clock":1)")}),
    created("everything but a LAG",
            values(kVoice10 + "," + kDhcpOff + "," + k100M + "," + kHalf + "," + kQuad),
            {voice(10, 1), dhcpSetting(1), dhcpProcess(1),
             link(R"("speed_op":2,"speed":3,"duplex":1,"clock":3,"quad_port_op":2,"quad_port":1)")},
            0, "", kIsOff),
    created("in a LAG", values(kInLag + "," + k10M), {member(1)}),
    deleted("", values(kVoice10 + "," + kDhcpOff + "," + kInLag + "," + k10M),
            {voice(10, 3), dhcpSetting(1), dhcpProcess(1), member(3), kReset}, 0, "", kIsOff),
    in(validate, merged("validate of merge asks", kNone, kHalfOnly, {kQuery})),
    in(rollback, created("", kSlow, {kReset})),
    in(rollback, created("rollback of create in a LAG", kMember, {member(3), kReset})),
    in(rollback,
       merged("rollback of merge sends the edit's own values", kNone, kHalfOnly, {kQuery, kHalved})),
    in(rollback,
       merged("rollback of merge leaves the voice VLAN", kNone, values(kVoice10 + "," + kDhcpOff), kDhcpStops,
              0, "", kIsOff)),
    in(rollback, replaced("rollback of replace in a LAG", kSlow, kMember, {member(1), kSent10M})),
    in(rollback,
       deleted("", values(kDhcpOff + "," + kInLag + "," + k10M),
               {dhcpSetting(0), dhcpProcess(3), member(1), kSent10M})),
    in(rollback, loaded("", values(kDhcpOff), {kNoSpeed})),

    under(refusal(kLink, "no"), created("refused link", kSlow, {kSent10M}, 4, "no")),
    under(noAnswer(kLink), created("silent link of create", kSlow, {kSent10M})),
    under(noAnswer(kLink), merged("silent link of merge", kNone, kSlow, {kQuery}, 4)),
    under(refusal(kLink, "no"), deleted("refused link of delete", kSlow, {kReset}, 4, "no")),
    under(noAnswer(kLink), deleted("silent link of delete", kSlow, {kReset})),
    under(noAnswer(kLink), in(rollback, created("silent link of rollback", kSlow, {kReset}, 4))),
    under(refusal(kLagCall, "no"), created("refused LAG", kMember, {member(1)}, 4, "no")),
    under(noAnswer(kLagCall), created("silent LAG", kMember, {member(1)}, 4, kSilentLag)),
    under(refusal(kVlanCall),
          created("a refused voice VLAN is not looked at", values(kVoice10), {voice(10, 1), kNoSpeed})),
    under(noAnswer(kVlanCall), created("silent voice VLAN", values(kVoice10), {voice(10, 1)}, 4)),
    under(noAnswer(kDhcpCall), merged("silent DHCP", kNone, values(kDhcpOn), {dhcpSetting(0)}, 4)),
    under(refusal(kDhcpCall, "x" + kAlready), created("refused DHCP", values(kDhcpOn), {dhcpSetting(0)}, 4)),
    // Only the texts of a port that is as wanted pass.
    under(refusal(kDhcpCall, kAlready + " ethernet 1/1/1"),
          created("DHCP that is on", values(kDhcpOn), {dhcpSetting(0), dhcpProcess(3), kNoSpeed}, 0, "",
                  kRefusedDhcp + kAlready + " ethernet 1/1/1")),
    under(refusal(kDhcpCall, kWasOff),
          created("DHCP that is off", values(kDhcpOff), {dhcpSetting(1), dhcpProcess(1), kNoSpeed}, 0, "",
                  kRefusedDhcp + kWasOff)),
    under(refusal(kProcessCall),
          created("a refused process is not looked at", values(kDhcpOff),
                  {dhcpSetting(1), dhcpProcess(1), kNoSpeed}, 0, "",
                  "[process_dhclient_set_intf_no_enbl]: ip dhcp-client config Error: ")),
};

TEST(EthernetConfig, DoesExactlyThis)
{
    SwitchBench bench;
    // LAG 5, and a port at 100 Mbit/s, full duplex, slave.
    check(bench, kConfigPath, kCells, Quiet{kSlow, kHalfOnly}, [&] {
        lag::Request request;
        lag_adapter_restconf_to_proto(5, "lg5", 1, 0, 0, nullptr, 0, &request.record);
        CommonResp *answer = nullptr;
        ui_lag_config_apply(&request.record, &answer);
        ui_lag_config_resp_free_unpacked(answer);
        bench.call(apply, replace, kConfigPath, kNone,
                   values(k100M + "," + aug(R"(ethernet-clock":"slave")")));
    });
}

TEST(Ethernet, ContainerIsNeitherMadeNorDeleted)
{
    check(kEthernet, {in(validate, created("", kNone, {}, 273)), in(validate, deleted("", kNone, {}, 273))},
          Quiet{kNone, kNone});
}

TEST(EthernetState, IsThatOfTheLink)
{
    SwitchBench bench(kPortStartup);
    const auto state = [&] { return bench.read(kEthernet + "/state", Content::all); };
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
    strike(bench, refusal(kLink));
    EXPECT_NE(readFailure(bench, kEthernet + "/state"), kOk);
}

// LAGs

std::string lagPath(const std::string &name = "lag 5")
{
    return interfacePath(name, "/openconfig-if-aggregate:aggregation/config");
}
std::string lagRequest(int operation, const std::string &name, const std::string &mode = "1")
{
    return kLagCall + R"( {"operation":)" + std::to_string(operation) + R"(,"name":")" + name +
        R"(","lag_id":5,"id_valid":1,"lag_mode":)" + mode + "}";
}
const Pattern renameRequest{kLagCall + R"( {"lag_id":5,"rename_op":1,"new_name":"$"})"};
std::string named(const std::string &name, const std::string &type = "")
{
    return values((type.empty() ? "" : R"("lag-type":")" + type + "\",") +
                  R"("openconfig-if-aggregate-aug:lag-name":")" + name + "\"");
}
const std::string kLacp = R"({"lag-type":"LACP"})", kStatic = R"({"lag-type":"STATIC"})",
                  kCore = named("core"), kLacpCore = named("core", "LACP"), kLinks = R"({"min-links":2})",
                  kLongName(64, 'n');

const std::vector<Cell> kLagCells = {
    created("without name", kLacp, {lagRequest(1, "lg5")}),
    created("a static one", kStatic, {lagRequest(1, "lg5", "0")}),
    created("the longest name", named(kLongName, "LACP"), {lagRequest(1, kLongName)}),
    created("a name renames", kCore, {renameRequest("core")}),
    created("neither", kLinks),
    merged("another type", kLacp, kStatic, {lagRequest(1, "lg5", "0")}),
    merged("type and name is no rename", kCore, named("edge", "LACP"), {lagRequest(1, "edge")}),
    merged("a name renames", kLacp, kLacpCore, {renameRequest("core")}),
    merged("a type that goes deletes the LAG", kStatic, kNone, {lagRequest(3, "lg5", "0")}),
    merged("a name that goes", kLacpCore, kLacp),
    replaced("", kLacp, named("core", "STATIC"), {lagRequest(1, "core", "0")}),
    replaced("a name", kCore, named("edge"), {renameRequest("edge")}),
    deleted("", kLacpCore, {lagRequest(3, "core")}),
    deleted("without a type", kCore),
    in(rollback, created("rollback of create deletes", kLacp, {lagRequest(3, "lg5")})),
    in(rollback, merged("rollback deletes what has a type", kLacp, kLacpCore, {lagRequest(3, "core")})),
    in(rollback, merged("rollback of a rename renames again", kNone, kCore, {renameRequest("core")})),
    in(rollback, replaced("", kNone, kLacp, {lagRequest(3, "lg5")})),
    in(rollback, loaded("", kLacp, {lagRequest(3, "lg5")})),
    under(noAnswer(kLagCall), created("silent", kLacp, {lagRequest(1, "lg5")}, 4, kSilentLag)),
    under(refusal(kLagCall, "no"), created("refused", kCore, {renameRequest("core")}, 4, "no")),
};

TEST(LagConfig, DoesExactlyThis)
{
    SwitchBench bench;
    check(bench, lagPath(), kLagCells, Quiet{kLacp, kLacp},
          [&] { bench.call(apply, create, lagPath(), kAbsent, kLacp); }); // renames need a LAG
    check(bench, lagPath("link 5"), {created("no LAG", kLacp, {}, 4), created("no LAG", kCore, {}, 4)});
}

TEST(LagNames, AreReadAndMade)
{
    EXPECT_EQ(lag_get_id_from_name("lag 5"), 5);
    EXPECT_EQ(lag_get_id_from_name("lag  17"), 17);
    for (const char *bad : {"lag5", "lagg 5", " lag 5", "", "lag x"})
        EXPECT_EQ(lag_get_id_from_name(bad), 0) << bad;
    EXPECT_EQ(lag_get_id_from_name(nullptr), 0);
    char name[LAG_NAME_BYTES] = "as before";
    lag_autogenerate_name_from_id(12, name);
    EXPECT_STREQ(name, "lg12");
}

TEST(LagAdapter, FillsWhatItIsTold)
{
    lag::Request request;
    lag_adapter_restconf_to_proto(0, std::string(100, 'n').c_str(), 0, 0, 0, nullptr, 0, &request.record);
    EXPECT_EQ(std::strlen(request.record.name), 64u);
    EXPECT_EQ(request.record.operation, 1);
    EXPECT_EQ(request.record.id_valid, 0);
    lag::Request port;
    lag_adapter_restconf_to_proto(5, nullptr, 0, 0, 1, "p", 1, &port.record);
    EXPECT_EQ(port.record.operation, 0); // only the port goes
    EXPECT_EQ(port.record.ports_op, 3);
}

TEST(Lag, IsThereBeforeItsMembersAndGoesBehindThem)
{
    SwitchBench bench(kPortStartup);
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
