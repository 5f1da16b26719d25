// Protected ports: a list of ports with one switch each.
#include "tests/unit/bundle/callback_test.h"

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;

const std::string kTop = "lyn-openconfig-protectedport:protectedport", kList = kTop + "/interfaces";
const std::string kEntry = kList + "/interface=ethernet%201%2F1%2F1", kConfig = kEntry + "/config";
const std::string kCall = "protected_port_config_apply";
const std::string kProtect = R"(protected_port_config_apply {"opcode":1,"port_name":"ethernet 1/1/1"})",
                  kUnprotect = R"(protected_port_config_apply {"opcode":3,"port_name":"ethernet 1/1/1"})";
const std::string kOn = R"({"protectedport":true})", kOff = R"({"protectedport":false})",
                  kNameAlone = R"({"name":"ethernet 1/1/1"})";
const std::optional<std::string> kAbsent;

// The lines that tell where a refusal happened, with the values of the node.
std::string place(const std::string &operation, const std::string &values)
{
    return "[u_lyn_oc_protectedport_config_edit] [n] cbtype [apply] editop [" + operation + "]" + values;
}

class ProtectedPortConfig : public CallbackTest { };

TEST_P(ProtectedPortConfig, DoesExactlyThis)
{
    EXPECT_EQ(perform(kConfig, GetParam()), GetParam().deed);
}

const Step kSteps[] = {
    {"merge_of_true", apply, merge, kOff, kOn, {{kProtect}}},
    {"merge_of_false", apply, merge, kOn, kOff, {{kUnprotect}}},
    {"merge_without_the_leaf_is_quiet", apply, merge, kOn, kNameAlone},
    {"create", apply, create, kAbsent, kOn, {{kProtect}}},
    {"create_of_false", apply, create, kAbsent, kOff, {{kUnprotect}}},
    {"create_without_the_leaf_is_quiet", apply, create, kAbsent, kNameAlone},
    {"delete_unprotects", apply, del, kOn, kAbsent, {{kUnprotect}}},
    {"delete_unprotects_whatever_was_set", apply, del, kNameAlone, kAbsent, {{kUnprotect}}},

    {"a_dead_device", apply, merge, kOff, kOn, failure(4, {kProtect}), noAnswer(kCall)},
    {"a_dead_device_at_a_delete", apply, del, kOn, kAbsent, failure(4, {kUnprotect}), noAnswer(kCall)},
    {"a_refusal_in_the_devices_words",
     apply,
     merge,
     kOff,
     kOn,
     {{kProtect},
      1042,
      {"1042 not this port"},
      place("merge", "\nnew\nconfig\n  protectedport true\n\ncur\nconfig\n  protectedport false\n")},
     refusal(kCall, "not this port")},
    {"a_refusal_without_words",
     apply,
     create,
     kAbsent,
     kOn,
     {{kProtect}, 1042, {"1042 "}, place("create", "\nnew\nconfig\n  protectedport true\n")},
     refusal(kCall, std::nullopt)},
    {"a_refused_delete",
     apply,
     del,
     kOn,
     kAbsent,
     {{kUnprotect}, 1042, {"1042 no"}, place("delete", "\ncur\nconfig\n  protectedport true\n")},
     refusal(kCall, "no")},
    {"other_codes_do_not_count", apply, merge, kOff, kOn, {{kProtect}}, refusal(kCall, "odd", 2)},
    {"what_the_daemon_itself_says_does_not_count",
     apply,
     merge,
     kOff,
     kOn,
     {{kProtect}},
     refusal(kCall, "odd", 0, 2)},
};
INSTANTIATE_TEST_SUITE_P(Table, ProtectedPortConfig,
                         testing::ValuesIn(andNothingElse({std::begin(kSteps), std::end(kSteps)}, kOff, kOn)),
                         CaseName());

std::string entry(const std::string &config, const std::string &name = "ethernet 1/1/1")
{
    return R"({"lyn-openconfig-protectedport:interface":[{"name":")" + name + R"(","config":)" + config +
        "}]}";
}

std::string running(const std::string &config)
{
    return R"({"lyn-openconfig-protectedport:protectedport":{"interfaces":{"interface":[{"name":"ethernet 1/1/1","config":)" +
        config + "}]}}}";
}

TEST(ProtectedPortEdit, WhatGoesIsUnprotected)
{
    const struct {
        const char *what;
        std::string path;
    } cases[] = {{"the leaf", kConfig + "/protectedport"}, {"the entry", kEntry}, {"all", kTop}};
    for (const auto &c : cases) {
        SwitchBench bench(running(kOn));
        EXPECT_TRUE(bench.remove(c.path).ok()) << c.what;
        EXPECT_THAT(bench.sent(), ElementsAre(kUnprotect)) << c.what;
    }
}

TEST(ProtectedPortEdit, TheDevicesWordsReachTheClient)
{
    SwitchBench bench;
    const Outcome refused = bench.post(kList, entry(kOn, "ethernet 9/1/1"));
    EXPECT_THAT(
        refused.refusals,
        ElementsAre(Refusal{
            1042, "operation-failed",
            "/lyn-openconfig-protectedport:protectedport/interfaces/interface[name='ethernet 9/1/1']/config",
            "Error: port ethernet 9/1/1 does not exist\n"}));
    EXPECT_EQ(bench.running(), R"({"ietf-restconf:data":{}})");
    EXPECT_EQ(bench.device().show("protected-port"), switchsim::Json::array());
}

} // namespace
} // namespace test
