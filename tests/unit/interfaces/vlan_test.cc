// Membership in VLANs: the request and its adapter, the edits of ports and LAGs, the management VLAN.
#include "backend/lag.h"
#include "frame/wait.h"
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/interfaces/paths.h"
#include "toolkit/src/request.h"
#include "vlan/u_lyn-openconfig-mgmt-vlan-aug.h"
#include "vlan/u_openconfig-vlan.h"
#include "vlan/vlan_request.h"

#include <cstring>

namespace test {
namespace {

const std::string kCall = "ui_vlan_config_apply", kLag = "lag 5",
                  kSwitched =
                      interfacePath(kPort, "/openconfig-if-ethernet:ethernet/openconfig-vlan:switched-vlan"),
                  kPortPath = kSwitched + "/config",
                  kLagPath = interfacePath(
                      kLag, "/openconfig-if-aggregate:aggregation/openconfig-vlan:switched-vlan/config");

// A request about the members of VLANs. The lists stand in this order: tagged, untagged, either.
const Pattern members{kCall + R"( {"vlan_type":{$},$})"};
const Pattern many{R"("kind":2,"multi_vlan":{"vlan_mask":"$"})"};
const Pattern one{R"("kind":1,"id":$)"};
const Pattern taggedAs{R"("tagged_op":$,"tagged_ports":"$")"}, tagged{taggedAs("$", kPort)};
const Pattern untaggedAs{R"("untagged_op":$,"untagged_ports":"$")"}, untagged{untaggedAs("$", kPort)};
const Pattern leavesAllAs{members(many("$"), R"("interface_ports_op":3,"interface_ports":"$")")},
    leavesAll{leavesAllAs("$", kPort)};
const Pattern trunks{R"({"trunk-vlans":[$]})"};

const std::string kAccess10 = R"({"access-vlan":10})", kAccess20 = R"({"access-vlan":20})",
                  kTrunks = trunks("10,11"), kBoth = R"({"access-vlan":10,"trunk-vlans":[11,20]})",
                  kMode = R"({"interface-mode":"TRUNK","native-vlan":5})",
                  kWrongWay = trunks(R"("12..10",20)"), kEmptyList = "Error : The trunk vlan list is empty ";

const std::vector<Cell> kPortCells = {
    created("", kBoth, {members(many("10"), untagged(1)), members(many("11 20"), tagged(1))}),
    created("a range", trunks(R"("10..12")"), {members(many("10 to 12"), tagged(1))}),
    created("a range the wrong way", kWrongWay, {members(many("20"), tagged(1))}, 4, kEmptyList),
    created("mode and native VLAN are not acted on", kMode),
    merged("another access VLAN does not remove the old", kAccess10, kAccess20,
           {members(many("20"), untagged(1))}),
    merged("an access VLAN that goes", kAccess10, "{}", {members(many("10"), untagged(3))}),
    merged("trunks both ways", kTrunks, trunks("11,12,20"),
           {members(many("10"), tagged(3)), members(many("12 20"), tagged(1))}),
    merged("a trunk that goes", kTrunks, trunks("11"), {members(many("10"), tagged(3))}),
    replaced("replace removes and adds the same trunks", kTrunks, kTrunks,
             {members(many("10 11"), tagged(3)), members(many("10 11"), tagged(1))}),
    replaced("replace that drops all", kBoth, "{}",
             {members(many("10"), untagged(3)), members(many("11 20"), tagged(3))}),
    replaced("replace of the access VLAN", kAccess10, kAccess20, {members(many("20"), untagged(1))}),
    deleted("", kBoth, {leavesAll("10 11 20")}),
    in(rollback, created("", kBoth, {leavesAll("10 11 20")})),
    in(rollback, merged("rollback of merge takes the new away", kAccess10, kAccess20, {leavesAll("20")})),
    in(rollback, replaced("", kAccess10, kTrunks, {leavesAll("10 11")})),
    in(rollback, loaded("", kAccess10, {leavesAll("10")})),
    under(noAnswer(kCall), replaced("silent", "{}", kAccess10, {members(many("10"), untagged(1))}, 4)),
};
const std::vector<Cell> kLagCells = {
    created("", kBoth, {members(one(10), untaggedAs(1, kLag)), members(many("11 20"), taggedAs(1, kLag))}),
    merged("", kAccess10, kAccess20, {members(one(20), untaggedAs(1, kLag))}),
    merged("an access VLAN that goes", kAccess10, "{}", {members(one(10), untaggedAs(3, kLag))}),
    replaced("", kAccess10, kTrunks,
             {members(one(10), untaggedAs(3, kLag)), members(many("10 11"), taggedAs(1, kLag))}),
    created("a range the wrong way is left out", kWrongWay, {members(many("20"), taggedAs(1, kLag))}),
    in(rollback, created("rollback goes by mask", kBoth, {leavesAllAs("10 11 20", kLag)})),
    in(rollback, merged("", kAccess10, kAccess20, {leavesAllAs("20", kLag)})),
    in(rollback, replaced("", kAccess10, kTrunks, {leavesAllAs("10 11", kLag)})),
    in(rollback, loaded("", kAccess10, {leavesAllAs("10", kLag)})),
};

unsigned waited = 0;
void noteWait(unsigned seconds)
{
    waited += seconds;
}

TEST(Membership, DoesExactlyThis)
{
    SwitchBench bench;
    for (const char *vlan : {"10", "11", "12", "20"})
        bench.call(apply, create, vlanPath(vlan, "/config"), kAbsent,
                   R"({"vlan-id":)" + std::string(vlan) + "}");
    LagConfigReq request; // the LAG exists, so that it can be a member
    ui_lag_config_req_init(&request);
    char name[] = "lg5";
    request.operation = 1;
    request.lag_id = 5;
    request.name = name;
    CommonResp *answer = nullptr;
    ui_lag_config_apply(&request, &answer);
    ui_lag_config_resp_free_unpacked(answer);

    waited = 0;
    frame::setWait(noteWait);
    check(bench, kPortPath, kPortCells, Quiet{kBoth, kBoth});
    EXPECT_EQ(waited, 3u); // of the one deletion of an access VLAN
    check(bench, kPortPath, {deleted("trunks", kTrunks, {leavesAll("10 11")})});
    check(bench, kLagPath, kLagCells, Quiet{kBoth, kBoth});
    const std::string all = R"({"config":)" + kBoth + "}";
    check(bench, kSwitched, {deleted("the container", all, {leavesAll("10 11 20")})}, Quiet{all, all});
    EXPECT_EQ(waited, 3u);
    frame::setWait(nullptr);
}

TEST(Membership, AFailedRemovalDoesNotStopTheAddition)
{
    SwitchBench bench;
    auto fault = refusal(kCall, "busy");
    fault.count = 1;
    bench.device().addFault(fault);
    EXPECT_EQ(ended(bench.call(apply, replace, kPortPath, trunks("1"), trunks("1"))), Ended(4, {"busy"}));
    EXPECT_EQ(bench.sent().size(), 2u);
    EXPECT_EQ(bench.device().show("vlan")["1"]["tagged"], switchsim::Json::array({kPort}));
}

TEST(Adapter, CutsTextsAndLeavesOutWhatHasNoBuffer)
{
    vlan::Request request;
    const std::string ports(9000, 'x'), name(40, 'n');
    vlan::Mask mask;
    mask.set(7);
    const auto adapt = [&](const char *list, int kind, const char *text, int gone) {
        vlan_adapter_restconf_to_proto(mask.data(), vlan::byMask, 0, list, kind, 0, text, gone,
                                       &request.record);
    };
    adapt(ports.c_str(), vlan::tagged, name.c_str(), 0);
    EXPECT_EQ(std::strlen(request.record.tagged_ports), 7679u);
    EXPECT_EQ(request.record.name_op, 0); // no buffer
    request.withName();
    adapt(nullptr, 0, name.c_str(), 1);
    EXPECT_EQ(std::strlen(request.record.name), 32u);
    EXPECT_EQ(request.record.name_op, 3);
    EXPECT_EQ(request.record.operation, 3);
    request.record.untagged_ports = nullptr;
    adapt(kPort.c_str(), vlan::untagged, nullptr, 0);
    EXPECT_EQ(request.record.untagged_op, 0);
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
    const std::string on = R"({"management_vlan":true})", off = R"({"management_vlan":false})",
                      start = kCall + R"( {"vlan_type":{"kind":1,"id":1},"management_vlan_op":)",
                      marked = start + "1}", unmarked = start + "3}";
    check(bench, path,
          {merged("on", "{}", on, {marked}), merged("off", on, off, {unmarked}), created("", on, {marked}),
           deleted("", off, {unmarked}), merged("one that goes", on, "{}"),
           under(noAnswer(kCall), merged("silent", "{}", on, {marked}, 4))},
          Quiet{off, on});
    y_lyn_openconfig_mgmt_vlan_aug_cleanup();
}

} // namespace
} // namespace test
