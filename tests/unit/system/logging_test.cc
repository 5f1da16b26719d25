// Remote log hosts: the lines that the syslog plug-in is told, and the mode that forbids them.
#include "system/u_openconfig-system.h"
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/system/plugin_request.h"

namespace test {
namespace {

const std::string kHosts = "openconfig-system:system/logging/remote-servers",
                  kHost = kHosts + "/remote-server=10.0.0.1/config", kCall = "ui_fe_plugin_config_send";

const Pattern set{plugin("ZQ_SYSLOG", "SET", "logging host", "$")};
const Pattern drop{plugin("ZQ_SYSLOG", "DELETE", "logging host", "$")};
const std::string kAskNext = kCall +
    R"( {"plugin":"ZQ_SYSLOG","entries":[{"op":"GET_NEXT","key":"logging host","value":"","count":1}]})",
                  k514 = R"({"remote-port":514})", k515 = R"({"remote-port":515})",
                  kNoPort = R"({"host":"10.0.0.1"})", kSourced = R"({"source-address":"10.0.0.9"})",
                  kBoth = R"({"source-address":"10.0.0.8","remote-port":515})",
                  kAt514 = "10.0.0.1 udp-port 514", kAt515 = "10.0.0.1 udp-port 515", kBare = "10.0.0.1";

const std::vector<Cell> kCells = {
    merged("a changed port is a removal and an addition", k514, k515, {drop(kAt514), set(kAt515)}),
    merged("two edited leaves remove twice", kSourced, kBoth, {drop(kBare), drop(kBare), set(kAt515)}),
    merged("a port that goes", k514, kNoPort, {drop(kAt514), drop(kAt514), set(kBare)}),
    merged("told again without a difference", k514, k514, {set(kAt514)}),
    replaced("", k514, k515, {set(kAt515)}),
    created("", k514, {set(kAt514)}),
    deleted("", k514, {drop(kAt514)}),
    in(rollback, merged("", k514, k515, {drop(kAt515)})),
    in(rollback, replaced("", k514, k515, {drop(kAt515)})),
    in(rollback, created("", k514, {drop(kAt514)})),
    in(rollback, deleted("", k514, {set(kAt514)})),
    under(noAnswer(kCall), created("no answer", k514, {set(kAt514)}, 4)),
    under(noAnswer(kCall), merged("no answer", k514, k515, {drop(kAt514)}, 4)),
    under(refusal(kCall, "no"), created("a refusal", k514, {set(kAt514)})),
};

TEST(LogHost, DoesExactlyThis)
{
    SwitchBench bench;
    check(bench, kHost, kCells, Quiet{k514, k515});
    const std::string v6 = kHosts + "/remote-server=2001%3Adb8%3A%3A1/config",
                      longName = std::string(60, 'a') + "." + std::string(20, 'b');
    check(bench, v6, {created("IPv6", k514, {set("ipv6 2001:db8::1 udp-port 514")})});
    check(bench, kHosts + "/remote-server=" + longName + "/config",
          {created("what does not fit is cut", k514, {set(longName.substr(0, 63))})});
}

TEST(LogHost, NoAnswerInRollbackIsNoFailure)
{
    SwitchBench bench;
    strike(bench, noAnswer(kCall));
    EXPECT_EQ(bench.call(rollback, create, kHost, kAbsent, k514).status, 0);
    EXPECT_EQ(bench.call(rollback, del, kHost, k514, kAbsent).status, 0);
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

TEST(LogHosts, AReplacementRemovesAllAndTellsThoseThatStayAgain)
{
    SwitchBench bench;
    EXPECT_TRUE(putHosts(bench, server("10.0.0.1", 514) + "," + server("10.0.0.2", 514)).ok());
    bench.sent();
    EXPECT_TRUE(putHosts(bench, server("10.0.0.2", 514) + "," + server("10.0.0.3", 515)).ok());
    EXPECT_THAT(bench.sent(),
                ElementsAre(drop(kAt514), kAskNext, drop("10.0.0.2 udp-port 514"), kAskNext,
                            set("10.0.0.3 udp-port 515"), set("10.0.0.2 udp-port 514")));
}

TEST(LogHosts, RemovingAllEndsWhateverTheDeviceDoes)
{
    SwitchBench bench;
    EXPECT_TRUE(putHosts(bench, server("10.0.0.1", 514)).ok());
    const auto removeUnder = [&](switchsim::Fault fault, unsigned after, unsigned count) {
        fault.after = after;
        fault.count = count;
        strike(bench, fault);
        bench.sent();
        EXPECT_EQ(process_logging_remote_servers_delete_all_edit(), 0);
        return bench.sent();
    };
    const switchsim::Fault silent = noAnswer(kCall), busy = refusal(kCall, "Error: busy");
    EXPECT_THAT(removeUnder(silent, 0, 0), ElementsAre(kAskNext));
    EXPECT_THAT(removeUnder(busy, 0, 0), ElementsAre(kAskNext)); // an answer without entries
    EXPECT_THAT(removeUnder(silent, 1, 0), ElementsAre(kAskNext, drop(kAt514)));
    // A host that the device does not let go is not asked for again and again.
    EXPECT_THAT(removeUnder(busy, 1, 1), ElementsAre(kAskNext, drop(kAt514), kAskNext));
}

TEST(LogHosts, CommonCriteriaForbidsAllButLoad)
{
    SwitchBench bench;
    bench.device().setValue("fips-cc-status", 1);
    const std::string hosts = R"({"remote-server":[]})";
    for (const EditPhase phase : {validate, apply, commit, rollback}) {
        check(bench, kHost,
              {in(phase, created("", k514, {}, 273)), in(phase, merged("", k514, k515, {}, 273)),
               in(phase, deleted("", k514, {}, 273)), in(phase, loaded("", k514))});
        check(bench, kHosts,
              {in(phase, replaced("all", hosts, hosts, {}, 273)), in(phase, loaded("all", hosts))});
    }
}

TEST(SyslogVocabulary, IsExportedInTheDaemonsOrder)
{
    EXPECT_STREQ(config_key_name[3], "logging host");
    EXPECT_STREQ(config_key_name[12], "logging-rate-limit");
    EXPECT_EQ(facility_list_size, std::size(facility_code));
    EXPECT_STREQ(facility_code[15], "cron");
    EXPECT_STREQ(facility_code[23], "local7");
}

} // namespace
} // namespace test
