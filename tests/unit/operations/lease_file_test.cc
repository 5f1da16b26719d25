// The DHCP server's texts: the file of leases in whatever state it is found, and the values of options.
#include "backend/dhcp_server.h"
#include "dhcp/lease_file.h"

#include <gmock/gmock.h>

#include <ctime>
#include <string>
#include <vector>

namespace test {
namespace {

using dhcp::Block;
using testing::ElementsAre;
using testing::ElementsAreArray;

std::string ending(std::int64_t seconds)
{
    const std::time_t time = std::time(nullptr) + seconds;
    tm parts{};
    char text[64];
    gmtime_r(&time, &parts);
    std::strftime(text, sizeof text, "%w %Y/%m/%d %H:%M:%S", &parts);
    return text;
}

std::string block(const std::string &address, const std::string &fields)
{
    return "lease " + address + " {\n" + fields + "}\n";
}
const std::string kMac = "  hardware ethernet 02:00:00:00:00:01;\n";

// "MAC ADDRESS" of each whole block, "-" for an unusable one.
std::vector<std::string> blocksOf(std::string_view text)
{
    std::vector<std::string> blocks;
    dhcp::Lease lease{};
    for (Block found; (found = dhcp::takeBlock(text, lease)) != Block::none;)
        blocks.push_back(found == Block::whole ? std::string(lease.mac) + " " + lease.address : "-");
    return blocks;
}

TEST(LeaseFile, BlocksInEveryState)
{
    const std::string whole = block("10.0.0.9", kMac), mac = "02:00:00:00:00:01";
    const std::string longMac = "02:00:00:00:00:01:02:03:04:05";
    struct Case {
        const char *name;
        std::string text;
        std::vector<std::string> blocks;
    };
    for (const Case &c : {
             Case{"nothing", "", {}},
             Case{"no block", "# leases {\nserver-duid \"x\";\n", {}},
             Case{"a remark that looks like one", "# lease 10.0.0.1 {\n" + whole, {mac + " 10.0.0.9"}},
             Case{"no brace", "lease 10.0.0.9\n" + kMac + "}\n", {}},
             Case{"two", whole + "\n" + block("10.0.0.10", kMac), {mac + " 10.0.0.9", mac + " 10.0.0.10"}},
             Case{"text in front of it", "a b\n}\n;;\n" + whole, {mac + " 10.0.0.9"}},
             Case{"cut off behind the brace", whole + "lease 10.0.0.10 {", {mac + " 10.0.0.9", "-"}},
             Case{"cut off in a field",
                  whole + "lease 10.0.0.10 {\n  hardware ethernet 02:00:0",
                  {mac + " 10.0.0.9", "-"}},
             Case{"no MAC address", block("10.0.0.9", "  ends never;\n") + whole, {"-", mac + " 10.0.0.9"}},
             Case{"an empty MAC address", block("10.0.0.9", "  hardware ethernet ;\n"), {"-"}},
             Case{"a field that stands elsewhere in its line", block("10.0.0.9", " " + kMac), {"-"}},
             Case{"no address", block("", kMac), {"-"}},
             Case{"a bad address", block("10.0.0.256", kMac), {"-"}},
             Case{"an over-long address", block(std::string(500, '1'), kMac), {"-"}},
             Case{"an address with a tail", block("10.0.0.1" + std::string(500, '0'), kMac), {"-"}},
             Case{"an over-long MAC address",
                  block("10.0.0.9", "  hardware ethernet " + longMac + ";\n"),
                  {longMac.substr(0, 19) + " 10.0.0.9"}},
             Case{"a field without its end",
                  block("10.0.0.9", "  hardware ethernet 02:00:00:00:00:01"),
                  {mac + " 10.0.0.9"}},
             Case{"a brace in front of everything", "}" + whole, {mac + " 10.0.0.9"}},
         })
        EXPECT_THAT(blocksOf(c.text), ElementsAreArray(c.blocks)) << c.name;
}

std::int32_t expirationOf(const std::string &ends)
{
    const std::string text = block("10.0.0.9", kMac + "  ends " + ends + ";\n");
    std::string_view rest = text;
    dhcp::Lease lease{};
    EXPECT_EQ(dhcp::takeBlock(rest, lease), Block::whole);
    return lease.expiration;
}

TEST(LeaseFile, TimeLeft)
{
    for (const std::int64_t left : {60, 3'600, 86'399, 31'536'000})
        EXPECT_NEAR(expirationOf(ending(left)), left, 5) << left;
    EXPECT_EQ(expirationOf("5 9999/12/31 23:59:59"), 2'147'483'647); // it does not wrap
    for (const char *none :
         {"never", "", "4 2001/02/03 04:05:06", "4", "4 2090", "4 2090/02/03", "4 2090-02-03 04:05:06",
          "4 2090/13/03 04:05:06", "4 2090/00/03 04:05:06", "4 2090/02/32 04:05:06", "4 2090/02/03 24:05:06",
          "4 99999999999/02/03 04:05:06", "4 2147483647/02/03 04:05:06",
          "4 -2147483648/-2147483648/03 04:05:06", "epoch 3723862680"})
        EXPECT_EQ(expirationOf(none), 0) << none;
}

// A field of one block is none of the next.
TEST(LeaseFile, NothingIsCarriedOver)
{
    const std::string text = block("10.0.0.9", kMac + "  ends " + ending(500) + ";\n") +
        block("10.0.0.10", kMac) + block("10.0.0.11", "  ends " + ending(500) + ";\n");
    std::string_view rest = text;
    dhcp::Lease lease{};
    EXPECT_EQ(dhcp::takeBlock(rest, lease), Block::whole);
    EXPECT_GT(lease.expiration, 0);
    EXPECT_EQ(dhcp::takeBlock(rest, lease), Block::whole);
    EXPECT_EQ(lease.expiration, 0);
    EXPECT_EQ(dhcp::takeBlock(rest, lease), Block::unusable);
}

TEST(OptionValue, AddressesWithBlanksBetween)
{
    struct Case {
        const char *given, *written;
        int count;
    };
    for (const Case &c : {Case{"", "", 0},
                          {" \t ", "", 0},
                          {"10.0.0.1", "10.0.0.1", 1},
                          {" a  b ", "a, b", 2},
                          {"1 2 3 4", "1, 2, 3, 4", 4}}) {
        char text[32];
        std::snprintf(text, sizeof text, "%s", c.given);
        EXPECT_EQ(dhcps_update_option_value_ip_str(text, sizeof text), c.count) << c.given;
        EXPECT_STREQ(text, c.written);
    }
    char full[10] = "1 2 3 4 5"; // grows, and whole words fall off
    EXPECT_EQ(dhcps_update_option_value_ip_str(full, sizeof full), 5);
    EXPECT_STREQ(full, "1, 2, 3");
}

TEST(OptionValue, HexadecimalDigits)
{
    struct Case {
        const char *text;
        int count;
    };
    for (const Case &c : {Case{"00", 1},
                          {"aB0f", 2},
                          {"aa:bb:cc", 3},
                          {"", -1},
                          {"a", -1},
                          {"abc", -1},
                          {"xy", -1},
                          {"aa:", -1},
                          {":aa", -1},
                          {"aa::bb", -1},
                          {"aabbccdd", 4},
                          {"aabbccddee", -1}}) {
        std::uint8_t bytes[4] = {};
        EXPECT_EQ(dhcps_ascii2hex(c.text, bytes, sizeof bytes), c.count) << c.text;
    }
    std::uint8_t bytes[4] = {};
    dhcps_ascii2hex("0a:Ff", bytes, sizeof bytes);
    EXPECT_THAT(bytes, ElementsAre(10, 255, 0, 0));
}

TEST(StaticLeases, FillTheirTableAndNoMore)
{
    std::vector<std::uint8_t> mac(6, 7), shortMac(5, 7);
    std::vector<DhcpsStaticLease> leases(200, DHCPS_STATIC_LEASE__INIT);
    std::vector<DhcpsStaticLease *> list;
    for (std::size_t i = 0; i < leases.size(); ++i) {
        leases[i].address = static_cast<std::uint32_t>(i); // the first is no address
        leases[i].mac = {i == 1 ? shortMac.size() : mac.size(), i == 1 ? shortMac.data() : mac.data()};
        list.push_back(&leases[i]);
    }
    DhcpsAddressPool pool = DHCPS_ADDRESS_POOL__INIT, empty = DHCPS_ADDRESS_POOL__INIT;
    pool.n_static_leases = list.size();
    pool.static_leases = list.data();
    DhcpsAddressPool *pools[] = {&empty, &pool};
    DhcpsAddressPools answer = DHCPS_ADDRESS_POOLS__INIT;
    answer.n_pools = 2;
    answer.pools = pools;
    std::vector<dhcps_static_slot> table(DHCPS_STATIC_SLOTS);
    EXPECT_EQ(save_static_lease_entries_from_plugin_response(&answer, 1, 0, table.data()), -1);
    EXPECT_EQ(save_static_lease_entries_from_plugin_response(&answer, 1, 2, table.data()), -1);
    EXPECT_EQ(save_static_lease_entries_from_plugin_response(&answer, 1, 1, table.data()), 128);
    EXPECT_EQ(table.front().address, 2u);
    EXPECT_EQ(table.back().address, 129u);
    EXPECT_THAT(table.back().mac, ElementsAre(7, 7, 7, 7, 7, 7));
}

} // namespace
} // namespace test
