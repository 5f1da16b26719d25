// IGMP snooping: mode and version of the querier, for all VLANs and for one.
#include "mcast_snoop/src/mcast_snoop_yang_agent.h"
#include "tests/unit/bundle/callback_test.h"

namespace test {
namespace {

const std::string kTop = "lyn-igmp-mld-snooping:igmp-mld-snooping", kGlobal = kTop + "/global/igmp/config",
                  kIgmp = kTop + "/vlans/vlan=1/proto/igmp", kVlan = kIgmp + "/config",
                  kOper = kIgmp + "/oper", kGlobalCall = "mcast_snoop_global_config_apply",
                  kVlanCall = "mcast_snoop_vlan_config_apply", kOperCall = "mcast_snoop_vlan_oper_fe_get",
                  kFailed = "]: config apply failed";
const Pattern config{R"({"querier-mode":"$","version":$})"};
const std::string kActive2 = config("active", 2), kPassive3 = config("passive", 3),
                  kActive = R"({"querier-mode":"active"})", kOther = R"({"querier-mode":"lazy"})",
                  kNone = "{}";

// What the two kinds of request have in front, and the function that sends them.
struct Scope {
    std::string call, start, function;

    std::string operator()(const std::string &mode, const std::string &version) const
    {
        return call + " {" + start + mode + version + "}";
    }
    std::string failed() const { return "RESTConf-Msnoop: [" + function + kFailed; }
};
const Scope kScopes[] = {
    {kGlobalCall, R"("afi":1)", "msnoop_rconf_parse_global_params"},
    {kVlanCall, R"("afi":1,"vlan_id":1,"vlan_type":{"kind":1,"id":1})", "msnoop_rconf_parse_vlan_params"},
};
const Pattern mode{R"(,"mode_op":$,"mode":$)"}, version{R"(,"version_op":$,"version":$)"};

std::vector<Cell> cellsOf(const Scope &sent)
{
    const std::string both = sent(mode(1, 2), version(1, 3)), old = sent(mode(3, 1), version(3, 2));
    switchsim::Fault first = noAnswer(sent.call);
    first.count = 1;
    return {
        merged("a request a leaf", kActive2, kPassive3, {sent(mode(1, 2), ""), sent("", version(1, 3))}),
        merged("one that goes", kActive2, kActive, {sent("", version(3, 2))}),
        merged("another word", kNone, kOther, {sent(mode(1, 0), "")}),
        merged("nothing", kActive2, kActive2),
        replaced("", kActive2, kPassive3, {both}),
        created("", kPassive3, {both}),
        created("one of them", kActive, {sent(mode(1, 1), "")}),
        created("none of them", kNone),
        deleted("with the old values", kActive2, {old}),
        deleted("nothing", kNone),
        under(noAnswer(sent.call), created("silent", kPassive3, {both}, 4, "", sent.failed())),
        under(refusal(sent.call, "no"), deleted("refused", kActive2, {old}, 4, "", sent.failed())),
        under(first,
              loud(merged("the last one counts", kNone, kPassive3,
                          {sent(mode(1, 2), ""), sent("", version(1, 3))}))),
    };
}

TEST(Snooping, OfAllVlans)
{
    const Scope &sent = kScopes[0];
    const std::string both = sent(mode(1, 2), version(1, 3));
    std::vector<Cell> cells = cellsOf(sent);
    for (const Cell &cell :
         {merged("the same once more", kActive2, kPassive3, {both}),
          replaced("", kActive2, kPassive3, {both}), created("", kPassive3, {both}),
          loaded("", kPassive3, {both}), deleted("", kActive2, {sent(mode(3, 1), version(3, 2))})})
        cells.push_back(in(rollback, cell));
    check(kGlobal, cells, Quiet{kActive2, kPassive3});
}

TEST(Snooping, OfAVlan)
{
    check(kVlan, cellsOf(kScopes[1]), Quiet{kActive2, kPassive3});
}

TEST(Snooping, NeedsANode)
{
    SwitchBench bench;
    McastSnoopGlobalConfig record;
    mcast_snoop_global_config_init(&record, 1);
    const LogCapture log;
    EXPECT_EQ(msnoop_rconf_parse_global_params(0, merge, nullptr, nullptr, &record), 4);
    EXPECT_THAT(log.errors(),
                HasSubstr("RESTConf-Msnoop: [msnoop_rconf_parse_global_params] node name NULL!\n"));
    EXPECT_THAT(bench.sent(), IsEmpty());
}

TEST(Snooping, ReadsWhatAVlanDoes)
{
    SwitchBench bench(R"({"lyn-igmp-mld-snooping:igmp-mld-snooping":{"vlans":{"vlan":[{"vlan-id":1}]}}})");
    const auto oper = [&] { return bench.read(kOper, Content::all); };
    EXPECT_EQ(oper(), R"({"lyn-igmp-mld-snooping:oper":{"version":2}})"); // there is no mode
    EXPECT_THAT(bench.sent(), ElementsAre(kOperCall + R"( {"afi":1,"vlan_id":1})"));
    bench.patch(kVlan, member(kVlan, kPassive3));
    EXPECT_EQ(oper(), R"({"lyn-igmp-mld-snooping:oper":{"querier-mode":2,"version":3}})");
    strike(bench, noAnswer(kOperCall));
    const LogCapture log;
    EXPECT_EQ(readFailure(bench, kOper), 4);
    EXPECT_THAT(log.errors(), HasSubstr("u_lyn_igmp_mld_snooping_oper_get failed \n"));
}

} // namespace
} // namespace test
