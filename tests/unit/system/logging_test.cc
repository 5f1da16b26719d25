// Remote log hosts: the lines that the syslog plug-in is told, and the mode that forbids them.
#include "system/u_openconfig-system.h"
#include "tests/unit/interfaces/cells.h"
#include "toolkit/toolkit.h"

namespace test {
namespace {

using namespace tk;
using switchsim::FaultKind;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kHosts = "openconfig-system:system/logging/remote-servers";

std::string line(const std::string &word, const std::string &value)
{
    return R"(ui_fe_plugin_config_send {"plugin":"ZQ_SYSLOG","entries":[{"op":")" + word +
        R"(","key":"logging host","value":")" + value + "\"}]}";
}
std::string set(const std::string &value)
{
    return line("SET", value);
}
std::string drop(const std::string &value)
{
    return line("DELETE", value);
}
const std::string kAskNext =
    R"(ui_fe_plugin_config_send {"plugin":"ZQ_SYSLOG","entries":[{"op":"GET_NEXT","key":"logging host","value":"","count":1}]})";

std::string port(int number)
{
    return R"({"remote-port":)" + std::to_string(number) + "}";
}
const std::string kNoPort = R"({"host":"10.0.0.1"})", kSourced = R"({"source-address":"10.0.0.9"})",
                  kBoth = R"({"source-address":"10.0.0.8","remote-port":515})";
const std::string kAt514 = "10.0.0.1 udp-port 514", kAt515 = "10.0.0.1 udp-port 515", kBare = "10.0.0.1";

class LogHost : public Cells { };
TEST_P(LogHost, Sends)
{
    check(kHosts + "/remote-server=10.0.0.1/config");
}
const Cell kCells[] = {
    {"a_changed_port_is_a_removal_and_an_addition",
     apply,
     merge,
     port(514),
     port(515),
     {drop(kAt514), set(kAt515)}},
    {"two_edited_leaves_remove_twice",
     apply,
     merge,
     kSourced,
     kBoth,
     {drop(kBare), drop(kBare), set(kAt515)}},
    {"a_port_that_goes", apply, merge, port(514), kNoPort, {drop(kAt514), drop(kAt514), set(kBare)}},
    {"told_again_without_a_difference", apply, merge, port(514), port(514), {set(kAt514)}},
    {"replacement", apply, replace, port(514), port(515), {set(kAt515)}},
    {"creation", apply, create, kAbsent, port(514), {set(kAt514)}},
    {"creation_without_a_port", apply, create, kAbsent, kNoPort, {set(kBare)}},
    {"deletion", apply, del, port(514), kAbsent, {drop(kAt514)}},
    {"load_sends_nothing", apply, load, kAbsent, port(514)},
    {"validate_sends_nothing", validate, create, kAbsent, port(514)},
    {"commit_sends_nothing", commit, merge, port(514), port(515)},
    {"rollback_of_a_merge", rollback, merge, port(514), port(515), {drop(kAt515)}},
    {"rollback_of_a_creation", rollback, create, kAbsent, port(514), {drop(kAt514)}},
    {"rollback_of_a_deletion", rollback, del, port(514), kAbsent, {set(kAt514)}},
    {"rollback_of_a_load", rollback, load, kAbsent, port(514)},
};
INSTANTIATE_TEST_SUITE_P(Table, LogHost, testing::ValuesIn(kCells), CaseName());

TEST(LogHostValue, SpellsIpv6AndCutsWhatDoesNotFit)
{
    const std::string longName = std::string(60, 'a') + "." + std::string(20, 'b');
    const struct {
        std::string host, config, value;
    } cases[] = {
        {"2001%3Adb8%3A%3A1", "{}", "ipv6 2001:db8::1"},
        {"2001%3Adb8%3A%3A1", port(514), "ipv6 2001:db8::1 udp-port 514"},
        {"log.example.net", port(65535), "log.example.net udp-port 65535"},
        {longName, port(514), longName.substr(0, 63)},
    };
    SwitchBench bench;
    for (const auto &c : cases) {
        bench.call(apply, create, kHosts + "/remote-server=" + c.host + "/config", std::nullopt, c.config);
        EXPECT_THAT(bench.sent(), ElementsAre(set(c.value)));
    }
}

TEST(LogHostAnswer, OnlyItsAbsenceFailsAndOnlyInApply)
{
    const std::string path = kHosts + "/remote-server=10.0.0.1/config";
    SwitchBench bench;
    bench.device().addFault(faultOf("ui_fe_plugin_config_send", FaultKind::null));
    EXPECT_EQ(bench.call(apply, create, path, std::nullopt, port(514)).status, 4);
    EXPECT_EQ(bench.call(apply, merge, path, port(514), port(515)).status, 4);
    EXPECT_EQ(bench.call(rollback, create, path, std::nullopt, port(514)).status, 0);
    EXPECT_EQ(bench.call(rollback, del, path, port(514), std::nullopt).status, 0);
    bench.device().clearFaults();
    bench.device().addFault(faultOf("ui_fe_plugin_config_send", FaultKind::refuse, "Error: no"));
    EXPECT_EQ(bench.call(apply, create, path, std::nullopt, port(514)).status, 0);
}

std::string server(const std::string &host, int number)
{
    return R"({"host":")" + host + R"(","config":{"host":")" + host + R"(","remote-port":)" +
        std::to_string(number) + "}}";
}
Outcome putHosts(SwitchBench &bench, const std::string &list)
{
    return bench.put(kHosts, R"({"openconfig-system:remote-servers":{"remote-server":[)" + list + "]}}");
}
switchsim::Json linesOf(SwitchBench &bench)
{
    switchsim::Json values = switchsim::Json::array();
    const switchsim::Json plugins = bench.device().show("plugins");
    for (const auto &one : plugins.at("ZQ_SYSLOG"))
        values.push_back(one.at("value"));
    return values;
}

TEST(LogHosts, AReplacementRemovesAllAndTellsThoseThatStayAgain)
{
    SwitchBench bench;
    EXPECT_TRUE(putHosts(bench, server("10.0.0.1", 514) + "," + server("10.0.0.2", 514)).ok());
    bench.sent();
    EXPECT_TRUE(putHosts(bench, server("10.0.0.2", 514) + "," + server("10.0.0.3", 515)).ok());
    EXPECT_THAT(bench.sent(),
                ElementsAre(drop(kAt514), kAskNext, drop("10.0.0.2 udp-port 514"), kAskNext,
                            set("10.0.0.3 udp-port 515"), set("10.0.0.2 udp-port 514")));
    EXPECT_EQ(linesOf(bench), (switchsim::Json{"10.0.0.3 udp-port 515", "10.0.0.2 udp-port 514"}));
}

TEST(LogHosts, RemovingAllEndsWhateverTheDeviceDoes)
{
    SwitchBench bench;
    EXPECT_TRUE(putHosts(bench, server("10.0.0.1", 514)).ok());
    bench.sent();
    const auto strike = [&](FaultKind kind, unsigned after, unsigned count) {
        auto fault = faultOf("ui_fe_plugin_config_send", kind, "Error: busy");
        fault.after = after;
        fault.count = count;
        bench.device().clearFaults();
        bench.device().addFault(fault);
        EXPECT_EQ(process_logging_remote_servers_delete_all_edit(), 0);
        return bench.sent();
    };
    EXPECT_THAT(strike(FaultKind::null, 0, 0), ElementsAre(kAskNext));
    EXPECT_THAT(strike(FaultKind::refuse, 0, 0), ElementsAre(kAskNext)); // an answer without entries
    EXPECT_THAT(strike(FaultKind::null, 1, 0), ElementsAre(kAskNext, drop(kAt514)));
    // A host that the device does not let go is not asked for again and again.
    EXPECT_THAT(strike(FaultKind::refuse, 1, 1), ElementsAre(kAskNext, drop(kAt514), kAskNext));
    EXPECT_THAT(strike(FaultKind::null, 9, 0), ElementsAre(kAskNext, drop(kAt514), kAskNext));
}

TEST(LogHosts, CommonCriteriaForbidsAllButLoad)
{
    SwitchBench bench;
    bench.device().setValue("fips-cc-status", 1);
    const std::string one = kHosts + "/remote-server=10.0.0.1/config", hosts = R"({"remote-server":[]})";
    for (const EditPhase phase : {validate, apply, commit, rollback}) {
        EXPECT_EQ(bench.call(phase, create, one, std::nullopt, port(514)).status, 273);
        EXPECT_EQ(bench.call(phase, merge, one, port(514), port(515)).status, 273);
        EXPECT_EQ(bench.call(phase, del, one, port(514), std::nullopt).status, 273);
        EXPECT_EQ(bench.call(phase, replace, kHosts, hosts, hosts).status, 273);
        EXPECT_EQ(bench.call(phase, load, one, std::nullopt, port(514)).status, 0);
        EXPECT_EQ(bench.call(phase, load, kHosts, std::nullopt, hosts).status, 0);
    }
    // The client sees no words of the gate's own.
    EXPECT_THAT(bench
                    .patch(kHosts,
                           R"({"openconfig-system:remote-servers":{"remote-server":[)" +
                               server("10.0.0.1", 514) + "]}}")
                    .refusals,
                ElementsAre(Refusal{
                    273, "operation-not-supported",
                    "/openconfig-system:system/logging/remote-servers/remote-server[host='10.0.0.1']/config",
                    statusInfo(273).text}));
    EXPECT_THAT(bench.sent(), IsEmpty());
}

TEST(SyslogVocabulary, IsExportedInTheDaemonsOrder)
{
    EXPECT_STREQ(config_key_name[0], "no logging on");
    EXPECT_STREQ(config_key_name[3], "logging host");
    EXPECT_STREQ(config_key_name[12], "logging-rate-limit");
    EXPECT_EQ(facility_list_size, std::size(facility_code));
    EXPECT_STREQ(facility_code[15], "cron");
    EXPECT_STREQ(facility_code[23], "local7");
}

} // namespace
} // namespace test
