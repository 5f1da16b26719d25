// Addresses: the four copies of the tree and where they differ.
#include "interface/u_openconfig-if-ip.h"
#include "tests/unit/interfaces/cells.h"
#include "tests/unit/interfaces/paths.h"
#include "toolkit/src/request.h"
#include "toolkit/toolkit.h"

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;

const std::string kVe = "ve 20";
const std::string kV4Path = "/openconfig-if-ip:ipv4/addresses", kV6Path = "/openconfig-if-ip:ipv6/addresses";
std::string subinterface(const std::string &below, const std::string &name = kVe)
{
    return interfacePath(name, "/subinterfaces/subinterface=0" + below);
}
std::string routed(const std::string &below)
{
    return interfacePath(kVe, "/openconfig-vlan:routed-vlan" + below);
}
const std::string kV4Entry = kV4Path + "/address=10.0.0.1", kV6Entry = kV6Path + "/address=2001%3Adb8%3A%3A1";

std::string v4(int operation, const std::string &mask = "255.255.255.0")
{
    return R"(ui_ip_interface_config {"address_op":)" + std::to_string(operation) +
        R"(,"address":"10.0.0.1","mask":")" + mask + R"(","name":"ve 20"})";
}
std::string v6(int operation, int length = 64)
{
    return R"(ui_ipv6_interface_config {"address_op":)" + std::to_string(operation) +
        R"(,"address_len":16,"address":"2001:db8::1","prefix_len":)" + std::to_string(length) +
        R"(,"name":"ve 20"})";
}
const std::string kEmptyV4 = "ui_ip_interface_config {}", kEmptyV6 = "ui_ipv6_interface_config {}";

// The container or entry before and after, of either family.
std::string length(int n)
{
    return R"({"prefix-length":)" + std::to_string(n) + "}";
}
std::string entry4(const std::string &config)
{
    return R"({"ip":"10.0.0.1","config":)" + config + "}";
}
std::string entry6(const std::string &config)
{
    return R"({"ip":"2001:db8::1","config":)" + config + "}";
}

// The device has the ve.
class OnVe : public Cells {
protected:
    OnVe()
    {
        bench_->call(apply, create, interfacePath(kVe, "/config"), kAbsent,
                     R"({"type":"iana-if-type:l3ipvlan"})");
    }
};

class SubinterfaceV4 : public OnVe { };
TEST_P(SubinterfaceV4, Sends)
{
    check(subinterface(kV4Entry));
}
const Cell kSubinterfaceV4[] = {
    {"create", apply, create, kAbsent, entry4(length(24)), {v4(1)}},
    {"create_without_length", apply, create, kAbsent, entry4("{}"), {}, 4},
    {"merge", apply, merge, entry4(length(24)), entry4(length(25)), {}, 273},
    {"replace", apply, replace, entry4(length(24)), entry4(length(25)), {}, 273},
    {"load", apply, load, kAbsent, entry4(length(24)), {}, 273},
    {"delete", apply, del, entry4(length(24)), kAbsent, {v4(3)}},
    {"delete_without_length", apply, del, entry4("{}"), kAbsent, {}, 4},
    {"rollback_of_create", rollback, create, kAbsent, entry4(length(24)), {v4(3)}},
    {"rollback_of_delete", rollback, del, entry4(length(24)), kAbsent, {v4(1)}},
    {"rollback_of_create_without_length", rollback, create, kAbsent, entry4("{}"), {}, 4},
    {"rollback_of_merge", rollback, merge, entry4(length(24)), entry4(length(24)), {kEmptyV4}},
    {"rollback_of_replace", rollback, replace, entry4(length(24)), entry4(length(24)), {kEmptyV4}},
    {"rollback_of_load", rollback, load, kAbsent, entry4(length(24)), {kEmptyV4}},
    {"validate", validate, create, kAbsent, entry4(length(24))},
    {"commit", commit, del, entry4(length(24)), kAbsent},
};
INSTANTIATE_TEST_SUITE_P(Table, SubinterfaceV4, testing::ValuesIn(kSubinterfaceV4), CaseName());

class SubinterfaceV6 : public OnVe { };
TEST_P(SubinterfaceV6, Sends)
{
    check(subinterface(kV6Entry));
}
const Cell kSubinterfaceV6[] = {
    {"create", apply, create, kAbsent, entry6(length(64)), {v6(1)}},
    {"create_without_length", apply, create, kAbsent, entry6("{}"), {}, 4},
    {"merge", apply, merge, entry6(length(64)), entry6(length(65))},
    {"replace", apply, replace, entry6(length(64)), entry6(length(65))},
    {"load", apply, load, kAbsent, entry6(length(64))},
    {"delete", apply, del, entry6(length(64)), kAbsent, {v6(3)}},
    {"rollback_of_create", rollback, create, kAbsent, entry6(length(64))},
    {"rollback_of_delete", rollback, del, entry6(length(64)), kAbsent},
};
INSTANTIATE_TEST_SUITE_P(Table, SubinterfaceV6, testing::ValuesIn(kSubinterfaceV6), CaseName());

class RoutedV4 : public OnVe { };
TEST_P(RoutedV4, Sends)
{
    check(routed(kV4Entry + "/config"));
}
const Cell kRoutedV4[] = {
    {"create", apply, create, kAbsent, length(24), {v4(1)}},
    {"create_without_length", apply, create, kAbsent, "{}", {}, 4},
    {"merge", apply, merge, length(24), length(25), {}, 273},
    {"replace", apply, replace, length(24), length(25), {}, 273},
    {"load", apply, load, kAbsent, length(24), {}, 273},
    {"delete", apply, del, length(24), kAbsent, {v4(3)}},
    {"rollback_of_create", rollback, create, kAbsent, length(24), {v4(3)}},
    {"rollback_of_delete", rollback, del, length(24), kAbsent, {v4(1)}},
    {"rollback_of_merge", rollback, merge, length(24), length(25), {kEmptyV4}},
    {"validate", validate, create, kAbsent, length(24)},
};
INSTANTIATE_TEST_SUITE_P(Table, RoutedV4, testing::ValuesIn(kRoutedV4), CaseName());

class RoutedV6 : public OnVe { };
TEST_P(RoutedV6, Sends)
{
    check(routed(kV6Entry + "/config"));
}
const Cell kRoutedV6[] = {
    {"create", apply, create, kAbsent, length(64), {v6(1)}},
    {"create_without_length", apply, create, kAbsent, "{}", {}, 4},
    {"merge_says_nothing", apply, merge, length(64), length(64), {kEmptyV6}},
    {"replace_says_nothing", apply, replace, length(64), length(65), {kEmptyV6}},
    {"load_says_nothing", apply, load, kAbsent, length(64), {kEmptyV6}},
    {"delete", apply, del, length(64), kAbsent, {v6(3)}},
    {"rollback_of_create", rollback, create, kAbsent, length(64)},
    {"rollback_of_delete", rollback, del, length(64), kAbsent},
};
INSTANTIATE_TEST_SUITE_P(Table, RoutedV6, testing::ValuesIn(kRoutedV6), CaseName());

class LengthV4 : public OnVe { };
TEST_P(LengthV4, Sends)
{
    check(subinterface(kV4Entry + "/config"));
}
const Cell kLengthV4[] = {
    {"merge_adds_with_the_new_mask", apply, merge, length(24), length(25), {v4(1, "255.255.255.128")}},
    {"merge_without_a_difference", apply, merge, length(24), length(24)},
    {"merge_that_deletes_the_length", apply, merge, length(24), "{}"},
    {"create_is_left_to_the_entry", apply, create, kAbsent, length(24)},
    {"delete_is_left_to_the_entry", apply, del, length(24), kAbsent},
    {"rollback", rollback, merge, length(24), length(25)},
    {"no_length_at_all_has_no_mask_and_the_device_says_so",
     apply,
     merge,
     length(24),
     length(0),
     {v4(1, "0.0.0.0")},
     1042,
     "Error: invalid address or mask\n"},
};
INSTANTIATE_TEST_SUITE_P(Table, LengthV4, testing::ValuesIn(kLengthV4), CaseName());

class LengthV6 : public OnVe { };
TEST_P(LengthV6, Sends)
{
    check(subinterface(kV6Entry + "/config"));
}
const Cell kLengthV6[] = {
    {"merge", apply, merge, length(64), length(48), {v6(1, 48)}},
    {"merge_without_a_difference", apply, merge, length(64), length(64)},
};
INSTANTIATE_TEST_SUITE_P(Table, LengthV6, testing::ValuesIn(kLengthV6), CaseName());

TEST(Addresses, OfALoopbackCanBeChangedAsAWhole)
{
    SwitchBench bench;
    const auto all = R"({"address":[)" + entry4(length(24)) + "]}";
    for (const char *name : {"loopback 1", "ve 20", "ethernet 1/1/1"})
        for (const EditPhase phase : {validate, apply, commit, rollback})
            for (const EditOp op : {merge, replace, create, del, load}) {
                const bool isNew = op == create || op == load;
                const bool refused = phase == apply && op != create && std::string(name) != "loopback 1";
                EXPECT_EQ(bench
                              .call(phase, op, subinterface(kV4Path, name), isNew ? kAbsent : all,
                                    op == del ? kAbsent : all)
                              .status,
                          refused ? 273 : 0)
                    << name << " " << phase << " " << op;
            }
    EXPECT_EQ(bench.call(apply, del, subinterface(kV6Path), R"({"address":[]})", kAbsent).status, kOk);
    EXPECT_THAT(bench.sent(), ElementsAre());
}

// What the device's refusal becomes, tree by tree: a number of ui_err, and no answer at all.
TEST(Addresses, RefusalsDifferByTree)
{
    struct {
        std::string path, value;
        EditOp op;
        Status refusedOne, refusedTwo, silent;
    } trees[] = {
        {subinterface(kV4Entry), entry4(length(24)), create, 4, 4, 4},
        {subinterface(kV4Entry), entry4(length(24)), del, 4, 4, 4},
        {subinterface(kV6Entry), entry6(length(64)), create, 1042, 1042, 4},
        {routed(kV4Entry + "/config"), length(24), create, 1042, 1042, 4},
        {routed(kV6Entry + "/config"), length(64), del, 1042, 1042, 4},
        {subinterface(kV4Entry + "/config"), length(25), merge, 1042, 4, 4},
        {subinterface(kV6Entry + "/config"), length(65), merge, 1042, 4, 4},
    };
    SwitchBench bench;
    for (const auto &tree : trees) {
        SCOPED_TRACE(tree.path);
        const auto edit = [&] {
            return bench.call(apply, tree.op, tree.path,
                              tree.op == create      ? kAbsent
                                  : tree.op == merge ? "{}"
                                                     : tree.value,
                              tree.op == del ? kAbsent : std::optional(tree.value));
        };
        for (const int uiErr : {1, 2}) {
            for (const char *call : {"ui_ip_interface_config", "ui_ipv6_interface_config"}) {
                auto fault = faultOf(call, switchsim::FaultKind::refuse, "busy");
                fault.uiErr = uiErr;
                bench.device().addFault(fault);
            }
            const Callback done = edit();
            EXPECT_EQ(done.status, uiErr == 1 ? tree.refusedOne : tree.refusedTwo);
            EXPECT_EQ(done.records.at(0).text, done.status == 1042 ? "busy" : "");
            bench.device().clearFaults();
        }
        bench.unplug();
        EXPECT_EQ(edit().status, tree.silent);
        bench.plugIn();
    }
}

// The schema keeps such keys out; a server whose schema is wider does not.
TEST(Addresses, KeysThatAreNoAddress)
{
    SwitchBench bench;
    const auto config4 = bench.target(routed(kV4Entry + "/config")).node().schema();
    const auto config6 = bench.target(routed(kV6Entry + "/config")).node().schema();
    const auto value = [&](const lysc_node *schema) {
        Value made;
        made.schema = schema;
        made.expanded = true;
        Status status = kOk;
        const auto *leaf = lys_find_child(schema, schema->module, "prefix-length", 0, LYS_LEAF, 0);
        made.children.push_back(makeLeaf(leaf, "24", &status));
        return made;
    };
    Value four = value(config4), six = value(config6);
    struct {
        Status (*edit)(EDIT_ARGS, const char *, const char *);
        EditOp op;
        Value *config;
        Status status;
        std::string text;
        std::vector<std::string> sent;
    } cases[] = {
        {u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_config_edit,
         create,
         &four,
         261,
         "ipv4 address is not valid",
         {}},
        {u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv4_addresses_address_config_edit,
         del,
         &four,
         0,
         "",
         {R"(ui_ip_interface_config {"address_op":3,"mask":"255.255.255.0","name":"ve 20"})"}},
        {u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_config_edit,
         create,
         &six,
         261,
         "ipv6 address is not valid",
         {}},
        {u_openconfig_if_ip_interfaces_interface_routed_vlan_ipv6_addresses_address_config_edit,
         del,
         &six,
         0,
         "",
         {kEmptyV6}},
    };
    for (const auto &c : cases) {
        RequestFrame frame;
        EXPECT_EQ(c.edit(&frame.session, &frame.request, apply, c.op, c.op == del ? nullptr : c.config,
                         c.op == del ? c.config : nullptr, "ve 20", "nonsense"),
                  c.status);
        EXPECT_EQ(bench.sent(), c.sent);
        ASSERT_EQ(frame.header.records.size(), c.text.empty() ? 0u : 1u);
        if (!c.text.empty()) {
            EXPECT_EQ(frame.header.records[0].text, c.text);
        }
    }
}

TEST(Addresses, GoWithTheirVe)
{
    SwitchBench bench;
    const std::string ve =
        R"({"openconfig-interfaces:interface":[{"name":"ve 20","config":{"name":"ve 20","type":"iana-if-type:l3ipvlan"},)"
        R"("subinterfaces":{"subinterface":[{"index":0,"openconfig-if-ip:ipv4":{"addresses":{"address":[)" +
        entry4(R"({"ip":"10.0.0.1","prefix-length":24})") + "]}}}]}}]}";
    EXPECT_TRUE(bench.post("openconfig-interfaces:interfaces", ve).ok());
    EXPECT_THAT(
        bench.sent(),
        ElementsAre(R"(ui_set_intf_config {"name":"ve 20","id":20,"if_type":4,"operation":1})", v4(1)));
    EXPECT_EQ(bench.remove(subinterface(kV4Path)).status(), 273);
    EXPECT_THAT(bench.sent(), ElementsAre());
    EXPECT_TRUE(bench.remove(interfacePath(kVe)).ok());
    EXPECT_THAT(
        bench.sent(),
        ElementsAre(
            v4(3),
            R"(ui_set_intf_config {"name":"ve 20","id":20,"if_type":4,"operation":2,"description_op":3})",
            R"(ui_set_intf_config {"name":"ve 20","id":20,"if_type":4,"operation":3})"));
    EXPECT_TRUE(bench.device().show("ip").empty());
}

} // namespace
} // namespace test
