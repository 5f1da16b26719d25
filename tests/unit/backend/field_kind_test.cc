#include "backend/field_kind.h"

#include "backend/proto/common.pb-c.h"

#include <gtest/gtest.h>

namespace backend {
namespace {

struct KindCase {
    const char *name;
    ProtobufCType type;
    FieldKind kind;
};
class Kinds : public ::testing::TestWithParam<KindCase> { };

TEST_P(Kinds, FollowTypeAndName)
{
    ProtobufCFieldDescriptor field{};
    field.name = GetParam().name;
    field.type = GetParam().type;
    EXPECT_EQ(kindOf(field), GetParam().kind);
}

constexpr auto kText = PROTOBUF_C_TYPE_STRING;
constexpr auto kBytes = PROTOBUF_C_TYPE_BYTES;
constexpr auto kNumber = PROTOBUF_C_TYPE_INT32;
INSTANTIATE_TEST_SUITE_P(Table, Kinds,
                         ::testing::Values(KindCase{"secret_key", kText, FieldKind::secret},
                                           KindCase{"password", kText, FieldKind::secret},
                                           KindCase{"sha256authpass", kText, FieldKind::secret},
                                           KindCase{"aesprivpass", kBytes, FieldKind::secret},
                                           KindCase{"community", kText, FieldKind::secret},
                                           KindCase{"password_op", kNumber, FieldKind::plain},
                                           KindCase{"password_label", kText, FieldKind::plain},
                                           KindCase{"description", kText, FieldKind::plain},
                                           KindCase{"name", kBytes, FieldKind::plain},
                                           KindCase{"zip_name", kBytes, FieldKind::plain},
                                           KindCase{"mac_address", kBytes, FieldKind::mac},
                                           KindCase{"mvlan_mask", kBytes, FieldKind::vlanMask},
                                           KindCase{"dest_ipv6", kBytes, FieldKind::ipv6},
                                           KindCase{"destination", PROTOBUF_C_TYPE_FIXED32, FieldKind::ipv4},
                                           KindCase{"record", kBytes, FieldKind::plain}));

TEST(SecretKeys, OfPluginEntries)
{
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
