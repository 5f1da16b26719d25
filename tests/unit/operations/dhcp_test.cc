// The DHCP server: what each callback sends in which phase, how whole edits come out, and the leases as a
// list.
#include "backend/dhcp_server.h"
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/platform/device_folder.h"

namespace test {
namespace {

const std::string kServer = "lyn-openconfig-dhcp-server:dhcp-server",
                  kConfig = kServer + "/config/ipv4-config", kPool = kConfig + "/dhcpv4-pool=p",
                  kBindings = kServer + "/state/ipv4-state/dhcp-server-binding", kNone = "{}";
const std::string kStateCall = "ui_fe_dhcpv4_server_set_server_state",
                  kNameCall = "ui_fe_dhpsv4_set_pool_name",
                  kSubnetCall = "ui_fe_dhpsv4_set_pool_subnet_and_mask",
                  kRouterCall = "ui_fe_dhcpsv4_set_default_router_servers",
                  kExcludeCall = "ui_fe_dhcpsv4_excluded_address",
                  kLeaseCall = "ui_fe_dhcpsv4_set_lease_time",
                  kOptionCall = "send_dhcp4_option_config_to_plugin";

const Pattern named{kNameCall + R"( {"name":"p","add":$})"};
const Pattern ofPool{R"($ {"pool_name":"p",$})"};
const Pattern pool{R"({"name":"p",$})"};
Outcome putPool(SwitchBench &bench, const std::string &fields)
{
    return bench.put(kPool, R"({"lyn-openconfig-dhcp-server:dhcpv4-pool":[)" + pool(fields) + "]}");
}

// Over a pool with a network, as it is there when the switch is told of what lies in it.
void checkInPool(const std::string &path, const std::vector<Cell> &cells,
                 const std::optional<Quiet> &elsewhere = {}, int client = 0)
{
    SwitchBench bench;
    check(bench, path, cells, elsewhere, [&] {
        bench.device().setValue("dhcp-client-enabled", client);
        for (const int add : {0, 1})
            ui_fe_dhcpv4_server_response_free(ui_fe_dhpsv4_set_pool_name("p", add));
        dhcp4_subnet_config subnet{};
        subnet.pool_name[0] = 'p';
        subnet.subnet_network = 0x0a010100;
        subnet.subnet_mask = 0xffffff00;
        ui_fe_dhcpv4_server_response_free(ui_fe_dhpsv4_set_pool_subnet_and_mask(subnet));
    });
}

// Each of the device's answers to one request of a callback: none, a refusal with words, one without.
void checkAnswers(const std::string &path, const std::string &call, const Cell &cell, const std::string &line)
{
    SwitchBench bench;
    ui_fe_dhcpv4_server_response_free(ui_fe_dhpsv4_set_pool_name("p", 1));
    for (const auto &fault : {noAnswer(call), refusal(call, "its words"), refusal(call)}) {
        SCOPED_TRACE(line);
        strike(bench, fault);
        const LogCapture log;
        const Callback done = bench.call(cell.phase, cell.op, path, cell.before, cell.after);
        EXPECT_EQ(ended(done), Ended(4, {fault.text.value_or("")}));
        EXPECT_THAT(log.errors(),
                    HasSubstr(std::string("cbtype [") + agt_cbtype_name(cell.phase) + "] editop [create]"));
        EXPECT_EQ(log.errors().find(line + " Error: its words") != std::string::npos, fault.text.has_value());
    }
}

const std::string kOn = R"({"enable":true})", kOff = R"({"enable":false})", kMgmt = R"({"mgmt":true})",
                  kSetOn = kStateCall + R"( {"enable":1})", kSetOff = kStateCall + R"( {"enable":0})",
                  kBeside = "Error: cannot enable this feature while the DHCP-Client is enabled";
const std::vector<Cell> kSwitchCells = {
    in(commit, merged("on", kOff, kOn, {kSetOn})),
    in(commit, merged("off", kOn, kOff, {kSetOff})),
    in(commit, created("", kOn, {kSetOn})),
    in(commit, replaced("", kOff, kOn, {kSetOn})),
    in(commit, loaded("", kOn, {kSetOn})),
    in(commit, merged("without the leaf", kNone, kMgmt)),
    in(commit, deleted("", kOn, {kSetOff})),
    in(commit, deleted("deleted without the leaf", kMgmt)),
    in(commit, merged("its leaf goes", kOn, kNone, {kSetOff})),
};
const std::vector<Cell> kBesideCells = {
    in(validate, merged("a first on", kNone, kOn, {}, 4, kBeside)),
    in(validate, created("created on", kOn, {}, 4, kBeside)),
    in(validate, replaced("replaced by on", kOff, kOn, {}, 4, kBeside)),
    in(validate, loaded("loaded on", kOn, {}, 4, kBeside)),
    in(commit, replaced("on as late as in commit", kOff, kOn, {}, 4, kBeside)),
    in(validate, merged("turned off", kOn, kOff)),
    in(commit, merged("off in commit", kOn, kOff, {kSetOff})),
    in(validate, merged("its leaf goes", kOn, kNone)),
    in(validate, deleted("", kOn)),
    merged("apply does not look", kOff, kOn),
};

TEST(DhcpSwitch, DoesExactlyThis)
{
    checkInPool(kConfig, kSwitchCells, Quiet{kOff, kOn});
    checkInPool(kConfig, kBesideCells, {}, 1);
    checkAnswers(kConfig, kStateCall, in(commit, created("", kOn)), "ipv4 config enable");
}

const Pattern subnet{ofPool(kSubnetCall, R"("subnet_network":"$","subnet_mask":"$","no":0)")};
const Pattern routers{ofPool(kRouterCall,
                             R"("no":0,"option_set":1,"option_format":2,"option_named":1,)"
                             R"("option_name":"routers","dhcp_value":"$")")};
const Pattern excluded{
    ofPool(kExcludeCall, R"("no":0,"excluded_address":{"low_range":"$"},"excluded_kind":1)")};
Texts after(Texts first, const Texts &rest)
{
    first.insert(first.end(), rest.begin(), rest.end());
    return first;
}
const std::string kNet = R"("subnet_network":"10.1.1.0","prefix-length":24)",
                  kDomain = kNet + R"(,"domain-name":"a")", kHalf = pool(R"("subnet_network":"10.1.1.0")"),
                  kSubnet = subnet("10.1.1.0", "255.255.255.0"), kBare = pool(kNet),
                  kWhole = pool(kDomain +
                                R"(,"dhcp-default-router":["10.1.1.1","10.1.1.2"])"
                                R"(,"excl-ip-address":["10.1.1.1","10.1.1.2"])"),
                  kLong = "110.111.112.113, 110.111.112.114, 110.111.112.115, 110.111.112.",
                  kIncomplete =
                      "Error: subnet_network/prefix-length is not present, unable to configure dhcpv4 "
                      "server pool";
const Texts kBuilt = {named(1), kSubnet, routers("10.1.1.1, 10.1.1.2"), excluded("10.1.1.1"),
                      excluded("10.1.1.2")};
const std::vector<Cell> kPoolCells = {
    created("", kWhole, kBuilt),
    replaced("", kBare, kWhole, kBuilt),
    created("a prefix of 32", pool(R"("subnet_network":"10.2.0.7","prefix-length":32)"),
            {named(1), subnet("10.2.0.7", "255.255.255.255")}),
    created("a prefix of 0", pool(R"("subnet_network":"0.0.0.0","prefix-length":0)"),
            {named(1), ofPool(kSubnetCall, R"("no":0)")}),
    merged("a merge makes it anew", kBare, pool(kDomain), {named(0), named(1), kSubnet}),
    merged("for each changed leaf", pool(kDomain), pool(kNet + R"(,"dhcp-default-router":["10.1.1.1"])"),
           {named(0), named(0), named(1), kSubnet, routers("10.1.1.1")}),
    merged("a merge told again", kBare, kBare, {named(1), kSubnet}),
    created("a network alone", kHalf, {named(1)}, 4,
            "Error: prefix-length is not present, unable to update host address"),
    replaced("routers as far as there is room", kBare,
             pool(R"("dhcp-default-router":["110.111.112.113","110.111.112.114","110.111.112.115",)"
                  R"("110.111.112.116","110.111.112.117"])"),
             {named(1), routers(kLong)}, 4, "Error: " + kLong + " are no addresses of routers\n"),
    deleted("", kWhole, {named(0)}),
    in(rollback, created("", kWhole, {named(0)})),
    in(rollback, merged("", kBare, kWhole, {named(0)})),
    in(rollback, replaced("", kBare, kWhole, {named(0)})),
    in(rollback, loaded("", kWhole, {named(0)})),
    in(rollback, deleted("", kWhole, {named(1)})),
    in(validate, created("without network", pool(R"("prefix-length":24)"), {}, 4, kIncomplete)),
    in(validate, loaded("without prefix", kHalf, {}, 4, kIncomplete)),
    in(validate, merged("without prefix", kBare, kHalf, {}, 4, kIncomplete)),
    in(validate, deleted("a deletion", pool(R"("prefix-length":24)"))),
};

const std::string kDays = R"({"day":2,"hour":3,"minute":4})", kYear = R"({"day":365})",
                  kLease = R"("lease_days":2,"lease_hours":3,"lease_minutes":4,"no":)",
                  kSetLease = ofPool(kLeaseCall, kLease + "0"), kDropLease = ofPool(kLeaseCall, kLease + "1");
const std::vector<Cell> kLeaseCells = {
    merged("", kNone, kDays, {kSetLease}),
    replaced("", kDays, R"({"minute":5})", {ofPool(kLeaseCall, R"("lease_minutes":5,"no":0)")}),
    created("", kDays, {kSetLease}),
    deleted("", kDays, {kDropLease}),
    in(validate, merged("four minutes", kNone, R"({"minute":4})", {}, 4)),
    in(validate, loaded("four minutes", R"({"minute":4})", {}, 4)),
    in(validate, replaced("nothing is too short", kDays, kNone, {}, 4)),
    in(validate, merged("five minutes", kNone, R"({"minute":5})")),
    in(validate, created("an hour", R"({"hour":1})")),
    in(validate, merged("a year", kNone, kYear)),
    in(validate, merged("a year and a minute", kNone, R"({"day":365,"minute":1})", {}, 4)),
    in(validate, merged("so long that it could wrap", kNone, R"({"day":49711})", {}, 4)),
    in(validate, deleted("deletion is not checked", R"({"minute":4})")),
};

const Pattern range{ofPool(kExcludeCall,
                           R"("no":$,"excluded_address":{"low_range":"10.1.1.10","high_range":"10.1.1.20"},)"
                           R"("excluded_kind":2)")};
const std::string kRange = R"({"low-ip-address":"10.1.1.10","high-ip-address":"10.1.1.20"})",
                  kRangePath = kPool + "/excl-ip-address-range=10.1.1.10,10.1.1.20";
const std::vector<Cell> kRangeCells = {
    created("", kRange, {range(0)}),
    merged("told again", kRange, kRange, {range(0)}),
    replaced("", kRange, kRange, {range(0)}),
    deleted("", kRange, {range(1)}),
};

std::string option(const std::string &form, int number = 15)
{
    return R"({"option-number":)" + std::to_string(number) + (form.empty() ? "" : "," + form) + "}";
}
const Pattern addresses{option(R"("ip-format":"$")")};
// What is sent about option 15, which the switch knows by name.
const Pattern named15{ofPool(kOptionCall,
                             R"("no":$,"option_set":1,"option_format":$,"option_named":1,)"
                             R"("option_name":"domain-name","dhcp_value":"$")")};
const std::string kText = option(R"("ascii-format":"example.net")"), kSetText = named15(0, 0, "example.net"),
                  kOptionPath = kPool + "/option/dhcp-option=";
const std::vector<Cell> kOptionCells = {
    created("text", kText, {kSetText}),
    created("hex", option(R"("hex-format":"0a0b")"), {named15(0, 1, "0a0b")}),
    created("bad hex", option(R"("hex-format":"0a0")"), {}, 4),
    created("addresses", addresses("10.0.0.1  10.0.0.2"), {named15(0, 2, "10.0.0.1, 10.0.0.2")}),
    created("a number", option(R"("int-format":-7)"), {named15(0, 4, "-7")}),
    merged("true", kText, option(R"("bool-format":true)"), {named15(0, 3, "true")}),
    replaced("false", kText, option(R"("bool-format":false)"), {named15(0, 3, "false")}),
    created("the first form counts", option(R"("bool-format":true,"int-format":1,"ip-format":"1.1.1.1")"),
            {named15(0, 2, "1.1.1.1")}),
    created("no form", option(""), {}, 4),
    deleted("", kText, {named15(1, 0, "example.net")}),
    deleted("deleted without a form", option(""), {}, 4),
    created("as much text as there is room for", option(R"("ascii-format":")" + std::string(300, 'x') + "\""),
            {named15(0, 0, std::string(255, 'x'))}),
    in(validate, created("three addresses", addresses("1.1.1.1 2.2.2.2 3.3.3.3"))),
    in(validate,
       created("four addresses", addresses("1.1.1.1 2.2.2.2 3.3.3.3 4.4.4.4"), {}, 4,
               "Error: accepts maximum of 3 values")),
    in(validate,
       merged("a comma", kText, addresses("1.1.1.1,2.2.2.2"), {}, 4, "Invalid input ->1.1.1.1,2.2.2.2")),
    in(validate,
       merged("a long text with a comma", kText, addresses("," + std::string(400, 'x')), {}, 4,
              "Invalid input ->," + std::string(302, 'x'))),
    in(validate, deleted("deletion is not checked", addresses(","))),
    in(validate, created("other forms are not checked", option(R"("ascii-format":"a,b c d e f")"))),
};

TEST(DhcpPool, DoesExactlyThis)
{
    checkInPool(kPool, kPoolCells, Quiet{kBare, kBare});
    checkInPool(kPool + "/lease-time", kLeaseCells, Quiet{kDays, kDays});
    checkInPool(kRangePath, kRangeCells, Quiet{kRange, kRange});
    checkInPool(kOptionPath + "15", kOptionCells, Quiet{kText, kText});
    // An option without a name goes by its number.
    const auto numbered = [](const std::string &which) {
        return ofPool(kOptionCall,
                      R"("no":0,"option_set":1,"option_format":0,)" + which + R"(,"dhcp_value":"a")");
    };
    const std::string a = R"("ascii-format":"a")";
    checkInPool(kOptionPath + "150", {created("150", option(a, 150), {numbered(R"("option_number":150)")})});
    checkInPool(kOptionPath + "43",
                {created("43", option(a, 43),
                         {numbered(R"("option_name":"vendor-encapsulated-options","option_number":43)")})});
}

TEST(DhcpPool, ReadsItsAnswersAlike)
{
    checkAnswers(kPool, kNameCall, created("", kWhole), "dhcpv4 config name");
    checkAnswers(kPool, kSubnetCall, created("", kWhole), "dhcpv4 config subnet_network, prefix-length");
    checkAnswers(kPool, kRouterCall, created("", kWhole), "dhcpv4 config dhcp-default-router");
    checkAnswers(kPool, kExcludeCall, created("", kWhole), "dhcpv4 config excl-ip-address");
    checkAnswers(kRangePath, kExcludeCall, created("", kRange), "dhcpv4 config excl-ip-address-range");
    checkAnswers(kPool + "/lease-time", kLeaseCall, created("", kDays), "dhcpv4 config lease");
    checkAnswers(kOptionPath + "15", kOptionCall, created("", kText), "dhcpv4 option config");
}

// A pool that is made anew is told again what lies in it.
TEST(DhcpPool, AChangeTellsEverythingInItAgain)
{
    SwitchBench bench;
    ASSERT_TRUE(putPool(bench,
                        kNet + R"(,"lease-time":)" + kDays + R"(,"excl-ip-address-range":[)" + kRange +
                            R"(],"option":{"dhcp-option":[)" + kText + "]}")
                    .ok());
    const Texts below = {kSetLease, range(0), kSetText};
    EXPECT_EQ(bench.sent(), after({named(1), kSubnet}, below));
    ASSERT_TRUE(bench.put(kPool + "/domain-name", R"({"lyn-openconfig-dhcp-server:domain-name":"a"})").ok());
    EXPECT_EQ(bench.sent(), after({named(0), named(1), kSubnet}, below));
    for (const char *leaf : {"minute", "hour", "day"}) // the last leaf to go is a deletion
        ASSERT_TRUE(bench.remove(kPool + "/lease-time/" + leaf).ok());
    EXPECT_EQ(bench.sent().back(), ofPool(kLeaseCall, R"("lease_days":2,"no":1)"));
    ASSERT_TRUE(bench.remove(kPool).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(named15(1, 0, "example.net"), range(1), named(0)));
}

TEST(DhcpSwitch, IsSentAtTheStartAndOffWithoutItsLeaf)
{
    SwitchBench bench(
        R"({"lyn-openconfig-dhcp-server:dhcp-server":{"config":{"ipv4-config":{"enable":true}}}})");
    EXPECT_EQ(bench.device().show("dhcp-server").at("enabled"), true);
    ASSERT_TRUE(bench.remove(kConfig + "/enable").ok());
    EXPECT_THAT(bench.sent(), ElementsAre(kSetOff));
}

// Leases. The files of the device lie in a folder of the test's own.
class Leases : public testing::Test {
protected:
    Leases()
    {
        EXPECT_TRUE(putPool(bench, kNet).ok());
        bench.sent();
    }
    static std::string block(int number)
    {
        return "lease 10.0.0." + std::to_string(number) + " {\n  ends 4 2001/02/03 04:05:06;\n" +
            "  hardware ethernet 00:00:00:00:00:0" + std::to_string(number) + ";\n}\n";
    }
    static std::string entry(const std::string &mac, const std::string &ip)
    {
        return R"({"cli-id":")" + mac + R"(","cli-ip":")" + ip + R"(","lease-expiration":0,"lease-type":1})";
    }
    static std::string list(const std::string &entries)
    {
        return R"({"lyn-openconfig-dhcp-server:dhcp-server-binding":[)" + entries + "]}";
    }
    std::string read(const std::string &key = "") { return bench.read(kBindings + key, Content::all); }

    DeviceFolder device;
    SwitchBench bench;
    const std::string kPoolsAsked = "ui_fe_dhcpsv4_get_all_address_pools {}",
                      kSeven = entry("00:00:00:00:00:07", "10.0.0.7"),
                      kEight = entry("00:00:00:00:00:08", "10.0.0.8"),
                      kFixed = entry("02:00:00:00:01:00", "10.1.1.200"),
                      kSecond = entry("02:00:00:00:01:01", "10.1.1.201");
};

TEST_F(Leases, AreAListOfGrantedOnesBeforeFixedOnes)
{
    bench.device().setValue("dhcp-static-leases", 2);
    device.write(DHCPS_LEASE_FILE,
                 block(7) + "lease 10.0.0.300 {\n  hardware ethernet 00:00:00:00:00:09;\n}\n" + block(8) +
                     "lease 10.0.0.11 {\n  hardware ethernet 00:00:00"); // bad ones are passed over
    EXPECT_EQ(read(), list(kSeven + "," + kEight + "," + kFixed + "," + kSecond));
    EXPECT_THAT(bench.sent(), ElementsAre(kPoolsAsked));
    EXPECT_EQ(read("=00%3A00%3A00%3A00%3A00%3A08"), list(kEight));
    EXPECT_THAT(bench.sent(), IsEmpty()); // found in the file
    EXPECT_EQ(read("=02%3A00%3A00%3A00%3A01%3A01"), list(kSecond));
    EXPECT_EQ(read("=ff%3A00%3A00%3A00%3A00%3A08"), "");
    EXPECT_EQ(read("=00%3A00%3A00%3A00%3A00%3A0"), "");
    strike(bench, noAnswer("ui_fe_dhcpsv4_get_all_address_pools"));
    EXPECT_EQ(read(), list(kSeven + "," + kEight)); // those of the file
}

TEST_F(Leases, WithoutAFileAreFixedOnes)
{
    EXPECT_EQ(read(), "");
    bench.device().setValue("dhcp-static-leases", 1);
    EXPECT_EQ(read(), list(kFixed));
    bench.device().setValue("dhcp-static-leases", 200); // more than the table of a pool has slots
    const std::string all = read();
    EXPECT_THAT(all, HasSubstr("02:00:00:00:01:7f"));
    EXPECT_THAT(all, Not(HasSubstr("02:00:00:00:01:80")));
    for (const char *text : {"", "# nothing yet\n", "lease 10.0.0.1\n"}) {
        device.write(DHCPS_LEASE_FILE, text);
        EXPECT_EQ(readFailure(bench, kBindings), 4) << text;
    }
}

TEST_F(Leases, AreThoseThatTheSwitchWrites)
{
    bench.device().setValue("dhcp-leases", 300);
    const std::string all = read();
    EXPECT_EQ(std::count(all.begin(), all.end(), '{'), 301);
    EXPECT_THAT(all, HasSubstr(R"("cli-id":"02:00:00:00:01:2b","cli-ip":"10.1.2.53","lease-expiration":86)"));
    bench.device().setValue("dhcp-leases", 0);
    EXPECT_EQ(read(), "");
}

} // namespace
} // namespace test
