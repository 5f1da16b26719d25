// Addresses: the four copies of the tree and where they differ.
#include "interface/u_openconfig-if-ip.h"
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/interfaces/paths.h"
#include "toolkit/src/request.h"

namespace test {
namespace {

const std::string kVe = "ve 20", kV4Path = "/openconfig-if-ip:ipv4/addresses",
                  kV6Path = "/openconfig-if-ip:ipv6/addresses", kV4Call = "ui_ip_interface_config",
                  kV6Call = "ui_ipv6_interface_config";
std::string subinterface(const std::string &below, const std::string &name = kVe)
{
    return interfacePath(name, "/subinterfaces/subinterface=0" + below);
}
const Pattern routed{interfacePath(kVe, "/openconfig-vlan:routed-vlan$")};
const std::string kV4Entry = kV4Path + "/address=10.0.0.1", kV6Entry = kV6Path + "/address=2001%3Adb8%3A%3A1";

const Pattern v4To{kV4Call + R"( {"address_op":$,"address":"10.0.0.1","mask":"$","name":"ve 20"})"},
    v4{v4To("$", "255.255.255.0")};
const Pattern v6Of{
    kV6Call + R"( {"address_op":$,"address_len":16,"address":"2001:db8::1","prefix_len":$,"name":"ve 20"})"},
    v6{v6Of("$", 64)};
const std::string kEmptyV4 = kV4Call + " {}", kEmptyV6 = kV6Call + " {}";

// The container or entry before and after, of either family.
const Pattern length{R"({"prefix-length":$})"};
const Pattern entry{R"({"ip":"$","config":$})"};
const std::string k24 = length(24), k25 = length(25), k64 = length(64), k48 = length(48),
                  kFour = entry("10.0.0.1", k24), kBareFour = entry("10.0.0.1", "{}"),
                  kSix = entry("2001:db8::1", k64), kBareSix = entry("2001:db8::1", "{}");

const switchsim::Fault kRefused4 = refusal(kV4Call, "busy"), kOdd4 = refusal(kV4Call, "busy", 2),
                       kSilent4 = noAnswer(kV4Call), kRefused6 = refusal(kV6Call, "busy"),
                       kOdd6 = refusal(kV6Call, "busy", 2), kSilent6 = noAnswer(kV6Call);

const std::vector<Cell> kSubinterfaceV4 = {
    created("", kFour, {v4(1)}),
    created("create without length", kBareFour, {}, 4),
    merged("", kFour, kFour, {}, 273),
    replaced("", kFour, kFour, {}, 273),
    loaded("", kFour, {}, 273),
    deleted("", kFour, {v4(3)}),
    deleted("delete without length", kBareFour, {}, 4),
    in(rollback, created("", kFour, {v4(3)})),
    in(rollback, deleted("", kFour, {v4(1)})),
    in(rollback, created("rollback of create without length", kBareFour, {}, 4)),
    in(rollback, merged("", kFour, kFour, {kEmptyV4})),
    in(rollback, replaced("", kFour, kFour, {kEmptyV4})),
    in(rollback, loaded("", kFour, {kEmptyV4})),
    under(kRefused4, created("refused", kFour, {v4(1)}, 4)),
    under(kOdd4, deleted("another code", kFour, {v4(3)}, 4)),
    under(kSilent4, created("silent", kFour, {v4(1)}, 4)),
};
const std::vector<Cell> kSubinterfaceV6 = {
    created("", kSix, {v6(1)}),
    created("create without length", kBareSix, {}, 4),
    deleted("", kSix, {v6(3)}),
    under(kRefused6, created("refused", kSix, {v6(1)}, 1042, "busy")),
    under(kOdd6, created("another code", kSix, {v6(1)}, 1042, "busy")),
    under(kSilent6, created("silent", kSix, {v6(1)}, 4)),
};
const std::vector<Cell> kRoutedV4 = {
    created("", k24, {v4(1)}),
    created("create without length", "{}", {}, 4),
    merged("", k24, k25, {}, 273),
    replaced("", k24, k25, {}, 273),
    loaded("", k24, {}, 273),
    deleted("", k24, {v4(3)}),
    in(rollback, created("", k24, {v4(3)})),
    in(rollback, deleted("", k24, {v4(1)})),
    in(rollback, merged("", k24, k25, {kEmptyV4})),
    in(rollback, replaced("", k24, k25, {kEmptyV4})),
    in(rollback, loaded("", k24, {kEmptyV4})),
    under(kOdd4, created("another code", k24, {v4(1)}, 1042, "busy")),
    under(kSilent4, created("silent", k24, {v4(1)}, 4)),
};
const std::vector<Cell> kRoutedV6 = {
    created("", k64, {v6(1)}),
    created("create without length", "{}", {}, 4),
    merged("merge says nothing", k64, k64, {kEmptyV6}),
    replaced("replace says nothing", k64, k48, {kEmptyV6}),
    loaded("load says nothing", k64, {kEmptyV6}),
    deleted("", k64, {v6(3)}),
    under(kOdd6, deleted("another code", k64, {v6(3)}, 1042, "busy")),
    under(kSilent6, deleted("silent", k64, {v6(3)}, 4)),
};
const std::vector<Cell> kLengthV4 = {
    merged("merge adds with the new mask", k24, k25, {v4To(1, "255.255.255.128")}),
    merged("merge without a difference", k24, k24),
    merged("merge of a length that goes", k24, "{}"),
    merged("the device is asked about no mask at all", k24, length(0), {v4To(1, "0.0.0.0")}, 1042,
           "Error: invalid address or mask\n"),
    under(kRefused4, merged("refused", k25, k24, {v4(1)}, 1042, "busy")),
    under(kOdd4, merged("another code", k25, k24, {v4(1)}, 4)),
    under(kSilent4, merged("silent", k25, k24, {v4(1)}, 4)),
};
const std::vector<Cell> kLengthV6 = {
    merged("", k64, k48, {v6Of(1, 48)}),
    merged("merge without a difference", k64, k64),
    under(kRefused6, merged("refused", k64, k48, {v6Of(1, 48)}, 1042, "busy")),
    under(kOdd6, merged("another code", k64, k48, {v6Of(1, 48)}, 4)),
};

TEST(Addresses, DoExactlyThis)
{
    SwitchBench bench;
    bench.call(apply, create, interfacePath(kVe, "/config"), kAbsent, R"({"type":"iana-if-type:l3ipvlan"})");
    check(bench, subinterface(kV4Entry), kSubinterfaceV4, Quiet{kFour, kFour});
    check(bench, subinterface(kV6Entry), kSubinterfaceV6, Quiet{kSix, kSix});
    check(bench, routed(kV4Entry + "/config"), kRoutedV4, Quiet{k24, k25});
    check(bench, routed(kV6Entry + "/config"), kRoutedV6, Quiet{k64, k48});
    check(bench, subinterface(kV4Entry + "/config"), kLengthV4, Quiet{k24, k25});
    check(bench, subinterface(kV6Entry + "/config"), kLengthV6, Quiet{k64, k48});
}

TEST(Addresses, OfALoopbackCanBeChangedAsAWhole)
{
    SwitchBench bench;
    const auto all = R"({"address":[)" + kFour + "]}";
    check(bench, subinterface(kV4Path, "loopback 1"), {}, Quiet{all, all});
    for (const char *name : {"ve 20", "ethernet 1/1/1"})
        check(bench, subinterface(kV4Path, name),
              {merged(name, all, all, {}, 273), replaced(name, all, all, {}, 273), loaded(name, all, {}, 273),
               deleted(name, all, {}, 273)},
              Quiet{all, all});
    check(bench, subinterface(kV6Path), {}, Quiet{"{}", "{}"});
}

// The schema keeps such keys out; a server whose schema is wider does not.
TEST(Addresses, KeysThatAreNoAddress)
{
    SwitchBench bench;
    const auto value = [&](const std::string &path) {
        Value made;
        made.schema = bench.target(path).node().schema();
        made.expanded = true;
        Status status = kOk;
        const auto *leaf = lys_find_child(made.schema, made.schema->module, "prefix-length", 0, LYS_LEAF, 0);
        made.children.push_back(makeLeaf(leaf, "24", &status));
        return made;
    };
    Value four = value(routed(kV4Entry + "/config")), six = value(routed(kV6Entry + "/config"));
    struct {
        Status (*edit)(EDIT_ARGS, const char *, const char *);
        Value &config;
        std::string text, sent;
    } cases[] = {
        {u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_config_edit, four,
         "ipv4 address is not valid", kV4Call + R"( {"address_op":3,"mask":"255.255.255.0","name":"ve 20"})"},
        {u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_config_edit, six,
         "ipv6 address is not valid", kEmptyV6},
    };
    for (const auto &[edit, config, text, sent] : cases) {
        RequestFrame frame;
        EXPECT_EQ(edit(&frame.session, &frame.request, apply, create, &config, nullptr, "ve 20", "nonsense"),
                  261);
        EXPECT_EQ(frame.header.records.at(0).text, text);
        EXPECT_THAT(bench.sent(), ElementsAre());
        EXPECT_EQ(edit(&frame.session, &frame.request, apply, del, nullptr, &config, "ve 20", "nonsense"), 0);
        EXPECT_THAT(bench.sent(), ElementsAre(sent));
    }
}

TEST(Addresses, GoWithTheirVe)
{
    SwitchBench bench;
    const std::string ve =
        R"({"openconfig-interfaces:interface":[{"name":"ve 20","config":{"name":"ve 20","type":"iana-if-type:l3ipvlan"},)"
        R"("subinterfaces":{"subinterface":[{"index":0,"openconfig-if-ip:ipv4":{"addresses":{"address":[)" +
        entry("10.0.0.1", R"({"ip":"10.0.0.1","prefix-length":24})") + "]}}}]}}]}";
    const auto setVe = [](const std::string &fields) {
        return R"(ui_set_intf_config {"name":"ve 20","id":20,"if_type":4,"operation":)" + fields + "}";
    };
    EXPECT_TRUE(bench.post("openconfig-interfaces:interfaces", ve).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(setVe("1"), v4(1)));
    EXPECT_EQ(bench.remove(subinterface(kV4Path)).status(), 273);
    EXPECT_THAT(bench.sent(), ElementsAre());
    EXPECT_TRUE(bench.remove(interfacePath(kVe)).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(v4(3), setVe(R"(2,"description_op":3)"), setVe("3")));
    EXPECT_TRUE(bench.device().show("ip").empty());
}

} // namespace
} // namespace test
