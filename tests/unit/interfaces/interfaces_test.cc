// The interface list: what its edits send, and the state of ports.
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/interfaces/paths.h"

namespace test {
namespace {

const std::string kPortCall = "ui_fe_interface_config_msg", kRoutedCall = "ui_set_intf_config",
                  kEthernet = "ethernetCsmacd", kLag = "ieee8023adLag", kVe = "l3ipvlan";

std::string config(const std::string &type, const std::string &more = "")
{
    return R"({"type":"iana-if-type:)" + type + "\"" + more + "}";
}
const Pattern setPort{kPortCall + R"( {"operation":2,"name":"ethernet 1/1/1"$})"};
const Pattern setVe{kRoutedCall + R"( {"name":"ve 20","id":20,"if_type":4$})"};
const std::string kDescribed = R"(,"description":"uplink")", kOff = R"(,"enabled":false)",
                  kPlainPort = config(kEthernet), kDescribedPort = config(kEthernet, kDescribed),
                  kOffPort = config(kEthernet, kOff),
                  kSetUplink = R"(,"description_op":2,"description":"uplink")",
                  kSetOff = setPort(R"(,"description_op":3,"enabled_op":2,"enabled":0)"),
                  kEmptyPort = setPort("");

const std::vector<Cell> kPortCells = {
    merged("a description", kPlainPort, kDescribedPort, {setPort(kSetUplink)}),
    merged("both", kPlainPort, config(kEthernet, kDescribed + kOff),
           {setPort(kSetUplink + R"(,"enabled_op":2,"enabled":0)")}),
    merged("a description that goes is sent once more", kDescribedPort, kPlainPort, {setPort(kSetUplink)}),
    merged("nothing known", kPlainPort, config(kEthernet, R"(,"mtu":9000)"), {kEmptyPort}),
    replaced("", kDescribedPort, kOffPort, {kSetOff}),
    created("", kDescribedPort, {setPort(kSetUplink + R"(,"enabled_op":3)")}),
    deleted("", kDescribedPort, {setPort(R"(,"description_op":3,"enabled_op":3)")}),
    loaded("load fills nothing", kDescribedPort, {kEmptyPort}),
    in(rollback, merged("", kOffPort, kDescribedPort, {kSetOff})),
    in(rollback, replaced("", kOffPort, kDescribedPort, {kSetOff})),
    in(rollback, created("nothing to go back to", kDescribedPort, {kEmptyPort})),
    in(rollback, deleted("nothing to go on to", kDescribedPort, {kEmptyPort})),
    in(rollback, loaded("", kDescribedPort, {kEmptyPort})),
    in(validate, merged("without a type", "{}", R"({"description":"uplink"})", {}, 4)),
    created("a type that is none of ours", config("tunnel"), {}, 4),
    merged("the new type counts", config("tunnel"), kDescribedPort, {setPort(kSetUplink)}),
    under(refusal(kPortCall, "not now"),
          replaced("a refused port", kPlainPort, kOffPort, {kSetOff}, kDeviceText, "not now")),
};

const std::string kPlainVe = config(kVe), kDescribedVe = config(kVe, kDescribed), kEmptyVe = setVe(""),
                  kMakeVe = setVe(R"(,"operation":1)"),
                  kUplinkVe = setVe(R"(,"operation":2,"description":"uplink","description_op":2)"),
                  kFailed = "u_openconfig_interfaces_interfaces_interface_config_set failed ";
const std::vector<Cell> kVeCells = {
    created("", kDescribedVe, {setVe(R"(,"operation":1,"description":"uplink","description_op":2)")}),
    created("without description", config(kVe, kOff), {kMakeVe}),
    merged("a description", kPlainVe, kDescribedVe, {kUplinkVe}),
    merged("enabled says nothing", kPlainVe, config(kVe, kOff), {kEmptyVe}),
    merged("a description that goes", kDescribedVe, config(kVe, kOff),
           {setVe(R"(,"operation":2,"description_op":3,"description_clear":1)")}),
    replaced("", kPlainVe, kDescribedVe, {kUplinkVe}),
    replaced("without description", kDescribedVe, kPlainVe, {setVe(R"(,"operation":2)")}),
    deleted("delete takes the description only", kDescribedVe,
            {setVe(R"(,"operation":2,"description_op":3)")}),
    loaded("load fills nothing", kDescribedVe, {kEmptyVe}),
    in(rollback, merged("", kPlainVe, kDescribedVe, {kMakeVe})),
    in(rollback, replaced("", kPlainVe, kDescribedVe, {kMakeVe})),
    in(rollback, deleted("", kDescribedVe, {setVe(R"(,"operation":3)")})),
    in(rollback, loaded("", kPlainVe, {kEmptyVe})),
    in(rollback, created("", kDescribedVe, {kMakeVe})),
    under(noAnswer(kRoutedCall), created("a silent ve", kPlainVe, {kMakeVe}, kDeviceText, kFailed + "\n")),
};

TEST(InterfaceConfig, DoesExactlyThis)
{
    SwitchBench bench;
    check(bench, interfacePath(kPort, "/config"), kPortCells, Quiet{kPlainPort, kDescribedPort});
    check(bench, interfacePath("ve 20", "/config"), kVeCells, Quiet{kPlainVe, kDescribedVe});
    // A refused LAG is no failure, and a name is split behind its word.
    const std::string lag = config(kLag), offLag = config(kLag, kOff),
                      lagSent = kPortCall +
        R"( {"operation":2,"name":"lag 5","description_op":3,"enabled_op":2,"enabled":0})";
    check(bench, interfacePath("lag 5", "/config"),
          {under(refusal(kPortCall, "no"), replaced("refused", lag, offLag, {lagSent})),
           under(noAnswer(kPortCall),
                 replaced("silent", lag, offLag, {lagSent}, kDeviceText, kFailed + " \n"))});
    const std::string loopback = config("softwareLoopback");
    const auto make = [](const std::string &name, int id, int type) {
        return kRoutedCall + R"( {"name":")" + name + R"(","id":)" + std::to_string(id) + R"(,"if_type":)" +
            std::to_string(type) + R"(,"operation":1})";
    };
    check(bench, interfacePath("loopback 1", "/config"),
          {created("name", loopback, {make("loopback 1", 1, 2)})});
    check(bench, interfacePath("loopback", "/config"), {created("no number", loopback, {}, kInternal)});
    check(bench, interfacePath("ve20", "/config"), {created("no word", kPlainVe, {}, kInternal)});
    // The number is cut, and the device sees that.
    EXPECT_EQ(bench.call(apply, create, interfacePath("ve 65556", "/config"), kAbsent, kPlainVe).status,
              kDeviceText);
    EXPECT_THAT(bench.sent(), ElementsAre(make("ve 65556", 20, 4)));
}

// Only a port's existence is defended, only a routed one is deleted.
TEST(InterfaceEntry, PortsStayAndRoutedInterfacesGoInCommit)
{
    SwitchBench bench;
    const auto entry = [](const std::string &name, const std::string &type) {
        return R"({"name":")" + name + R"(","config":)" + config(type) + "}";
    };
    const std::string port = entry(kPort, kEthernet), lag = entry("lag 5", kLag), ve = entry("ve 20", kVe),
                      goes = setVe(R"(,"operation":3)");
    check(bench, interfacePath(kPort),
          {in(validate, replaced("port", port, port, {}, 273)), in(validate, created("port", port, {}, 273)),
           in(validate, deleted("port", port, {}, 273))},
          Quiet{port, port});
    check(bench, interfacePath("lag 5"), {}, Quiet{lag, lag});
    check(bench, interfacePath("ve 20"),
          {in(commit, deleted("ve", ve, {goes})),
           under(refusal(kRoutedCall, "in use"),
                 in(commit, deleted("refused", ve, {goes}, kDeviceText, "in use"))),
           under(noAnswer(kRoutedCall), in(commit, deleted("unheard", ve, {goes})))},
          Quiet{ve, ve});
    check(bench, interfacePath("ve"), {in(commit, deleted("no number", entry("ve", kVe), {}, kInternal))});
}

TEST(Subinterface, IndexZeroIsTheOnlyOne)
{
    SwitchBench bench;
    const std::string path = interfacePath(kPort, "/subinterfaces/subinterface="), one = R"({"index":1})";
    check(bench, path + "1", {created("", one, {}, 258, "Subinterface is not supported, index should be 0")},
          Quiet{one, one});
    check(bench, path + "0", {created("", R"({"index":0})")});
}

TEST(InterfaceState, IsWhatTheDeviceSays)
{
    SwitchBench bench(kPortStartup);
    const std::string asked = R"(,"name":"ethernet 1/1/1","enabled_op":5,"state_selector":3})",
                      statePath = interfacePath(kPort, "/state");
    bench.call(apply, merge, interfacePath(kPort, "/config"), kPlainPort,
               config(kEthernet, kDescribed + kOff));
    const auto state = bench.read(statePath, Content::all);
    for (const char *leaf : {R"("name":"ethernet 1/1/1")", R"("type":"iana-if-type:ethernetCsmacd")",
                             R"("description":"uplink")", R"("enabled":false)", R"("ifindex":1)",
                             R"("admin-status":"DOWN")", R"("oper-status":"DOWN")"})
        EXPECT_THAT(state, HasSubstr(leaf));
    for (const char *leaf : {"mtu", "loopback-mode", "last-change", "logical"})
        EXPECT_THAT(state, Not(HasSubstr(leaf)));
    EXPECT_THAT(bench.sent(), Contains(kPortCall + R"( {"operation":5)" + asked));
    bench.call(apply, create, interfacePath(kPort, "/config"), kAbsent, kPlainPort);
    const auto status = [&](const std::string &leaf) { return bench.read(statePath + leaf, Content::all); };
    EXPECT_EQ(status("/oper-status"), R"({"openconfig-interfaces:oper-status":"UP"})");
    bench.device().setValue("unplugged-port", 1);
    EXPECT_EQ(status("/oper-status"), R"({"openconfig-interfaces:oper-status":"DOWN"})");
    EXPECT_EQ(status("/admin-status"), R"({"openconfig-interfaces:admin-status":"UP"})");
    for (const auto &fault : {refusal(kPortCall), noAnswer(kPortCall)}) {
        strike(bench, fault);
        EXPECT_EQ(readFailure(bench, statePath + "/name"), 4);
        EXPECT_EQ(readFailure(bench, statePath + "/counters"), 4);
    }
}

TEST(InterfaceState, CountersGrow)
{
    SwitchBench bench(kPortStartup);
    const std::string path = interfacePath(kPort, "/state/counters");
    const auto packets = [&] {
        const auto text = bench.read(path + "/in-pkts", Content::all);
        return std::stoul(text.substr(text.rfind(":\"") + 2));
    };
    const auto before = packets();
    EXPECT_THAT(bench.sent(),
                Contains(kPortCall + R"( {"operation":5,"name":"ethernet 1/1/1","state_selector":3})"));
    EXPECT_GT(packets(), before);
    const auto all = bench.read(path, Content::all);
    for (const std::string leaf :
         {"in-octets", "in-unicast-pkts", "in-broadcast-pkts", "in-multicast-pkts", "in-discards",
          "in-errors", "in-unknown-protos", "in-fcs-errors", "out-octets", "out-pkts", "out-unicast-pkts",
          "out-broadcast-pkts", "out-multicast-pkts", "out-discards", "out-errors"})
        EXPECT_THAT(all, HasSubstr("\"" + leaf + "\":\""));
    for (const char *leaf : {"carrier-transitions", "last-clear"})
        EXPECT_THAT(all, Not(HasSubstr(leaf)));
}

TEST(InterfaceState, OneReadOfAllPortsAsksOnceForEachContainer)
{
    std::string entries;
    for (int port = 1; port <= 24; ++port)
        entries += (port > 1 ? R"(,{"name":"ethernet 1/1/)" : R"({"name":"ethernet 1/1/)") +
            std::to_string(port) + "\"}";
    SwitchBench bench(R"({"openconfig-interfaces:interfaces":{"interface":[)" + entries + "]}}");
    bench.read("openconfig-interfaces:interfaces", Content::all);
    std::map<std::string, int> counts, kinds;
    for (const std::string &request : bench.sent()) {
        if (request.find(R"("source")") != std::string::npos) // another feature's query
            continue;
        EXPECT_EQ(++counts[request], 1) << request;
        const bool isState = request.find(R"("enabled_op":5)") != std::string::npos;
        ++kinds[request.substr(0, request.find(' ')) + (isState ? " state" : "")];
    }
    EXPECT_EQ(kinds[kPortCall + " state"], 24);
    EXPECT_EQ(kinds[kPortCall], 24);
    EXPECT_EQ(kinds["ui_fe_interface_ethernet_config_msg"], 24);
}

} // namespace
} // namespace test
