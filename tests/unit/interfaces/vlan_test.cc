// Membership in VLANs: the request and its adapter, the edits of ports and LAGs, the management VLAN.
#include "backend/lag.h"
#include "frame/wait.h"
#include "tests/unit/interfaces/cells.h"
#include "tests/unit/interfaces/paths.h"
#include "toolkit/src/request.h"
#include "toolkit/toolkit.h"
#include "vlan/u_lyn-openconfig-mgmt-vlan-aug.h"
#include "vlan/u_openconfig-vlan.h"
#include "vlan/vlan_request.h"

#include <cstring>

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;

unsigned waited = 0;
void noteWait(unsigned seconds)
{
    waited += seconds;
}

class Membership : public Cells {
protected:
    Membership()
    {
        waited = 0;
        frame::setWait(noteWait);
        for (const char *vlan : {"10", "11", "12", "20"})
            bench_->call(apply, create, vlanPath(vlan, "/config"), kAbsent,
                         R"({"vlan-id":)" + std::string(vlan) + "}");
    }
    ~Membership() override { frame::setWait(nullptr); }
};

// A request about the members of VLANs. The lists stand in this order: tagged, untagged, either.
std::string members(const std::string &type, const std::string &list)
{
    return R"(ui_vlan_config_apply {"vlan_type":{)" + type + "}," + list + "}";
}
std::string many(const std::string &vlans)
{
    return R"("kind":2,"multi_vlan":{"vlan_mask":")" + vlans + R"("})";
}
const std::string kPort = "ethernet 1/1/1", kLag = "lag 5";
std::string tagged(int op, const std::string &name)
{
    return R"("tagged_op":)" + std::to_string(op) + R"(,"tagged_ports":")" + name + "\"";
}
std::string untagged(int op, const std::string &name)
{
    return R"("untagged_op":)" + std::to_string(op) + R"(,"untagged_ports":")" + name + "\"";
}
std::string leavesAll(const std::string &vlans, const std::string &name)
{
    return members(many(vlans), R"("interface_ports_op":3,"interface_ports":")" + name + "\"");
}

class PortMembership : public Membership { };
TEST_P(PortMembership, Sends)
{
    check(interfacePath(kPort, "/openconfig-if-ethernet:ethernet/openconfig-vlan:switched-vlan/config"));
    const bool leavesAccess = GetParam().phase == apply && GetParam().op == del &&
        GetParam().before->find("access") != std::string::npos;
    EXPECT_EQ(waited, leavesAccess ? 3u : 0u);
}

const std::string kAccess10 = R"({"access-vlan":10})", kAccess20 = R"({"access-vlan":20})",
                  kTrunks = R"({"trunk-vlans":[10,11]})",
                  kBoth = R"({"access-vlan":10,"trunk-vlans":[11,20]})",
                  kMode = R"({"interface-mode":"TRUNK","native-vlan":5})";

const Cell kPortCells[] = {
    {"create",
     apply,
     create,
     kAbsent,
     kBoth,
     {members(many("10"), untagged(1, kPort)), members(many("11 20"), tagged(1, kPort))}},
    {"create_of_a_range",
     apply,
     create,
     kAbsent,
     R"({"trunk-vlans":["10..12"]})",
     {members(many("10 to 12"), tagged(1, kPort))}},
    {"create_of_a_range_the_wrong_way",
     apply,
     create,
     kAbsent,
     R"({"trunk-vlans":["12..10",20]})",
     {members(many("20"), tagged(1, kPort))},
     4,
     "Error : The trunk vlan list is empty "},
    {"mode_and_native_vlan_are_not_acted_on", apply, create, kAbsent, kMode},
    {"merge_of_another_access_vlan_does_not_remove_the_old",
     apply,
     merge,
     kAccess10,
     kAccess20,
     {members(many("20"), untagged(1, kPort))}},
    {"merge_that_deletes_the_access_vlan",
     apply,
     merge,
     kAccess10,
     "{}",
     {members(many("10"), untagged(3, kPort))}},
    {"merge_of_trunks_both_ways",
     apply,
     merge,
     kTrunks,
     R"({"trunk-vlans":[11,12,20]})",
     {members(many("10"), tagged(3, kPort)), members(many("12 20"), tagged(1, kPort))}},
    {"merge_that_only_removes_a_trunk",
     apply,
     merge,
     kTrunks,
     R"({"trunk-vlans":[11]})",
     {members(many("10"), tagged(3, kPort))}},
    {"merge_of_the_mode", apply, merge, "{}", kMode},
    {"replace_removes_and_adds_the_same_trunks",
     apply,
     replace,
     kTrunks,
     kTrunks,
     {members(many("10 11"), tagged(3, kPort)), members(many("10 11"), tagged(1, kPort))}},
    {"replace_that_drops_all",
     apply,
     replace,
     kBoth,
     "{}",
     {members(many("10"), untagged(3, kPort)), members(many("11 20"), tagged(3, kPort))}},
    {"replace_of_the_access_vlan",
     apply,
     replace,
     kAccess10,
     kAccess20,
     {members(many("20"), untagged(1, kPort))}},
    {"delete", apply, del, kBoth, kAbsent, {leavesAll("10 11 20", kPort)}},
    {"delete_of_trunks_does_not_wait", apply, del, kTrunks, kAbsent, {leavesAll("10 11", kPort)}},
    {"load", apply, load, kAbsent, kBoth},
    {"rollback_of_create", rollback, create, kAbsent, kBoth, {leavesAll("10 11 20", kPort)}},
    {"rollback_of_merge_takes_the_new_away", rollback, merge, kAccess10, kAccess20, {leavesAll("20", kPort)}},
    {"rollback_of_replace", rollback, replace, kAccess10, kTrunks, {leavesAll("10 11", kPort)}},
    {"rollback_of_delete", rollback, del, kBoth, kAbsent},
    {"rollback_of_load", rollback, load, kAbsent, kAccess10, {leavesAll("10", kPort)}},
    {"validate", validate, create, kAbsent, kBoth},
    {"commit", commit, del, kBoth, kAbsent},
};
INSTANTIATE_TEST_SUITE_P(Table, PortMembership, testing::ValuesIn(kPortCells), CaseName());

class LagMembership : public Membership {
protected:
    LagMembership() // the LAG exists, so that it can be a member
    {
        LagConfigReq request;
        ui_lag_config_req_init(&request);
        char name[] = "lg5";
        request.operation = 1;
        request.lag_id = 5;
        request.name = name;
        CommonResp *answer = nullptr;
        ui_lag_config_apply(&request, &answer);
        ui_lag_config_resp_free_unpacked(answer);
    }
};
TEST_P(LagMembership, Sends)
{
    check(interfacePath(kLag, "/openconfig-if-aggregate:aggregation/openconfig-vlan:switched-vlan/config"));
    EXPECT_EQ(waited, 0u);
}

const std::string kSingle10 = R"("kind":1,"id":10)", kSingle20 = R"("kind":1,"id":20)";
const Cell kLagCells[] = {
    {"create",
     apply,
     create,
     kAbsent,
     kBoth,
     {members(kSingle10, untagged(1, kLag)), members(many("11 20"), tagged(1, kLag))}},
    {"merge", apply, merge, kAccess10, kAccess20, {members(kSingle20, untagged(1, kLag))}},
    {"merge_that_deletes", apply, merge, kAccess10, "{}", {members(kSingle10, untagged(3, kLag))}},
    {"replace",
     apply,
     replace,
     kAccess10,
     kTrunks,
     {members(kSingle10, untagged(3, kLag)), members(many("10 11"), tagged(1, kLag))}},
    {"a_range_the_wrong_way_is_left_out",
     apply,
     create,
     kAbsent,
     R"({"trunk-vlans":["12..10",20]})",
     {members(many("20"), tagged(1, kLag))}},
    {"delete_sends_nothing", apply, del, kBoth, kAbsent},
    {"rollback_goes_by_mask", rollback, create, kAbsent, kBoth, {leavesAll("10 11 20", kLag)}},
    {"load", apply, load, kAbsent, kBoth},
};
INSTANTIATE_TEST_SUITE_P(Table, LagMembership, testing::ValuesIn(kLagCells), CaseName());

class SwitchedVlan : public Membership { };
TEST_P(SwitchedVlan, Sends)
{
    check(interfacePath(kPort, "/openconfig-if-ethernet:ethernet/openconfig-vlan:switched-vlan"));
    EXPECT_EQ(waited, 0u);
}
const std::string kContainer = R"({"config":)" + kBoth + "}";
const Cell kContainerCells[] = {
    {"delete", apply, del, kContainer, kAbsent, {leavesAll("10 11 20", kPort)}},
    {"create", apply, create, kAbsent, kContainer},
    {"replace", apply, replace, kContainer, kContainer},
    {"rollback_of_delete", rollback, del, kContainer, kAbsent},
    {"validate_of_delete", validate, del, kContainer, kAbsent},
};
INSTANTIATE_TEST_SUITE_P(Table, SwitchedVlan, testing::ValuesIn(kContainerCells), CaseName());

TEST(Membership, AFailedRemovalDoesNotStopTheAddition)
{
    SwitchBench bench;
    auto fault = faultOf("ui_vlan_config_apply", switchsim::FaultKind::refuse, "busy");
    fault.count = 1;
    bench.device().addFault(fault);
    const auto path =
        interfacePath(kPort, "/openconfig-if-ethernet:ethernet/openconfig-vlan:switched-vlan/config");
    const Callback done =
        bench.call(apply, replace, path, R"({"trunk-vlans":[1]})", R"({"trunk-vlans":[1]})");
    EXPECT_EQ(done.status, 4);
    EXPECT_EQ(bench.sent().size(), 2u);
    ASSERT_EQ(done.records.size(), 1u);
    EXPECT_EQ(done.records[0].text, "busy");
    EXPECT_EQ(bench.device().show("vlan")["1"]["tagged"], switchsim::Json::array({kPort}));
    bench.unplug();
    EXPECT_EQ(bench.call(apply, replace, path, "{}", kAccess10).status, 4);
}

TEST(Membership, TheDeviceRefusesAVlanThatDoesNotExist)
{
    SwitchBench bench(R"({"openconfig-interfaces:interfaces":{"interface":[{"name":"ethernet 1/1/1"}]}})");
    const Outcome outcome = bench.put(
        interfacePath(kPort,
                      "/openconfig-if-ethernet:ethernet/openconfig-vlan:switched-vlan/config/access-vlan"),
        R"({"openconfig-vlan:access-vlan":30})");
    EXPECT_EQ(outcome.status(), 4);
    EXPECT_THAT(outcome.message(), testing::HasSubstr("30"));
}

// Numbers that the schema keeps out can come from a server whose schema is wider.
TEST(Membership, TrunksThatCannotBeAreToldAndTheRestGoesOut)
{
    SwitchBench bench;
    struct {
        std::string path;
        Status (*edit)(EDIT_ARGS, const char *);
        const char *name;
        Status status;
    } anchors[] = {
        {interfacePath(kPort, "/openconfig-if-ethernet:ethernet/openconfig-vlan:switched-vlan/config"),
         u_openconfig_vlan_interfaces_interface_ethernet_switched_vlan_config_edit, "ethernet 1/1/1", 4},
        {interfacePath(kLag, "/openconfig-if-aggregate:aggregation/openconfig-vlan:switched-vlan/config"),
         u_openconfig_vlan_interfaces_interface_aggregation_switched_vlan_config_edit, "ethernet 1/1/1", 0},
    };
    for (const auto &anchor : anchors) {
        Value config;
        config.schema = bench.target(anchor.path).node().schema();
        config.expanded = true;
        const auto *trunks = bench.target(anchor.path + "/trunk-vlans=1").node().schema();
        for (const unsigned number : {0u, 1u, 4096u}) {
            auto value = std::make_unique<Value>();
            value->schema = trunks;
            value->type = btUint16;
            value->natural = number;
            value->parent = &config;
            config.children.push_back(std::move(value));
        }
        RequestFrame frame;
        EXPECT_EQ(anchor.edit(&frame.session, &frame.request, apply, create, &config, nullptr, anchor.name),
                  anchor.status);
        EXPECT_EQ(frame.header.records.size(), anchor.status ? 2u : 0u);
        for (const auto &record : frame.header.records)
            EXPECT_EQ(record.text, "Error : The trunk vlan list is empty ");
        EXPECT_THAT(bench.sent(), ElementsAre(members(many("1"), tagged(1, anchor.name))));
    }
}

TEST(Adapter, CutsTextsAndLeavesOutWhatHasNoBuffer)
{
    vlan::Request request;
    const std::string ports(9000, 'x'), name(40, 'n');
    vlan::Mask mask;
    mask.set(7);
    vlan_adapter_restconf_to_proto(mask.data(), vlan::byMask, 0, ports.c_str(), vlan::tagged, 0, name.c_str(),
                                   0, &request.record);
    EXPECT_EQ(std::strlen(request.record.tagged_ports), 7679u);
    EXPECT_EQ(request.record.name_op, 0); // no buffer
    request.withName();
    vlan_adapter_restconf_to_proto(mask.data(), vlan::byMask, 0, nullptr, 0, 0, name.c_str(), 1,
                                   &request.record);
    EXPECT_EQ(std::strlen(request.record.name), 32u);
    EXPECT_EQ(request.record.name_op, 3);
    EXPECT_EQ(request.record.operation, 3);
    request.record.untagged_ports = nullptr;
    vlan_adapter_restconf_to_proto(mask.data(), vlan::byMask, 0, "ethernet 1/1/1", vlan::untagged, 0, nullptr,
                                   0, &request.record);
    EXPECT_EQ(request.record.untagged_op, 0);
}

TEST(Adapter, KnowsTheDefaultVlanByItsName)
{
    vlan::Request request;
    request.withName();
    vlan::Mask mask;
    mask.set(1);
    mask.set(9);
    vlan_adapter_restconf_to_proto(mask.data(), vlan::byMask, 0, nullptr, 0, 0, "DEFAULT-VLAN", 0,
                                   &request.record);
    EXPECT_EQ(request.record.default_vlan, 1);
    EXPECT_EQ(request.record.name_op, 0);
    EXPECT_EQ(request.type.kind, 1);
    EXPECT_EQ(request.type.id, 1u);
    EXPECT_EQ(request.record.operation, 1);
}

TEST(Adapter, ARequestThatCannotBeEncodedGoesOut)
{
    SwitchBench bench;
    vlan::Request request;
    vlan_adapter_restconf_to_proto(vlan::Mask().data(), vlan::byMask, 1, nullptr, 0, 0, nullptr, 0,
                                   &request.record);
    RequestFrame frame;
    CommonResp *answer = nullptr;
    EXPECT_EQ(
        ui_restconf_vlan_config_apply_send_cleanup(&request.record, &answer, &frame.session, &frame.request),
        kOk);
    EXPECT_THAT(bench.sent(), ElementsAre(R"(ui_vlan_config_apply {"operation":3})"));
}

TEST(ManagementVlan, IsMarkedByAUnitThatNoBundleLoads)
{
    SwitchBench bench(
        R"({"openconfig-network-instance:network-instances":{"network-instance":[{"name":"default"}]}})", 1,
        [](Host &) {
            ASSERT_EQ(y_lyn_openconfig_mgmt_vlan_aug_init("lyn-openconfig-mgmt-vlan-aug", "2022-06-06"), kOk);
        });
    const auto path = vlanPath("1", "/config/lyn-openconfig-mgmt-vlan-aug:management_vlan_container");
    const auto request = [](int operation) {
        return R"(ui_vlan_config_apply {"vlan_type":{"kind":1,"id":1},"management_vlan_op":)" +
            std::to_string(operation) + "}";
    };
    const std::string on = R"({"management_vlan":true})", off = R"({"management_vlan":false})";
    struct {
        EditPhase phase;
        EditOp op;
        std::optional<std::string> before, after;
        int operation; // 0: nothing is sent
    } cells[] = {
        {apply, merge, "{}", on, 1},    {apply, merge, on, off, 3},       {apply, create, kAbsent, on, 1},
        {apply, del, on, kAbsent, 3},   {apply, del, off, kAbsent, 3},    {apply, replace, off, on, 0},
        {apply, load, kAbsent, on, 0},  {apply, merge, on, "{}", 0},      {validate, merge, "{}", on, 0},
        {rollback, merge, "{}", on, 0}, {commit, create, kAbsent, on, 0},
    };
    for (const auto &c : cells) {
        EXPECT_EQ(bench.call(c.phase, c.op, path, c.before, c.after).status, kOk);
        const auto sent = bench.sent();
        EXPECT_EQ(sent,
                  c.operation ? std::vector<std::string>{request(c.operation)} : std::vector<std::string>{});
    }
    bench.device().addFault(faultOf("ui_vlan_config_apply", switchsim::FaultKind::null));
    EXPECT_EQ(bench.call(apply, merge, path, "{}", on).status, 4);
    y_lyn_openconfig_mgmt_vlan_aug_cleanup();
}

} // namespace
} // namespace test
