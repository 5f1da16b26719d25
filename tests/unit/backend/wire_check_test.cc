#include "backend/wire_check.h"

#include "backend/proto/common.pb-c.h"
#include "backend/proto/plugin.pb-c.h"
#include "backend/proto/qos.pb-c.h"
#include "scripted_transport.h"

#include <gtest/gtest.h>

#include <string>

namespace backend {
namespace {

// A common_resp that is good by itself: ui_err 1, app_err 2.
const Bytes kCodes = {0x08, 1, 0x10, 2};

TEST(WireCheck, UnpacksOrRefuses)
{
    const auto isTaken = [](const Bytes &bytes) {
        ProtobufCMessage *message = unpackChecked(common_resp__descriptor, bytes);
        protobuf_c_message_free_unpacked(message, nullptr);
        return message != nullptr;
    };
    const Bytes good[] = {
        kCodes,
        kCodes + Bytes{0x1a, 2, 'h', 'i'},
        kCodes + Bytes{0x1a, 0},
        kCodes + Bytes{0x22, 1, 'x'}, // an unknown field
        {0x08, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 1, 0x10, 2},
    };
    for (const Bytes &bytes : good)
        EXPECT_TRUE(isTaken(bytes)) << ::testing::PrintToString(bytes);
    const Bytes bad[] = {
        {},
        {0x08, 1}, // a code is missing
        kCodes + Bytes{0x1a, 3, 'h', 'i'},
        kCodes + Bytes{0x1a, 0xff, 0xff, 0xff, 0xff, 0x0f, 'h'},
        kCodes +
            Bytes{0x1a, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 1, 'h'}, // a length that wraps
        {0x08, 0x80, 0x80},
        Bytes{0x08} + Bytes(10, 0x80) + Bytes{1, 0x10, 2}, // a number of eleven bytes
        kCodes + Bytes{0x1a},
        kCodes + Bytes{0x00, 1},
        kCodes + Bytes{0xf8, 0xff, 0xff, 0xff, 0x7f, 1}, // a field's number that is too large
        kCodes + Bytes{0x23, 0x24},                      // a group
        kCodes + Bytes{0x27, 1},
        kCodes + Bytes{0x08, 1}, // twice
        kCodes + Bytes{0x1a, 1, 'a', 0x1a, 1, 'b'},
        kCodes + Bytes{0x18, 1},       // text as a number
        kCodes + Bytes{0x21, 1, 2, 3}, // cut
        kCodes + Bytes{0x25, 1, 2, 3},
    };
    for (const Bytes &bytes : bad)
        EXPECT_FALSE(isTaken(bytes)) << ::testing::PrintToString(bytes);
}

TEST(WireCheck, LooksIntoNestedRecords)
{
    EXPECT_TRUE(isSafeToUnpack(qos_jumbo_answer__descriptor, Bytes{0x0a, 4} + kCodes + Bytes{0x10, 1}));
    EXPECT_FALSE(isSafeToUnpack(qos_jumbo_answer__descriptor, Bytes{0x0a, 4, 0x08, 1, 0x10, 0x80}));
    EXPECT_FALSE(isSafeToUnpack(qos_jumbo_answer__descriptor, Bytes{0x0a, 5} + kCodes))
        << "longer than its parent";
}

TEST(WireCheck, FieldsMayStandAsOftenAsMemoryAllows)
{
    const auto repeated = [](const Bytes &field, int count) {
        Bytes bytes;
        for (int i = 0; i < count; i++)
            bytes.insert(bytes.end(), field.begin(), field.end());
        return isSafeToUnpack(plugin_config__descriptor, bytes);
    };
    EXPECT_TRUE(repeated({0x12, 0}, 1000));
    // Two bytes on the wire become a record of many: a small message must not fill the memory.
    EXPECT_FALSE(repeated({0x12, 0}, 1'000'000));
    EXPECT_FALSE(repeated({0x78, 1}, 2'000'000)) << "unknown";
}

} // namespace
} // namespace backend
