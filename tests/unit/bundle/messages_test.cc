// Changes of plug-ins, and messages in the log.
#include "backend/proto/interface.pb-c.h"
#include "backend/vlan_mask.h"
#include "frame/plugin.h"
#include "frame/print_message.h"
#include "tests/unit/bundle/log_capture.h"
#include "tests/unit/support/switch_bench.h"

#include <gmock/gmock.h>

#include <cstddef>

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;

class PluginChanges : public testing::Test {
protected:
    SwitchBench bench_;
    RequestFrame request_;
    const frame::EditCall call_{&request_.session, &request_.request, rollback,     del,
                                nullptr,           nullptr,           "u_some_edit"};
};

TEST_F(PluginChanges, AreOneRequestEach)
{
    EXPECT_EQ(frame::changePlugin(call_, "ZQ_SYSLOG", PLUGIN_OP_SET, "logging host", "10.0.0.1 udp-port 514"),
              0);
    EXPECT_EQ(frame::changePlugin(call_, "COLLECTD", PLUGIN_OP_DELETE, "Data", "a"), 0);
    EXPECT_THAT(
        bench_.sent(),
        ElementsAre(
            R"(ui_fe_plugin_config_send {"plugin":"ZQ_SYSLOG","entries":[{"op":"SET","key":"logging host","value":"10.0.0.1 udp-port 514"}]})",
            R"(ui_fe_plugin_config_send {"plugin":"COLLECTD","entries":[{"op":"DELETE","key":"Data","value":"a"}]})"));
}

TEST_F(PluginChanges, AreDoneWhateverTheAnswerAndFailWithoutOne)
{
    switchsim::Fault fault;
    fault.call = "ui_fe_plugin_config_send";
    fault.kind = switchsim::FaultKind::refuse;
    bench_.device().addFault(fault);
    const LogCapture log;
    EXPECT_EQ(frame::changePlugin(call_, "ZQ_SYSLOG", PLUGIN_OP_SET, "k", "v"), 0);
    EXPECT_EQ(log.errors(), "");
    bench_.unplug();
    EXPECT_EQ(frame::changePlugin(call_, "ZQ_SYSLOG", PLUGIN_OP_SET, "k", "v"), 4);
    EXPECT_EQ(log.errors(), "[u_some_edit] [n] cbtype [rollback] editop [delete]");
    EXPECT_TRUE(request_.header.records.empty());
}

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

// A record with the kinds of fields that the messages so far do not have.
struct Odd {
    ProtobufCMessage base;
    protobuf_c_boolean on, off;
    std::uint64_t wide;
    char *password;
    ProtobufCBinaryData vlan_mask, raw;
    std::size_t n_numbers;
    std::int32_t *numbers;
};

ProtobufCFieldDescriptor field(const char *name, std::uint32_t id, ProtobufCType type, std::size_t offset,
                               ProtobufCLabel label = PROTOBUF_C_LABEL_REQUIRED, std::size_t quantifier = 0)
{
    ProtobufCFieldDescriptor made{};
    made.name = name;
    made.id = id;
    made.type = type;
    made.label = label;
    made.offset = static_cast<unsigned>(offset);
    made.quantifier_offset = static_cast<unsigned>(quantifier);
    return made;
}

TEST(PrintedMessage, KnowsEveryKindOfField)
{
    const ProtobufCFieldDescriptor fields[] = {
        field("on", 1, PROTOBUF_C_TYPE_BOOL, offsetof(Odd, on)),
        field("off", 2, PROTOBUF_C_TYPE_BOOL, offsetof(Odd, off)),
        field("wide", 3, PROTOBUF_C_TYPE_UINT64, offsetof(Odd, wide)),
        field("password", 4, PROTOBUF_C_TYPE_STRING, offsetof(Odd, password), PROTOBUF_C_LABEL_OPTIONAL),
        field("vlan_mask", 5, PROTOBUF_C_TYPE_BYTES, offsetof(Odd, vlan_mask)),
        field("raw", 6, PROTOBUF_C_TYPE_BYTES, offsetof(Odd, raw)),
        field("numbers", 7, PROTOBUF_C_TYPE_INT32, offsetof(Odd, numbers), PROTOBUF_C_LABEL_REPEATED,
              offsetof(Odd, n_numbers)),
    };
    ProtobufCMessageDescriptor descriptor{};
    descriptor.n_fields = std::size(fields);
    descriptor.fields = fields;
    std::uint32_t mask[VLAN_MASK_BYTES / sizeof(std::uint32_t)] = {};
    mask[0] = 1u << 10 | 1u << 11 | 1u << 12;
    std::uint8_t raw[] = {0x00, 0xff};
    std::int32_t numbers[] = {-1, 2};
    const Odd odd{{&descriptor, 0, nullptr},
                  1,
                  0,
                  1ull << 40,
                  const_cast<char *>("hush"),
                  {sizeof mask, reinterpret_cast<std::uint8_t *>(mask)},
                  {sizeof raw, raw},
                  2,
                  numbers};
    EXPECT_EQ(printed(odd.base),
              " Attr#1 on::TRUE\n Attr#2 off::FALSE\n Attr#3 wide::1099511627776\n"
              " Attr#4 password::*****\n Attr#5 vlan_mask::10 to 12\n Attr#6 raw::00ff\n"
              " Attr#7 numbers::-1\n Attr#7 numbers::2\n");
}

} // namespace
} // namespace test
