// Host name, name servers and NTP: what each callback sends in which phase, and how whole edits come out.
#include "tests/unit/bundle/callback_test.h"

namespace test {
namespace {

const std::string kSystem = "openconfig-system:system", kNone = "{}", kNameCall = "ui_fe_hostname_set",
                  kDnsCall = "ui_dns_server_addr_common_send", kNtpCall = "ui_fe_ntp_global_config";

const Pattern host{R"({"hostname":"$"})"};
const Pattern setName{kNameCall + R"( {"flag":2,"op":1,"hostname":"$","hostname_source":2})"};
const std::string kClearName = kNameCall + R"( {"flag":2,"op":3})",
                  kDomain = R"({"domain-name":"example.net"})", kOld = host("old"), kNew = host("new"),
                  kSetNew = setName("new"), kBoth = R"({"hostname":"old","domain-name":"example.net"})",
                  kLongest = std::string(63, 'a') + "." + std::string(63, 'b') + "." + std::string(63, 'c') +
    "." + std::string(63, 'd');
const std::vector<Cell> kHostCells = {
    merged("a name", kOld, kNew, {kSetNew}),
    merged("a name that goes", kOld, kDomain, {kClearName}),
    merged("another leaf", kOld, kBoth),
    replaced("", kOld, kNew, {kSetNew}),
    replaced("without a name", kOld, kDomain),
    in(validate, merged("a name that goes passes", kOld, kNone)),
    in(validate, merged("another leaf lacks a name", kNone, kDomain, {}, 4)),
    in(validate, merged("another leaf beside a name", kOld, kBoth)),
    in(validate, replaced("without a name", kOld, kDomain, {}, 4)),
    in(validate, replaced("the longest name", kOld, host(kLongest))),
    under(noAnswer(kNameCall), merged("no answer", kOld, kNew, {kSetNew}, 4)),
    under(refusal(kNameCall, "Error: no"), merged("a refusal", kOld, kNew, {kSetNew})),
};

TEST(HostName, DoesExactlyThis)
{
    check(kSystem + "/config", kHostCells, Quiet{kOld, kNew});
}

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
}

// Name servers

std::string dns(std::int32_t opcode, const Texts &addresses = {})
{
    std::string servers;
    for (const auto &address : addresses)
        servers += (servers.empty() ? R"({"address":")" : R"(,{"address":")") + address + "\"}";
    return kDnsCall + R"( {"flag":1,"opcode":)" + std::to_string(opcode) + R"(,"context":1)" +
        (servers.empty() ? "" : R"(,"servers":[)" + servers + "]") + "}";
}
std::string servers(const Texts &addresses)
{
    std::string list;
    for (const auto &address : addresses)
        list += (list.empty() ? R"({"address":")" : R"(,{"address":")") + address +
            R"(","config":{"address":")" + address + "\"}}";
    return R"({"server":[)" + list + "]}";
}
const std::string kServers = kSystem + "/dns/servers", kA = "10.0.0.1", kB = "10.0.0.2", kC = "2001:db8::3",
                  kD = "10.0.0.4", kClear = dns(18), kAddA = dns(1, {kA}), kAddB = dns(1, {kB}),
                  kDropA = dns(3, {kA}), kEntry = R"({"address":"10.0.0.1"})",
                  kPort = R"({"address":"10.0.0.1","config":{"port":54}})", kListA = servers({kA}),
                  kListB = servers({kB}), kWords = "Error: its words";

Outcome putServers(SwitchBench &bench, const Texts &addresses)
{
    return bench.put(kServers, R"({"openconfig-system:servers":)" + servers(addresses) + "}");
}
Outcome addServer(SwitchBench &bench, const std::string &address)
{
    return bench.post(kServers, R"({"openconfig-system:server":[{"address":")" + address + "\"}]}");
}

const std::vector<Cell> kListCells = {
    replaced("replacement is one request", kNone, servers({kA, kB, kC}), {dns(2, {kA, kB, kC})}),
    merged("merge is one request", kNone, kListA, {dns(2, {kA})}),
    created("", servers({kA, kB}), {dns(2, {kA, kB})}),
    replaced("replacement by nothing clears", kListA, kNone, {kClear}),
    created("creation of nothing clears", kNone, {kClear}),
    deleted("deletion clears", kListA, {kClear}),
    in(rollback, replaced("", kListB, kListA, {dns(2, {kB})})),
    in(rollback, deleted("", servers({kB, kA}), {dns(2, {kB, kA})})),
    in(rollback, merged("rollback to nothing clears", kNone, kListA, {kClear})),
    in(rollback, created("rollback of a creation clears", kListA, {kClear})),
};
const std::vector<Cell> kServerCells = {
    created("creation adds", kEntry, {kAddA}),
    loud(replaced("adding it again is done", kEntry, kPort, {kAddA})),
    loud(merged("merge adds", kEntry, kPort, {kAddA})),
    deleted("deletion removes", kEntry, {kDropA}),
    loud(deleted("removing it again is done", kEntry, {kDropA})),
    loaded("load cannot be applied", kEntry, {}, 4),
    loud(in(rollback, created("rollback of a creation removes", kEntry, {kDropA}))),
    in(rollback, deleted("rollback of a deletion adds", kEntry, {kAddA})),
    // Which refusals of an entry are harmless.
    under(refusal(kDnsCall, kWords, 1, 3), loud(created("it is there", kEntry, {kAddA}))),
    under(refusal(kDnsCall, kWords, 1, 2), created("another code", kEntry, {kAddA}, 4, kWords)),
    under(refusal(kDnsCall, kWords, 1, 2), loud(deleted("it is not there", kEntry, {kDropA}))),
    under(refusal(kDnsCall, kWords, 1, 3), deleted("another code", kEntry, {kDropA}, 4, kWords)),
};

TEST(Dns, DoesExactlyThis)
{
    SwitchBench bench;
    // A rollback of the list leaves the entries able to speak, whatever was done before.
    const auto free = [&] { bench.call(rollback, load, kServers, kAbsent, kNone); };
    check(bench, kServers, kListCells, Quiet{kListA, kListA}, free);
    free();
    check(bench, kServers + "/server=" + kA, kServerCells, Quiet{kEntry, kPort});
}

TEST(DnsEdit, AListIsOneRequestAndEntriesSpeakForThemselvesAfterwards)
{
    SwitchBench bench;
    EXPECT_TRUE(putServers(bench, {kA, kB, kC}).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(dns(2, {kA, kB, kC})));
    EXPECT_TRUE(addServer(bench, kD).ok());
    EXPECT_TRUE(bench.remove(kServers + "/server=" + kB).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(dns(1, {kD}), dns(3, {kB})));
    // What a replacement drops is not removed one by one, and what it keeps is not added again.
    EXPECT_TRUE(putServers(bench, {kC}).ok());
    EXPECT_TRUE(putServers(bench, {}).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(dns(2, {kC}), kClear));
    EXPECT_TRUE(addServer(bench, kA).ok());
    EXPECT_TRUE(bench.remove(kServers).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(kAddA, kDropA, kClear));
    // Four servers at most.
    EXPECT_TRUE(putServers(bench, {kA, kB, kC, kD}).ok());
    EXPECT_FALSE(addServer(bench, "10.0.0.5").ok());
    EXPECT_FALSE(putServers(bench, {kA, kB, kC, kD, "10.0.0.5"}).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(dns(2, {kA, kB, kC, kD})));
}

TEST(DnsEdit, AListThatIsTakenBackLeavesEntriesAble)
{
    SwitchBench bench;
    EXPECT_TRUE(putServers(bench, {kA}).ok());
    bench.sent();
    auto once = refusal(kDnsCall, "Error: not today");
    once.count = 1;
    strike(bench, once);
    EXPECT_EQ(putServers(bench, {kB, kC}).message(), "Error: not today");
    EXPECT_THAT(bench.sent(), ElementsAre(dns(2, {kB, kC}), dns(2, {kA}))); // the second undoes it
    EXPECT_TRUE(addServer(bench, kB).ok());
    EXPECT_TRUE(bench.remove(kServers + "/server=" + kB).ok());
    // The same when another node fails.
    strike(bench, noAnswer(kNtpCall));
    EXPECT_EQ(bench
                  .put(kSystem,
                       R"({"openconfig-system:system":{"config":{"hostname":"h"},"dns":{"servers":)" +
                           kListB + R"(},"ntp":{"config":{"enabled":true}}}})")
                  .status(),
              4);
    EXPECT_EQ(bench.sent().back(), dns(2, {kA}));
    EXPECT_TRUE(addServer(bench, kB).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(kAddB));
    // A device that does not answer fails nothing.
    bench.unplug();
    EXPECT_TRUE(putServers(bench, {kA}).ok());
    EXPECT_TRUE(addServer(bench, kC).ok());
    EXPECT_TRUE(bench.remove(kServers + "/server=" + kA).ok());
}

// NTP

const std::string kNtp = kSystem + "/ntp/config";
const Pattern ntp{kNtpCall + R"( {"flag":2,"config_kind":$})"};
const std::string kOn = ntp(R"(2,"enable":1)"), kOff = ntp(R"(2,"enable":0)"),
                  kGlobal = ntp(R"(1,"global_enable":1)"), kEnabled = R"({"enabled":true})",
                  kDisabled = R"({"enabled":false})", kSource = R"({"ntp-source-address":"10.0.0.9"})";
const switchsim::Fault kSilent = noAnswer(kNtpCall), kSilentLater = noAnswer(kNtpCall, 1),
                       kRefused = refusal(kNtpCall, kWords), kWordless = refusal(kNtpCall);

const std::vector<Cell> kNtpCells = {
    merged("on is two requests", kDisabled, kEnabled, {kOn, kGlobal}),
    merged("off is one", kEnabled, kDisabled, {kOff}),
    replaced("", kDisabled, kEnabled, {kOn, kGlobal}),
    replaced("without the leaf", kEnabled, kSource),
    created("", kEnabled, {kOn, kGlobal}),
    deleted("deletion switches off", kEnabled, {kOff}),
    deleted("deletion without the leaf", kSource),
    merged("a leaf that goes is off", kEnabled, kSource, {kOff}),
    in(validate, merged("a leaf that goes is off", kEnabled, kSource, {kOff})),
    in(commit, merged("a leaf that goes is off", kEnabled, kSource, {kOff})),
    in(rollback, merged("a leaf that goes is off", kEnabled, kSource, {kOff})),
    in(validate, merged("", kDisabled, kEnabled)),
    in(rollback, merged("", kDisabled, kEnabled)),
    // The device's words stay in the log.
    under(kSilent, merged("no answer", kDisabled, kEnabled, {kOn}, 4)),
    under(kRefused, merged("a refusal", kDisabled, kEnabled, {kOn}, 4)),
    under(kWordless, merged("a refusal without words", kDisabled, kEnabled, {kOn}, 4)),
    under(kSilentLater, merged("no answer to the second", kDisabled, kEnabled, {kOn, kGlobal}, 4)),
    under(kSilent, in(validate, merged("no answer for a leaf that goes", kEnabled, kSource, {kOff}, 4))),
    under(kRefused, merged("a leaf that goes refused", kEnabled, kSource, {kOff}, 4)),
    under(kRefused, in(commit, merged("a leaf that goes refused", kEnabled, kSource, {kOff}, 4))),
};

std::string peer(int operation, const std::string &type, const std::string &address)
{
    return ntp(R"(2,"server_op":)" + std::to_string(operation) + R"(,"has_server":1,"addr_type":)" + type +
               "," + address);
}
const std::string kPeer = kSystem + "/ntp/servers/server=10.1.1.1/config", kPrefer = R"({"prefer":true})",
                  kSetPeer = peer(1, "4", R"("address":"10.1.1.1")"),
                  kPresent = "Error: The server/peer association entry is already presen";
const std::vector<Cell> kPeerCells = {
    created("", kPrefer, {kSetPeer}),
    loud(created("it is there already", kPrefer, {kSetPeer})),
    deleted("", kPrefer, {peer(3, "4", R"("address":"10.1.1.1")")}),
    under(kSilent, created("no answer", kPrefer, {kSetPeer}, 4)),
    under(refusal(kNtpCall, kPresent), created("any other text", kPrefer, {kSetPeer}, 4)),
    under(refusal(kNtpCall, kPresent + "t."), loud(created("that it is there", kPrefer, {kSetPeer}))),
    under(kWordless, created("without words it is no refusal", kPrefer, {kSetPeer})),
};

TEST(Ntp, DoesExactlyThis)
{
    SwitchBench bench;
    check(bench, kNtp, kNtpCells, Quiet{kDisabled, kEnabled});
    check(bench, kPeer, kPeerCells);
    check(bench, kSystem + "/ntp/servers/server=2001%3Adb8%3A%3A1/config",
          {created("IPv6", kPrefer, {peer(1, "8", R"("address":"2001:db8::1")")})});
    check(bench, kSystem + "/ntp/servers/server=time.example.net/config",
          {created("a name", kPrefer, {peer(1, "512", R"("host_name":"time.example.net")")})});
}

TEST(Ntp, IsForbiddenInFipsModeWithoutCommonCriteria)
{
    const std::string noSwitch = "Error: System in FIPS mode, cannot enable/disable ntp",
                      noServer = "Error: System in FIPS mode, cannot config ntp servers";
    struct Case {
        int fips, commonCriteria;
        Status status;
    };
    for (const Case &c : {Case{0, 0, 0}, {1, 0, 273}, {1, 1, 0}, {0, 1, 0}}) {
        SwitchBench bench;
        bench.device().setValue("fips-admin-state", c.fips);
        bench.device().setValue("fips-cc-admin-state", c.commonCriteria);
        const auto expect = [&](EditOp op, const MaybeText &before) {
            const auto expected = [&](const std::string &text) {
                return Ended(c.status, c.status ? Texts{text} : Texts{});
            };
            EXPECT_EQ(ended(bench.call(validate, op, kNtp, before, kEnabled)), expected(noSwitch));
            EXPECT_EQ(ended(bench.call(validate, op, kPeer, before, kPrefer)), expected(noServer));
        };
        expect(merge, kNone);
        expect(replace, kNone);
        expect(create, kAbsent);
        check(bench, kNtp, {in(validate, deleted("", kEnabled)), in(validate, loaded("", kEnabled))});
        check(bench, kPeer, {in(validate, deleted("", kPrefer))});
    }
}

// Addresses that are only kept

TEST(SystemAddresses, SendNothingAndNeedAConfigToBeDeleted)
{
    SwitchBench bench;
    const std::string config = kSystem + "/config", aug = config + "/lyn-openconfig-system-aug:";
    EXPECT_TRUE(bench
                    .patch(config, R"({"openconfig-system:config":{
        "lyn-openconfig-system-aug:default_gateway":{"address":[{"address":"10.0.0.254","config":{"addr_type":"ipv4"}}]},
        "lyn-openconfig-system-aug:ipv4":{"address":[{"address":"10.0.0.5","config":{"prefix-length":24}}]},
        "lyn-openconfig-system-aug:ipv6":{"address":[{"address":"fe80::1","config":{"prefix-length":64}},{"address":"fe80::2"}]}}})")
                    .ok());
    EXPECT_TRUE(bench.remove(aug + "default_gateway/address=10.0.0.254").ok());
    EXPECT_TRUE(bench.remove(aug + "ipv4/address=10.0.0.5").ok());
    EXPECT_TRUE(bench.remove(aug + "ipv6/address=fe80%3A%3A1").ok());
    EXPECT_EQ(bench.remove(aug + "ipv6/address=fe80%3A%3A2").status(), 4);
    EXPECT_THAT(bench.sent(), IsEmpty());
}

} // namespace
} // namespace test
