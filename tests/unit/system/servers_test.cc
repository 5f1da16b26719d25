// AAA servers: the two tables, what passes from a server's config to its RADIUS config, deletions passed
// down.
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/system/plugin_request.h"

namespace test {
namespace {

const std::string kGroups = "openconfig-system:system/aaa/server-groups",
                  kTacacsGroup = kGroups + "/server-group=tacacs-default-group",
                  kRadiusGroup = kGroups + "/server-group=radius-default-group",
                  kTacacsPath = kTacacsGroup + "/servers/server=10.0.0.1/tacacs/config",
                  kRadiusPath = kRadiusGroup + "/servers/server=10.0.0.1/radius/config",
                  kPluginCall = "ui_fe_plugin_config_send", kRadiusCall = "ui_radius_config_apply",
                  kHost = "10.0.0.1", kNone = "{}";

std::string tacacs(const std::string &word, const std::string &key, const std::string &value,
                   const std::string &sub = "")
{
    return plugin("TACACS", word, "tacacs-server " + key, value, sub);
}

const std::string kThree = R"({"lyn-openconfig-aaa-aug:retransmit-attempts":3})",
                  kSetThree = tacacs("SET", "retransmit", "3"),
                  kDropThree = tacacs("DELETE", "retransmit", "3");
const std::vector<Cell> kGroupCells = {
    created("", kThree, {kSetThree}),
    merged("", kNone, kThree, {kSetThree}),
    replaced("replacement without the leaf", kThree, kNone),
    deleted("", kThree, {kDropThree}),
    in(rollback, created("", kThree, {kDropThree})),
    in(rollback, deleted("", kThree, {kSetThree})),
    under(noAnswer(kPluginCall), created("no answer", kThree, {kSetThree}, 4)),
    under(refusal(kPluginCall, "Error: no"), created("any words", kThree, {kSetThree}, 4)),
    under(refusal(kPluginCall), created("no words", kThree, {kSetThree})),
};

TEST(GroupConfig, DoesExactlyThis)
{
    SwitchBench bench;
    check(bench, kTacacsGroup + "/config", kGroupCells);
    EXPECT_EQ(bench.device().journal().readAfter(0, 1000).back().argument, 1);
    for (const EditPhase phase : {validate, commit})
        check(bench, kTacacsGroup + "/config", {in(phase, created("quiet", kThree))});
}

TEST(GroupConfigEdit, OnlyTwoNamesSelectATable)
{
    SwitchBench bench;
    const auto post = [&](const std::string &name) {
        return bench.post(kGroups,
                          R"({"openconfig-system:server-group":[{"name":")" + name +
                              R"(","config":{"name":")" + name +
                              R"(","lyn-openconfig-aaa-aug:retransmit-attempts":3}}]})");
    };
    const Outcome other = post("my-group");
    EXPECT_EQ(other.status(), 261);
    EXPECT_EQ(other.message(), "valid server group names are radius-default-group and tacacs-default-group");
    EXPECT_TRUE(post("radius-default-group").ok());
    EXPECT_THAT(bench.sent(), IsEmpty()); // the RADIUS table has no such setting
    EXPECT_TRUE(post("tacacs-default-group").ok());
    EXPECT_THAT(bench.sent(), ElementsAre(kSetThree));
}

// TACACS+

const Pattern subs{
    R"({"key":"auth-port","value":"$"},{"key":"$","value":""},{"key":"key","value":"<$ bytes>"})"};
const Pattern setHost{tacacs("SET", "host", kHost, subs("$", "$", "$"))};
Cell withPurpose(const std::string &word)
{
    return replaced(word, kNone, R"({"port":49,"lyn-openconfig-aaa-aug:purpose":")" + word + "\"}",
                    {setHost("49", word, 0)});
}
const std::string kPorted = R"({"port":4949,"secret-key":"sesame"})",
                  kSetHost = setHost("4949", "default", 6), kDropHost = tacacs("DELETE", "host", kHost);
const std::vector<Cell> kTacacsCells = {
    loud(created("", kPorted, {kSetHost})),
    loud(merged("the default port lets the secret through", kNone, R"({"secret-key":"sesame"})",
                {setHost("49", "default", 6)})),
    loud(created("a long secret is cut", R"({"secret-key":")" + std::string(40, 's') + "\"}",
                 {setHost("49", "default", 30)})),
    withPurpose("accounting-only"),
    withPurpose("authorization-only"),
    withPurpose("authentication-only"),
    deleted("deletion has no sub-entries", kPorted, {kDropHost}),
    loud(in(rollback, created("", kPorted, {tacacs("DELETE", "host", kHost, subs("4949", "default", 6))}))),
    in(rollback, deleted("", kPorted, {tacacs("SET", "host", kHost)})),
    under(noAnswer(kPluginCall), created("no answer", kPorted, {kSetHost}, 4)),
};

TEST(Tacacs, DoesExactlyThis)
{
    SwitchBench bench;
    check(bench, kTacacsPath, kTacacsCells);
    check(bench, kTacacsPath, {loaded("", kPorted), in(validate, created("", kPorted))});
    check(bench, kTacacsGroup + "/servers/server=2001%3Adb8%3A%3A1/tacacs/config",
          {loud(created("IPv6", kPorted,
                        {tacacs("SET", "host ipv6", "2001:db8::1", subs("4949", "default", 6))}))});
    // Common criteria forbid it unless they are relaxed.
    bench.device().setValue("fips-cc-admin-state", 1);
    check(bench, kTacacsPath,
          {in(validate, merged("", kNone, kPorted, {}, 273)),
           in(validate, replaced("", kNone, kPorted, {}, 273)), in(validate, created("", kPorted, {}, 273)),
           in(validate, deleted("", kPorted)), in(validate, loaded("", kPorted))});
    bench.device().setValue("fips-cc-allow-aaa-server-any", 1);
    check(bench, kTacacsPath, {in(validate, created("relaxed", kPorted))});
}

// RADIUS

std::string radius(const std::string &operation, const std::string &server,
                   const std::string &retransmit = "")
{
    return kRadiusCall + R"( {"operation":)" + operation +
        (retransmit.empty() ? "" : R"(,"retransmit":)" + retransmit) + R"(,"servers":[{)" + server + "}]}";
}
const std::string kV4 = R"("ipv4_address":"10.0.0.1")", kInGroup = R"("server_group":"radius-default-group")",
                  kBothPurposes = R"("authentication_only":1,"accounting_only":1)",
                  kEnd = "," + kBothPurposes + "," + kInGroup, kPlain = radius("1", kV4 + kEnd);
const std::string kFull = R"({"auth-port":1812,"acct-port":1813,"secret-key":"sesame","retransmit-attempts":5,
    "lyn-openconfig-aaa-aug:dot1x":true,"lyn-openconfig-aaa-aug:mac-auth":true,"lyn-openconfig-aaa-aug:no-login":true,
    "lyn-openconfig-aaa-aug:web-auth":true,"lyn-openconfig-aaa-aug:port-only":true,"lyn-openconfig-aaa-aug:priority":200})";
const std::string kFullSent = kV4 + R"(,"auth_port":1812,"acct_port":1813,)" + kBothPurposes +
    R"(,"dot1x":1,"mac_auth":1,"no_login":1,"web_auth":1,"port_only":1,"key_encryption":255,"secret_key":"<6 bytes>",)" +
    kInGroup + R"(,"retransmit":5,"priority":200)";
const std::string kSetFull = radius("1", kFullSent, "5");
const Pattern aug{R"({"lyn-openconfig-aaa-aug:$":$})"};
const std::vector<Cell> kRadiusCells = {
    created("", kFull, {kSetFull}),
    merged("merge sends the whole", kNone, kFull, {kSetFull}),
    merged("a removed leaf is no longer told", aug("dot1x", "true"), kNone, {kPlain}),
    replaced("false", kNone, aug("dot1x", "false"), {kPlain}),
    replaced("accounting", kNone, aug("purpose", "\"accounting-only\""),
             {radius("1", kV4 + R"(,"accounting_only":1,)" + kInGroup)}),
    replaced("authentication", kNone, aug("purpose", "\"authentication-only\""),
             {radius("1", kV4 + R"(,"authentication_only":1,)" + kInGroup)}),
    replaced("another purpose", kNone, aug("purpose", "\"authorization-only\""), {kPlain}),
    deleted("", kFull, {radius("3", kFullSent, "5")}),
    loaded("load sends too", kNone, {kPlain}),
    in(rollback, created("rollback of a creation sends it again", kFull, {kSetFull})),
    in(rollback, deleted("rollback of a deletion has no value", kFull, {radius("3", kV4 + kEnd)})),
    in(validate, created("", kFull)),
    in(commit, created("", kFull)),
    under(noAnswer(kRadiusCall), created("no answer", kNone, {kPlain}, 4)),
    under(noAnswer(kRadiusCall), loud(in(rollback, created("no answer", kNone, {kPlain})))),
    under(refusal(kRadiusCall, "no"), created("any answer is a success", kNone, {kPlain})),
};

TEST(Radius, DoesExactlyThis)
{
    SwitchBench bench;
    check(bench, kRadiusPath, kRadiusCells);
    // The length of an IPv6 address is told in apply only.
    const std::string address = R"("ipv6_address":"2001:db8::1")" + kEnd;
    check(bench, kRadiusGroup + "/servers/server=2001%3Adb8%3A%3A1/radius/config",
          {created("IPv6", kNone, {radius("1", R"("ipv6_length":16,)" + address)}),
           in(rollback, created("IPv6", kNone, {radius("1", address)}))});
}

// Name and timeout on their way

std::string server(const std::string &address, const std::string &name, int timeout, const std::string &more)
{
    return R"({"address":")" + address + R"(","config":{"address":")" + address + R"(","name":")" + name +
        R"(","timeout":)" + std::to_string(timeout) + "}" + more + "}";
}
const std::string kWithRadius = R"(,"radius":{"config":{"auth-port":1812}})",
                  kWithTacacs = R"(,"tacacs":{"config":{"port":49}})",
                  kOne = server("10.0.0.1", "one", 5, kWithRadius),
                  kTwo = server("10.0.0.2", "two", 6, kWithRadius),
                  kGone = radius("3", kV4 + R"(,"auth_port":1812)" + kEnd);
std::string named(const std::string &address, const std::string &name, int timeout,
                  const std::string &operation = "1")
{
    return radius(operation,
                  R"("ipv4_address":")" + address + R"(","auth_port":1812)" + kEnd + R"(,"server_name":")" +
                      name + R"(","timeout":)" + std::to_string(timeout));
}
Outcome putServers(SwitchBench &bench, const std::string &list)
{
    return bench.put(kRadiusGroup,
                     R"({"openconfig-system:server-group":[{"name":"radius-default-group","config":)"
                     R"({"name":"radius-default-group"},"servers":{"server":[)" +
                         list + "]}}]}");
}

TEST(RadiusName, ReachesTheRequestOfItsOwnServer)
{
    SwitchBench bench;
    EXPECT_TRUE(putServers(bench, kOne + "," + kTwo).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(named("10.0.0.1", "one", 5), named("10.0.0.2", "two", 6)));
    // A change of the name alone tells the RADIUS config again.
    const std::string second = kRadiusGroup + "/servers/server=10.0.0.2";
    EXPECT_TRUE(bench.put(second + "/config/name", R"({"openconfig-system:name":"deux"})").ok());
    EXPECT_THAT(bench.sent(), ElementsAre(named("10.0.0.2", "deux", 6)));
}

TEST(RadiusName, IsUsedOnceAndWaitsForTheNextRequest)
{
    SwitchBench bench;
    // A server without RADIUS leaves its name behind.
    EXPECT_TRUE(putServers(bench, server("10.0.0.1", "one", 5, "")).ok());
    const auto put = [&](const std::string &port) {
        return bench.put(kRadiusPath, R"({"openconfig-system:config":{"auth-port":)" + port + "}}").ok();
    };
    EXPECT_TRUE(put("1812"));
    EXPECT_TRUE(put("1645"));
    EXPECT_THAT(bench.sent(),
                ElementsAre(named("10.0.0.1", "one", 5), radius("1", kV4 + R"(,"auth_port":1645)" + kEnd)));
}

TEST(RadiusName, IsNotTakenUpAgainByARollback)
{
    SwitchBench bench;
    strike(bench, noAnswer(kPluginCall));
    EXPECT_FALSE(putServers(bench, kOne + "," + server("10.0.0.2", "two", 6, kWithTacacs)).ok());
    // What the second server left was used up by the rollback of the first one's request.
    check(bench, kRadiusPath, {created("afterwards", kNone, {kPlain})});
}

// Deletions

TEST(ServerDeletion, IsPassedDownAndAsksAgain)
{
    SwitchBench bench;
    EXPECT_TRUE(putServers(bench, server("10.0.0.1", "one", 5, kWithTacacs + kWithRadius)).ok());
    bench.sent();
    EXPECT_TRUE(bench.remove(kRadiusGroup + "/servers/server=10.0.0.1").ok());
    // radius/config and radius, tacacs/config and tacacs, then the server, with what its config left.
    EXPECT_THAT(bench.sent(),
                ElementsAre(kGone, kGone, kDropHost, kDropHost, kDropHost, named("10.0.0.1", "one", 5, "3")));
    EXPECT_EQ(bench.device().show("aaa").at("radius-servers"), switchsim::Json::object());
}

TEST(ServerDeletion, OfAListReachesTheFirstServerOnly)
{
    SwitchBench bench;
    const std::string two = R"({"server":[)" + kOne + "," + kTwo + "]}";
    check(bench, kRadiusGroup,
          {deleted("group", R"({"name":"radius-default-group","servers":)" + two + "}", {kGone})});
    check(bench, kRadiusGroup + "/servers",
          {deleted("servers", two, {kGone}), in(validate, deleted("", two)), in(commit, deleted("", two)),
           in(rollback, deleted("", two)),
           under(noAnswer(kRadiusCall), deleted("no answer", two, {kGone}, 4))});
}

} // namespace
} // namespace test
