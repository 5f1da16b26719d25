// Lists on interfaces.
#include "tests/unit/acl/requests.h"

#include "acl/src/acl_binding.h"

namespace test {
namespace {

const std::string kZeros(255, '0'), kLag = R"("interfaces":"lag 5",)",
                                    kNotBound = "This ACL is not applied currently\n";

// Operation, type, the place before the mask and the one behind it, name, direction.
std::string binding(int operation, int type, const std::string &vlan, const std::string &name,
                    const std::string &interface, int direction)
{
    static const Pattern request{
        kHandler +
        R"( {"message":"acl_interf_binding","code":10027077,"sub_type":$,"operation":$,"acl_type":$,$"acl_name":"$",)"
        R"("port_mask":"$",$"direction":$})"};
    return request(type, operation, type, vlan, name, kZeros, interface, direction);
}
std::string bound(const std::string &interface, const std::string &below)
{
    return kInterfaces + "/interface=" + interface + below;
}
std::string ingress(const std::string &set, const std::string &below = "")
{
    return "/ingress-acl-sets/ingress-acl-set=" + set + below;
}
std::string egress(const std::string &set, const std::string &below = "")
{
    return "/egress-acl-sets/egress-acl-set=" + set + below;
}

const std::string kBind = binding(1, 1, "", "web", kLag, 1), kUnbind = binding(3, 1, "", "web", kLag, 1),
                  kBindOut = binding(1, 1, "", "web", kLag, 2),
                  kUnbindOut = binding(3, 1, "", "web", kLag, 2),
                  kIn = R"({"set-name":"web","type":"ACL_IPV4"})";

TEST(AclBinding, DoesExactlyThis)
{
    SwitchBench bench;
    check(bench, bound("lag%205", ingress("web,ACL_IPV4", "/config")),
          {loud(in(rollback, created("", kIn, {kUnbind}))), merged("", kIn, kIn, {}, 273),
           loud(replaced("no such list", kIn, kIn, {kBind}, 4)),
           under(refusal(kHandler, "busy", 0, 2), created("refused", kIn, {kBind}, 4)),
           under(refusal(kHandler, "busy", 1, 1), created("", kIn, {kBind})),
           under(noAnswer(kHandler),
                 created("dead", kIn, {kBind}, 4, "",
                         "[restconf_apply_bind_unbind_request" + kUnsent +
                             "[restconf_apply_bind_unbind_request] [n]"))},
          Quiet{kIn, kIn});
    check(bench, bound("lag%205", ingress("web,ACL_IPV4")),
          {loud(deleted("it was not bound", kIn, {kUnbind})), merged("", kIn, kIn, {}, 273),
           under(refusal(kHandler, "busy", 0, 2), deleted("refused", kIn, {kUnbind}, 4)),
           under(refusal(kHandler, kNotBound, 0, 2), loud(deleted("as good as unbound", kIn, {kUnbind}))),
           under(refusal(kHandler, "", 0, 0), in(rollback, deleted("", kIn, {kBind})))},
          Quiet{kIn, kIn});
    struct Place {
        std::string interface, set, request;
    };
    for (const auto &[interface, set, request] :
         {Place{"vlan%2010", "web,ACL_IPV4", binding(1, 1, R"("vlan":10,)", "web", "", 2)},
          Place{"ethernet%201%2F1%2F7", "web,ACL_IPV6",
                binding(1, 2, "", "web", R"("interfaces":"ethernet 1/1/7",)", 2)},
          Place{"lag%205", "web,ACL_L2", ""},
          Place{"ve%2020", "web,ACL_IPV4", binding(1, 1, "", "web", "", 2)}}) {
        const Texts requests = request.empty() ? Texts{} : Texts{request};
        strike(bench, refusal(kHandler, "", 0, 0));
        EXPECT_EQ(
            ended(bench.call(apply, create, bound(interface, egress(set, "/config")), kAbsent, "{}")).first,
            request.empty() ? kNotSupported : kOk);
        EXPECT_EQ(bench.sent(), requests);
    }
    strike(bench, refusal(kHandler, "", 0, 0));
    EXPECT_EQ(restconf_process_acl_bind_unbind(create, "vlan 10", "101", "ACL_IPV4", 1), kOk);
    EXPECT_THAT(bench.sent(), ElementsAre(HasSubstr(R"("acl_name":"101","acl_num":101,"op_acl_num":1,)")));
}

TEST(AclBinding, LooksAtTheKeyOfTheInterface)
{
    for (const std::string &set : {ingress("web,ACL_IPV4"), ingress("web,ACL_IPV4", "/config"),
                                   egress("web,ACL_IPV4"), egress("web,ACL_IPV4", "/config")}) {
        const bool isEgress = set == egress("web,ACL_IPV4");
        for (const auto &[key, text] :
             {std::pair{"ethernet%201%2F1%2F1%20to%205",
                        std::string("Multiple interfaces Not allowded in a interface key")},
              {"lag%205%20",
               Pattern{"Space should not present at the end of $ key"}(isEgress ? "interface" : "name")},
              {"lag5", Pattern{"No Space in starting of $key"}(isEgress ? "interface " : "")},
              {"vlan%20%205", "Should have single space between vlan and DECIMAL"}})
            check(bound(key, set),
                  {in(validate, created(key, kIn, {}, 4, text)), in(validate, loaded(key, kIn))});
    }
}

// Members of a list, one for each letter.
std::string each(const std::string &names, const std::string &key)
{
    std::string all;
    for (const char name : names)
        all += (all.empty() ? "" : ",") +
            Pattern{R"({"$":"$","type":"ACL_IPV4","config":{"$":"$","type":"ACL_IPV4"}})"}(key, name, key,
                                                                                           name);
    return "[" + all + "]";
}
std::string interface(const std::string &in, const std::string &out)
{
    return Pattern{R"({"openconfig-acl:interface":[{"id":"ethernet 1/1/1","config":{"id":"ethernet 1/1/1"},)"
                   R"("ingress-acl-sets":{"ingress-acl-set":$},"egress-acl-sets":{"egress-acl-set":$}}]})"}(
        each(in, "set-name"), each(out, "set-name"));
}

TEST(AclBindingEdit, FollowsTheInterface)
{
    SwitchBench bench;
    const std::string port = R"("interfaces":"ethernet 1/1/1",)",
                      path = kInterfaces + "/interface=ethernet%201%2F1%2F1";
    const auto change = [&](int operation, const char *set, int direction) {
        return binding(operation, 1, "", set, port, direction);
    };
    const auto boundTo = [&](const char *set) {
        return bench.device().show("access-lists")["ipv4"][set]["bound"].size();
    };
    EXPECT_TRUE(
        bench.put(kSets, R"({"openconfig-acl:acl-sets":{"acl-set":)" + each("ab", "name") + "}}").ok());
    EXPECT_TRUE(bench.put(path, interface("ab", "a")).ok());
    bench.sent();
    // A list that stays is not bound anew, and one that goes is unbound before.
    EXPECT_TRUE(bench.put(path, interface("b", "b")).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(change(3, "a", 2), change(3, "a", 1), change(1, "b", 2)));
    // What is refused further on leaves the device as it was.
    strike(bench, {kHandler, switchsim::FaultKind::refuse, "", 1, 2, "full", 0, 1, 2});
    EXPECT_EQ(bench.put(path, interface("a", "a")).status(), kInternal);
    EXPECT_EQ(boundTo("a"), 0u);
    EXPECT_EQ(boundTo("b"), 2u);
    bench.sent();
    EXPECT_EQ(bench.remove(kInterfaces).status(), 273);
    EXPECT_EQ(bench.remove(path + "/ingress-acl-sets").status(), 273);
    EXPECT_THAT(bench.sent(), IsEmpty());
    EXPECT_TRUE(bench.remove(path).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(change(3, "b", 1), change(3, "b", 2))); // each once
    EXPECT_TRUE(bench.remove(kSets + "/acl-set=b,ACL_IPV4").ok());
}

} // namespace
} // namespace test
