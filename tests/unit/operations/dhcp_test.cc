// The DHCP server: what each callback sends in which phase, how whole edits come out, and the leases as a
// list.
#include "backend/device_files.h"
#include "backend/dhcp_server.h"

#include "tests/unit/bundle/log_capture.h"
#include "tests/unit/interfaces/cells.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace test {
namespace {

using namespace tk;
using switchsim::FaultKind;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kServer = "lyn-openconfig-dhcp-server:dhcp-server",
                  kConfig = kServer + "/config/ipv4-config", kPool = kConfig + "/dhcpv4-pool=p",
                  kBindings = kServer + "/state/ipv4-state/dhcp-server-binding";

std::string sent(const std::string &call, const std::string &fields)
{
    return call + " {" + fields + "}";
}
std::string named(int add)
{
    return sent("ui_fe_dhpsv4_set_pool_name", R"("name":"p","add":)" + std::to_string(add));
}
std::string state(int enable)
{
    return sent("ui_fe_dhcpv4_server_set_server_state", R"("enable":)" + std::to_string(enable));
}
std::string ofPool(const std::string &call, const std::string &fields)
{
    return sent(call, R"("pool_name":"p",)" + fields);
}

// A pool is there before every case, as it is when the switch is told of what lies in it.
class DhcpCells : public Cells {
protected:
    void SetUp() override
    {
        bench_->device().setValue("dhcp-client-enabled", 0);
        ui_fe_dhcpv4_server_response_free(ui_fe_dhpsv4_set_pool_name("p", 0));
        ui_fe_dhcpv4_server_response_free(ui_fe_dhpsv4_set_pool_name("p", 1));
        dhcp4_subnet_config subnet{};
        subnet.pool_name[0] = 'p';
        subnet.subnet_network = 0x0a010100;
        subnet.subnet_mask = 0xffffff00;
        ui_fe_dhcpv4_server_response_free(ui_fe_dhpsv4_set_pool_subnet_and_mask(subnet));
    }
};

const std::string kOn = R"({"enable":true})", kOff = R"({"enable":false})", kMgmt = R"({"mgmt":true})",
                  kBeside = "Error: cannot enable this feature while the DHCP-Client is enabled";

class ServerSwitch : public DhcpCells { };
TEST_P(ServerSwitch, Sends)
{
    check(kConfig);
}
const Cell kSwitchCells[] = {
    {"on_in_commit", commit, merge, kOff, kOn, {state(1)}},
    {"off_in_commit", commit, merge, kOn, kOff, {state(0)}},
    {"created", commit, create, kAbsent, kOn, {state(1)}},
    {"replaced", commit, replace, kOff, kOn, {state(1)}},
    {"loaded", commit, load, kAbsent, kOn, {state(1)}},
    {"loaded_off", commit, load, kAbsent, kOff, {state(0)}},
    {"without_the_leaf", commit, merge, "{}", kMgmt},
    {"deleted", commit, del, kOn, kAbsent, {state(0)}},
    {"deleted_without_the_leaf", commit, del, kMgmt, kAbsent},
    {"its_leaf_deleted", commit, merge, kOn, "{}", {state(0)}},
    {"apply_sends_nothing", apply, merge, kOff, kOn},
    {"rollback_sends_nothing", rollback, merge, kOff, kOn},
    {"validate_passes", validate, merge, "{}", kOn},
};
INSTANTIATE_TEST_SUITE_P(Table, ServerSwitch, testing::ValuesIn(kSwitchCells), CaseName());

class BesideClient : public DhcpCells { };
TEST_P(BesideClient, Sends)
{
    bench_->device().setValue("dhcp-client-enabled", 1);
    check(kConfig);
}
const Cell kBesideCells[] = {
    {"a_first_on", validate, merge, "{}", kOn, {}, 4, kBeside},
    {"turned_on", validate, merge, kOff, kOn, {}, 4, kBeside},
    {"created_on", validate, create, kAbsent, kOn, {}, 4, kBeside},
    {"loaded_on", validate, load, kAbsent, kOn, {}, 4, kBeside},
    {"on_as_late_as_in_commit", commit, replace, kOff, kOn, {}, 4, kBeside},
    {"turned_off", validate, merge, kOn, kOff},
    {"off_in_commit", commit, merge, kOn, kOff, {state(0)}},
    {"its_leaf_deleted", validate, merge, kOn, "{}"},
    {"its_leaf_deleted_in_commit", commit, merge, kOn, "{}", {state(0)}},
    {"deleted", validate, del, kOn, kAbsent},
    {"apply_does_not_look", apply, merge, kOff, kOn},
};
INSTANTIATE_TEST_SUITE_P(Table, BesideClient, testing::ValuesIn(kBesideCells), CaseName());

std::string pool(const std::string &fields)
{
    return R"({"name":"p",)" + fields + "}";
}
std::string subnet(const std::string &network, const std::string &mask)
{
    return ofPool("ui_fe_dhpsv4_set_pool_subnet_and_mask",
                  R"("subnet_network":")" + network + R"(",)" +
                      (mask.empty() ? "" : R"("subnet_mask":")" + mask + R"(",)") + R"("no":0)");
}
std::string routers(const std::string &text)
{
    return ofPool(
        "ui_fe_dhcpsv4_set_default_router_servers",
        R"("no":0,"option_set":1,"option_format":2,"option_named":1,"option_name":"routers","dhcp_value":")" +
            text + "\"");
}
std::string excluded(const std::string &address)
{
    return ofPool("ui_fe_dhcpsv4_excluded_address",
                  R"("no":0,"excluded_address":{"low_range":")" + address + R"("},"excluded_kind":1)");
}
const std::string kNet = R"("subnet_network":"10.1.1.0","prefix-length":24)";
const std::string kWhole = kNet +
    R"(,"dhcp-default-router":["10.1.1.1","10.1.1.2"],"excl-ip-address":["10.1.1.1","10.1.1.2"],"domain-name":"a")";
const std::vector<std::string> kBuilt = {named(1), subnet("10.1.1.0", "255.255.255.0"),
                                         routers("10.1.1.1, 10.1.1.2"), excluded("10.1.1.1"),
                                         excluded("10.1.1.2")};
const std::string kIncomplete =
    "Error: subnet_network/prefix-length is not present, unable to configure dhcpv4 server pool";

std::vector<std::string> after(std::vector<std::string> first, const std::vector<std::string> &rest)
{
    first.insert(first.end(), rest.begin(), rest.end());
    return first;
}

class PoolEdit : public DhcpCells { };
TEST_P(PoolEdit, Sends)
{
    check(kPool);
}
const Cell kPoolCells[] = {
    {"created", apply, create, kAbsent, pool(kWhole), kBuilt},
    {"replaced", apply, replace, pool(kNet), pool(kWhole), kBuilt},
    {"nothing_but_a_network",
     apply,
     create,
     kAbsent,
     pool(kNet),
     {named(1), subnet("10.1.1.0", "255.255.255.0")}},
    {"a_prefix_of_32",
     apply,
     create,
     kAbsent,
     pool(R"("subnet_network":"10.2.0.7","prefix-length":32)"),
     {named(1), subnet("10.2.0.7", "255.255.255.255")}},
    {"a_prefix_of_0",
     apply,
     create,
     kAbsent,
     pool(R"("subnet_network":"0.0.0.0","prefix-length":0)"),
     {named(1), ofPool("ui_fe_dhpsv4_set_pool_subnet_and_mask", R"("no":0)")}},
    {"a_merge_makes_it_anew",
     apply,
     merge,
     pool(kNet),
     pool(kNet + R"(,"domain-name":"a")"),
     {named(0), named(1), subnet("10.1.1.0", "255.255.255.0")}},
    {"for_each_changed_leaf",
     apply,
     merge,
     pool(kNet + R"(,"domain-name":"a")"),
     pool(kNet + R"(,"dhcp-default-router":["10.1.1.1"])"),
     {named(0), named(0), named(1), subnet("10.1.1.0", "255.255.255.0"), routers("10.1.1.1")}},
    {"a_merge_told_again",
     apply,
     merge,
     pool(kNet),
     pool(kNet),
     {named(1), subnet("10.1.1.0", "255.255.255.0")}},
    {"a_network_alone",
     apply,
     create,
     kAbsent,
     pool(R"("subnet_network":"10.1.1.0")"),
     {named(1)},
     4,
     "Error: prefix-length is not present, unable to update host address"},
    {"routers_as_far_as_there_is_room",
     apply,
     replace,
     pool(kNet),
     pool(
         R"("dhcp-default-router":["110.111.112.113","110.111.112.114","110.111.112.115","110.111.112.116","110.111.112.117"])"),
     {named(1), routers("110.111.112.113, 110.111.112.114, 110.111.112.115, 110.111.112.")},
     4,
     "Error: 110.111.112.113, 110.111.112.114, 110.111.112.115, 110.111.112. are no addresses of routers\n"},
    {"deleted", apply, del, pool(kWhole), kAbsent, {named(0)}},
    {"loaded", apply, load, kAbsent, pool(kWhole)},
    {"rollback_of_a_creation", rollback, create, kAbsent, pool(kWhole), {named(0)}},
    {"rollback_of_a_change", rollback, merge, pool(kNet), pool(kWhole), {named(0)}},
    {"rollback_of_a_deletion", rollback, del, pool(kWhole), kAbsent, {named(1)}},
    {"commit", commit, create, kAbsent, pool(kWhole)},
    {"validate", validate, create, kAbsent, pool(kWhole)},
    {"validate_without_network",
     validate,
     create,
     kAbsent,
     pool(R"("prefix-length":24)"),
     {},
     4,
     kIncomplete},
    {"validate_without_prefix",
     validate,
     merge,
     pool(kNet),
     pool(R"("subnet_network":"10.1.1.0")"),
     {},
     4,
     kIncomplete},
    {"validate_of_a_deletion", validate, del, pool(R"("prefix-length":24)"), kAbsent},
};
INSTANTIATE_TEST_SUITE_P(Table, PoolEdit, testing::ValuesIn(kPoolCells), CaseName());

std::string lease(const std::string &fields)
{
    return ofPool("ui_fe_dhcpsv4_set_lease_time", fields);
}
const std::string kDays = R"({"day":2,"hour":3,"minute":4})";

class LeaseTime : public DhcpCells { };
TEST_P(LeaseTime, Sends)
{
    check(kPool + "/lease-time");
}
const Cell kLeaseCells[] = {
    {"set", apply, merge, "{}", kDays, {lease(R"("lease_days":2,"lease_hours":3,"lease_minutes":4,"no":0)")}},
    {"replaced", apply, replace, kDays, R"({"minute":5})", {lease(R"("lease_minutes":5,"no":0)")}},
    {"deleted",
     apply,
     del,
     kDays,
     kAbsent,
     {lease(R"("lease_days":2,"lease_hours":3,"lease_minutes":4,"no":1)")}},
    {"loaded", apply, load, kAbsent, kDays},
    {"rollback", rollback, merge, "{}", kDays},
    {"commit", commit, merge, "{}", kDays},
    {"four_minutes", validate, merge, "{}", R"({"minute":4})", {}, 4},
    {"nothing_is_too_short", validate, replace, kDays, "{}", {}, 4},
    {"five_minutes", validate, merge, "{}", R"({"minute":5})"},
    {"an_hour", validate, create, kAbsent, R"({"hour":1})"},
    {"a_year", validate, merge, "{}", R"({"day":365})"},
    {"a_year_and_a_minute", validate, merge, "{}", R"({"day":365,"minute":1})", {}, 4},
    {"so_long_that_it_could_wrap", validate, merge, "{}", R"({"day":49711})", {}, 4},
    {"deletion_is_not_checked", validate, del, R"({"minute":4})", kAbsent},
};
INSTANTIATE_TEST_SUITE_P(Table, LeaseTime, testing::ValuesIn(kLeaseCells), CaseName());

std::string range(int no)
{
    return ofPool(
        "ui_fe_dhcpsv4_excluded_address",
        "\"no\":" + std::to_string(no) +
            R"(,"excluded_address":{"low_range":"10.1.1.10","high_range":"10.1.1.20"},"excluded_kind":2)");
}
const std::string kRange = R"({"low-ip-address":"10.1.1.10","high-ip-address":"10.1.1.20"})";
class ExcludedRange : public DhcpCells { };
TEST_P(ExcludedRange, Sends)
{
    check(kPool + "/excl-ip-address-range=10.1.1.10,10.1.1.20");
}
const Cell kRangeCells[] = {
    {"created", apply, create, kAbsent, kRange, {range(0)}},
    {"told_again", apply, merge, kRange, kRange, {range(0)}},
    {"deleted", apply, del, kRange, kAbsent, {range(1)}},
    {"loaded", apply, load, kAbsent, kRange},
    {"validate", validate, create, kAbsent, kRange},
    {"rollback", rollback, create, kAbsent, kRange},
};
INSTANTIATE_TEST_SUITE_P(Table, ExcludedRange, testing::ValuesIn(kRangeCells), CaseName());

std::string option(int number, const std::string &form)
{
    return R"({"option-number":)" + std::to_string(number) + (form.empty() ? "" : "," + form) + "}";
}
// What is sent about option 15, which the switch knows by name.
std::string named15(int no, int format, const std::string &value)
{
    return ofPool("send_dhcp4_option_config_to_plugin",
                  "\"no\":" + std::to_string(no) + R"(,"option_set":1,"option_format":)" +
                      std::to_string(format) +
                      R"(,"option_named":1,"option_name":"domain-name","dhcp_value":")" + value + "\"");
}
class Option15 : public DhcpCells { };
TEST_P(Option15, Sends)
{
    check(kPool + "/option/dhcp-option=15");
}
const std::string kText = option(15, R"("ascii-format":"example.net")");
const Cell kOptionCells[] = {
    {"text", apply, create, kAbsent, kText, {named15(0, 0, "example.net")}},
    {"hex", apply, create, kAbsent, option(15, R"("hex-format":"0a0b")"), {named15(0, 1, "0a0b")}},
    {"bad_hex", apply, create, kAbsent, option(15, R"("hex-format":"0a0")"), {}, 4},
    {"addresses",
     apply,
     create,
     kAbsent,
     option(15, R"("ip-format":"10.0.0.1  10.0.0.2")"),
     {named15(0, 2, "10.0.0.1, 10.0.0.2")}},
    {"a_number", apply, create, kAbsent, option(15, R"("int-format":-7)"), {named15(0, 4, "-7")}},
    {"true", apply, create, kAbsent, option(15, R"("bool-format":true)"), {named15(0, 3, "true")}},
    {"false", apply, replace, kText, option(15, R"("bool-format":false)"), {named15(0, 3, "false")}},
    {"the_first_form_counts",
     apply,
     create,
     kAbsent,
     option(15, R"("bool-format":true,"int-format":1,"ip-format":"1.1.1.1")"),
     {named15(0, 2, "1.1.1.1")}},
    {"no_form", apply, create, kAbsent, option(15, ""), {}, 4},
    {"deleted", apply, del, kText, kAbsent, {named15(1, 0, "example.net")}},
    {"deleted_without_a_form", apply, del, option(15, ""), kAbsent, {}, 4},
    {"loaded", apply, load, kAbsent, kText},
    {"as_much_text_as_there_is_room_for",
     apply,
     create,
     kAbsent,
     option(15, R"("ascii-format":")" + std::string(300, 'x') + "\""),
     {named15(0, 0, std::string(255, 'x'))}},
    {"commit", commit, create, kAbsent, kText},
    {"rollback", rollback, create, kAbsent, kText},
    {"three_addresses", validate, create, kAbsent, option(15, R"("ip-format":"1.1.1.1 2.2.2.2 3.3.3.3")")},
    {"four_addresses",
     validate,
     create,
     kAbsent,
     option(15, R"("ip-format":"1.1.1.1 2.2.2.2 3.3.3.3 4.4.4.4")"),
     {},
     4,
     "Error: accepts maximum of 3 values"},
    {"a_comma",
     validate,
     merge,
     kText,
     option(15, R"("ip-format":"1.1.1.1,2.2.2.2")"),
     {},
     4,
     "Invalid input ->1.1.1.1,2.2.2.2"},
    {"a_long_text_with_a_comma",
     validate,
     merge,
     kText,
     option(15, R"("ip-format":",)" + std::string(400, 'x') + "\""),
     {},
     4,
     "Invalid input ->," + std::string(302, 'x')},
    {"deletion_is_not_checked", validate, del, option(15, R"("ip-format":",")"), kAbsent},
    {"other_forms_are_not_checked", validate, create, kAbsent, option(15, R"("ascii-format":"a,b c d e f")")},
};
INSTANTIATE_TEST_SUITE_P(Table, Option15, testing::ValuesIn(kOptionCells), CaseName());

TEST(DhcpOption, WithoutANameGoesByItsNumber)
{
    SwitchBench bench;
    const std::string start = R"("no":0,"option_set":1,"option_format":0,"option_named":0,)";
    const std::string path = kPool + "/option/dhcp-option=";
    ui_fe_dhcpv4_server_response_free(ui_fe_dhpsv4_set_pool_name("p", 1));
    bench.sent();
    for (const int number : {150, 255, 43})
        EXPECT_EQ(bench
                      .call(apply, create, path + std::to_string(number), kAbsent,
                            option(number, R"("ascii-format":"a")"))
                      .status,
                  kOk);
    std::vector<std::string> expected;
    for (const std::string &which :
         {std::string(R"("option_number":150)"), std::string(R"("option_number":255)"),
          std::string(R"("option_name":"vendor-encapsulated-options","option_number":43)")})
        expected.push_back(
            ofPool("send_dhcp4_option_config_to_plugin",
                   R"("no":0,"option_set":1,"option_format":0,)" + which + R"(,"dhcp_value":"a")"));
    EXPECT_EQ(bench.sent(), expected);
}

struct Request {
    std::string name, call, path, entry, line;
};
void PrintTo(const Request &request, std::ostream *out)
{
    *out << request.name;
}
class DhcpAnswers : public testing::TestWithParam<Request> { };
TEST_P(DhcpAnswers, AreReadAlike)
{
    const Request &c = GetParam();
    SwitchBench bench;
    ui_fe_dhcpv4_server_response_free(ui_fe_dhpsv4_set_pool_name("p", 1));
    const EditPhase phase = c.path == kConfig ? commit : apply;
    for (const auto &[kind, words] :
         {std::pair(FaultKind::null, ""), {FaultKind::refuse, "its words"}, {FaultKind::refuse, ""}}) {
        bench.device().clearFaults();
        bench.device().addFault(faultOf(c.call, kind, words));
        const LogCapture log;
        const Callback done = bench.call(phase, create, c.path, kAbsent, c.entry);
        EXPECT_EQ(done.status, 4);
        ASSERT_EQ(done.records.size(), 1u);
        EXPECT_EQ(done.records[0].text, words);
        EXPECT_EQ(done.records[0].status, 4);
        EXPECT_THAT(log.errors(),
                    HasSubstr(std::string("cbtype [") + agt_cbtype_name(phase) + "] editop [create]"));
        EXPECT_EQ(log.errors().find(c.line + " Error: its words") != std::string::npos, *words != '\0')
            << log.errors();
    }
}
const Request kRequests[] = {
    {"state", "ui_fe_dhcpv4_server_set_server_state", kConfig, kOn, "ipv4 config enable"},
    {"name", "ui_fe_dhpsv4_set_pool_name", kPool, pool(kWhole), "dhcpv4 config name"},
    {"subnet", "ui_fe_dhpsv4_set_pool_subnet_and_mask", kPool, pool(kWhole),
     "dhcpv4 config subnet_network, prefix-length"},
    {"routers", "ui_fe_dhcpsv4_set_default_router_servers", kPool, pool(kWhole),
     "dhcpv4 config dhcp-default-router"},
    {"excluded", "ui_fe_dhcpsv4_excluded_address", kPool, pool(kWhole), "dhcpv4 config excl-ip-address"},
    {"range", "ui_fe_dhcpsv4_excluded_address", kPool + "/excl-ip-address-range=10.1.1.10,10.1.1.20", kRange,
     "dhcpv4 config excl-ip-address-range"},
    {"lease", "ui_fe_dhcpsv4_set_lease_time", kPool + "/lease-time", kDays, "dhcpv4 config lease"},
    {"option", "send_dhcp4_option_config_to_plugin", kPool + "/option/dhcp-option=15", kText,
     "dhcpv4 option config"},
};
INSTANTIATE_TEST_SUITE_P(Table, DhcpAnswers, testing::ValuesIn(kRequests), CaseName());

// A pool that is made anew is told again what lies in it.
TEST(DhcpPool, AChangeTellsEverythingInItAgain)
{
    SwitchBench bench;
    const std::string inside = R"(,"lease-time":{"day":2,"hour":3,"minute":4},"excl-ip-address-range":[)" +
        kRange + R"(],"option":{"dhcp-option":[)" + kText + "]}";
    ASSERT_TRUE(
        bench.put(kPool, R"({"lyn-openconfig-dhcp-server:dhcpv4-pool":[)" + pool(kNet + inside) + "]}").ok());
    const std::vector<std::string> below = {
        lease(R"("lease_days":2,"lease_hours":3,"lease_minutes":4,"no":0)"), range(0),
        named15(0, 0, "example.net")};
    EXPECT_EQ(bench.sent(), after({named(1), subnet("10.1.1.0", "255.255.255.0")}, below));
    ASSERT_TRUE(bench.put(kPool + "/domain-name", R"({"lyn-openconfig-dhcp-server:domain-name":"a"})").ok());
    EXPECT_EQ(bench.sent(), after({named(0), named(1), subnet("10.1.1.0", "255.255.255.0")}, below));
    ASSERT_TRUE(bench.remove(kPool + "/lease-time").ok());
    EXPECT_THAT(bench.sent(),
                ElementsAre(lease(R"("lease_days":2,"lease_hours":3,"lease_minutes":4,"no":1)")));
    ASSERT_TRUE(bench.remove(kPool).ok());
    EXPECT_THAT(bench.sent(), ElementsAre(named15(1, 0, "example.net"), range(1), named(0)));
}

TEST(DhcpPool, LosingTheLastLeafOfTheLeaseTimeIsADeletion)
{
    SwitchBench bench;
    ASSERT_TRUE(bench
                    .put(kPool,
                         R"({"lyn-openconfig-dhcp-server:dhcpv4-pool":[)" +
                             pool(kNet + R"(,"lease-time":{"hour":3})") + "]}")
                    .ok());
    bench.sent();
    ASSERT_TRUE(bench.remove(kPool + "/lease-time/hour").ok());
    EXPECT_THAT(bench.sent(), ElementsAre(lease(R"("lease_hours":3,"no":1)")));
}

TEST(DhcpSwitch, LosingItsLeafSwitchesOff)
{
    SwitchBench bench;
    ASSERT_TRUE(bench.put(kConfig + "/enable", R"({"lyn-openconfig-dhcp-server:enable":true})").ok());
    ASSERT_TRUE(bench.remove(kConfig + "/enable").ok());
    EXPECT_THAT(bench.sent(), ElementsAre(state(1), state(0)));
}

TEST(DhcpSwitch, IsSentAtTheStart)
{
    SwitchBench bench(
        R"({"lyn-openconfig-dhcp-server:dhcp-server":{"config":{"ipv4-config":{"enable":true}}}})");
    EXPECT_EQ(bench.device().show("dhcp-server").at("enabled"), true);
}

// Leases. The files of the device lie in a folder of the test's own.
class Leases : public testing::Test {
protected:
    Leases()
    {
        char name[] = "/tmp/operations-test-XXXXXX";
        root_ = mkdtemp(name);
        backend_set_file_root(root_.c_str());
    }
    ~Leases() override
    {
        backend_set_file_root(nullptr);
        std::filesystem::remove_all(root_);
    }

    void write(const std::string &text) const
    {
        const std::filesystem::path file = root_.string() + DHCPS_LEASE_FILE;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << text;
    }
    static std::string block(int number)
    {
        return "lease 10.0.0." + std::to_string(number) + " {\n  ends 4 2001/02/03 04:05:06;\n" +
            "  hardware ethernet 00:00:00:00:00:" + (number < 10 ? "0" : "") + std::to_string(number) +
            ";\n}\n";
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
    void makePool()
    {
        ASSERT_TRUE(
            bench.put(kPool, R"({"lyn-openconfig-dhcp-server:dhcpv4-pool":[)" + pool(kNet) + "]}").ok());
        bench.sent();
    }

    std::filesystem::path root_;
    SwitchBench bench;
    const std::string kPoolsAsked = "ui_fe_dhcpsv4_get_all_address_pools {}";
};

TEST_F(Leases, AsAListGrantedOnesBeforeFixedOnes)
{
    makePool();
    bench.device().setValue("dhcp-static-leases", 2);
    write(block(7) + block(8));
    EXPECT_EQ(read(),
              list(entry("00:00:00:00:00:07", "10.0.0.7") + "," + entry("00:00:00:00:00:08", "10.0.0.8") +
                   "," + entry("02:00:00:00:01:00", "10.1.1.200") + "," +
                   entry("02:00:00:00:01:01", "10.1.1.201")));
    EXPECT_THAT(bench.sent(), ElementsAre(kPoolsAsked));
}

TEST_F(Leases, OneByItsKey)
{
    makePool();
    bench.device().setValue("dhcp-static-leases", 2);
    write(block(7) + block(8));
    EXPECT_EQ(read("=00%3A00%3A00%3A00%3A00%3A08"), list(entry("00:00:00:00:00:08", "10.0.0.8")));
    EXPECT_THAT(bench.sent(), IsEmpty()); // found in the file
    EXPECT_EQ(read("=02%3A00%3A00%3A00%3A01%3A01"), list(entry("02:00:00:00:01:01", "10.1.1.201")));
    EXPECT_EQ(read("=02%3A00%3A00%3A00%3A01%3A01/cli-ip"),
              R"({"lyn-openconfig-dhcp-server:cli-ip":"10.1.1.201"})");
    EXPECT_EQ(read("=ff%3A00%3A00%3A00%3A00%3A08"), "");
    EXPECT_EQ(read("=00%3A00%3A00%3A00%3A00%3A0"), "");
}

TEST_F(Leases, WithoutAFileOnlyFixedOnes)
{
    makePool();
    EXPECT_EQ(read(), "");
    bench.device().setValue("dhcp-static-leases", 1);
    EXPECT_EQ(read(), list(entry("02:00:00:00:01:00", "10.1.1.200")));
    bench.device().setValue("dhcp-static-leases", 200); // more than the table of a pool has slots
    const std::string all = read();
    EXPECT_THAT(all, HasSubstr("02:00:00:00:01:7f"));
    EXPECT_THAT(all, testing::Not(HasSubstr("02:00:00:00:01:80")));
}

TEST_F(Leases, AFileWithoutABlockIsAFailure)
{
    for (const char *text : {"", "# nothing yet\n", "lease 10.0.0.1\n"}) {
        write(text);
        try {
            read();
            FAIL() << "no refusal for: " << text;
        } catch (const Failure &failure) {
            EXPECT_EQ(failure.errors.at(0).appTag, "4") << text;
        }
    }
}

TEST_F(Leases, BadBlocksArePassedOver)
{
    write(block(7) + "lease 10.0.0.300 {\n  hardware ethernet 00:00:00:00:00:09;\n}\nlease 10.0.0.10 {\n}\n" +
          block(8) + "lease 10.0.0.11 {\n  hardware ethernet 00:00:00");
    EXPECT_EQ(read(),
              list(entry("00:00:00:00:00:07", "10.0.0.7") + "," + entry("00:00:00:00:00:08", "10.0.0.8")));
}

TEST_F(Leases, WithTheDaemonDownThoseOfTheFile)
{
    write(block(7));
    bench.device().addFault(faultOf("ui_fe_dhcpsv4_get_all_address_pools", FaultKind::null));
    EXPECT_EQ(read(), list(entry("00:00:00:00:00:07", "10.0.0.7")));
}

TEST_F(Leases, AsTheSwitchWritesThem)
{
    makePool();
    bench.device().setValue("dhcp-leases", 300);
    const std::string all = read();
    std::size_t count = 0;
    for (std::size_t at = 0; (at = all.find("cli-id", at)) != all.npos; ++at)
        ++count;
    EXPECT_EQ(count, 300u);
    EXPECT_THAT(all, HasSubstr(R"("cli-id":"02:00:00:00:01:2b","cli-ip":"10.1.2.53","lease-expiration":86)"));
    bench.device().setValue("dhcp-leases", 0);
    EXPECT_EQ(read(), "");
}

} // namespace
} // namespace test
