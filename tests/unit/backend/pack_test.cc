#include "backend/pack.h"

#include "backend/proto/interface.pb-c.h"
#include "backend/proto/plugin.pb-c.h"
#include "backend/proto/qos.pb-c.h"
#include "scripted_transport.h"

#include <gtest/gtest.h>

namespace backend {
namespace {

InterfaceConfigParam *overTheWire(InterfaceConfigParam &record)
{
    const PackScope scope(record.base);
    const Bytes bytes = packed(record.base);
    return interface_config_param__unpack(nullptr, bytes.size(), bytes.data());
}

TEST(PackScope, SendsWhatIsSaidOrSet)
{
    char own[] = "";
    InterfaceConfigParam record = INTERFACE_CONFIG_PARAM__INIT;
    record.operation = 5;   // no presence word: sent all the same
    record.has_enabled = 1; // a zero that is meant
    record.name = const_cast<char *>(protobuf_c_empty_string);
    record.description = own;
    auto *got = overTheWire(record);
    ASSERT_NE(got, nullptr);
    EXPECT_TRUE(got->has_operation);
    EXPECT_EQ(got->operation, 5);
    EXPECT_TRUE(got->has_enabled);
    EXPECT_FALSE(got->has_enabled_op) << "neither said nor set";
    EXPECT_EQ(got->name, nullptr) << "the unset text";
    EXPECT_STREQ(got->description, "");
    interface_config_param__free_unpacked(got, nullptr);
    EXPECT_EQ(record.name, protobuf_c_empty_string) << "the record is as it was";
}

TEST(PackScope, ReachesNestedAndRepeatedRecords)
{
    QosPortId port = QOS_PORT_ID__INIT;
    std::uint8_t name[] = {'x'};
    port.name = {1, name}; // presence word forgotten
    QosPortRequest request = QOS_PORT_REQUEST__INIT;
    request.port = &port;
    PluginEntry entry = PLUGIN_ENTRY__INIT;
    entry.count = 3;
    PluginEntry *entries[] = {&entry};
    PluginConfig plugin = PLUGIN_CONFIG__INIT;
    plugin.n_entries = 1;
    plugin.entries = entries;
    {
        const PackScope one(request.base), other(plugin.base);
        EXPECT_TRUE(port.has_name);
        EXPECT_TRUE(entry.has_count);
    }
    EXPECT_FALSE(port.has_name);
    EXPECT_FALSE(entry.has_count);
}

TEST(PackScope, ARecordWithoutDescriptorIsBad)
{
    QosPortRequest request{};
    EXPECT_FALSE(PackScope(request.base).isGood());
}

} // namespace
} // namespace backend
