#include "backend/call.h"

#include "backend/forwarding_profile.h"
#include "backend/plugin.h"
#include "backend/protected_port.h"
#include "backend/qos.h"
#include "backend/security.h"
#include "scripted_transport.h"

#include <gtest/gtest.h>

#include <string>

namespace backend {
namespace {

class CallTest : public ::testing::Test {
protected:
    std::shared_ptr<ScriptedTransport> transport = std::make_shared<ScriptedTransport>();
    UseTransport use{transport};
};

TEST_F(CallTest, SendsOneRequestThatSaysEverything)
{
    transport->answer = envelopeAround({0x0a, 4, 0x08, 0, 0x10, 0, 0x10, 1});
    auto *answer = ui_fe_qos_jumbo(10, 0);
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer->jumbo_enabled, 1);
    EXPECT_EQ(answer->reply->ui_err, 0);
    ui_fe_qos_jumbo_post_op(answer);

    ASSERT_EQ(transport->requests.size(), 1U);
    const auto request = readRequest(transport->requests[0]);
    ASSERT_TRUE(request);
    EXPECT_EQ(request->head.call, "ui_fe_qos_jumbo");
    EXPECT_EQ(Bytes(request->message.begin(), request->message.end()), Bytes({0x08, 10, 0x10, 0}));
}

TEST_F(CallTest, EveryKindOfBadAnswerIsADeliveryFailure)
{
    const std::optional<Bytes> bad[] = {
        std::nullopt,                             // the transport failed
        Bytes{},                                  // no envelope
        Bytes{2, 0},                              // the daemon gave no answer
        Bytes{1, 1, 0},                           // a request
        envelopeAround({0x0a, 4, 0x08, 0, 0x10}), // cut off
        envelopeAround({0x0a, 2, 0x08, 0}),       // a reply that lacks a code
        envelopeAround(Bytes(kMaxMessage + 1)),
    };
    for (const auto &answer : bad) {
        transport->answer = answer;
        EXPECT_EQ(ui_fe_qos_jumbo(1, 1), nullptr);
    }
    EXPECT_EQ(transport->requests.size(), std::size(bad)) << "a failed request is not sent again";
}

TEST_F(CallTest, ResultAndSlotAgree)
{
    PportConfig request;
    pport_config_req_init(&request);
    auto *slot = reinterpret_cast<CommonResp *>(&request); // stale: must be overwritten
    EXPECT_NE(protected_port_config_apply(&request, &slot, 1), 0);
    EXPECT_EQ(slot, nullptr);
    transport->answer = envelopeAround({0x08, 5, 0x10, 0, 0x1a, 2, 'n', 'o'});
    EXPECT_EQ(protected_port_config_apply(&request, &slot, 1), 0) << "a refusal was delivered";
    ASSERT_NE(slot, nullptr);
    EXPECT_EQ(slot->ui_err, 5);
    EXPECT_STREQ(slot->reply_buf, "no");
    pport_config_resp_free_unpacked(slot);
    EXPECT_EQ(ui_forwarding_profile_config_apply(nullptr, &slot), 1);
    EXPECT_EQ(slot, nullptr);
}

TEST_F(CallTest, ARequestOverTheLimitIsNotSent)
{
    std::string name(kMaxMessage + 1, 'n');
    FwdConfigInfo request = FWD_CONFIG_INFO__INIT;
    request.profile_name = name.data();
    CommonResp *answer = nullptr;
    EXPECT_NE(ui_forwarding_profile_config_apply(&request, &answer), 0);
    EXPECT_TRUE(transport->requests.empty());
}

TEST_F(CallTest, SecurityMessagesTellCodeAndSubType)
{
    BumRateLimitMsg message = BUM_RATE_LIMIT_MSG__INIT;
    ProtobufCMessage *answer = nullptr;
    EXPECT_NE(sec_protobuf_fe_config_handler(&message.base, &answer, 41, SEC_MSG_BUM_RATE_LIMIT, 1), 0);
    ASSERT_EQ(transport->requests.size(), 1U);
    const auto request = readRequest(transport->requests[0]);
    EXPECT_EQ(request->head.code, 0x99005DU);
    EXPECT_EQ(request->head.subType, 41U);
    EXPECT_EQ(request->head.argument, 1);
    EXPECT_NE(sec_protobuf_fe_config_handler(&message.base, &answer, 41, 0x123456, 0), 0) << "unknown code";
    EXPECT_EQ(transport->requests.size(), 1U);
}

TEST_F(CallTest, TheTimeoutIsTheTransportsDeadline)
{
    setTimeout(std::chrono::milliseconds(1500));
    ui_fe_qos_jumbo(10, 0);
    EXPECT_LE(transport->patience, std::chrono::milliseconds(1500));
    EXPECT_GT(transport->patience, std::chrono::milliseconds(500));
    setTimeout(std::chrono::milliseconds(-5));
    ui_fe_qos_jumbo(10, 0);
    EXPECT_LE(transport->patience, std::chrono::milliseconds(1));
}

TEST_F(CallTest, APluginRequestLeavesOutEmptySubEntries)
{
    PluginConfig request;
    PluginStorage storage;
    PluginSubEntry *entries[3];
    PluginSubValue values[3];
    ui_plugin_multi_config_init(&request, &storage, entries, values, 3, "USERDB");
    EXPECT_EQ(ui_fe_plugin_update_kv(&request, PLUGIN_OP_SET, "username", "joe"), 0);
    EXPECT_EQ(ui_fe_plugin_update_sub_kv(&request, 2, "privilege", "0"), 0);
    EXPECT_NE(ui_fe_plugin_update_sub_kv(&request, 3, "beyond", "0"), 0);
    EXPECT_NE(ui_fe_plugin_update_kv(&request, PLUGIN_OP_SET, "second", "entry"), 0) << "there is one slot";
    EXPECT_EQ(ui_fe_plugin_config_send(&request, 2), nullptr);

    const auto sent = readRequest(transport->requests.at(0));
    auto *got = plugin_config__unpack(nullptr, sent->message.size(), sent->message.data());
    ASSERT_NE(got, nullptr);
    ASSERT_EQ(got->n_entries, 1U);
    EXPECT_STREQ(got->entries[0]->value, "joe");
    ASSERT_EQ(got->entries[0]->n_sub, 1U);
    EXPECT_STREQ(got->entries[0]->sub[0]->key, "privilege");
    plugin_config__free_unpacked(got, nullptr);
}

TEST_F(CallTest, ALongPluginValueIsCut)
{
    PluginConfig request;
    PluginStorage storage;
    PluginSubEntry *entries[1];
    PluginSubValue values[1];
    ui_plugin_multi_config_init(&request, &storage, entries, values, 1, "COLLECTD");
    ui_fe_plugin_update_sub_kv(&request, 0, "OID", std::string(300, '1').c_str());
    EXPECT_EQ(std::string(values[0].text).size(), PLUGIN_SUB_VALUE_SIZE - 1U);
    ui_fe_plugin_update_sub_kv(&request, 0, "OID", nullptr);
    EXPECT_STREQ(values[0].text, "");
}

TEST(CallWithoutTransport, Fails)
{
    setTransport(nullptr);
    EXPECT_EQ(ui_fe_qos_jumbo(1, 1), nullptr);
    ui_fe_qos_jumbo_post_op(nullptr);
}

} // namespace
} // namespace backend
