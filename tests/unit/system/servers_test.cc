// AAA servers: the two tables, what passes from a server's config to its RADIUS config, deletions passed
// down.
#include "tests/unit/interfaces/cells.h"
#include "toolkit/toolkit.h"

namespace test {
namespace {

using namespace tk;
using switchsim::FaultKind;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kGroups = "openconfig-system:system/aaa/server-groups";
const std::string kTacacsGroup = kGroups + "/server-group=tacacs-default-group";
const std::string kRadiusGroup = kGroups + "/server-group=radius-default-group";

std::string tacacs(const std::string &word, const std::string &key, const std::string &value,
                   const std::string &sub = "")
{
    return R"(ui_fe_plugin_config_send {"plugin":"TACACS","entries":[{"op":")" + word +
        R"(","key":"tacacs-server )" + key + R"(","value":")" + value + "\"" +
        (sub.empty() ? "" : R"(,"sub":[)" + sub + "]") + "}]}";
}

// The group's config

class GroupConfig : public Cells { };
TEST_P(GroupConfig, Sends)
{
    check(kTacacsGroup + "/config");
}
const std::string kThree = R"({"lyn-openconfig-aaa-aug:retransmit-attempts":3})";
const Cell kGroupCells[] = {
    {"creation", apply, create, kAbsent, kThree, {tacacs("SET", "retransmit", "3")}},
    {"merge", apply, merge, "{}", kThree, {tacacs("SET", "retransmit", "3")}},
    {"replacement_without_the_leaf", apply, replace, kThree, "{}"},
    {"deletion", apply, del, kThree, kAbsent, {tacacs("DELETE", "retransmit", "3")}},
    {"load", apply, load, kAbsent, kThree},
    {"rollback_of_a_creation", rollback, create, kAbsent, kThree, {tacacs("DELETE", "retransmit", "3")}},
    {"rollback_of_a_deletion", rollback, del, kThree, kAbsent, {tacacs("SET", "retransmit", "3")}},
    {"validate", validate, create, kAbsent, kThree},
};
INSTANTIATE_TEST_SUITE_P(Table, GroupConfig, testing::ValuesIn(kGroupCells), CaseName());

TEST(GroupConfigEdit, AsksWithItsOwnFlagAndFailsOnAnyWords)
{
    SwitchBench bench;
    const auto status = [&](FaultKind kind, const std::string &text) {
        bench.device().clearFaults();
        bench.device().addFault(faultOf("ui_fe_plugin_config_send", kind, text));
        return bench.call(apply, create, kTacacsGroup + "/config", std::nullopt, kThree).status;
    };
    EXPECT_EQ(status(FaultKind::null, ""), 4);
    EXPECT_EQ(status(FaultKind::refuse, "Error: no"), 4);
    EXPECT_EQ(status(FaultKind::refuse, ""), 0);
    EXPECT_EQ(bench.device().journal().readAfter(0, 1000).back().argument, 1);
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
    EXPECT_THAT(bench.sent(), ElementsAre(tacacs("SET", "retransmit", "3")));
}

// TACACS+

std::string secretOf(std::size_t length)
{
    return R"({"key":"key","value":"<)" + std::to_string(length) + R"( bytes>"})";
}
std::string subs(const std::string &port, const std::string &purpose, std::size_t secret)
{
    return R"({"key":"auth-port","value":")" + port + R"("},{"key":")" + purpose + R"(","value":""},)" +
        secretOf(secret);
}

class Tacacs : public Cells { };
TEST_P(Tacacs, Sends)
{
    check(kTacacsGroup + "/servers/server=10.0.0.1/tacacs/config");
}
const std::string kHost = "10.0.0.1";
const std::string kSecret = R"({"secret-key":"sesame"})", kPorted = R"({"port":4949,"secret-key":"sesame"})";
std::string purpose(const std::string &word)
{
    return R"({"port":49,"lyn-openconfig-aaa-aug:purpose":")" + word + "\"}";
}
const Cell kTacacsCells[] = {
    {"creation", apply, create, kAbsent, kPorted, {tacacs("SET", "host", kHost, subs("4949", "default", 6))}},
    {"the_default_port_lets_the_secret_through",
     apply,
     merge,
     "{}",
     kSecret,
     {tacacs("SET", "host", kHost, subs("49", "default", 6))}},
    {"a_long_secret_is_cut",
     apply,
     create,
     kAbsent,
     R"({"secret-key":")" + std::string(40, 's') + "\"}",
     {tacacs("SET", "host", kHost, subs("49", "default", 30))}},
    {"accounting",
     apply,
     replace,
     "{}",
     purpose("accounting-only"),
     {tacacs("SET", "host", kHost, subs("49", "accounting-only", 0))}},
    {"authorization",
     apply,
     replace,
     "{}",
     purpose("authorization-only"),
     {tacacs("SET", "host", kHost, subs("49", "authorization-only", 0))}},
    {"authentication",
     apply,
     replace,
     "{}",
     purpose("authentication-only"),
     {tacacs("SET", "host", kHost, subs("49", "authentication-only", 0))}},
    {"everything",
     apply,
     replace,
     "{}",
     purpose("default"),
     {tacacs("SET", "host", kHost, subs("49", "default", 0))}},
    {"deletion_has_no_sub_entries", apply, del, kPorted, kAbsent, {tacacs("DELETE", "host", kHost)}},
    {"load", apply, load, kAbsent, kPorted},
    {"validate", validate, create, kAbsent, kPorted},
    {"rollback_of_a_creation",
     rollback,
     create,
     kAbsent,
     kPorted,
     {tacacs("DELETE", "host", kHost, subs("4949", "default", 6))}},
    {"rollback_of_a_deletion", rollback, del, kPorted, kAbsent, {tacacs("SET", "host", kHost)}},
};
INSTANTIATE_TEST_SUITE_P(Table, Tacacs, testing::ValuesIn(kTacacsCells), CaseName());

TEST(TacacsEdit, NamesIpv6ServersByAnotherKeyAndFailsWithoutAnAnswer)
{
    SwitchBench bench;
    const std::string path = kTacacsGroup + "/servers/server=2001%3Adb8%3A%3A1/tacacs/config";
    EXPECT_EQ(bench.call(apply, create, path, std::nullopt, kPorted).status, 0);
    EXPECT_THAT(bench.sent(),
                ElementsAre(tacacs("SET", "host ipv6", "2001:db8::1", subs("4949", "default", 6))));
    bench.device().addFault(faultOf("ui_fe_plugin_config_send", FaultKind::null));
    EXPECT_EQ(bench.call(apply, create, path, std::nullopt, kPorted).status, 4);
    EXPECT_EQ(bench.call(rollback, create, path, std::nullopt, kPorted).status, 0);
}

TEST(TacacsEdit, CommonCriteriaForbidsItUnlessRelaxed)
{
    SwitchBench bench;
    const std::string path = kTacacsGroup + "/servers/server=10.0.0.1/tacacs/config";
    bench.device().setValue("fips-cc-admin-state", 1);
    for (const EditOp op : {merge, replace, create}) {
        const Callback refused = bench.call(
            validate, op, path, op == create ? std::nullopt : std::optional<std::string>("{}"), kPorted);
        EXPECT_EQ(refused.status, 273);
        EXPECT_EQ(refused.records.at(0).text, "");
    }
    EXPECT_EQ(bench.call(validate, del, path, kPorted, std::nullopt).status, 0);
    EXPECT_EQ(bench.call(validate, load, path, std::nullopt, kPorted).status, 0);
    bench.device().setValue("fips-cc-allow-aaa-server-any", 1);
    EXPECT_EQ(bench.call(validate, create, path, std::nullopt, kPorted).status, 0);
}

// RADIUS

std::string radius(const std::string &operation, const std::string &server,
                   const std::string &retransmit = "")
{
    return R"(ui_radius_config_apply {"operation":)" + operation +
        (retransmit.empty() ? "" : R"(,"retransmit":)" + retransmit) + R"(,"servers":[{)" + server + "}]}";
}
const std::string kV4 = R"("ipv4_address":"10.0.0.1")";
const std::string kInGroup = R"("server_group":"radius-default-group")";
const std::string kBothPurposes = R"("authentication_only":1,"accounting_only":1)";
const std::string kPlain = kV4 + "," + kBothPurposes + "," + kInGroup;

class Radius : public Cells { };
TEST_P(Radius, Sends)
{
    check(kRadiusGroup + "/servers/server=10.0.0.1/radius/config");
}
const std::string kFull = R"({"auth-port":1812,"acct-port":1813,"secret-key":"sesame","retransmit-attempts":5,
    "lyn-openconfig-aaa-aug:dot1x":true,"lyn-openconfig-aaa-aug:mac-auth":true,"lyn-openconfig-aaa-aug:no-login":true,
    "lyn-openconfig-aaa-aug:web-auth":true,"lyn-openconfig-aaa-aug:port-only":true,"lyn-openconfig-aaa-aug:priority":200})";
const std::string kFullSent = kV4 + R"(,"auth_port":1812,"acct_port":1813,)" + kBothPurposes +
    R"(,"dot1x":1,"mac_auth":1,"no_login":1,"web_auth":1,"port_only":1,"key_encryption":255,"secret_key":"<6 bytes>",)" +
    kInGroup + R"(,"retransmit":5,"priority":200)";
std::string aug(const std::string &leaf, const std::string &value)
{
    return R"({"lyn-openconfig-aaa-aug:)" + leaf + "\":" + value + "}";
}
const Cell kRadiusCells[] = {
    {"creation", apply, create, kAbsent, kFull, {radius("1", kFullSent, "5")}},
    {"merge_sends_the_whole", apply, merge, "{}", kFull, {radius("1", kFullSent, "5")}},
    {"merge_without_a_difference", apply, merge, "{}", "{}", {radius("1", kPlain)}},
    {"a_removed_leaf_is_no_longer_told", apply, merge, aug("dot1x", "true"), "{}", {radius("1", kPlain)}},
    {"false", apply, replace, "{}", aug("dot1x", "false"), {radius("1", kPlain)}},
    {"accounting",
     apply,
     replace,
     "{}",
     aug("purpose", "\"accounting-only\""),
     {radius("1", kV4 + R"(,"accounting_only":1,)" + kInGroup)}},
    {"authentication",
     apply,
     replace,
     "{}",
     aug("purpose", "\"authentication-only\""),
     {radius("1", kV4 + R"(,"authentication_only":1,)" + kInGroup)}},
    {"another_purpose",
     apply,
     replace,
     "{}",
     aug("purpose", "\"authorization-only\""),
     {radius("1", kPlain)}},
    {"deletion", apply, del, kFull, kAbsent, {radius("3", kFullSent, "5")}},
    {"load_sends_too", apply, load, kAbsent, "{}", {radius("1", kPlain)}},
    {"rollback_of_a_creation_sends_it_again",
     rollback,
     create,
     kAbsent,
     kFull,
     {radius("1", kFullSent, "5")}},
    {"rollback_of_a_deletion_has_no_value", rollback, del, kFull, kAbsent, {radius("3", kPlain)}},
    {"validate", validate, create, kAbsent, kFull},
    {"commit", commit, create, kAbsent, kFull},
};
INSTANTIATE_TEST_SUITE_P(Table, Radius, testing::ValuesIn(kRadiusCells), CaseName());

TEST(RadiusEdit, TellsTheLengthOfAnIpv6AddressInApplyOnly)
{
    SwitchBench bench;
    const std::string path = kRadiusGroup + "/servers/server=2001%3Adb8%3A%3A1/radius/config";
    const std::string address = R"("ipv6_address":"2001:db8::1",)" + kBothPurposes + "," + kInGroup;
    bench.call(apply, create, path, std::nullopt, "{}");
    bench.call(rollback, create, path, std::nullopt, "{}");
    EXPECT_THAT(bench.sent(),
                ElementsAre(radius("1", R"("ipv6_length":16,)" + address), radius("1", address)));
    bench.device().addFault(faultOf("ui_radius_config_apply", FaultKind::null));
    EXPECT_EQ(bench.call(apply, create, path, std::nullopt, "{}").status, 4);
    EXPECT_EQ(bench.call(rollback, create, path, std::nullopt, "{}").status, 0);
    bench.device().clearFaults();
    bench.device().addFault(faultOf("ui_radius_config_apply", FaultKind::refuse, "Error: no"));
    EXPECT_EQ(bench.call(apply, create, path, std::nullopt, "{}").status, 0); // any answer is a success
}

// Name and timeout on their way

std::string server(const std::string &address, const std::string &name, int timeout, const std::string &more)
{
    return R"({"address":")" + address + R"(","config":{"address":")" + address + R"(","name":")" + name +
        R"(","timeout":)" + std::to_string(timeout) + "}" + more + "}";
}
const std::string kWithRadius = R"(,"radius":{"config":{"auth-port":1812}})",
                  kWithTacacs = R"(,"tacacs":{"config":{"port":49}})";
std::string named(const std::string &address, const std::string &name, int timeout,
                  const std::string &operation = "1")
{
    return radius(operation,
                  R"("ipv4_address":")" + address + R"(","auth_port":1812,)" + kBothPurposes + "," +
                      kInGroup + R"(,"server_name":")" + name + R"(","timeout":)" + std::to_string(timeout));
}
Outcome putServers(SwitchBench &bench, const std::string &list)
{
    return bench.put(
        kRadiusGroup,
        R"({"openconfig-system:server-group":[{"name":"radius-default-group","config":{"name":"radius-default-group"},"servers":{"server":[)" +
            list + "]}}]}");
}

TEST(RadiusName, ReachesTheRequestOfItsOwnServer)
{
    SwitchBench bench;
    EXPECT_TRUE(putServers(bench,
                           server("10.0.0.1", "one", 5, kWithRadius) + "," +
                               server("10.0.0.2", "two", 6, kWithRadius))
                    .ok());
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
    const std::string first = kRadiusGroup + "/servers/server=10.0.0.1/radius/config";
    const std::string body = R"({"openconfig-system:config":{"auth-port":1812}})";
    EXPECT_TRUE(bench.put(first, body).ok());
    EXPECT_TRUE(bench.put(first, R"({"openconfig-system:config":{"auth-port":1645}})").ok());
    EXPECT_THAT(bench.sent(),
                ElementsAre(named("10.0.0.1", "one", 5),
                            radius("1", kV4 + R"(,"auth_port":1645,)" + kBothPurposes + "," + kInGroup)));
}

TEST(RadiusName, IsNotTakenUpAgainByARollback)
{
    SwitchBench bench;
    bench.device().addFault(faultOf("ui_fe_plugin_config_send", FaultKind::null));
    EXPECT_FALSE(putServers(bench,
                            server("10.0.0.1", "one", 5, kWithRadius) + "," +
                                server("10.0.0.2", "two", 6, kWithTacacs))
                     .ok());
    bench.device().clearFaults();
    bench.sent();
    // What the second server left was used up by the rollback of the first one's request.
    bench.call(apply, create, kRadiusGroup + "/servers/server=10.0.0.1/radius/config", std::nullopt, "{}");
    EXPECT_THAT(bench.sent(), ElementsAre(radius("1", kPlain)));
}

// Deletions

TEST(ServerDeletion, IsPassedDownAndAsksAgain)
{
    SwitchBench bench;
    EXPECT_TRUE(putServers(bench, server("10.0.0.1", "one", 5, kWithTacacs + kWithRadius)).ok());
    bench.sent();
    EXPECT_TRUE(bench.remove(kRadiusGroup + "/servers/server=10.0.0.1").ok());
    const std::string gone = radius("3", kV4 + R"(,"auth_port":1812,)" + kBothPurposes + "," + kInGroup);
    const std::string dropped = tacacs("DELETE", "host", kHost);
    // radius/config and radius, tacacs/config and tacacs, then the server, with what its config left.
    EXPECT_THAT(bench.sent(),
                ElementsAre(gone, gone, dropped, dropped, dropped, named("10.0.0.1", "one", 5, "3")));
    EXPECT_EQ(bench.device().show("aaa").at("radius-servers"), switchsim::Json::object());
}

TEST(ServerDeletion, OfAListReachesTheFirstServerOnly)
{
    SwitchBench bench;
    const std::string two = R"({"server":[)" + server("10.0.0.1", "one", 5, kWithRadius) + "," +
        server("10.0.0.2", "two", 6, kWithRadius) + "]}";
    const std::string gone = radius("3", kV4 + R"(,"auth_port":1812,)" + kBothPurposes + "," + kInGroup);
    EXPECT_EQ(bench.call(apply, del, kRadiusGroup + "/servers", two, std::nullopt).status, 0);
    EXPECT_EQ(bench
                  .call(apply, del, kRadiusGroup, R"({"name":"radius-default-group","servers":)" + two + "}",
                        std::nullopt)
                  .status,
              0);
    EXPECT_THAT(bench.sent(), ElementsAre(gone, gone));
    for (const EditPhase phase : {validate, commit, rollback})
        EXPECT_EQ(bench.call(phase, del, kRadiusGroup + "/servers", two, std::nullopt).status, 0);
    EXPECT_THAT(bench.sent(), IsEmpty());
    bench.device().addFault(faultOf("ui_radius_config_apply", FaultKind::null));
    EXPECT_EQ(bench.call(apply, del, kRadiusGroup + "/servers", two, std::nullopt).status, 4);
}

} // namespace
} // namespace test
