// Every client function against the switch: what the journal says, and what comes back.
#include "backend/platform.h"
#include "backend/plugin.h"
#include "backend/qos.h"
#include "switch_fixture.h"

#include <gmock/gmock.h>

#include <array>

namespace switchsim {
namespace {

using Clients = SwitchTest;
INSTANTIATE_TEST_SUITE_P(Ways, Clients, ::testing::Values(Way::inProcess, Way::socket), nameOfWay);

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
    EXPECT_EQ(device().show("jumbo"), Json({{"enabled", true}}));
}

TEST_P(Clients, APluginKeepsLinesAndGivesThemBack)
{
    const auto send = [](const char *op, const char *value, const char *key = "logging host",
                         const char *plugin = "ZQ_SYSLOG") {
        PluginConfig request;
        PluginStorage storage;
        ui_plugin_config_init(&request, &storage, plugin);
        ui_fe_plugin_update_kv_count(&request, op, key, value, 1);
        auto *answer = ui_fe_plugin_config_send(&request, 2);
        const std::string got =
            answer != nullptr && answer->n_entries == 1 ? answer->entries[0]->value : "none";
        plugin_process_response__free_unpacked(answer, nullptr);
        return got;
    };
    for (const char *host : {"10.0.0.1", "10.0.0.2", "10.0.0.1"}) // the same line twice is one line
        send("SET", host);
    EXPECT_EQ(send("GET_NEXT", ""), "10.0.0.1");
    EXPECT_EQ(send("GET_NEXT", "10.0.0.1"), "10.0.0.2");
    EXPECT_EQ(send("GET_NEXT", "10.0.0.2"), "none");
    for (int i = 0; i < 2; i++) // the second time it is gone already
        send("DELETE", "10.0.0.1");
    EXPECT_EQ(lastLine()["answer"]["reply"], Json({{"ui_err", 0}, {"app_err", 0}}));
    EXPECT_EQ(device().show("plugins")["ZQ_SYSLOG"].size(), 1U);
    send("FROB", "x");
    EXPECT_EQ(lastLine()["answer"]["reply"]["ui_err"], 1);
    // There is one line of some keys, and no user without a password.
    for (const char *attempts : {"3", "5"})
        send("SET", attempts, "tacacs-server retransmit", "TACACS");
    EXPECT_EQ(device().show("plugins")["TACACS"],
              Json::parse(R"([{"key": "tacacs-server retransmit", "value": "5"}])"));
    send("SET", "joe", "username", "USERDB");
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
    for (const auto &[getter, name] : getters)
        for (const int value : {1, 0}) {
            device().setValue(name, value);
            EXPECT_EQ(getter(), value) << name;
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
    for (const char *name : {"nothing", static_cast<const char *>(nullptr)}) {
        EXPECT_LT(shm_object_open(name), 1);
        EXPECT_EQ(shm_object_get(handle, name, 1, hostname.data()), 0);
    }
    for (const int bad : {0, -1, 2, INT32_MAX})
        EXPECT_EQ(shm_object_get(bad, "hostname", 1, hostname.data()), 0) << bad;
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

} // namespace
} // namespace switchsim
