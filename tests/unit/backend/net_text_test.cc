#include "backend/net_text.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace {

TEST(IpStringToAddress, TakesFourDecimalNumbersOnly)
{
    const std::pair<const char *, std::uint32_t> good[] = {
        {"10.0.0.1", 0x0a000001},
        {"0.0.0.0", 0},
        {"255.255.255.255", 0xffffffff},
        {"192.168.010.1", 0xc0a80a01},
    };
    std::uint32_t address = 77;
    for (const auto &[text, expected] : good) {
        EXPECT_NE(ip_string_to_address(text, &address), 0) << text;
        EXPECT_EQ(address, expected) << text;
    }
    address = 77;
    for (const char *bad : {"256.0.0.1", "1.2.3", "1.2.3.4.5", "1.2.3.4 ", " 1.2.3.4", "1..2.3", "1.2.3.", "",
                            "a.b.c.d", "1.2.3.-4", "99999999999.1.1.1"})
        EXPECT_EQ(ip_string_to_address(bad, &address), 0) << bad;
    EXPECT_EQ(ip_string_to_address(nullptr, &address), 0);
    EXPECT_EQ(address, 77U);
    EXPECT_EQ(ip_string_to_address("1.2.3.4", nullptr), 0);
}

TEST(Ip6StringToAddress, WritesSixteenBytesOrNone)
{
    std::array<std::uint8_t, 16> address{};
    EXPECT_NE(ip6_string_to_address("2001:db8::ff", address.data()), 0);
    EXPECT_EQ(address,
              (std::array<std::uint8_t, 16>{0x20, 1, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff}));
    const auto before = address;
    for (const char *bad : {"", "1.2.3.4", "2001:db8::1/64", "fe80::1%eth0", "12345::", ":::", "zz::"}) {
        EXPECT_EQ(ip6_string_to_address(bad, address.data()), 0) << bad;
        EXPECT_EQ(address, before) << bad;
    }
    EXPECT_EQ(ip6_string_to_address(nullptr, address.data()), 0);
}

TEST(IpString2Int, FillsHighOctetsFirst)
{
    EXPECT_EQ(ip_string2int("1.2.3.4"), 0x01020304U);
    EXPECT_EQ(ip_string2int("1.2.3"), 0x01020300U);
    EXPECT_EQ(ip_string2int("7"), 0x07000000U);
    for (const char *bad : {"", "1.2.3.4.5", "1.2.3.400", "x", "1."})
        EXPECT_EQ(ip_string2int(bad), 0U) << bad;
    EXPECT_EQ(ip_string2int(nullptr), 0U);
}

TEST(Prefix2Mask, HasNoUndefinedEnds)
{
    const std::pair<std::uint32_t, std::uint32_t> cases[] = {
        {0, 0}, {1, 0x80000000}, {24, 0xffffff00}, {32, 0xffffffff}, {33, 0xffffffff}};
    for (const auto &[prefix, mask] : cases)
        EXPECT_EQ(prefix2mask(prefix), mask) << prefix;
}

TEST(IpPrefixToAddrMask, SplitsOrLeavesAlone)
{
    std::uint32_t address = 0, mask = 0;
    EXPECT_NE(ip_prefix_to_addr_mask("10.1.2.3/8", &address, &mask), 0);
    EXPECT_EQ(address, 0x0a010203U);
    EXPECT_EQ(mask, 0xff000000U);
    EXPECT_NE(ip_prefix_to_addr_mask("0.0.0.0/0", &address, &mask), 0);
    EXPECT_EQ(mask, 0U);
    address = mask = 77;
    for (const char *bad :
         {"10.1.2.3", "10.1.2.3/", "10.1.2.3/33", "10.1.2/8", "10.1.2.3/8x", "/8", "", "10.1.2.3/-1"})
        EXPECT_EQ(ip_prefix_to_addr_mask(bad, &address, &mask), 0) << bad;
    EXPECT_EQ(ip_prefix_to_addr_mask(nullptr, &address, &mask), 0);
    EXPECT_EQ(address, 77U);
    EXPECT_EQ(mask, 77U);
}

TEST(GetCommonIpAddrVal, CountsOctetsFromTheLowEnd)
{
    EXPECT_EQ(get_common_ip_addr_val(0x0a0b0c0d, 4), 0x0a);
    EXPECT_EQ(get_common_ip_addr_val(0x0a0b0c0d, 1), 0x0d);
    for (const int octet : {0, 5, -1})
        EXPECT_EQ(get_common_ip_addr_val(0xffffffff, octet), 0) << octet;
}

TEST(StringToMacAddrForm, TakesThreeForms)
{
    using Mac = std::array<std::uint8_t, 6>;
    for (const char *good : {"0a1b.2C3d.4e5F", "0a:1b:2c:3d:4e:5f", "0A-1B-2C-3D-4E-5F"}) {
        Mac mac{};
        EXPECT_NE(string_to_mac_addr_form(good, mac.data()), 0) << good;
        EXPECT_EQ(mac, (Mac{0x0a, 0x1b, 0x2c, 0x3d, 0x4e, 0x5f})) << good;
    }
    for (const char *bad : {"", "0a1b2c3d4e5f", "0a:1b:2c:3d:4e", "0a:1b:2c:3d:4e:5g", "0a:1b-2c:3d:4e:5f",
                            "0a1b.2c3d.4e5f.", "0a1b:2c3d:4e5f", "0a:1b:2c:3d:4e:5f:60"}) {
        Mac mac = {1, 2, 3, 4, 5, 6};
        EXPECT_EQ(string_to_mac_addr_form(bad, mac.data()), 0) << bad;
        EXPECT_EQ(mac, Mac{}) << bad << ": nothing of the caller's stack may go out";
    }
    Mac mac = {1};
    EXPECT_EQ(string_to_mac_addr_form(nullptr, mac.data()), 0);
    EXPECT_EQ(mac, Mac{});
}

TEST(TrimWhitespace, CutsInPlace)
{
    const std::pair<const char *, const char *> cases[] = {
        {"  ve 1 \t\n", "ve 1"}, {"ve", "ve"}, {" ", ""}, {"", ""}, {"a b", "a b"}};
    for (const auto &[before, after] : cases) {
        std::string text = before;
        EXPECT_STREQ(trim_whitespace(text.data()), after);
    }
    EXPECT_EQ(trim_whitespace(nullptr), nullptr);
}

TEST(CliFindChar, CountsFromZero)
{
    const std::pair<const char *, int> cases[] = {
        {"08.0.95", 2}, {".", 0}, {"08", -1}, {"", -1}, {nullptr, -1}};
    for (const auto &[text, at] : cases)
        EXPECT_EQ(cli_find_char(text, '.'), at);
}

TEST(Printing, StaysInsideOfTheBuffer)
{
    char small[4] = {'x', 'x', 'x', 'x'};
    EXPECT_EQ(ksnprintf(small, 3, "%d", 12345), 5);
    EXPECT_STREQ(small, "12");
    EXPECT_EQ(small[3], 'x');
    const std::string longText(2 * KSPRINTF_LIMIT, 'y');
    std::array<char, KSPRINTF_LIMIT + 1> buffer{};
    buffer.back() = 'x';
    EXPECT_EQ(ksprintf(buffer.data(), "%s", longText.c_str()), static_cast<int>(longText.size()));
    EXPECT_EQ(std::string(buffer.data()).size(), KSPRINTF_LIMIT - 1U);
    EXPECT_EQ(buffer.back(), 'x');
}

} // namespace
