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
std::string withMac(const std::string &mac)
{
    return block("10.0.0.9", "  hardware ethernet " + mac + "\n");
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
    const std::string whole = block("10.0.0.9", kMac), nine = "02:00:00:00:00:01 10.0.0.9",
                      longMac = "02:00:00:00:00:01:02:03:04:05";
    struct Case {
        const char *name;
        std::string text;
        std::vector<std::string> blocks;
    };
    for (const Case &c : {
             Case{"no block", "# leases {\nserver-duid \"x\";\n", {}},
             Case{"a remark that looks like one", "# lease 10.0.0.1 {\n" + whole, {nine}},
             Case{"no brace", "lease 10.0.0.9\n" + kMac + "}\n", {}},
             Case{"two, with text in front", "a b\n}\n;;\n" + whole + "\n" + whole, {nine, nine}},
             Case{"cut off behind the brace", whole + "lease 10.0.0.10 {", {nine, "-"}},
             Case{
                 "cut off in a field", whole + "lease 10.0.0.10 {\n  hardware ethernet 02:00:0", {nine, "-"}},
             Case{"no MAC address", block("10.0.0.9", "  ends never;\n") + whole, {"-", nine}},
             Case{"an empty MAC address", withMac(";"), {"-"}},
             Case{"a field that stands elsewhere in its line", block("10.0.0.9", " " + kMac), {"-"}},
             Case{"no address", block("", kMac), {"-"}},
             Case{"a bad address", block("10.0.0.256", kMac), {"-"}},
             Case{"an over-long address", block("10.0.0.1" + std::string(500, '0'), kMac), {"-"}},
             Case{"an over-long MAC address", withMac(longMac + ";"), {longMac.substr(0, 19) + " 10.0.0.9"}},
             Case{"a field without its end", withMac("02:00:00:00:00:01"), {nine}},
         })
        EXPECT_EQ(blocksOf(c.text), c.blocks) << c.name;
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
    for (const std::int64_t left : {60, 31'536'000})
        EXPECT_NEAR(expirationOf(ending(left)), left, 5) << left;
    EXPECT_EQ(expirationOf("5 9999/12/31 23:59:59"), 2'147'483'647); // it does not wrap
    for (const char *none :
         {"never", "", "4 2001/02/03 04:05:06", "4 2090/02/03", "4 2090-02-03 04:05:06",
          "4 2090/13/03 04:05:06", "4 2090/00/03 04:05:06", "4 2090/02/32 04:05:06", "4 2090/02/03 24:05:06",
          "4 99999999999/02/03 04:05:06", "4 2147483647/02/03 04:05:06",
          "4 -2147483648/-2147483648/03 04:05:06", "epoch 3723862680"})
        EXPECT_EQ(expirationOf(none), 0) << none;
}

// A field of one block is none of the next.
TEST(LeaseFile, NothingIsCarriedOver)
{
    const std::string ends = "  ends " + ending(500) + ";\n",
                      text = block("10.0.0.9", kMac + ends) + block("10.0.0.10", kMac) +
        block("10.0.0.11", ends);
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
    using Case = std::tuple<const char *, const char *, int>;
    for (const auto &[given, written, count] :
         {Case{" \t ", "", 0}, {"10.0.0.1", "10.0.0.1", 1}, {" a  b ", "a, b", 2}}) {
        char text[32];
        std::snprintf(text, sizeof text, "%s", given);
        EXPECT_EQ(dhcps_update_option_value_ip_str(text, sizeof text), count) << given;
        EXPECT_STREQ(text, written);
    }
    char full[10] = "1 2 3 4 5"; // grows, and whole words fall off
    EXPECT_EQ(dhcps_update_option_value_ip_str(full, sizeof full), 5);
    EXPECT_STREQ(full, "1, 2, 3");
}

TEST(OptionValue, HexadecimalDigits)
{
    std::uint8_t bytes[4] = {};
    EXPECT_EQ(dhcps_ascii2hex("0a:Ff", bytes, sizeof bytes), 2);
    EXPECT_THAT(bytes, ElementsAre(10, 255, 0, 0));
    EXPECT_EQ(dhcps_ascii2hex("aabbccdd", bytes, sizeof bytes), 4);
    for (const char *bad : {"", "abc", "xy", "aa:", ":aa", "aa::bb", "aabbccddee"})
        EXPECT_EQ(dhcps_ascii2hex(bad, bytes, sizeof bytes), -1) << bad;
}

} // namespace
} // namespace test
