// Protected ports: a list of ports with one switch each.
#include "tests/unit/bundle/callback_test.h"

namespace test {
namespace {

const std::string kTop = "lyn-openconfig-protectedport:protectedport",
                  kEntry = kTop + "/interfaces/interface=ethernet%201%2F1%2F1", kConfig = kEntry + "/config",
                  kCall = "protected_port_config_apply",
                  kProtect = kCall + R"( {"opcode":1,"port_name":"ethernet 1/1/1"})",
                  kUnprotect = kCall + R"( {"opcode":3,"port_name":"ethernet 1/1/1"})",
                  kOn = R"({"protectedport":true})", kOff = R"({"protectedport":false})",
                  kNameAlone = R"({"name":"ethernet 1/1/1"})";

// The lines that tell where a refusal happened, with the values of the node.
const Pattern place{"[u_lyn_oc_protectedport_config_edit] [n] cbtype [apply] editop [$]$"};

const std::vector<Cell> kCells = {
    merged("merge of true", kOff, kOn, {kProtect}),
    merged("merge of false", kOn, kOff, {kUnprotect}),
    merged("merge without the leaf", kOn, kNameAlone),
    created("", kOn, {kProtect}),
    created("create of false", kOff, {kUnprotect}),
    deleted("delete unprotects whatever was set", kNameAlone, {kUnprotect}),
    under(noAnswer(kCall), merged("a dead device", kOff, kOn, {kProtect}, 4)),
    under(noAnswer(kCall), deleted("a dead device at a delete", kOn, {kUnprotect}, 4)),
    under(refusal(kCall, "not this port"),
          merged(
              "a refusal", kOff, kOn, {kProtect}, 1042, "not this port",
              place("merge", "\nnew\nconfig\n  protectedport true\n\ncur\nconfig\n  protectedport false\n"))),
    under(refusal(kCall),
          created("a refusal without words", kOn, {kProtect}, 1042, "",
                  place("create", "\nnew\nconfig\n  protectedport true\n"))),
    under(refusal(kCall, "no"),
          deleted("a refused delete", kOn, {kUnprotect}, 1042, "no",
                  place("delete", "\ncur\nconfig\n  protectedport true\n"))),
    under(refusal(kCall, "odd", 2), merged("another code does not count", kOff, kOn, {kProtect})),
    under(refusal(kCall, "odd", 0, 2), merged("nor what the daemon itself says", kOff, kOn, {kProtect})),
};

TEST(ProtectedPort, DoesExactlyThis)
{
    check(kConfig, kCells, Quiet{kOff, kOn});
}

TEST(ProtectedPortEdit, WhatGoesIsUnprotected)
{
    for (const std::string &path : {kConfig + "/protectedport", kEntry, kTop}) {
        SwitchBench bench(R"({"lyn-openconfig-protectedport:protectedport":{"interfaces":{"interface":[)"
                          R"({"name":"ethernet 1/1/1","config":)" +
                          kOn + "}]}}}");
        EXPECT_TRUE(bench.remove(path).ok()) << path;
        EXPECT_THAT(bench.sent(), ElementsAre(kUnprotect)) << path;
    }
}

} // namespace
} // namespace test
