// Methods, the admin user, local users, and the settings that the switch has beside the public model.
#include "tests/unit/interfaces/cells.h"
#include "toolkit/toolkit.h"

#include <cstring>

namespace test {
namespace {

using namespace tk;
using switchsim::FaultKind;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const std::string kAaa = "openconfig-system:system/aaa";
const std::string kAug = "lyn-openconfig-aaa-aug:";

std::string plugin(const std::string &tag, const std::string &word, const std::string &key,
                   const std::string &value, const std::string &sub = "")
{
    return R"(ui_fe_plugin_config_send {"plugin":")" + tag + R"(","entries":[{"op":")" + word +
        R"(","key":")" + key + R"(","value":")" + value + "\"" +
        (sub.empty() ? "" : R"(,"sub":[)" + sub + "]") + "}]}";
}

// authentication-method

std::string method(const std::string &word, const std::string &value)
{
    return plugin("AAA", word, "authentication-method", value);
}
std::string methods(const std::vector<std::string> &names)
{
    std::string list;
    for (const auto &name : names)
        list += (list.empty() ? "\"" : ",\"") + name + "\"";
    return R"({"authentication-method":[)" + list + "]}";
}

class Authentication : public Cells { };
TEST_P(Authentication, Sends)
{
    check(kAaa + "/authentication/config");
}
const std::string kA = methods({"a"}), kAb = methods({"a", "b"});
const Cell kMethodCells[] = {
    {"merge_sends_the_list_as_it_will_be", apply, merge, kA, kAb, {method("SET", " a b")}},
    {"merge_of_a_first_method", apply, merge, "{}", kA, {method("SET", " a")}},
    {"merge_that_takes_one_away", apply, merge, kAb, kA, {method("SET", " a")}},
    {"merge_that_takes_the_last_away", apply, merge, kAb, "{}", {method("DELETE", " a b")}},
    {"merge_of_nothing", apply, merge, kA, kA},
    {"replacement", apply, replace, kA, methods({"b"}), {method("SET", " b")}},
    {"replacement_by_nothing", apply, replace, kAb, "{}", {method("DELETE", " a b")}},
    {"replacement_of_nothing_by_nothing", apply, replace, "{}", "{}", {method("DELETE", "")}},
    {"creation", apply, create, kAbsent, kAb, {method("SET", " a b")}},
    {"creation_of_nothing", apply, create, kAbsent, "{}"},
    {"deletion_is_refused", apply, del, kA, kAbsent, {}, 4},
    {"load_sends_nothing", apply, load, kAbsent, kA},
    {"validate_sends_nothing", validate, merge, kA, kAb},
    {"commit_sends_nothing", commit, merge, kA, kAb},
    {"rollback_of_a_merge_sends_what_was", rollback, merge, kA, kAb, {method("SET", " a")}},
    {"rollback_of_a_first_method", rollback, merge, "{}", kA, {method("DELETE", " a")}},
    {"rollback_of_a_merge_of_nothing", rollback, merge, kA, kA},
    {"rollback_of_a_replacement", rollback, replace, kAb, kA, {method("SET", " a b")}},
    {"rollback_of_a_first_replacement", rollback, replace, "{}", kA, {method("DELETE", " a")}},
    {"rollback_of_a_creation", rollback, create, kAbsent, kA, {method("DELETE", " a")}},
    {"rollback_of_a_deletion", rollback, del, kA, kAbsent},
};
INSTANTIATE_TEST_SUITE_P(Table, Authentication, testing::ValuesIn(kMethodCells), CaseName());

TEST(AuthenticationEdit, ItsDeletionIsRefusedBeforeAnythingIsDestroyed)
{
    SwitchBench bench;
    EXPECT_TRUE(bench
                    .patch(kAaa, R"({"openconfig-system:aaa":{"authentication":{
        "config":{"authentication-method":["openconfig-aaa-types:LOCAL","my-list"]},
        "users":{"user":[{"username":"eve","config":{"username":"eve","password":"pw"}}]}}}})")
                    .ok());
    EXPECT_THAT(bench.sent(), testing::Contains(method("SET", " LOCAL my-list")));
    EXPECT_EQ(bench.remove(kAaa + "/authentication").status(), 4);
    EXPECT_EQ(bench.remove(kAaa + "/authentication/config").status(), 4);
    EXPECT_THAT(bench.sent(), IsEmpty());
}

// authorization

class Authorization : public Cells { };
TEST_P(Authorization, Sends)
{
    check(kAaa + "/authorization/config");
}
std::string authorization(const std::string &word, const std::string &value)
{
    return plugin("AAA", word, "authorization-method", value);
}
const std::string kLong(60, 'x');
const std::string kAuthorized = R"({"authorization-method":["first","second"]})";
const Cell kAuthorizationCells[] = {
    {"only_the_first_method_counts", apply, merge, "{}", kAuthorized, {authorization("SET", "first")}},
    {"at_most_31_characters",
     apply,
     replace,
     "{}",
     R"({"authorization-method":[")" + kLong + "\"]}",
     {authorization("SET", kLong.substr(0, 31))}},
    {"load_sends_too", apply, load, kAbsent, kAuthorized, {authorization("SET", "first")}},
    {"rollback_sends_it_again", rollback, create, kAbsent, kAuthorized, {authorization("SET", "first")}},
    {"without_the_leaf", apply, merge, kAuthorized, "{}"},
    {"a_deletion_has_no_new_value", apply, del, kAuthorized, kAbsent},
    {"validate_sends_nothing", validate, merge, "{}", kAuthorized},
};
INSTANTIATE_TEST_SUITE_P(Table, Authorization, testing::ValuesIn(kAuthorizationCells), CaseName());

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

TEST(AaaPlugin, NoAnswerFailsInApplyAndIsLoggedInRollback)
{
    SwitchBench bench;
    bench.device().addFault(faultOf("ui_fe_plugin_config_send", FaultKind::null));
    const std::pair<std::string, std::string> places[] = {
        {"/authentication/config", kA},
        {"/authorization/config", kAuthorized},
        {"/authorization/events/event=openconfig-aaa-types%3AAAA_AUTHORIZATION_EVENT_COMMAND/config",
         R"({"event-type":"openconfig-aaa-types:AAA_AUTHORIZATION_EVENT_COMMAND"})"},
        {"/authentication/users/user=eve/config", R"({"username":"eve"})"},
    };
    for (const auto &[path, config] : places) {
        EXPECT_EQ(bench.call(apply, create, kAaa + path, std::nullopt, config).status, 4) << path;
        EXPECT_EQ(bench.call(rollback, create, kAaa + path, std::nullopt, config).status, 0) << path;
    }
}

// The admin user and local users

class Admin : public Cells { };
TEST_P(Admin, Sends)
{
    check(kAaa + "/authentication/admin-user/config");
}
const std::string kClear = R"({"admin-password":"sesame"})", kHashed = R"({"admin-password-hashed":"$1$x"})",
                  kTwo = R"({"admin-password":"sesame","admin-password-hashed":"$1$x"})",
                  kOther = R"({"admin-password":"poppy!"})";
const std::string kPrivilege = R"({"key":"privilege","value":"0"})";
const std::string kSetClear = plugin("USERDB", "SET", "username", "admin-user",
                                     R"({"key":"password","value":"<6 bytes>"},)" + kPrivilege);
const std::string kSetHashed =
    plugin("USERDB", "SET", "username", "admin-user", R"({"key":"1","value":"<4 bytes>"},)" + kPrivilege);
const std::string kDropAdmin = plugin("USERDB", "DELETE", "username", "admin-user");
const std::string kNotBoth = "admin-password and admin-password-hashed cannot be configured at sametime";
const Cell kAdminCells[] = {
    {"merge_of_a_password", apply, merge, "{}", kClear, {kSetClear}},
    {"merge_of_a_hashed_one", apply, merge, "{}", kHashed, {kSetHashed}},
    {"merge_of_both", apply, merge, "{}", kTwo, {}, 261, kNotBoth},
    {"merge_that_removes_it", apply, merge, kClear, "{}", {kDropAdmin}},
    {"merge_from_clear_to_hashed", apply, merge, kClear, kHashed, {kDropAdmin, kSetHashed}},
    {"merge_of_nothing", apply, merge, kClear, kClear},
    {"replacement_of_the_same_kind", apply, replace, kClear, kOther, {kSetClear}},
    {"replacement_of_nothing", apply, replace, "{}", kHashed, {kSetHashed}},
    {"replacement_by_the_other_kind_removes", apply, replace, kClear, kHashed, {kDropAdmin}},
    {"replacement_by_the_other_kind_removes_too", apply, replace, kHashed, kClear, {kDropAdmin}},
    {"replacement_of_both_by_one", apply, replace, kTwo, kClear, {kSetClear}},
    {"replacement_by_nothing", apply, replace, kHashed, "{}", {kDropAdmin}},
    {"replacement_of_nothing_by_nothing", apply, replace, "{}", "{}"},
    {"replacement_by_both", apply, replace, "{}", kTwo, {}, 261, kNotBoth},
    {"creation", apply, create, kAbsent, kClear, {kSetClear}},
    {"creation_of_a_hashed_one", apply, create, kAbsent, kHashed, {kSetHashed}},
    {"creation_of_both", apply, create, kAbsent, kTwo, {}, 261, kNotBoth},
    {"creation_of_nothing", apply, create, kAbsent, "{}"},
    {"deletion", apply, del, kClear, kAbsent},
    {"load", apply, load, kAbsent, kClear},
    {"validate", validate, create, kAbsent, kTwo},
    {"rollback", rollback, create, kAbsent, kClear},
};
INSTANTIATE_TEST_SUITE_P(Table, Admin, testing::ValuesIn(kAdminCells), CaseName());

TEST(AdminEdit, NoAnswerFailsASettingButNotTheUsersRemoval)
{
    SwitchBench bench;
    bench.device().addFault(faultOf("ui_fe_plugin_config_send", FaultKind::null));
    const std::string admin = kAaa + "/authentication/admin-user";
    EXPECT_EQ(bench.call(apply, create, admin + "/config", std::nullopt, kClear).status, 4);
    EXPECT_EQ(bench.call(apply, merge, admin + "/config", kClear, "{}").status, 4);
    EXPECT_EQ(bench.call(apply, del, admin, R"({"config":)" + kClear + "}", std::nullopt).status, 0);
    EXPECT_THAT(bench.sent(), ElementsAre(kSetClear, kDropAdmin, kDropAdmin));
}

class User : public Cells { };
TEST_P(User, Sends)
{
    check(kAaa + "/authentication/users/user=eve/config");
}
std::string setUser(const std::string &second)
{
    return plugin("USERDB", "SET", "username", "eve", R"({"key":"password","value":"<6 bytes>"},)" + second);
}
const std::string kEve = R"({"username":"eve","password":"sesame","lyn-openconfig-aaa-aug:privilege":5})";
const std::string kFive = R"({"key":"privilege","value":"5"})";
const std::string kDropEve = plugin("USERDB", "DELETE", "username", "eve");
const Cell kUserCells[] = {
    {"creation", apply, create, kAbsent, kEve, {setUser(kFive)}},
    {"merge", apply, merge, R"({"username":"eve"})", kEve, {setUser(kFive)}},
    {"load_sends_too", apply, load, kAbsent, kEve, {setUser(kFive)}},
    {"deletion", apply, del, kEve, kAbsent, {kDropEve}},
    {"rollback_of_a_creation_sets_again", rollback, create, kAbsent, kEve, {setUser(kFive)}},
    {"rollback_of_a_deletion_deletes_again", rollback, del, kEve, kAbsent, {kDropEve}},
    {"validate_sends_nothing", validate, create, kAbsent, kEve},
    {"commit_sends_nothing", commit, create, kAbsent, kEve},
};
INSTANTIATE_TEST_SUITE_P(Table, User, testing::ValuesIn(kUserCells), CaseName());

TEST(UserEdit, ShowsTheDevicesWords)
{
    SwitchBench bench;
    bench.device().addFault(faultOf("ui_fe_plugin_config_send", FaultKind::refuse, "Error: too weak"));
    const std::string path = kAaa + "/authentication/users/user=eve";
    const Outcome outcome =
        bench.put(path, R"({"openconfig-system:user":[{"username":"eve","config":)" + kEve + "}]}");
    EXPECT_EQ(outcome.status(), 4);
    EXPECT_EQ(outcome.message(), "Error: too weak");
}

// Secrets

std::string *logged;
void keepLine(LogKind, const char *text)
{
    *logged += text;
}

TEST(Secrets, StandInNoLogJournalOrError)
{
    const std::string secret = "open-sesame", hash = "$5$hashhash";
    std::string log;
    logged = &log;
    setLogSink(keepLine);
    std::string shown;
    {
        SwitchBench bench;
        log_set_system_log_level(9);
        const std::string server =
            R"({"address":"10.0.0.1","config":{"name":"n"},"radius":{"config":{"secret-key":")" + secret +
            R"("}},"tacacs":{"config":{"secret-key":")" + secret + R"("}}})";
        const std::string all = R"({"openconfig-system:aaa":{"authentication":{
            "admin-user":{"config":{"admin-password-hashed":")" +
            hash + R"("}},"users":{"user":[{"username":"eve","config":{"username":"eve","password":")" +
            secret +
            R"("}}]}},"server-groups":{"server-group":[{"name":"tacacs-default-group","config":{"name":"tacacs-default-group"},"servers":{"server":[)" +
            server + "]}}]}}}";
        EXPECT_TRUE(bench.put(kAaa, all).ok());
        bench.device().addFault(faultOf("ui_fe_plugin_config_send", FaultKind::null));
        bench.device().addFault(faultOf("ui_radius_config_apply", FaultKind::null));
        const std::string leaves[][2] = {
            {"/authentication/admin-user/config/admin-password", "admin-password"},
            {"/authentication/users/user=eve/config/password", "password"},
            {"/server-groups/server-group=tacacs-default-group/servers/server=10.0.0.1/radius/config/"
             "secret-key",
             "secret-key"},
            {"/server-groups/server-group=tacacs-default-group/servers/server=10.0.0.1/tacacs/config/"
             "secret-key",
             "secret-key"},
        };
        for (const auto &[path, leaf] : leaves) {
            for (const std::string &value : {secret + "2", secret + std::string(300, 'x')}) {
                const Outcome outcome =
                    bench.put(kAaa + path, R"({"openconfig-system:)" + leaf + R"(":")" + value + "\"}");
                EXPECT_FALSE(outcome.ok()) << path;
                shown += outcome.message();
            }
        }
        for (const std::string &request : bench.sent())
            shown += request;
        shown += bench.device().show().dump();
    }
    setLogSink(nullptr);
    log_set_system_log_level(0);
    ASSERT_THAT(log, HasSubstr("*****"));
    for (const std::string &text : {log, shown}) {
        EXPECT_EQ(text.find(secret), text.npos);
        EXPECT_EQ(text.find(hash), text.npos);
    }
}

// dot1x and Change of Authorization

std::string setting(const std::string &fields)
{
    return R"(ui_aaa_config_apply {"operation":)" + fields + "}";
}
std::string byDefault(const std::string &name)
{
    return R"({"default":")" + name + "\"}";
}
class Dot1x : public Cells { };
TEST_P(Dot1x, Sends)
{
    check(kAaa + "/authentication/" + kAug + "dot1x");
}
const std::string kRadius = byDefault("radius"), kNone = byDefault("none");
const Cell kDot1xCells[] = {
    {"merge", apply, merge, kNone, kRadius, {setting(R"(1,"dot1x_radius":1)")}},
    {"merge_of_none", apply, merge, kRadius, kNone, {setting(R"(1,"dot1x_none":1)")}},
    {"merge_of_another_word", apply, merge, "{}", byDefault("ldap"), {setting("1")}},
    {"a_deleted_leaf_gives_its_current_text",
     apply,
     merge,
     kRadius,
     "{}",
     {setting(R"(3,"dot1x_radius":1)")}},
    {"replacement", apply, replace, kNone, kRadius, {setting(R"(1,"dot1x_radius":1)")}},
    {"replacement_by_nothing", apply, replace, kNone, "{}"},
    {"creation", apply, create, kAbsent, kNone, {setting(R"(1,"dot1x_none":1)")}},
    {"deletion", apply, del, kNone, kAbsent, {setting(R"(3,"dot1x_none":1)")}},
    {"deletion_of_nothing", apply, del, "{}", kAbsent, {setting("3")}},
    {"rollback", rollback, merge, kNone, kRadius},
    {"load", apply, load, kAbsent, kRadius},
};
INSTANTIATE_TEST_SUITE_P(Table, Dot1x, testing::ValuesIn(kDot1xCells), CaseName());

class Coa : public Cells { };
TEST_P(Coa, Sends)
{
    check(kAaa + "/authorization/" + kAug + "coa");
}
const std::string kOn = R"({"enable":true})", kOff = R"({"enable":false})";
const Cell kCoaCells[] = {
    {"on", apply, merge, kOff, kOn, {setting(R"(1,"coa_enable":1)")}},
    {"a_false_is_a_removal", apply, merge, kOn, kOff, {setting(R"(3,"coa_enable":1)")}},
    {"a_deleted_leaf", apply, merge, kOn, "{}", {setting(R"(3,"coa_enable":1)")}},
    {"replacement_by_false", apply, replace, kOn, kOff, {setting(R"(3,"coa_enable":1)")}},
    {"creation", apply, create, kAbsent, kOn, {setting(R"(1,"coa_enable":1)")}},
    {"creation_of_nothing", apply, create, kAbsent, "{}"},
    {"deletion_is_refused_in_validate", validate, del, kOn, kAbsent, {}, 273},
    {"deletion_is_refused_in_apply", apply, del, kOn, kAbsent, {}, 273},
    {"rollback", rollback, merge, kOff, kOn},
};
INSTANTIATE_TEST_SUITE_P(Table, Coa, testing::ValuesIn(kCoaCells), CaseName());

class CoaIgnore : public Cells { };
TEST_P(CoaIgnore, Sends)
{
    check(kAaa + "/authorization/" + kAug + "coa/ignore");
}
std::string ignored(const std::string &operation, const std::string &what)
{
    return setting(operation + R"(,"coa_ignore_)" + what + R"(":1)");
}
const std::string kAll =
    R"({"modify-acl":true,"reauth-host":true,"flip-port":true,"dm-request":true,"disable-port":false})";
const Cell kIgnoreCells[] = {
    {"each_leaf_by_itself_in_the_devices_order",
     apply,
     replace,
     "{}",
     kAll,
     {ignored("3", "disable_port"), ignored("1", "dm_request"), ignored("1", "flip_port"),
      ignored("1", "reauth_host"), ignored("1", "modify_acl")}},
    {"unchanged_ones_too",
     apply,
     merge,
     R"({"flip-port":true})",
     R"({"flip-port":true,"dm-request":false})",
     {ignored("3", "dm_request"), ignored("1", "flip_port")}},
    {"deletion",
     apply,
     del,
     R"({"flip-port":true,"dm-request":false})",
     kAbsent,
     {ignored("3", "dm_request"), ignored("3", "flip_port")}},
    {"rollback", rollback, replace, "{}", kAll},
};
INSTANTIATE_TEST_SUITE_P(Table, CoaIgnore, testing::ValuesIn(kIgnoreCells), CaseName());

TEST(CoaIgnoreEdit, StopsAtTheFirstSettingWithoutAnAnswer)
{
    SwitchBench bench;
    auto fault = faultOf("ui_aaa_config_apply", FaultKind::null);
    fault.after = 1;
    bench.device().addFault(fault);
    const std::string ignore = kAaa + "/authorization/" + kAug + "coa/ignore";
    EXPECT_EQ(bench.call(apply, create, ignore, std::nullopt, kAll).status, 4);
    EXPECT_THAT(bench.sent(), ElementsAre(ignored("3", "disable_port"), ignored("1", "dm_request")));
    EXPECT_EQ(bench.call(apply, create, kAaa + "/authorization/" + kAug + "coa", std::nullopt, kOn).status,
              4);
    EXPECT_EQ(
        bench.call(apply, create, kAaa + "/authentication/" + kAug + "dot1x", std::nullopt, kRadius).status,
        4);
}

// Method lists

struct List {
    std::string name, container, leaf, field;
    int opcode;
    bool hasPrivilege;
};
void PrintTo(const List &list, std::ostream *out)
{
    *out << list.name;
}
class MethodLists : public testing::TestWithParam<List> {
protected:
    std::string path() const { return kAaa + "/" + GetParam().container; }
    std::string listOf(const std::vector<std::string> &names, bool withPrivilege = true) const
    {
        std::string values;
        for (const auto &name : names)
            values += (values.empty() ? "\"" : ",\"") + name + "\"";
        std::string text = names.empty() ? "" : "\"" + GetParam().leaf + R"(":[)" + values + "]";
        if (GetParam().hasPrivilege && withPrivilege)
            text = R"("privilege":4)" + std::string(text.empty() ? "" : ",") + text;
        return "{" + text + "}";
    }
    std::string request(const std::string &methods, bool deletes = false) const
    {
        return R"(ui_fe_aaa_set {"opcode":)" + std::to_string(GetParam().opcode) + R"(,"delete_flag":)" +
            (deletes ? "1" : "0") +
            (methods.empty() ? "" : ",\"" + GetParam().field + R"(":")" + methods + "\"") +
            (GetParam().hasPrivilege ? R"(,"privilege":4)" : "") + "}";
    }
};

TEST_P(MethodLists, FollowTheTable)
{
    SwitchBench bench;
    const auto one = listOf({"a"}), two = listOf({"a", "b"});
    const Cell cells[] = {
        {"merge_sends_the_list_as_it_will_be", apply, merge, one, two, {request("a b")}},
        {"replacement", apply, replace, two, one, {request("a")}},
        {"creation", apply, create, kAbsent, two, {request("a b")}},
        {"deletion", apply, del, two, kAbsent, {request("a b", true)}},
        {"load", apply, load, kAbsent, one},
        {"rollback", rollback, merge, one, two},
        {"commit", commit, merge, one, two},
        {"validate", validate, merge, one, two},
        {"validate_of_a_merge_that_empties", validate, merge, one, listOf({}), {}, 4},
        {"validate_of_a_replacement_by_nothing", validate, replace, one, "{}", {}, 4},
        {"validate_of_a_creation_lacks_a_current_value", validate, create, kAbsent, "{}"},
        {"validate_of_a_deletion", validate, del, one, kAbsent},
        {"the_text_ends_after_49_characters",
         apply,
         replace,
         one,
         listOf({std::string(30, 'x'), std::string(30, 'y'), "z"}),
         {request(std::string(30, 'x') + " " + std::string(18, 'y'))}},
    };
    for (const Cell &c : cells) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(bench.call(c.phase, c.op, path(), c.before, c.after).status, c.status);
        EXPECT_EQ(bench.sent(), c.requests);
    }
    if (GetParam().hasPrivilege) {
        EXPECT_EQ(bench.call(validate, replace, path(), one, listOf({"a"}, false)).status, 4);
    }
    bench.device().addFault(faultOf("ui_fe_aaa_set", FaultKind::refuse, "Error: no"));
    const Callback refused = bench.call(apply, replace, path(), one, two);
    EXPECT_EQ(refused.status, 4);
    EXPECT_EQ(refused.records.at(0).text, ""); // the device's words stay in the log
    bench.device().clearFaults();
    bench.device().addFault(faultOf("ui_fe_aaa_set", FaultKind::null));
    EXPECT_EQ(bench.call(apply, replace, path(), one, two).status, 4);
}

const List kLists[] = {
    {"login", "authentication/lyn-openconfig-aaa-aug:login", "default", "login_methods", 1, false},
    {"authorized_commands", "authorization/lyn-openconfig-aaa-aug:commands", "default",
     "authorization_methods", 9, true},
    {"authorized_exec", "authorization/lyn-openconfig-aaa-aug:exec", "default", "authorization_methods", 10,
     false},
    {"accounted_commands", "accounting/lyn-openconfig-aaa-aug:commands", "default-start-stop",
     "accounting_methods", 6, true},
    {"accounted_exec", "accounting/lyn-openconfig-aaa-aug:exec", "default-start-stop", "accounting_methods",
     7, false},
};
INSTANTIATE_TEST_SUITE_P(Table, MethodLists, testing::ValuesIn(kLists), CaseName());

TEST(MethodListEdit, LosesItsEntriesOneByOneAndThenItself)
{
    SwitchBench bench;
    const std::string login = kAaa + "/authentication/" + kAug + "login";
    const auto sends = [](const std::string &flag, const std::string &list) {
        return R"(ui_fe_aaa_set {"opcode":1,"delete_flag":)" + flag + R"(,"login_methods":")" + list + "\"}";
    };
    EXPECT_TRUE(bench.put(login, R"({"lyn-openconfig-aaa-aug:login":{"default":["local","radius"]}})").ok());
    EXPECT_TRUE(bench.remove(login + "/default=local").ok());
    EXPECT_TRUE(bench.remove(login + "/default=radius").ok());
    EXPECT_THAT(bench.sent(),
                ElementsAre(sends("0", "local radius"), sends("0", "radius"), sends("1", "radius")));
}

} // namespace
} // namespace test
