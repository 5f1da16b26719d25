// Messages in the log.
#include "backend/chassis.h"
#include "backend/dhcp_server.h"
#include "backend/plugin.h"
#include "backend/proto/interface.pb-c.h"
#include "backend/vlan.h"
#include "backend/vlan_mask.h"
#include "frame/print_message.h"
#include "tests/unit/bundle/callback_test.h"

namespace test {
namespace {

std::string printed(const ProtobufCMessage &message)
{
    const LogCapture log(8);
    restconf_print_unpacked_protobuf(&message);
    EXPECT_EQ(log.errors(), "");
    return log.debug();
}

TEST(PrintedMessage, ShowsWhatIsSetAndNestedRecordsInTheirPlace)
{
    CommonResp reply = COMMON_RESP__INIT;
    reply.app_err = -2;
    InterfaceConfigParam message = INTERFACE_CONFIG_PARAM__INIT;
    message.reply = &reply;
    message.name = const_cast<char *>("ethernet 1/1/1");
    message.has_ifindex = 1; // a zero that is set
    message.source = 3;      // goes out though its presence word is not set
    EXPECT_EQ(printed(message.base),
              " Attr#1 ui_err::0\n Attr#2 app_err::-2\n"
              " Attr#2 name::ethernet 1/1/1\n Attr#3 ifindex::0\n Attr#12 source::3\n");
}

TEST(PrintedMessage, HidesSecrets)
{
    PluginConfig request;
    PluginStorage storage;
    PluginSubEntry *slots[3];
    PluginSubValue values[3];
    ui_plugin_multi_config_init(&request, &storage, slots, values, 3, "ZQ_AAA");
    ui_fe_plugin_update_kv(&request, PLUGIN_OP_SET, "username", "ann");
    const char *const subs[][2] = {{"privilege", "5"}, {"password", "hush"}, {"1", "$1$hash"}};
    for (std::size_t i = 0; i < 3; ++i) {
        ui_fe_plugin_update_sub_kv(&request, i, subs[i][0], subs[i][1]);
        slots[i] = &values[i].record;
    }
    storage.entry.sub = slots;
    storage.entry.n_sub = 3;
    EXPECT_EQ(printed(request.base),
              " Attr#1 plugin::ZQ_AAA\n Attr#1 op::SET\n Attr#2 key::username\n Attr#3 value::ann\n"
              " Attr#1 key::privilege\n Attr#2 value::5\n Attr#1 key::password\n Attr#2 value::*****\n"
              " Attr#1 key::1\n Attr#2 value::*****\n");
}

TEST(PrintedMessage, ShowsMasksAsRangesOtherBytesAsDigitsAndEveryValueOfAList)
{
    std::uint32_t mask[VLAN_MASK_BYTES / sizeof(std::uint32_t)] = {1u << 10 | 1u << 11 | 1u << 12};
    MultiVlan vlans = MULTI_VLAN__INIT;
    vlans.has_vlan_mask = 1;
    vlans.vlan_mask = {sizeof mask, reinterpret_cast<std::uint8_t *>(mask)};
    EXPECT_EQ(printed(vlans.base), " Attr#1 vlan_mask::10 to 12\n");
    std::uint8_t mac[] = {0x00, 0xff};
    DhcpsStaticLease lease = DHCPS_STATIC_LEASE__INIT;
    lease.has_mac = 1;
    lease.mac = {sizeof mac, mac};
    EXPECT_EQ(printed(lease.base), " Attr#2 mac::00ff\n");
    std::uint32_t units[] = {1, 2};
    Chassis__RestconfChassisConfig chassis;
    chassis__restconf_chassis_config__init(&chassis);
    chassis.n_stack_id = 2;
    chassis.stack_id = units;
    EXPECT_THAT(printed(chassis.base), HasSubstr("stack_id::1\n Attr#4 stack_id::2\n"));
}

} // namespace
} // namespace test
