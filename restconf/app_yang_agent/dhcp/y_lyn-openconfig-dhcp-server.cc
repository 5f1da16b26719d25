#include "dhcp/u_lyn-openconfig-dhcp-server.h"

#include "frame/unit.h"

namespace {

#define SERVER "/lyn-oc-dhcp-server:dhcp-server"
#define CONFIG SERVER "/lyn-oc-dhcp-server:config"
#define POOL CONFIG "/lyn-oc-dhcp-server:ipv4-config/lyn-oc-dhcp-server:dhcpv4-pool"
#define STATE SERVER "/lyn-oc-dhcp-server:state"

// clang-format off
constexpr frame::Row kRows[] = {
    EDIT(SERVER, u_lyn_openconfig_dhcp_server_dhcp_server_edit),
    EDIT(CONFIG, u_lyn_openconfig_dhcp_server_config_edit),
    EDIT(CONFIG "/lyn-oc-dhcp-server:ipv4-config",
         u_lyn_openconfig_dhcp_server_ipv4_config_edit, tk::deletedLeafStays),
    EDIT(POOL, u_lyn_openconfig_dhcp_server_dhcpv4_pool_edit, tk::retells),
    EDIT(POOL "/lyn-oc-dhcp-server:lease-time",
         u_lyn_openconfig_dhcp_server_lease_time_edit, tk::emptiedIsDelete | tk::retold),
    EDIT(POOL "/lyn-oc-dhcp-server:static-allocation",
         u_lyn_openconfig_dhcp_server_static_allocation_edit, tk::retold),
    EDIT(POOL "/lyn-oc-dhcp-server:excl-ip-address-range",
         u_lyn_openconfig_dhcp_server_excl_ip_address_range_edit, tk::retold),
    EDIT(POOL "/lyn-oc-dhcp-server:option", u_lyn_openconfig_dhcp_server_option_edit, tk::retold),
    EDIT(POOL "/lyn-oc-dhcp-server:option/lyn-oc-dhcp-server:dhcp-option",
         u_lyn_openconfig_dhcp_server_dhcp_option_edit, tk::retold),
    EDIT(POOL "/lyn-oc-dhcp-server:ip-telephony", u_lyn_openconfig_dhcp_server_ip_telephony_edit, tk::retold),
    EDIT(POOL "/lyn-oc-dhcp-server:ip-telephony/lyn-oc-dhcp-server:data",
         u_lyn_openconfig_dhcp_server_data_edit, tk::retold),
    EDIT(POOL "/lyn-oc-dhcp-server:ip-telephony/lyn-oc-dhcp-server:voice",
         u_lyn_openconfig_dhcp_server_voice_edit, tk::retold),
    EDIT(CONFIG "/lyn-oc-dhcp-server:ipv6-config", u_lyn_openconfig_dhcp_server_ipv6_config_edit),
    EDIT(CONFIG "/lyn-oc-dhcp-server:ipv6-config/lyn-oc-dhcp-server:dhcpv6-pool",
         u_lyn_openconfig_dhcp_server_dhcpv6_pool_edit),
    GET(STATE, u_lyn_openconfig_dhcp_server_state_get),
    GET(STATE "/lyn-oc-dhcp-server:ipv4-state", u_lyn_openconfig_dhcp_server_ipv4_state_get),
    GET(STATE "/lyn-oc-dhcp-server:ipv4-state/lyn-oc-dhcp-server:dhcp-server-binding",
        u_lyn_openconfig_dhcp_server_dhcp_server_binding_get),
    GET(STATE "/lyn-oc-dhcp-server:ipv4-state/lyn-oc-dhcp-server:dhcpv4-pool",
        u_lyn_openconfig_dhcp_server_dhcpv4_pool_get),
    GET(STATE "/lyn-oc-dhcp-server:ipv6-state", u_lyn_openconfig_dhcp_server_ipv6_state_get),
    GET(STATE "/lyn-oc-dhcp-server:ipv6-state/lyn-oc-dhcp-server:dhcpv6-pool",
        u_lyn_openconfig_dhcp_server_dhcpv6_pool_get),
};
// clang-format on

} // namespace

DEFINE_UNIT(lyn_openconfig_dhcp_server, "lyn-openconfig-dhcp-server", "2021-09-16", kRows, "dhcp-server");
