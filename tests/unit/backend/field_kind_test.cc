#include "backend/field_kind.h"

#include "backend/proto/common.pb-c.h"

#include <gtest/gtest.h>

namespace backend {
namespace {

TEST(Kinds, FollowTypeAndName)
{
    constexpr auto text = PROTOBUF_C_TYPE_STRING, bytes = PROTOBUF_C_TYPE_BYTES;
    const struct {
        const char *name;
        ProtobufCType type;
        FieldKind kind;
    } cases[] = {
        {"secret_key", text, FieldKind::secret},
        {"sha256authpass", text, FieldKind::secret},
        {"aesprivpass", bytes, FieldKind::secret},
        {"community", text, FieldKind::secret},
        {"password_op", PROTOBUF_C_TYPE_INT32, FieldKind::plain},
        {"password_label", text, FieldKind::plain},
        {"zip_name", bytes, FieldKind::plain},
        {"mac_address", bytes, FieldKind::mac},
        {"mvlan_mask", bytes, FieldKind::vlanMask},
        {"dest_ipv6", bytes, FieldKind::ipv6},
        {"destination", PROTOBUF_C_TYPE_FIXED32, FieldKind::ipv4},
        {"record", bytes, FieldKind::plain},
    };
    for (const auto &c : cases) {
        ProtobufCFieldDescriptor field{};
        field.name = c.name;
        field.type = c.type;
        EXPECT_EQ(kindOf(field), c.kind) << c.name;
    }
    for (const char *key : {"password", "1", "key"})
        EXPECT_TRUE(isSecretKey(key)) << key;
    for (const char *key : {"privilege", "auth-port", "GroupName", ""})
        EXPECT_FALSE(isSecretKey(key)) << key;
}

TEST(RecordName, SpellsPackagesAsTheCodeDoes)
{
    auto descriptor = common_resp__descriptor;
    EXPECT_EQ(recordName(descriptor), "common_resp");
    descriptor.name = "ip.interface.config";
    EXPECT_EQ(recordName(descriptor), "ip__interface__config");
}

} // namespace
} // namespace backend
