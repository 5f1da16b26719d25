// Every client function against the switch: what the journal says, and what comes back.
#include "backend/forwarding_profile.h"
#include "backend/interface.h"
#include "backend/platform.h"
#include "backend/plugin.h"
#include "backend/poe.h"
#include "backend/protected_port.h"
#include "backend/qos.h"
#include "backend/security.h"
#include "backend/task.h"
#include "switch_fixture.h"

#include <gmock/gmock.h>

#include <array>
#include <cstring>

namespace switchsim {
namespace {

using Clients = SwitchTest;
INSTANTIATE_TEST_SUITE_P(Ways, Clients, ::testing::Values(Way::inProcess, Way::socket), nameOfWay);

char *text(const char *constant)
{
    return const_cast<char *>(constant);
}

const Json kSuccess = {{"ui_err", 0}, {"app_err", 0}};

TEST_P(Clients, JumboIsSetAndReadBack)
{
    EXPECT_EQ(journal(), Json::array());
    ui_fe_qos_jumbo_post_op(ui_fe_qos_jumbo(1, 1));
    EXPECT_EQ(journal(),
              Json::parse(R"([{"seq": 1, "call": "ui_fe_qos_jumbo", "request": {"opcode": 1, "value": 1},
        "answer": {"reply": {"ui_err": 0, "app_err": 0}, "jumbo_enabled": 1}}])"));
    auto *answer = ui_fe_qos_jumbo(10, 0);
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer->jumbo_enabled, 1);
    ui_fe_qos_jumbo_post_op(answer);
    EXPECT_EQ(lastLine()["request"], Json::parse(R"({"opcode": 10, "value": 0})"));
    EXPECT_EQ(device().show("jumbo"), Json({{"enabled", true}}));
    ui_fe_qos_jumbo_post_op(ui_fe_qos_jumbo(1, 0));
    EXPECT_EQ(device().show("jumbo"), Json({{"enabled", false}}));
}

QosPortAnswer *askTrust(std::int32_t opcode, std::int32_t mode, const char *port)
{
    QosPortId id = QOS_PORT_ID__INIT;
    id.has_name = 1;
    id.name = {std::strlen(port), reinterpret_cast<std::uint8_t *>(text(port))};
    QosPortRequest request = QOS_PORT_REQUEST__INIT;
    request.opcode = opcode;
    request.qos_mode = mode;
    request.port = &id;
    return ui_fe_qos_port_oper(&request, 2);
}

TEST_P(Clients, TrustDscpIsKeptByPort)
{
    ui_fe_qos_port_post_op(askTrust(1, 2, "ethernet 1/1/7"));
    EXPECT_EQ(lastLine()["request"],
              Json::parse(R"({"opcode": 1, "qos_mode": 2, "port": {"name": "ethernet 1/1/7"}})"));
    EXPECT_EQ(device().show("trust-dscp"), Json({"ethernet 1/1/7"}));
    const std::pair<const char *, int> expected[] = {{"ethernet 1/1/7", 2}, {"ethernet 1/1/8", 0}};
    for (const auto &[port, mode] : expected) {
        auto *answer = askTrust(5, 0, port);
        ASSERT_NE(answer, nullptr);
        EXPECT_EQ(answer->qos_mode, mode) << port;
        ui_fe_qos_port_post_op(answer);
    }
    ui_fe_qos_port_post_op(askTrust(3, 2, "ethernet 1/1/7"));
    ui_fe_qos_port_post_op(askTrust(3, 2, "ethernet 1/1/7")); // gone already
    EXPECT_EQ(lastLine()["answer"]["reply"], kSuccess);
    EXPECT_EQ(device().show("trust-dscp"), Json::array());
}

InterfaceConfigParam *askInterface(const char *name, std::int32_t operation)
{
    InterfaceConfigParam request;
    CommonResp response;
    ui_init_interface_config(&request, &response);
    request.name = text(name);
    request.operation = operation;
    request.source = 3;
    return ui_fe_interface_config_msg(&request, operation);
}

TEST_P(Clients, AnInterfaceTellsItsNameAndState)
{
    auto *answer = askInterface("ethernet 1/1/24", 5);
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(lastLine()["request"],
              Json::parse(R"({"operation": 5, "name": "ethernet 1/1/24", "source": 3})"));
    EXPECT_STREQ(answer->name, "ethernet 1/1/24");
    EXPECT_EQ(answer->ifindex, 24U);
    EXPECT_EQ(answer->enabled, 1);
    // The name is passed on by callers that free the answer through the larger record's function.
    void *same = answer;
    interface_ethernet_config_param__free_unpacked(static_cast<InterfaceEthernetConfigParam *>(same),
                                                   nullptr);
}

TEST_P(Clients, AnInterfaceTakesSettings)
{
    InterfaceConfigParam request;
    ui_init_interface_config(&request, nullptr);
    request.name = text("ethernet 1/1/1");
    request.operation = request.enabled_op = request.description_op = 2;
    request.has_enabled = 1;
    request.description = text("to the roof");
    interface_config_param__free_unpacked(ui_fe_interface_config_msg(&request, 2), nullptr);
    EXPECT_EQ(lastLine()["request"],
              Json::parse(R"({"operation": 2, "name": "ethernet 1/1/1", "description_op": 2,
        "description": "to the roof", "enabled_op": 2, "enabled": 0})"));
    const auto port = [this] { return device().show("interfaces")["ethernet 1/1/1"]; };
    EXPECT_EQ(port()["enabled"], false);
    EXPECT_EQ(port()["description"], "to the roof");
    request.enabled_op = request.description_op = 3;
    interface_config_param__free_unpacked(ui_fe_interface_config_msg(&request, 2), nullptr);
    EXPECT_EQ(port()["enabled"], true);
    EXPECT_FALSE(port().contains("description"));
}

int applyProtection(std::int32_t opcode, const char *port, CommonResp **answer)
{
    PportConfig request;
    pport_config_req_init(&request);
    request.opcode = opcode;
    request.port_name = text(port);
    return protected_port_config_apply(&request, answer, 1);
}

TEST_P(Clients, ProtectedPortsComeAndGo)
{
    CommonResp *answer = nullptr;
    for (const int opcode : {1, 3, 3}) {
        EXPECT_EQ(applyProtection(opcode, "ethernet 1/1/2", &answer), 0);
        ASSERT_NE(answer, nullptr);
        EXPECT_EQ(answer->ui_err, 0) << opcode;
        pport_config_resp_free_unpacked(answer);
        EXPECT_EQ(device().show("protected-port").size(), opcode == 1 ? 1U : 0U);
    }
    EXPECT_EQ(lastLine(), Json::parse(R"({"call": "protected_port_config_apply",
        "request": {"opcode": 3, "port_name": "ethernet 1/1/2"}, "answer": {"ui_err": 0, "app_err": 0}})"));
}

TEST_P(Clients, AnUnknownPortIsRefusedByEveryFeature)
{
    CommonResp *answer = nullptr;
    EXPECT_EQ(applyProtection(1, "ethernet 9/9/9", &answer), 0) << "delivered";
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer->ui_err, 1);
    EXPECT_THAT(answer->reply_buf, ::testing::HasSubstr("ethernet 9/9/9"));
    pport_config_resp_free_unpacked(answer);
    ui_fe_qos_port_post_op(askTrust(1, 2, "ethernet 1/1/25"));
    EXPECT_EQ(lastLine()["answer"]["reply"]["ui_err"], 1);
    interface_config_param__free_unpacked(askInterface("ethernet 1/1/1 ", 5), nullptr);
    EXPECT_EQ(lastLine()["answer"]["reply"]["ui_err"], 1);
}

CommonResp *applyProfile(std::int32_t opcode, const char *name)
{
    FwdConfigInfo request;
    fwd_config_info__init(&request);
    request.opcode = opcode;
    request.profile_name = text(name);
    CommonResp *answer = nullptr;
    ui_forwarding_profile_config_apply(&request, &answer);
    return answer;
}

TEST_P(Clients, ForwardingProfilesNeedTheRightPlatform)
{
    common_resp__free_unpacked(applyProfile(1, "profile2"), nullptr);
    EXPECT_EQ(lastLine()["answer"]["ui_err"], 1);
    for (const int platform : {4, 5}) {
        device().setValue("platform-type", platform);
        common_resp__free_unpacked(applyProfile(1, "profile2"), nullptr);
        EXPECT_EQ(lastLine(), Json::parse(R"({"call": "ui_forwarding_profile_config_apply",
            "request": {"opcode": 1, "profile_name": "profile2"}, "answer": {"ui_err": 0, "app_err": 0}})"));
        EXPECT_EQ(device().show("forwarding-profile"), Json({{"current", "profile2"}}));
        common_resp__free_unpacked(applyProfile(3, "another"), nullptr);
        EXPECT_EQ(lastLine()["answer"], kSuccess) << "it is gone already";
        EXPECT_EQ(device().show("forwarding-profile"), Json({{"current", "profile2"}}));
        common_resp__free_unpacked(applyProfile(3, "profile2"), nullptr);
        EXPECT_EQ(device().show("forwarding-profile"), Json({{"current", "default"}}));
    }
    common_resp__free_unpacked(applyProfile(1, "two words"), nullptr);
    EXPECT_EQ(lastLine()["answer"]["ui_err"], 1);
}

// A PoE request as a caller builds it; what is negative is not set.
struct PoeRequest {
    PoeConfig record;
    PoeOper oper;
    PoeIlpConfig ilp;
    PoePortConfig port;
    PoeSelection selection;
    CommonResp response;

    explicit PoeRequest(const char *name)
    {
        ui_poe_config_init(&record, &oper, &ilp, &port, &selection, &response);
        record.port = text(name);
    }
    PoeRequest &state(int enabled)
    {
        ui_fe_poe_config_set_port_config_type(&record, 0, 0, enabled);
        return *this;
    }
    PoeRequest &limits(int powerClass, int limit, int priority)
    {
        ui_fe_poe_set_ilp_config(&record, powerClass, limit, priority, 0);
        return *this;
    }
    PoeRequest &type(int operType)
    {
        ui_fe_poe_set_oper_type(&record, operType);
        return *this;
    }
    int send(int opcode) // ui_err, or -1 if nothing came back
    {
        PoeInfo *answer = ui_fe_poe_config_cmd_send(&record, opcode);
        const int result = answer == nullptr ? -1 : answer->reply->ui_err;
        ui_fe_poe_config_post_oper(answer);
        return result;
    }
};

TEST_P(Clients, PoeIsSwitchedAndReadBack)
{
    EXPECT_EQ(PoeRequest("ethernet 1/1/3").state(1).send(2), 0);
    EXPECT_EQ(lastLine()["request"],
              Json::parse(R"({"opcode": 2, "port": "ethernet 1/1/3", "port_config": {"enabled": 1}})"));
    EXPECT_EQ(PoeRequest("ethernet 1/1/3").type(1).limits(4, 0, 2).state(1).send(1), 0);
    EXPECT_EQ(lastLine()["request"],
              Json::parse(R"({"opcode": 1, "port": "ethernet 1/1/3", "oper": {"oper_type": 1},
        "ilp_config": {"power_class": 4, "power_limit": 0, "priority": 2}, "port_config": {"enabled": 1}})"));

    PoeRequest read("ethernet 1/1/3");
    ui_fe_poe_config_set_port_config_by_ifindex(&read.record, 0, 0, 12, 0);
    PoeInfo *info = ui_fe_poe_config_cmd_send(&read.record, 5);
    EXPECT_EQ(lastLine()["request"],
              Json::parse(R"({"opcode": 5, "port": "ethernet 1/1/3", "selection": {"selector": 12}})"));
    ASSERT_NE(info, nullptr);
    ASSERT_NE(info->port_info, nullptr);
    EXPECT_EQ(info->power_class, 4);
    EXPECT_EQ(info->priority, 2);
    EXPECT_EQ(info->port_info->enabled, 1);
    EXPECT_EQ(info->port_info->power_allocated, 30'000U);
    EXPECT_EQ(info->port_info->power_used, 6'400U);
    poe_info__free_unpacked(info, nullptr);

    EXPECT_EQ(PoeRequest("ethernet 1/1/3").type(1).state(0).send(3), 0);
    EXPECT_EQ(device().show("poe")["ports"]["ethernet 1/1/3"]["enabled"], false);
    EXPECT_EQ(device().show("poe")["ports"]["ethernet 1/1/3"]["class"], 4) << "kept for the next time";
    EXPECT_EQ(PoeRequest("ethernet 1/1/3").type(3).limits(0, 0, 0).state(0).send(3), 0);
    EXPECT_EQ(device().show("poe")["ports"].contains("ethernet 1/1/3"), false);
}

TEST_P(Clients, PoeLimitsAndClassesExcludeEachOther)
{
    const auto port = [this] { return device().show("poe")["ports"]["ethernet 1/1/1"]; };
    EXPECT_EQ(PoeRequest("ethernet 1/1/1").limits(0, 20'000, 0).state(1).send(1), 0);
    EXPECT_EQ(port()["allocated"], 20'000);
    EXPECT_EQ(PoeRequest("ethernet 1/1/1").limits(2, 0, 1).state(1).send(1), 0);
    EXPECT_EQ(port()["allocated"], 7'000);
    EXPECT_EQ(port()["limit"], 0);
    EXPECT_EQ(port()["priority"], 1);
    EXPECT_EQ(PoeRequest("ethernet 1/1/1").limits(0, 0, 0).state(1).send(1), 0) << "zeros say nothing";
    EXPECT_EQ(port()["class"], 2);
    EXPECT_EQ(port()["priority"], 1);
}

TEST_P(Clients, PoeRefusesWhatTheHardwareCannot)
{
    const auto before = device().show("poe");
    EXPECT_EQ(PoeRequest("ethernet 1/1/1").limits(0, 999, 0).state(1).send(1), 1);
    EXPECT_EQ(PoeRequest("ethernet 1/1/1").limits(0, 95'001, 0).state(1).send(1), 1);
    EXPECT_EQ(PoeRequest("ethernet 1/1/1").limits(0, -1, 0).state(1).send(1), 1);
    EXPECT_EQ(PoeRequest("ethernet 1/1/1").limits(9, 0, 0).state(1).send(1), 1);
    EXPECT_EQ(PoeRequest("ethernet 1/1/1").limits(-1, 0, 0).state(1).send(1), 1);
    EXPECT_EQ(PoeRequest("ethernet 1/1/1").state(1).send(77), 1) << "no such operation";
    EXPECT_EQ(PoeRequest("ethernet 1/2/1").state(1).send(2), 1);
    EXPECT_EQ(device().show("poe")["allocated"], before["allocated"]);
}

TEST_P(Clients, PoeKeepsWithinTheUnitsBudget)
{
    device().setValue("poe-budget", 100'000);
    for (int port = 1; port <= 3; port++)
        EXPECT_EQ(PoeRequest(("ethernet 1/1/" + std::to_string(port)).c_str()).state(1).send(2), 0) << port;
    EXPECT_EQ(PoeRequest("ethernet 1/1/4").state(1).send(2), 1) << "30 W of 10 W left";
    EXPECT_THAT(lastLine()["answer"]["reply"]["reply_buf"].get<std::string>(),
                ::testing::HasSubstr("budget"));
    EXPECT_EQ(PoeRequest("ethernet 1/1/4").limits(0, 10'000, 0).state(1).send(1), 0);
    EXPECT_EQ(PoeRequest("ethernet 1/1/4").limits(0, 10'001, 0).state(1).send(1), 1);
    EXPECT_EQ(device().show("poe")["allocated"], 100'000);
}

// app_err of the answer, or -1 if nothing came back.
int sendRateLimit(const char *port, int op, std::uint32_t limit, int kbps, int trafficClass)
{
    BumRateLimitMsg message = BUM_RATE_LIMIT_MSG__INIT;
    message.msg_type = 41;
    message.op = op;
    message.port_name = text(port);
    message.has_limit = 1;
    message.limit = limit;
    message.kbps = kbps;
    message.traffic_class = trafficClass;
    message.text = text(protobuf_c_empty_string);
    ProtobufCMessage *answer = nullptr;
    if (sec_protobuf_fe_config_handler(&message.base, &answer, SEC_SUB_TYPE_BUM_RATE_LIMIT,
                                       SEC_MSG_BUM_RATE_LIMIT, 0) != 0)
        return -1;
    const int result = reinterpret_cast<BumRateLimitResp *>(answer)->reply->app_err;
    protobuf_c_message_free_unpacked(answer, nullptr);
    return result;
}

TEST_P(Clients, RateLimitsAreKeptByPortAndClass)
{
    EXPECT_EQ(sendRateLimit("ethernet 1/1/5", 1, 1000, 1, 0), 0);
    EXPECT_EQ(lastLine(), Json::parse(R"({"call": "sec_protobuf_fe_config_handler",
        "request": {"message": "bum_rate_limit_msg", "code": 10027101, "sub_type": 41, "msg_type": 41, "op": 1,
                    "port_name": "ethernet 1/1/5", "limit": 1000, "kbps": 1, "traffic_class": 0},
        "answer": {"reply": {"ui_err": 0, "app_err": 0}}})"));
    EXPECT_EQ(sendRateLimit("ethernet 1/1/5", 1, 7, 0, 2), 0);
    EXPECT_EQ(device().show("storm-control"), Json::parse(R"({"ethernet 1/1/5": {
        "broadcast": {"limit": 1000, "kbps": true}, "unknown-unicast": {"limit": 7, "kbps": false}}})"));
    EXPECT_EQ(sendRateLimit("ethernet 1/1/5", 3, 1000, 1, 0), 0);
    EXPECT_EQ(sendRateLimit("ethernet 1/1/5", 3, 1000, 1, 0), 0) << "gone already";
    EXPECT_EQ(sendRateLimit("ethernet 1/1/5", 1, 0, 0, 2), 0) << "a limit of zero is none";
    EXPECT_EQ(device().show("storm-control"), Json::object());
    EXPECT_EQ(sendRateLimit("ethernet 1/1/77", 1, 1, 0, 0), 2);
    EXPECT_EQ(sendRateLimit("ethernet 1/1/5", 1, 1, 0, 3), 2);
    EXPECT_EQ(sendRateLimit("ethernet 1/1/5", 1, 1, 0, -1), 2);
    EXPECT_EQ(sendRateLimit("ethernet 1/1/5", 2, 1, 0, 0), 2);
}

PluginProcessResponse *sendToPlugin(const char *op, const char *key, const char *value,
                                    const char *plugin = "ZQ_SYSLOG")
{
    PluginConfig request;
    PluginStorage storage;
    ui_plugin_config_init(&request, &storage, plugin);
    ui_fe_plugin_update_kv_count(&request, op, key, value, 1);
    return ui_fe_plugin_config_send(&request, 2);
}

TEST_P(Clients, APluginKeepsLinesAndGivesThemBack)
{
    for (const char *host : {"10.0.0.1", "10.0.0.2", "10.0.0.1"})
        plugin_process_response__free_unpacked(sendToPlugin("SET", "logging host", host), nullptr);
    EXPECT_EQ(device().show("plugins")["ZQ_SYSLOG"].size(), 2U) << "the same line twice is one line";
    const std::pair<const char *, const char *> walk[] = {{"", "10.0.0.1"}, {"10.0.0.1", "10.0.0.2"}};
    for (const auto &[after, host] : walk) {
        auto *answer = sendToPlugin("GET_NEXT", "logging host", after);
        ASSERT_TRUE(answer != nullptr && answer->n_entries == 1);
        EXPECT_STREQ(answer->entries[0]->value, host);
        plugin_process_response__free_unpacked(answer, nullptr);
    }
    auto *end = sendToPlugin("GET_NEXT", "logging host", "10.0.0.2");
    ASSERT_NE(end, nullptr);
    EXPECT_EQ(end->n_entries, 0U);
    plugin_process_response__free_unpacked(end, nullptr);
    for (int i = 0; i < 2; i++) // the second time it is gone already
        plugin_process_response__free_unpacked(sendToPlugin("DELETE", "logging host", "10.0.0.1"), nullptr);
    EXPECT_EQ(lastLine()["answer"]["reply"], kSuccess);
    EXPECT_EQ(device().show("plugins")["ZQ_SYSLOG"].size(), 1U);
    plugin_process_response__free_unpacked(sendToPlugin("FROB", "logging host", "x"), nullptr);
    EXPECT_EQ(lastLine()["answer"]["reply"]["ui_err"], 1);
}

TEST_P(Clients, APluginHasOneLineOfSomeKeysAndNoUserWithoutPassword)
{
    for (const char *attempts : {"3", "5"})
        plugin_process_response__free_unpacked(
            sendToPlugin("SET", "tacacs-server retransmit", attempts, "TACACS"), nullptr);
    EXPECT_EQ(device().show("plugins")["TACACS"],
              Json::parse(R"([{"key": "tacacs-server retransmit", "value": "5"}])"));
    plugin_process_response__free_unpacked(sendToPlugin("SET", "username", "joe", "USERDB"), nullptr);
    EXPECT_EQ(lastLine()["answer"]["reply"]["ui_err"], 1);
    EXPECT_FALSE(device().show("plugins").contains("USERDB"));
}

TEST_P(Clients, PluginSecretsAreSeenByTheirLengthOnly)
{
    PluginConfig request;
    PluginStorage storage;
    std::array<PluginSubEntry *, 3> entries{};
    std::array<PluginSubValue, 3> values{};
    ui_plugin_multi_config_init(&request, &storage, entries.data(), values.data(), entries.size(), "USERDB");
    ui_fe_plugin_update_sub_kv(&request, 0, "password", "hunter22");
    ui_fe_plugin_update_sub_kv(&request, 2, "privilege", "0");
    ui_fe_plugin_update_kv(&request, PLUGIN_OP_SET, "username", "joe");
    plugin_process_response__free_unpacked(ui_fe_plugin_config_send(&request, 2), nullptr);
    EXPECT_EQ(lastLine()["request"],
              Json::parse(R"({"plugin": "USERDB", "entries": [{"op": "SET", "key": "username",
        "value": "joe", "sub": [{"key": "password", "value": "<8 bytes>"}, {"key": "privilege", "value": "0"}]}]})"));
    EXPECT_THAT(device().show().dump(), ::testing::Not(::testing::HasSubstr("hunter22")));
}

TEST_P(Clients, GettersFollowTheValuesAndLeaveNoTrace)
{
    const std::pair<int (*)(), const char *> getters[] = {
        {get_platform_type, "platform-type"},
        {ui_fips_get_admin_state, "fips-admin-state"},
        {ui_fips_cc_get_admin_state, "fips-cc-admin-state"},
        {ui_fips_cc_get_status, "fips-cc-status"},
        {ui_fips_cc_get_allow_aaa_server_any, "fips-cc-allow-aaa-server-any"},
        {is_dhcp_client_enabled, "dhcp-client-enabled"},
        {is_dhcps_enabled, "dhcp-server-enabled"},
    };
    for (const auto &[getter, name] : getters) {
        for (const int value : {1, 0}) {
            device().setValue(name, value);
            EXPECT_EQ(getter(), value) << name;
        }
    }
    EXPECT_EQ(journal(), Json::array());
}

TEST_P(Clients, SharedMemoryFieldsHaveFixedWidths)
{
    const int handle = shm_object_open("system_host_name");
    ASSERT_GE(handle, 1);
    std::array<char, 256> hostname{};
    hostname.fill('x');
    EXPECT_EQ(shm_object_get(handle, "hostname", 255, hostname.data()), 255);
    EXPECT_STREQ(hostname.data(), "switch");
    EXPECT_EQ(hostname.back(), 'x');
    EXPECT_EQ(shm_object_get(handle, "hostname", 3, hostname.data()), 3);
    char source = 0;
    EXPECT_EQ(shm_object_get(handle, "hostname_source", 1, &source), 1);
    EXPECT_EQ(source, 1);
    EXPECT_LT(shm_object_open("nothing"), 1);
    EXPECT_LT(shm_object_open(nullptr), 1);
    EXPECT_EQ(shm_object_get(handle, "nothing", 1, &source), 0);
    EXPECT_EQ(shm_object_get(handle, nullptr, 1, &source), 0);
    for (const int bad : {0, -1, 2, INT32_MAX})
        EXPECT_EQ(shm_object_get(bad, "hostname", 1, &source), 0) << bad;
}

TEST_P(Clients, EventsSyslogAndLockReachTheDevice)
{
    cu_logging_record record{};
    record.module = 67;
    record.kind = 32;
    record.event = 737;
    EXPECT_EQ(cu_logging_write(&record), 0);
    EXPECT_EQ(syslog_lib_init(), 0);
    EXPECT_EQ(journal(), Json::array());
    EXPECT_EQ(clam_service_release_config_lock(), 0);
    EXPECT_EQ(lastLine()["call"], "clam_service_release_config_lock");
    const auto platform = device().show("platform");
    EXPECT_EQ(platform["events"], Json::parse(R"([{"module": 67, "kind": 32, "event": 737}])"));
    EXPECT_EQ(platform["syslog"], true);
    EXPECT_EQ(platform["config-lock-releases"], 1);
}

TEST_P(Clients, TasksGetTheirMessages)
{
    itc_context context{};
    itc_get_current_context(&context);
    EXPECT_EQ(context.task, ITC_TASK_MANAGEMENT);
    const std::array<std::uint8_t, 4> payload = {0, 1, 0xfe, 0xff};
    EXPECT_EQ(itc_send_request(&context, 10, 0xA020B, payload.data(), payload.size(), 1, 0, 0), 0);
    EXPECT_EQ(lastLine()["request"],
              Json::parse(R"({"destination": 10, "code": 655883, "flag": 1, "payload": "0001feff"})"));
    EXPECT_EQ(device().show("tasks")["messages"].size(), 1U);
}

} // namespace
} // namespace switchsim
