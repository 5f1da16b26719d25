// Lists as a whole: their definition, what an edit of the server makes of one, and what cannot be edited.
#include "tests/unit/acl/requests.h"

namespace test {
namespace {

const Pattern config{R"({"name":"$","type":"ACL_IPV4"$})"};
const std::string kConfig = config("web", ""),
                  kStandard = config("web", R"(,"lyn-openconfig-acl-aug:standard":true)"),
                  kDefineStandard = definition(1, 1, R"("standard":1,)", 1, "web", "");
const Pattern aSet{R"({"name":"web","type":"ACL_IPV4"$})"};
const std::string kSet = aSet(R"(,"acl-entries":{"acl-entry":[)" + entry(10, 10, kPing) + "," +
                              entry(5, 5, kPing) + "]}"),
                  kAdd10 = ipv4Filter(1, 10, 1, 1, "", ""), kAdd5 = ipv4Filter(1, 5, 1, 1, "", ""),
                  kDrop10 = ipv4Filter(3, 10, 1, 1, "", ""), kDrop5 = ipv4Filter(3, 5, 1, 1, "", "");

TEST(AclSet, DoesExactlyThis)
{
    check(setPath("ACL_IPV4", "/config"),
          {created("", kConfig, {kDefine}), created("standard", kStandard, {kDefineStandard}),
           merged("", kConfig, kStandard, {}, 273), in(rollback, created("", kConfig, {kRemove})),
           in(rollback, created("without its names", "{}", {kRemove})),
           in(rollback, replaced("", kConfig, kConfig, {kRemove})),
           under(refusal(kHandler, "no", 1, 2), created("refused", kConfig, {kDefine}, 4)),
           under(noAnswer(kHandler), created("dead", kConfig, {kDefine}, 4, "", "\n ITC failed 1"))},
          Quiet{kConfig, kStandard});
    check(setPath("ACL_IPV4"),
          {deleted("", kSet, {kRemove}),
           deleted("standard", aSet(R"(,"lyn-openconfig-acl-aug:standard":true)"),
                   {definition(1, 3, R"("standard":1,)", 1, "web", "")}),
           merged("", kSet, kSet, {}, 273), in(rollback, deleted("", kSet, {kDefine, kAdd10, kAdd5})),
           under(noAnswer(kHandler, 1),
                 in(rollback, loud(deleted("ends where it fails", kSet, {kDefine, kAdd10}, 4))))},
          Quiet{kSet, kSet});
    // Only an IPv4 list has a number, and only if its name is one.
    for (const auto &[path, request] :
         {std::pair{kSets + "/acl-set=101,ACL_IPV4",
                    definition(1, 1, R"("extended":1,)", 1, "101", R"(,"acl_num":101)")},
          {kSets + "/acl-set=10a,ACL_IPV4", definition(1, 1, R"("extended":1,)", 1, "10a", "")},
          {kSets + "/acl-set=101,ACL_IPV6", definition(2, 1, "", 2, "101", "")},
          {kSets + "/acl-set=101,ACL_L2", definition(3, 1, "", 3, "101", "")}})
        check(path + "/config", {created(path, "{}", {request})});
}

// Nodes that refuse these operations in apply, and do nothing in any other.
void refuse(const std::vector<EditOp> &refused, const Texts &paths, const std::string &value = "{}")
{
    SwitchBench bench;
    Cell cell{"", apply, merge, {}, {}, {}, 273, "", {}, {}};
    for (const std::string &path : paths) {
        std::vector<Cell> cells;
        for (const EditOp op : refused) {
            cell.name = path;
            cell.op = op;
            cell.before = op == create ? kAbsent : value;
            cell.after = op == del ? kAbsent : value;
            cells.push_back(cell);
        }
        check(bench, path, cells, Quiet{value, value});
    }
}

TEST(Acl, OnlyComesAndGoesAsAWhole)
{
    const std::string port = kInterfaces + "/interface=lag%205", rule = entryPath("ACL_IPV4"),
                      rule6 = entryPath("ACL_IPV6"), ruleL2 = entryPath("ACL_L2"),
                      from = rule + "/input-interface", reference = R"({"interface":"ethernet 1/1/1"})";
    refuse({merge, del},
           {kAcl, kAcl + "/config", kSets, kInterfaces, port + "/config", port + "/interface-ref",
            port + "/ingress-acl-sets", port + "/egress-acl-sets"});
    refuse({merge}, {setPath("ACL_IPV4", "/acl-entries"), rule + "/config", from});
    refuse({merge, replace},
           {ruleL2 + "/l2", ruleL2 + "/l2/config", rule + "/ipv4", rule + "/ipv4/config", rule6 + "/ipv6",
            rule6 + "/ipv6/config", rule + "/transport", rule + "/transport/config", rule + "/actions",
            rule + "/actions/config", from + "/config", from + "/interface-ref",
            from + "/interface-ref/config"});
    refuse({merge, replace, create}, {from + "/interface-ref/config"}, reference);
    refuse({merge, replace, del}, {port + "/interface-ref/config"}, reference);
    const std::string aug = "/config/lyn-openconfig-acl-aug:";
    for (const std::string &fields : {rule + "/ipv4" + aug, rule6 + "/ipv6" + aug})
        refuse({merge, replace}, {fields + "dscp-marking", fields + "internal-priority-marking"}, "1");
}

const Pattern lists{
    R"({"openconfig-acl:acl":{"acl-sets":{"acl-set":[{"name":"web","type":"ACL_IPV4","config":{"name":"web","type":"ACL_IPV4"},"acl-entries":{"acl-entry":[$]}}]}}})"};
const std::string kTwo = lists(entry(10, 10, kPing) + "," + entry(5, 5, kPing));

TEST(AclEdit, TellsTheDeviceOfListsAndWholeFilters)
{
    SwitchBench bench;
    EXPECT_TRUE(bench.patch("", R"({"ietf-restconf:data":)" + kTwo + "}").ok());
    EXPECT_THAT(bench.sent(), ElementsAre(kDefine, kAdd10, kAdd5));
    EXPECT_EQ(bench
                  .put(entryPath("ACL_IPV4", "/actions/config/forwarding-action"),
                       R"({"openconfig-acl:forwarding-action":"DROP"})")
                  .status(),
              273);
    EXPECT_THAT(bench.sent(), IsEmpty());
    // The nodes inside of a replaced entry say nothing of their own.
    std::string drop = entry(10, 10, kPing);
    drop.replace(drop.find("ACCEPT"), 6, "DROP");
    EXPECT_TRUE(bench.put(entryPath("ACL_IPV4"), R"({"openconfig-acl:acl-entry":[)" + drop + "]}").ok());
    EXPECT_THAT(bench.sent(), ElementsAre(kDrop10, ipv4Filter(1, 10, 0, 1, "", "")));
    EXPECT_EQ(bench.device().show("access-lists")["ipv4"]["web"]["rules"]["10"]["action"], "deny");
    for (const std::string &path : {kAcl, kSets})
        EXPECT_EQ(bench.remove(path).status(), 273);
    EXPECT_THAT(bench.sent(), IsEmpty());
    EXPECT_TRUE(bench.remove(setPath("ACL_IPV4")).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(kDrop5, ipv4Filter(3, 10, 0, 1, "", ""), kRemove));
    EXPECT_TRUE(bench.device().show("access-lists").empty());
}

TEST(AclEdit, IsTakenBackWhenTheDeviceRefusesAFilter)
{
    SwitchBench bench;
    bench.device().setValue("acl-rules", 1);
    EXPECT_EQ(bench.patch("", R"({"ietf-restconf:data":)" + kTwo + "}").status(), kInternal);
    EXPECT_THAT(bench.sent(), ElementsAre(kDefine, kAdd10, kAdd5, kDrop10, kRemove));
    EXPECT_TRUE(bench.device().show("access-lists").empty());
    EXPECT_EQ(bench.running(), R"({"ietf-restconf:data":{}})");
    EXPECT_EQ(
        bench
            .post(
                kAcl,
                R"({"openconfig-acl:acl-sets":{"acl-set":[{"name":"x","type":"ACL_MIXED","config":{"name":"x","type":"ACL_MIXED"}}]}})")
            .status(),
        kInternal);
}

} // namespace
} // namespace test
