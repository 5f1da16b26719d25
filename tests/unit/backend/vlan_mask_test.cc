#include "backend/vlan_mask.h"

#include <gtest/gtest.h>

#include <array>
#include <initializer_list>
#include <string>

namespace {

using Mask = std::array<std::uint32_t, 128>;

Mask maskOf(std::initializer_list<std::uint32_t> vlans)
{
    Mask mask{};
    for (const auto vlan : vlans)
        mask[vlan / 32] |= 1U << vlan % 32;
    return mask;
}

std::string textOf(const Mask &mask, std::size_t size = 1000)
{
    std::string text(size, '#');
    const auto length = vlanmask_to_string(mask.data(), text.data(), size);
    EXPECT_EQ(std::string(text.c_str()).size(), length);
    return text.c_str();
}

TEST(VlanMask, IsTextWithRanges)
{
    EXPECT_EQ(textOf(maskOf({})), "");
    EXPECT_EQ(textOf(maskOf({1})), "1");
    EXPECT_EQ(textOf(maskOf({1, 3, 4})), "1 3 4");
    EXPECT_EQ(textOf(maskOf({3, 4, 5, 31, 32, 33, 4095})), "3 to 5 31 to 33 4095");
    EXPECT_EQ(textOf(maskOf({0})), "") << "there is no VLAN 0";
    Mask all;
    all.fill(0xffffffff);
    EXPECT_EQ(textOf(all), "1 to 4095");
}

TEST(VlanMask, LeavesWholeItemsAwayWhenRoomEnds)
{
    const auto mask = maskOf({10, 20, 300});
    EXPECT_EQ(textOf(mask, 10), "10 20 300");
    EXPECT_EQ(textOf(mask, 9), "10 20");
    EXPECT_EQ(textOf(mask, 5), "10");
    EXPECT_EQ(textOf(mask, 1), "");
    char untouched = '#';
    EXPECT_EQ(vlanmask_to_string(mask.data(), &untouched, 0), 0U);
    EXPECT_EQ(untouched, '#');
}

TEST(VlanMask, TheExtendedFormCountsWithoutTheTerminator)
{
    const auto mask = maskOf({10, 20});
    std::array<char, 6> text{};
    EXPECT_EQ(vlanmask_to_string_ext(mask.data(), text.data(), 5), 5U);
    EXPECT_STREQ(text.data(), "10 20");
    EXPECT_EQ(vlanmask_to_string_ext(mask.data(), text.data(), 4), 2U);
}

TEST(VlanMask, KnowsItsFirst)
{
    EXPECT_EQ(vlanmask_get_first_vlan(maskOf({4095, 77, 500}).data()), 77U);
    EXPECT_EQ(vlanmask_get_first_vlan(maskOf({}).data()), 0U);
}

TEST(VlanMask, MayStandAtAnyAddress)
{
    std::array<unsigned char, VLAN_MASK_BYTES + 1> buffer{};
    const auto mask = maskOf({1, 100});
    std::copy_n(reinterpret_cast<const unsigned char *>(mask.data()), VLAN_MASK_BYTES, buffer.begin() + 1);
    std::array<char, 20> text{};
    vlanmask_to_string(buffer.data() + 1, text.data(), text.size());
    EXPECT_STREQ(text.data(), "1 100");
}

} // namespace
