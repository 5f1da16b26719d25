// Host name, name servers and NTP: what each callback sends in which phase, and how whole edits come out.
#include "tests/unit/interfaces/cells.h"
#include "toolkit/toolkit.h"

namespace test {
namespace {

using namespace tk;
using switchsim::FaultKind;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const std::string kSystem = "openconfig-system:system";

std::string host(const std::string &name)
{
    return R"({"hostname":")" + name + "\"}";
}
std::string setName(const std::string &name)
{
    return R"(ui_fe_hostname_set {"flag":2,"op":1,"hostname":")" + name + R"(","hostname_source":2})";
}
const std::string kClearName = R"(ui_fe_hostname_set {"flag":2,"op":3})";
const std::string kDomain = R"({"domain-name":"example.net"})";
const std::string kLongest = std::string(50, 'a') + "." + std::string(50, 'b') + "." + std::string(50, 'c') +
    "." + std::string(50, 'd') + "." + std::string(51, 'e');

class HostName : public Cells { };
TEST_P(HostName, Sends)
{
    check(kSystem + "/config");
}
const Cell kHostCells[] = {
    {"merge_of_a_name", apply, merge, host("old"), host("new"), {setName("new")}},
    {"merge_of_a_first_name", apply, merge, "{}", host("new"), {setName("new")}},
    {"merge_that_deletes_the_name", apply, merge, host("old"), kDomain, {kClearName}},
    {"a_deleted_name_passes_validate", validate, merge, host("old"), "{}"},
    {"merge_of_another_leaf_is_refused_for_want_of_a_name", validate, merge, "{}", kDomain, {}, 4},
    {"merge_of_another_leaf_beside_a_name", validate, merge, host("old"),
     R"({"hostname":"old","domain-name":"example.net"})"},
    {"merge_of_nothing_is_still_checked", validate, merge, "{}", "{}", {}, 4},
    {"merge_of_another_leaf_sends_nothing", apply, merge, host("old"),
     R"({"hostname":"old","domain-name":"example.net"})"},
    {"commit_of_a_merge", commit, merge, host("old"), host("new")},
    {"rollback_restores_nothing", rollback, merge, host("old"), host("new")},
    {"replacement", apply, replace, host("old"), host("new"), {setName("new")}},
    {"replacement_by_the_same_name", apply, replace, host("old"), host("old"), {setName("old")}},
    {"replacement_without_a_name", apply, replace, host("old"), kDomain},
    {"replacement_without_a_name_is_refused_before", validate, replace, host("old"), kDomain, {}, 4},
    {"replacement_by_the_longest_name", validate, replace, host("old"), host(kLongest)},
    {"creation_sends_nothing", apply, create, kAbsent, host("new")},
    {"creation_checks_nothing", validate, create, kAbsent, kDomain},
    {"deletion_sends_nothing", apply, del, host("old"), kAbsent},
    {"load_sends_nothing", apply, load, kAbsent, host("new")},
};
INSTANTIATE_TEST_SUITE_P(Table, HostName, testing::ValuesIn(kHostCells), CaseName());

TEST(HostNameEdit, IsLimitedTo255BytesAndReachesTheOthers)
{
    SwitchBench bench;
    ASSERT_EQ(kLongest.size(), 255u);
    const auto put = [&](const std::string &name) {
        return bench.put(kSystem + "/config", R"({"openconfig-system:config":)" + host(name) + "}");
    };
    EXPECT_TRUE(put(kLongest).ok());
    EXPECT_EQ(put(kLongest + "f").tag(), "invalid-value");
    EXPECT_THAT(bench.sent(), ElementsAre(setName(kLongest)));
    const auto shared = bench.device().show("platform").at("shared-memory").at("system_host_name");
    EXPECT_EQ(shared.at("hostname"), kLongest);
    EXPECT_TRUE(bench.remove(kSystem + "/config/hostname").ok());
    EXPECT_THAT(bench.sent(), ElementsAre(kClearName));
}

TEST(HostNameEdit, FailsOnlyWithoutAnAnswer)
{
    SwitchBench bench;
    const std::string body = R"({"openconfig-system:config":{"hostname":"new"}})";
    bench.device().addFault(faultOf("ui_fe_hostname_set", FaultKind::null));
    EXPECT_THAT(
        bench.patch(kSystem + "/config", body).refusals,
        ElementsAre(Refusal{4, "operation-failed", "/openconfig-system:system/config", statusInfo(4).text}));
    bench.device().clearFaults();
    bench.device().addFault(faultOf("ui_fe_hostname_set", FaultKind::refuse, "Error: no"));
    EXPECT_TRUE(bench.patch(kSystem + "/config", body).ok());
}

// Name servers

std::string dns(std::int32_t opcode, const std::vector<std::string> &addresses = {})
{
    std::string servers;
    for (const auto &address : addresses)
        servers += (servers.empty() ? "" : ",") + std::string(R"({"address":")") + address + "\"}";
    return R"(ui_dns_server_addr_common_send {"flag":1,"opcode":)" + std::to_string(opcode) +
        R"(,"context":1)" + (servers.empty() ? "" : R"(,"servers":[)" + servers + "]") + "}";
}
std::string add(const std::string &address)
{
    return dns(1, {address});
}
std::string drop(const std::string &address)
{
    return dns(3, {address});
}
const std::string kClear = dns(18);

std::string servers(const std::vector<std::string> &addresses)
{
    std::string list;
    for (const auto &address : addresses)
        list += (list.empty() ? "" : ",") + std::string(R"({"address":")") + address +
            R"(","config":{"address":")" + address + "\"}}";
    return R"({"server":[)" + list + "]}";
}
const std::string kServers = kSystem + "/dns/servers";
const std::string kA = "10.0.0.1", kB = "10.0.0.2", kC = "2001:db8::3", kD = "10.0.0.4";

Outcome putServers(SwitchBench &bench, const std::vector<std::string> &addresses)
{
    return bench.put(kServers, R"({"openconfig-system:servers":)" + servers(addresses) + "}");
}
Outcome addServer(SwitchBench &bench, const std::string &address)
{
    return bench.post(kServers, R"({"openconfig-system:server":[{"address":")" + address + "\"}]}");
}

class DnsList : public Cells {
protected:
    // Leaves the entries able to speak, whatever the cell did.
    ~DnsList() override { bench_->call(rollback, load, kServers, kAbsent, "{}"); }
};
TEST_P(DnsList, Sends)
{
    check(kServers);
}
const Cell kListCells[] = {
    {"replacement_is_one_request", apply, replace, "{}", servers({kA, kB, kC}), {dns(2, {kA, kB, kC})}},
    {"merge_is_one_request", apply, merge, "{}", servers({kA}), {dns(2, {kA})}},
    {"creation", apply, create, kAbsent, servers({kA, kB}), {dns(2, {kA, kB})}},
    {"replacement_by_nothing_clears", apply, replace, servers({kA}), "{}", {kClear}},
    {"creation_of_nothing_clears", apply, create, kAbsent, "{}", {kClear}},
    {"deletion_clears", apply, del, servers({kA}), kAbsent, {kClear}},
    {"load_sends_nothing", apply, load, kAbsent, servers({kA})},
    {"validate_sends_nothing", validate, replace, "{}", servers({kA})},
    {"commit_sends_nothing", commit, replace, "{}", servers({kA})},
    {"rollback_of_a_replacement", rollback, replace, servers({kB}), servers({kA}), {dns(2, {kB})}},
    {"rollback_of_a_deletion", rollback, del, servers({kB, kA}), kAbsent, {dns(2, {kB, kA})}},
    {"rollback_to_nothing_clears", rollback, merge, "{}", servers({kA}), {kClear}},
    {"rollback_of_a_creation_clears", rollback, create, kAbsent, servers({kA}), {kClear}},
};
INSTANTIATE_TEST_SUITE_P(Table, DnsList, testing::ValuesIn(kListCells), CaseName());

class DnsServer : public Cells { };
TEST_P(DnsServer, Sends)
{
    check(kServers + "/server=" + kA);
}
const std::string kEntry = R"({"address":"10.0.0.1"})",
                  kPort = R"({"address":"10.0.0.1","config":{"port":54}})";
const Cell kServerCells[] = {
    {"creation_adds", apply, create, kAbsent, kEntry, {add(kA)}},
    {"adding_it_again_is_done", apply, replace, kEntry, kPort, {add(kA)}},
    {"merge_adds", apply, merge, kEntry, kPort, {add(kA)}},
    {"deletion_removes", apply, del, kEntry, kAbsent, {drop(kA)}},
    {"removing_it_again_is_done", apply, del, kEntry, kAbsent, {drop(kA)}},
    {"load_cannot_be_applied", apply, load, kAbsent, kEntry, {}, 4},
    {"validate_sends_nothing", validate, create, kAbsent, kEntry},
    {"commit_sends_nothing", commit, create, kAbsent, kEntry},
    {"rollback_of_a_creation_removes", rollback, create, kAbsent, kEntry, {drop(kA)}},
    {"rollback_of_a_deletion_adds", rollback, del, kEntry, kAbsent, {add(kA)}},
    {"rollback_of_a_merge", rollback, merge, kEntry, kPort},
    {"rollback_of_a_replacement", rollback, replace, kEntry, kPort},
    {"rollback_of_a_load", rollback, load, kAbsent, kEntry},
};
INSTANTIATE_TEST_SUITE_P(Table, DnsServer, testing::ValuesIn(kServerCells), CaseName());

TEST(DnsEdit, AListIsOneRequestAndEntriesSpeakForThemselvesAfterwards)
{
    SwitchBench bench;
    EXPECT_TRUE(putServers(bench, {kA, kB, kC}).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(dns(2, {kA, kB, kC})));
    EXPECT_TRUE(addServer(bench, kD).ok());
    EXPECT_TRUE(bench.remove(kServers + "/server=" + kB).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(add(kD), drop(kB)));
    EXPECT_EQ(bench.device().show("system").at("name-servers"), (switchsim::Json{kA, kC, kD}));
    // What a replacement drops is not removed one by one, and what it keeps is not added again.
    EXPECT_TRUE(putServers(bench, {kC}).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(dns(2, {kC})));
    EXPECT_TRUE(putServers(bench, {}).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(kClear));
    EXPECT_TRUE(addServer(bench, kA).ok());
    EXPECT_TRUE(bench.remove(kServers).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(add(kA), drop(kA), kClear));
}

TEST(DnsEdit, TakesFourServersAtMost)
{
    SwitchBench bench;
    EXPECT_TRUE(putServers(bench, {kA, kB, kC, kD}).ok());
    EXPECT_FALSE(addServer(bench, "10.0.0.5").ok());
    EXPECT_FALSE(putServers(bench, {kA, kB, kC, kD, "10.0.0.5"}).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(dns(2, {kA, kB, kC, kD})));
}

TEST(DnsEdit, ARefusedListIsTakenBackWithTheDevicesTextAndLeavesEntriesAble)
{
    SwitchBench bench;
    EXPECT_TRUE(putServers(bench, {kA}).ok());
    bench.sent();
    auto once = faultOf("ui_dns_server_addr_common_send", FaultKind::refuse, "Error: not today");
    once.count = 1;
    bench.device().addFault(once);
    EXPECT_THAT(putServers(bench, {kB, kC}).refusals,
                ElementsAre(Refusal{4, "operation-failed", "/openconfig-system:system/dns/servers",
                                    "Error: not today"}));
    EXPECT_THAT(bench.sent(), ElementsAre(dns(2, {kB, kC}), dns(2, {kA}))); // the second undoes it
    EXPECT_TRUE(addServer(bench, kB).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(add(kB)));
}

TEST(DnsEdit, AListRolledBackForAnotherNodeLeavesEntriesAble)
{
    SwitchBench bench;
    EXPECT_TRUE(putServers(bench, {kA}).ok());
    bench.sent();
    bench.device().addFault(faultOf("ui_fe_ntp_global_config", FaultKind::null));
    const std::string list = servers({kB});
    EXPECT_EQ(
        bench
            .patch(
                "",
                R"({"ietf-restconf:data":{"openconfig-system:system":{"ntp":{"config":{"enabled":true}}}}})")
            .status(),
        4);
    EXPECT_EQ(bench
                  .put(kSystem,
                       R"({"openconfig-system:system":{"config":{"hostname":"h"},"dns":{"servers":)" + list +
                           R"(},"ntp":{"config":{"enabled":true}}}})")
                  .status(),
              4);
    const auto sent = bench.sent();
    EXPECT_EQ(sent.back(), dns(2, {kA}));
    bench.device().clearFaults();
    EXPECT_EQ(bench.device().show("system").at("name-servers"), switchsim::Json{kA});
    EXPECT_TRUE(addServer(bench, kB).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(add(kB)));
}

TEST(DnsEdit, ADeviceThatDoesNotAnswerFailsNothing)
{
    SwitchBench bench;
    bench.unplug();
    EXPECT_TRUE(putServers(bench, {kA, kB}).ok());
    EXPECT_TRUE(addServer(bench, kC).ok());
    EXPECT_TRUE(bench.remove(kServers + "/server=" + kA).ok());
    bench.plugIn();
}

TEST(DnsEdit, KnowsWhichRefusalsOfAnEntryAreHarmless)
{
    struct Case {
        bool adds;
        int appErr;
        Status status;
    };
    for (const Case &c : {Case{true, 3, 0}, Case{true, 2, 4}, Case{false, 2, 0}, Case{false, 3, 4}}) {
        SCOPED_TRACE((c.adds ? "add " : "delete ") + std::to_string(c.appErr));
        SwitchBench bench;
        if (!c.adds)
            addServer(bench, kA);
        auto fault = faultOf("ui_dns_server_addr_common_send", FaultKind::refuse, "Error: its words");
        fault.uiErr = 1;
        fault.appErr = c.appErr;
        fault.count = 1;
        bench.device().addFault(fault);
        const Outcome outcome = c.adds ? addServer(bench, kA) : bench.remove(kServers + "/server=" + kA);
        EXPECT_EQ(outcome.status(), c.status);
        EXPECT_EQ(outcome.message(), c.status ? "Error: its words" : "");
    }
}

// NTP

const std::string kNtp = kSystem + "/ntp/config";
std::string ntp(const std::string &fields)
{
    return R"(ui_fe_ntp_global_config {"flag":2,"config_kind":)" + fields + "}";
}
const std::string kOn = ntp(R"(2,"enable":1)"), kOff = ntp(R"(2,"enable":0)"),
                  kGlobal = ntp(R"(1,"global_enable":1)");
const std::string kEnabled = R"({"enabled":true})", kDisabled = R"({"enabled":false})",
                  kSource = R"({"ntp-source-address":"10.0.0.9"})";

class NtpSwitch : public Cells { };
TEST_P(NtpSwitch, Sends)
{
    check(kNtp);
}
const Cell kNtpCells[] = {
    {"on_is_two_requests", apply, merge, kDisabled, kEnabled, {kOn, kGlobal}},
    {"off_is_one", apply, merge, kEnabled, kDisabled, {kOff}},
    {"replacement", apply, replace, kDisabled, kEnabled, {kOn, kGlobal}},
    {"creation", apply, create, kAbsent, kEnabled, {kOn, kGlobal}},
    {"without_the_leaf", apply, replace, kEnabled, kSource},
    {"deletion_switches_off", apply, del, kEnabled, kAbsent, {kOff}},
    {"deletion_without_the_leaf", apply, del, kSource, kAbsent},
    {"a_deleted_leaf_is_off_in_validate", validate, merge, kEnabled, kSource, {kOff}},
    {"a_deleted_leaf_is_off_in_apply", apply, merge, kEnabled, kSource, {kOff}},
    {"a_deleted_leaf_is_off_in_commit", commit, merge, kEnabled, kSource, {kOff}},
    {"a_deleted_leaf_is_off_in_rollback", rollback, merge, kEnabled, kSource, {kOff}},
    {"rollback_restores_nothing", rollback, replace, kDisabled, kEnabled},
    {"load_sends_nothing", apply, load, kAbsent, kEnabled},
    {"validate_sends_nothing", validate, merge, kDisabled, kEnabled},
};
INSTANTIATE_TEST_SUITE_P(Table, NtpSwitch, testing::ValuesIn(kNtpCells), CaseName());

struct NtpFailure {
    std::string name;
    EditPhase phase;
    EditOp op;
    std::string before, after;
    unsigned passing; // so many requests are answered first
    FaultKind kind;
    bool hasText;
    Status status;
    std::vector<std::string> requests;
};
void PrintTo(const NtpFailure &c, std::ostream *out)
{
    *out << c.name;
}
class NtpFailing : public testing::TestWithParam<NtpFailure> { };
TEST_P(NtpFailing, EndsWith)
{
    const NtpFailure &c = GetParam();
    SwitchBench bench;
    auto fault = faultOf("ui_fe_ntp_global_config", c.kind, c.hasText ? "Error: its words" : "");
    fault.after = c.passing;
    bench.device().addFault(fault);
    const Callback done = bench.call(c.phase, c.op, kNtp, c.before, c.after);
    EXPECT_EQ(done.status, c.status);
    for (const auto &record : done.records)
        EXPECT_EQ(record.text, ""); // the device's words stay in the log
    EXPECT_EQ(bench.sent(), c.requests);
}
const NtpFailure kNtpFailures[] = {
    {"no_answer", apply, merge, kDisabled, kEnabled, 0, FaultKind::null, false, 4, {kOn}},
    {"a_refusal", apply, merge, kDisabled, kEnabled, 0, FaultKind::refuse, true, 4, {kOn}},
    {"a_refusal_without_words", apply, merge, kDisabled, kEnabled, 0, FaultKind::refuse, false, 4, {kOn}},
    {"no_answer_to_the_second",
     apply,
     merge,
     kDisabled,
     kEnabled,
     1,
     FaultKind::null,
     false,
     4,
     {kOn, kGlobal}},
    {"the_second_refused", apply, merge, kDisabled, kEnabled, 1, FaultKind::refuse, true, 4, {kOn, kGlobal}},
    {"no_answer_for_a_deleted_leaf",
     validate,
     merge,
     kEnabled,
     kSource,
     0,
     FaultKind::null,
     false,
     4,
     {kOff}},
    {"a_deleted_leaf_refused", apply, merge, kEnabled, kSource, 0, FaultKind::refuse, true, 4, {kOff}},
    {"a_deleted_leaf_refused_in_commit",
     commit,
     merge,
     kEnabled,
     kSource,
     0,
     FaultKind::refuse,
     true,
     4,
     {kOff}},
};
INSTANTIATE_TEST_SUITE_P(Table, NtpFailing, testing::ValuesIn(kNtpFailures), CaseName());

struct Peer {
    std::string name, key, fields;
};
void PrintTo(const Peer &peer, std::ostream *out)
{
    *out << peer.name;
}
class NtpServer : public testing::TestWithParam<Peer> { };
TEST_P(NtpServer, IsAddedOnceAndRemoved)
{
    const Peer &peer = GetParam();
    SwitchBench bench;
    std::string key = peer.key;
    for (auto at = key.find(':'); at != key.npos; at = key.find(':', at + 3))
        key.replace(at, 1, "%3A");
    const std::string path = kSystem + "/ntp/servers/server=" + key;
    const std::string entry = R"({"openconfig-system:server":[{"address":")" + peer.key +
        R"(","config":{"address":")" + peer.key + R"(","prefer":true}}]})";
    const auto request = [&](const std::string &op) {
        return ntp(R"(2,"server_op":)" + op + R"(,"has_server":1,)" + peer.fields);
    };
    EXPECT_TRUE(bench.put(path, entry).ok());
    // A changed leaf sends it again, and the device says that it is there already.
    EXPECT_TRUE(bench.put(path + "/config/prefer", R"({"openconfig-system:prefer":false})").ok());
    EXPECT_TRUE(bench.remove(path).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(request("1"), request("1"), request("3")));
}
const Peer kPeers[] = {
    {"by_ipv4", "10.1.1.1", R"("addr_type":4,"address":"10.1.1.1")"},
    {"by_ipv6", "2001:db8::1", R"("addr_type":8,"address":"2001:db8::1")"},
    {"by_name", "time.example.net", R"("addr_type":512,"host_name":"time.example.net")"},
};
INSTANTIATE_TEST_SUITE_P(Table, NtpServer, testing::ValuesIn(kPeers), CaseName());

TEST(NtpServerEdit, FailsWithoutAnAnswerOrWithAnyOtherText)
{
    const std::string path = kSystem + "/ntp/servers/server=10.1.1.1/config", config = R"({"prefer":true})";
    SwitchBench bench;
    const auto status = [&](FaultKind kind, const std::string &text) {
        bench.device().clearFaults();
        bench.device().addFault(faultOf("ui_fe_ntp_global_config", kind, text));
        return bench.call(apply, create, path, std::nullopt, config).status;
    };
    EXPECT_EQ(status(FaultKind::null, ""), 4);
    EXPECT_EQ(status(FaultKind::refuse, "Error: The server/peer association entry is already presen"), 4);
    EXPECT_EQ(status(FaultKind::refuse, "Error: The server/peer association entry is already present."), 0);
    EXPECT_EQ(status(FaultKind::refuse, ""), 0); // without words it is no refusal
}

struct Mode {
    std::string name;
    int fips, commonCriteria;
    bool isAllowed;
};
void PrintTo(const Mode &mode, std::ostream *out)
{
    *out << mode.name;
}
class NtpMode : public testing::TestWithParam<Mode> { };
TEST_P(NtpMode, Gates)
{
    const Mode &mode = GetParam();
    SwitchBench bench;
    bench.device().setValue("fips-admin-state", mode.fips);
    bench.device().setValue("fips-cc-admin-state", mode.commonCriteria);
    const std::string server = kSystem + "/ntp/servers/server=10.1.1.1/config", config = R"({"prefer":true})";
    for (const EditOp op : {merge, replace, create}) {
        const auto before = op == create ? std::nullopt : std::optional<std::string>("{}");
        const Callback on = bench.call(validate, op, kNtp, before, kEnabled);
        const Callback added = bench.call(validate, op, server, before, config);
        EXPECT_EQ(on.status, mode.isAllowed ? 0 : 273);
        EXPECT_EQ(added.status, mode.isAllowed ? 0 : 273);
        if (mode.isAllowed)
            continue;
        ASSERT_EQ(on.records.size(), 1u);
        EXPECT_EQ(on.records[0].status, 4);
        EXPECT_EQ(on.records[0].text, "Error: System in FIPS mode, cannot enable/disable ntp");
        ASSERT_EQ(added.records.size(), 1u);
        EXPECT_EQ(added.records[0].text, "Error: System in FIPS mode, cannot config ntp servers");
    }
    EXPECT_EQ(bench.call(validate, del, kNtp, kEnabled, std::nullopt).status, 0);
    EXPECT_EQ(bench.call(validate, load, kNtp, std::nullopt, kEnabled).status, 0);
    EXPECT_EQ(bench.call(validate, del, server, config, std::nullopt).status, 0);
}
const Mode kModes[] = {
    {"plain", 0, 0, true},
    {"fips", 1, 0, false},
    {"fips_with_common_criteria", 1, 1, true},
    {"common_criteria_alone", 0, 1, true},
};
INSTANTIATE_TEST_SUITE_P(Table, NtpMode, testing::ValuesIn(kModes), CaseName());

TEST(NtpEdit, LosingItsOnlyLeafIsADeletion)
{
    SwitchBench bench;
    EXPECT_TRUE(bench.put(kNtp + "/enabled", R"({"openconfig-system:enabled":true})").ok());
    EXPECT_TRUE(bench.remove(kNtp + "/enabled").ok());
    EXPECT_THAT(bench.sent(), ElementsAre(kOn, kGlobal, kOff));
}

// Addresses that are only kept

TEST(SystemAddresses, SendNothingAndNeedAConfigToBeDeleted)
{
    SwitchBench bench;
    const std::string config = kSystem + "/config";
    EXPECT_TRUE(bench
                    .patch(config, R"({"openconfig-system:config":{
        "lyn-openconfig-system-aug:default_gateway":{"address":[{"address":"10.0.0.254","config":{"addr_type":"ipv4"}}]},
        "lyn-openconfig-system-aug:ipv4":{"address":[{"address":"10.0.0.5","config":{"prefix-length":24}}]},
        "lyn-openconfig-system-aug:ipv6":{"address":[{"address":"fe80::1","config":{"prefix-length":64}},{"address":"fe80::2"}]}}})")
                    .ok());
    const std::string aug = config + "/lyn-openconfig-system-aug:";
    EXPECT_TRUE(bench.remove(aug + "default_gateway/address=10.0.0.254").ok());
    EXPECT_TRUE(bench.remove(aug + "ipv4/address=10.0.0.5").ok());
    EXPECT_TRUE(bench.remove(aug + "ipv6/address=fe80%3A%3A1").ok());
    EXPECT_EQ(bench.remove(aug + "ipv6/address=fe80%3A%3A2").status(), 4);
    EXPECT_THAT(bench.sent(), IsEmpty());
}

} // namespace
} // namespace test
