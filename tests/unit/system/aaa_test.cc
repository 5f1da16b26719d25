// Methods, the admin user, local users, and the settings that the switch has beside the public model.
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/system/plugin_request.h"

namespace test {
namespace {

const std::string kAaa = "openconfig-system:system/aaa",
                  kAug = "lyn-openconfig-aaa-aug:", kPluginCall = "ui_fe_plugin_config_send",
                  kSettingCall = "ui_aaa_config_apply", kNone = "{}";

// A list of texts that a leaf-list has, in JSON and in a request.
std::string listOf(const std::string &leaf, const Texts &names)
{
    std::string list;
    for (const auto &name : names)
        list += (list.empty() ? "\"" : ",\"") + name + "\"";
    return "\"" + leaf + R"(":[)" + list + "]";
}
std::string methods(const Texts &names)
{
    return "{" + listOf("authentication-method", names) + "}";
}

// authentication-method

const std::string kA = methods({"a"}), kAb = methods({"a", "b"}), kMethods = kAaa + "/authentication/config",
                  kSetA = plugin("AAA", "SET", "authentication-method", " a"),
                  kSetAb = plugin("AAA", "SET", "authentication-method", " a b"),
                  kDropA = plugin("AAA", "DELETE", "authentication-method", " a"),
                  kDropAb = plugin("AAA", "DELETE", "authentication-method", " a b"),
                  kDropNone = plugin("AAA", "DELETE", "authentication-method", "");
const std::vector<Cell> kMethodCells = {
    merged("the list as it will be", kA, kAb, {kSetAb}),
    merged("one that goes", kAb, kA, {kSetA}),
    merged("the last that goes", kAb, kNone, {kDropAb}),
    merged("nothing", kA, kA),
    replaced("", kAb, kA, {kSetA}),
    replaced("replacement by nothing", kAb, kNone, {kDropAb}),
    replaced("replacement of nothing by nothing", kNone, kNone, {kDropNone}),
    created("", kAb, {kSetAb}),
    created("creation of nothing", kNone),
    deleted("deletion is refused", kA, {}, 4),
    in(rollback, merged("rollback of a merge sends what was", kA, kAb, {kSetA})),
    in(rollback, merged("rollback of a first method", kNone, kA, {kDropA})),
    in(rollback, merged("rollback of nothing", kA, kA)),
    in(rollback, replaced("", kAb, kA, {kSetAb})),
    in(rollback, replaced("rollback of a first replacement", kNone, kA, {kDropA})),
    in(rollback, created("", kA, {kDropA})),
    under(noAnswer(kPluginCall), created("no answer", kA, {kSetA}, 4)),
};

// authorization

const Pattern authorization{plugin("AAA", "$", "authorization-method", "$")};
const std::string kLong(60, 'x'),
    kAuthorized = R"({"authorization-method":["first","second"]})", kSetFirst = authorization("SET", "first");
const std::vector<Cell> kAuthorizationCells = {
    merged("only the first method counts", kNone, kAuthorized, {kSetFirst}),
    merged("without the leaf", kAuthorized, kNone),
    replaced("at most 31 characters", kNone, R"({"authorization-method":[")" + kLong + "\"]}",
             {authorization("SET", kLong.substr(0, 31))}),
    created("", kAuthorized, {kSetFirst}),
    loaded("load sends too", kAuthorized, {kSetFirst}),
    deleted("a deletion has no new value", kAuthorized),
    in(rollback, merged("rollback sends it again", kNone, kAuthorized, {kSetFirst})),
    in(rollback, replaced("rollback sends it again", kNone, kAuthorized, {kSetFirst})),
    in(rollback, created("rollback sends it again", kAuthorized, {kSetFirst})),
    in(rollback, loaded("rollback sends it again", kAuthorized, {kSetFirst})),
    under(noAnswer(kPluginCall), created("no answer", kAuthorized, {kSetFirst}, 4)),
};

TEST(Methods, DoExactlyThis)
{
    SwitchBench bench;
    check(bench, kMethods, kMethodCells, Quiet{kA, kAb});
    check(bench, kAaa + "/authorization/config", kAuthorizationCells, Quiet{kAuthorized, kAuthorized});
}

TEST(Methods, DeletionIsRefusedBeforeAnythingIsDestroyed)
{
    SwitchBench bench;
    EXPECT_TRUE(bench
                    .patch(kAaa, R"({"openconfig-system:aaa":{"authentication":{
        "config":{"authentication-method":["openconfig-aaa-types:LOCAL","my-list"]},
        "users":{"user":[{"username":"eve","config":{"username":"eve","password":"pw"}}]}}}})")
                    .ok());
    EXPECT_THAT(bench.sent(), Contains(plugin("AAA", "SET", "authentication-method", " LOCAL my-list")));
    EXPECT_EQ(bench.remove(kAaa + "/authentication").status(), 4);
    EXPECT_THAT(bench.sent(), IsEmpty());
}

TEST(AuthorizationEdit, ADeletionTakesMethodAndFirstEventAway)
{
    SwitchBench bench;
    const std::string body = R"({"openconfig-system:authorization":{"config":{"authorization-method":["m"]},
        "events":{"event":[
            {"event-type":"openconfig-aaa-types:AAA_AUTHORIZATION_EVENT_COMMAND",
             "config":{"event-type":"openconfig-aaa-types:AAA_AUTHORIZATION_EVENT_COMMAND"}},
            {"event-type":"openconfig-aaa-types:AAA_AUTHORIZATION_EVENT_CONFIG",
             "config":{"event-type":"openconfig-aaa-types:AAA_AUTHORIZATION_EVENT_CONFIG"}}]}}})";
    const auto event = [](const std::string &word, const std::string &name) {
        return plugin("AAA", word, "authorization-event-type", "AAA_AUTHORIZATION_EVENT_" + name);
    };
    EXPECT_TRUE(bench.put(kAaa + "/authorization", body).ok());
    EXPECT_THAT(bench.sent(),
                ElementsAre(authorization("SET", "m"), event("SET", "COMMAND"), event("SET", "CONFIG")));
    EXPECT_TRUE(bench.remove(kAaa + "/authorization").ok());
    EXPECT_THAT(bench.sent(),
                ElementsAre(event("DELETE", "COMMAND"), authorization("DELETE", "m"),
                            event("DELETE", "COMMAND"))); // the container and its parent both ask
}

// The admin user and local users

const Pattern setAdmin{plugin("USERDB", "SET", "username", "admin-user",
                              R"({"key":"$","value":"<$ bytes>"},{"key":"privilege","value":"0"})")};
const std::string kClear = R"({"admin-password":"sesame"})", kHashed = R"({"admin-password-hashed":"$1$x"})",
                  kTwo = R"({"admin-password":"sesame","admin-password-hashed":"$1$x"})",
                  kSetClear = setAdmin("password", 6), kSetHashed = setAdmin("1", 4),
                  kDropAdmin = plugin("USERDB", "DELETE", "username", "admin-user"),
                  kNotBoth = "admin-password and admin-password-hashed cannot be configured at sametime";
const std::vector<Cell> kAdminCells = {
    merged("a password", kNone, kClear, {kSetClear}),
    merged("both", kNone, kTwo, {}, 261, kNotBoth),
    merged("one that goes", kClear, kNone, {kDropAdmin}),
    merged("from clear to hashed", kClear, kHashed, {kDropAdmin, kSetHashed}),
    merged("nothing", kClear, kClear),
    replaced("the same kind", R"({"admin-password":"poppy"})", kClear, {kSetClear}),
    replaced("of nothing", kNone, kHashed, {kSetHashed}),
    replaced("the other kind removes", kClear, kHashed, {kDropAdmin}),
    replaced("the other kind removes too", kHashed, kClear, {kDropAdmin}),
    replaced("both by one", kTwo, kClear, {kSetClear}),
    replaced("by nothing", kHashed, kNone, {kDropAdmin}),
    replaced("nothing by nothing", kNone, kNone),
    replaced("by both", kNone, kTwo, {}, 261, kNotBoth),
    created("", kClear, {kSetClear}),
    created("hashed", kHashed, {kSetHashed}),
    created("both", kTwo, {}, 261, kNotBoth),
    created("nothing", kNone),
    under(noAnswer(kPluginCall), created("no answer", kClear, {kSetClear}, 4)),
    under(noAnswer(kPluginCall), merged("no answer", kClear, kNone, {kDropAdmin}, 4)),
};

const std::string kEve = R"({"username":"eve","password":"sesame","lyn-openconfig-aaa-aug:privilege":5})",
                  kDropEve = plugin("USERDB", "DELETE", "username", "eve"),
                  kSetEve =
                      plugin("USERDB", "SET", "username", "eve",
                             R"({"key":"password","value":"<6 bytes>"},{"key":"privilege","value":"5"})");
const std::vector<Cell> kUserCells = {
    created("", kEve, {kSetEve}),
    merged("", R"({"username":"eve"})", kEve, {kSetEve}),
    loaded("load sends too", kEve, {kSetEve}),
    deleted("", kEve, {kDropEve}),
    in(rollback, created("rollback of a creation sets again", kEve, {kSetEve})),
    in(rollback, deleted("rollback of a deletion deletes again", kEve, {kDropEve})),
    in(validate, created("", kEve)),
    in(commit, created("", kEve)),
    under(noAnswer(kPluginCall), created("no answer", kEve, {kSetEve}, 4)),
    under(refusal(kPluginCall, "Error: too weak"),
          created("its words", kEve, {kSetEve}, 4, "Error: too weak")),
};

TEST(Users, DoExactlyThis)
{
    SwitchBench bench;
    const std::string admin = kAaa + "/authentication/admin-user";
    check(bench, admin + "/config", kAdminCells, Quiet{kClear, kTwo});
    strike(bench, noAnswer(kPluginCall));
    EXPECT_EQ(bench.call(apply, del, admin, R"({"config":)" + kClear + "}", kAbsent).status, 0);
    EXPECT_THAT(bench.sent(), ElementsAre(kDropAdmin));
    check(bench, kAaa + "/authentication/users/user=eve/config", kUserCells);
}

// Secrets

TEST(Secrets, StandInNoLogJournalOrError)
{
    const std::string secret = "open-sesame", hash = "$5$hashhash",
                      serverPath =
                          "/server-groups/server-group=tacacs-default-group/servers/server=10.0.0.1/";
    std::string shown;
    SwitchBench bench;
    const LogCapture log(9);
    const std::string key = R"({"config":{"secret-key":")" + secret + R"("}})",
                      server = R"({"address":"10.0.0.1","config":{"name":"n"},"radius":)" + key +
        R"(,"tacacs":)" + key + "}";
    EXPECT_TRUE(
        bench
            .put(kAaa,
                 R"({"openconfig-system:aaa":{"authentication":{
            "admin-user":{"config":{"admin-password-hashed":")" +
                     hash +
                     R"("}},"users":{"user":[{"username":"eve","config":{"username":"eve","password":")" +
                     secret + R"("}}]}},"server-groups":{"server-group":[{"name":"tacacs-default-group",)" +
                     R"("config":{"name":"tacacs-default-group"},"servers":{"server":[)" + server + "]}}]}}}")
            .ok());
    bench.device().addFault(noAnswer(kPluginCall));
    bench.device().addFault(noAnswer("ui_radius_config_apply"));
    for (const auto &[path, leaf] :
         {std::pair<std::string, std::string>{"/authentication/admin-user/config/", "admin-password"},
          {"/authentication/users/user=eve/config/", "password"},
          {serverPath + "radius/config/", "secret-key"},
          {serverPath + "tacacs/config/", "secret-key"}})
        for (const std::string &value : {secret + "2", secret + std::string(300, 'x')}) {
            const Outcome outcome =
                bench.put(kAaa + path + leaf, R"({"openconfig-system:)" + leaf + R"(":")" + value + "\"}");
            EXPECT_FALSE(outcome.ok()) << path;
            shown += outcome.message();
        }
    for (const std::string &request : bench.sent())
        shown += request;
    shown += bench.device().show().dump() + log.errors() + log.debug();
    ASSERT_THAT(shown, HasSubstr("*****"));
    EXPECT_EQ(shown.find(secret), shown.npos);
    EXPECT_EQ(shown.find(hash), shown.npos);
}

// dot1x and Change of Authorization

const Pattern setting{kSettingCall + R"( {"operation":$})"};
const Pattern ignored{setting(R"($,"coa_ignore_$":1)")};
const std::string kRadius = R"({"default":"radius"})", kNobody = R"({"default":"none"})",
                  kAddRadius = setting(R"(1,"dot1x_radius":1)"), kOn = R"({"enable":true})",
                  kOff = R"({"enable":false})", kAddCoa = setting(R"(1,"coa_enable":1)"),
                  kDropCoa = setting(R"(3,"coa_enable":1)"),
                  kFlip = R"({"flip-port":true,"dm-request":false})",
                  kAll = R"({"modify-acl":true,"reauth-host":true,"flip-port":true,"dm-request":true,)"
                         R"("disable-port":false})";
const std::vector<Cell> kDot1xCells = {
    merged("", kNobody, kRadius, {kAddRadius}),
    merged("another word", kNone, R"({"default":"ldap"})", {setting("1")}),
    merged("a leaf that goes gives its current text", kRadius, kNone, {setting(R"(3,"dot1x_radius":1)")}),
    replaced("", kNobody, kRadius, {kAddRadius}),
    replaced("replacement by nothing", kNobody, kNone),
    created("", kNobody, {setting(R"(1,"dot1x_none":1)")}),
    deleted("", kNobody, {setting(R"(3,"dot1x_none":1)")}),
    deleted("deletion of nothing", kNone, {setting("3")}),
    under(noAnswer(kSettingCall), created("no answer", kRadius, {kAddRadius}, 4)),
};
const std::vector<Cell> kCoaCells = {
    merged("on", kOff, kOn, {kAddCoa}),
    merged("a false is a removal", kOn, kOff, {kDropCoa}),
    merged("a leaf that goes", kOn, kNone, {kDropCoa}),
    replaced("replacement by false", kOn, kOff, {kDropCoa}),
    created("", kOn, {kAddCoa}),
    created("creation of nothing", kNone),
    in(validate, deleted("", kOn, {}, 273)),
    deleted("", kOn, {}, 273),
    under(noAnswer(kSettingCall), created("no answer", kOn, {kAddCoa}, 4)),
};
const std::vector<Cell> kIgnoreCells = {
    replaced("each leaf by itself in the device's order", kNone, kAll,
             {ignored("3", "disable_port"), ignored("1", "dm_request"), ignored("1", "flip_port"),
              ignored("1", "reauth_host"), ignored("1", "modify_acl")}),
    merged("unchanged ones too", R"({"flip-port":true})", kFlip,
           {ignored("3", "dm_request"), ignored("1", "flip_port")}),
    deleted("", kFlip, {ignored("3", "dm_request"), ignored("3", "flip_port")}),
    in(rollback, replaced("", kNone, kAll)),
    under(noAnswer(kSettingCall, 1),
          created("no answer", kAll, {ignored("3", "disable_port"), ignored("1", "dm_request")}, 4)),
};

TEST(Settings, DoExactlyThis)
{
    SwitchBench bench;
    const std::string coa = kAaa + "/authorization/" + kAug + "coa";
    check(bench, kAaa + "/authentication/" + kAug + "dot1x", kDot1xCells, Quiet{kNobody, kRadius});
    check(bench, coa, kCoaCells);
    check(bench, coa + "/ignore", kIgnoreCells);
}

// Method lists

TEST(MethodLists, FollowTheTable)
{
    struct List {
        std::string container, leaf, field;
        int opcode;
        bool hasPrivilege;
    };
    SwitchBench bench;
    const std::string call = "ui_fe_aaa_set", start = "default-start-stop";
    for (const List &list :
         {List{"authentication/" + kAug + "login", "default", "login_methods", 1, false},
          List{"authorization/" + kAug + "commands", "default", "authorization_methods", 9, true},
          List{"authorization/" + kAug + "exec", "default", "authorization_methods", 10, false},
          List{"accounting/" + kAug + "commands", start, "accounting_methods", 6, true},
          List{"accounting/" + kAug + "exec", start, "accounting_methods", 7, false}}) {
        SCOPED_TRACE(list.container);
        const auto value = [&](const Texts &names) {
            return (list.hasPrivilege ? R"({"privilege":4,)" : "{") + listOf(list.leaf, names) + "}";
        };
        const auto request = [&](const std::string &names, int deletes = 0) {
            return call + R"( {"opcode":)" + std::to_string(list.opcode) + R"(,"delete_flag":)" +
                std::to_string(deletes) + ",\"" + list.field + R"(":")" + names + "\"" +
                (list.hasPrivilege ? R"(,"privilege":4)" : "") + "}";
        };
        const std::string one = value({"a"}), two = value({"a", "b"}), x30(30, 'x'), y30(30, 'y'),
                          emptied = list.hasPrivilege ? R"({"privilege":4})" : kNone;
        check(bench, kAaa + "/" + list.container,
              {merged("the list as it will be", one, two, {request("a b")}),
               replaced("", two, one, {request("a")}), created("", two, {request("a b")}),
               deleted("", two, {request("a b", 1)}),
               in(validate, merged("a merge that empties", one, emptied, {}, 4)),
               in(validate, replaced("a replacement by nothing", one, kNone, {}, 4)),
               in(validate, created("a creation lacks a current value", kNone)),
               replaced("the text ends after 49 characters", one, value({x30, y30, "z"}),
                        {request(x30 + " " + y30.substr(0, 18))}),
               // The device's words stay in the log.
               under(refusal(call, "Error: no"), replaced("refused", one, two, {request("a b")}, 4)),
               under(noAnswer(call), replaced("no answer", one, two, {request("a b")}, 4))},
              Quiet{one, two});
    }
    check(bench, kAaa + "/authorization/" + kAug + "commands",
          {in(validate, replaced("no privilege", kNone, R"({"default":["a"]})", {}, 4))});
}

} // namespace
} // namespace test
