#include "backend/wire_check.h"

#include "backend/proto/common.pb-c.h"
#include "backend/proto/plugin.pb-c.h"
#include "backend/proto/qos.pb-c.h"

#include <gtest/gtest.h>

#include <string>

namespace backend {
namespace {

Bytes operator+(Bytes left, const Bytes &right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

// A common_resp that is good by itself: ui_err 1, app_err 2.
const Bytes kCodes = {0x08, 1, 0x10, 2};

struct WireCase {
    const char *name;
    Bytes bytes;
    bool isGood;
};
class CommonRespBytes : public ::testing::TestWithParam<WireCase> { };

TEST_P(CommonRespBytes, AreUnpackedOrRefused)
{
    ProtobufCMessage *message = unpackChecked(common_resp__descriptor, GetParam().bytes);
    EXPECT_EQ(message != nullptr, GetParam().isGood);
    protobuf_c_message_free_unpacked(message, nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CommonRespBytes,
    ::testing::Values(
        WireCase{"both_codes", kCodes, true}, WireCase{"with_text", kCodes + Bytes{0x1a, 2, 'h', 'i'}, true},
        WireCase{"with_empty_text", kCodes + Bytes{0x1a, 0}, true},
        WireCase{"with_unknown_field", kCodes + Bytes{0x22, 1, 'x'}, true},
        WireCase{
            "negative_code", {0x08, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 1, 0x10, 2}, true},
        WireCase{"empty_lacks_its_codes", {}, false}, WireCase{"one_code_missing", {0x08, 1}, false},
        WireCase{"text_longer_than_bytes", kCodes + Bytes{0x1a, 3, 'h', 'i'}, false},
        WireCase{"text_of_four_gigabytes", kCodes + Bytes{0x1a, 0xff, 0xff, 0xff, 0xff, 0x0f, 'h'}, false},
        WireCase{"length_that_wraps",
                 kCodes + Bytes{0x1a, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 1, 'h'}, false},
        WireCase{"number_without_end", {0x08, 0x80, 0x80}, false},
        WireCase{"number_of_eleven_bytes", Bytes{0x08} + Bytes(10, 0x80) + Bytes{1, 0x10, 2}, false},
        WireCase{"tag_without_value", kCodes + Bytes{0x1a}, false},
        WireCase{"field_zero", kCodes + Bytes{0x00, 1}, false},
        WireCase{"field_number_too_large", kCodes + Bytes{0xf8, 0xff, 0xff, 0xff, 0x7f, 1}, false},
        WireCase{"group", kCodes + Bytes{0x23, 0x24}, false},
        WireCase{"wire_type_seven", kCodes + Bytes{0x27, 1}, false},
        WireCase{"code_twice", kCodes + Bytes{0x08, 1}, false},
        WireCase{"text_twice", kCodes + Bytes{0x1a, 1, 'a', 0x1a, 1, 'b'}, false},
        WireCase{"text_as_number", kCodes + Bytes{0x18, 1}, false},
        WireCase{"unknown_eight_bytes_cut", kCodes + Bytes{0x21, 1, 2, 3}, false},
        WireCase{"unknown_four_bytes_cut", kCodes + Bytes{0x25, 1, 2, 3}, false}),
    [](const auto &row) { return row.param.name; });

TEST(WireCheck, LooksIntoNestedRecords)
{
    EXPECT_TRUE(isSafeToUnpack(qos_jumbo_answer__descriptor, Bytes{0x0a, 4} + kCodes + Bytes{0x10, 1}));
    EXPECT_FALSE(isSafeToUnpack(qos_jumbo_answer__descriptor, Bytes{0x0a, 4, 0x08, 1, 0x10, 0x80}));
    EXPECT_FALSE(isSafeToUnpack(qos_jumbo_answer__descriptor, Bytes{0x0a, 5} + kCodes))
        << "longer than its parent";
}

TEST(WireCheck, RepeatedRecordsMayStandAsOftenAsMemoryAllows)
{
    Bytes few, many;
    for (int i = 0; i < 1000; i++)
        few = few + Bytes{0x12, 0};
    EXPECT_TRUE(isSafeToUnpack(plugin_config__descriptor, few));
    // Two bytes on the wire become a record of many: a small message must not fill the memory.
    many.reserve(2 * 1'000'000);
    for (int i = 0; i < 1'000'000; i++) {
        many.push_back(0x12);
        many.push_back(0);
    }
    EXPECT_FALSE(isSafeToUnpack(plugin_config__descriptor, many));
}

TEST(WireCheck, UnknownFieldsCountToo)
{
    Bytes many;
    for (int i = 0; i < 2'000'000; i++) {
        many.push_back(0x78);
        many.push_back(1);
    }
    EXPECT_FALSE(isSafeToUnpack(plugin_config__descriptor, many));
}

// A record that holds itself, as no message of ours does: the only way to nest without end.
TEST(WireCheck, NestingHasALimit)
{
    static ProtobufCFieldDescriptor field{};
    static const ProtobufCIntRange ranges[] = {{1, 0}, {0, 1}};
    static ProtobufCMessageDescriptor descriptor = common_resp__descriptor;
    field.name = "self";
    field.id = 1;
    field.label = PROTOBUF_C_LABEL_OPTIONAL;
    field.type = PROTOBUF_C_TYPE_MESSAGE;
    field.descriptor = &descriptor;
    descriptor.n_fields = 1;
    descriptor.fields = &field;
    descriptor.n_field_ranges = 1;
    descriptor.field_ranges = ranges;

    Bytes bytes;
    for (unsigned depth = 1; depth < kMaxDepth; depth++)
        bytes = Bytes{0x0a, static_cast<std::uint8_t>(bytes.size())} + bytes;
    EXPECT_TRUE(isSafeToUnpack(descriptor, bytes));
    bytes = Bytes{0x0a, static_cast<std::uint8_t>(bytes.size())} + bytes;
    EXPECT_FALSE(isSafeToUnpack(descriptor, bytes));
}

} // namespace
} // namespace backend
