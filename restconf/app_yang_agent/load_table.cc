#include "load_table.h"

#include "backend/platform.h"
#include "toolkit/val.h"

#include <iterator>

#define DECLARE_UNIT(function)                                                                               \
    extern "C" Status y_##function##_init(const char *, const char *);                                       \
    extern "C" Status y_##function##_init2();                                                                \
    extern "C" void y_##function##_cleanup()
#define UNIT(function, module, revision, ...)                                                                \
    {                                                                                                        \
        module, revision, y_##function##_init, y_##function##_init2, y_##function##_cleanup,                 \
            __LINE__ __VA_OPT__(, ) __VA_ARGS__                                                              \
    }
// A module whose unit is still to be written: its row keeps its place and is passed over.
#define PENDING(module, revision, ...)                                                                       \
    {                                                                                                        \
        module, revision, nullptr, nullptr, nullptr, __LINE__ __VA_OPT__(, ) __VA_ARGS__                     \
    }

DECLARE_UNIT(openconfig_interfaces);
DECLARE_UNIT(openconfig_if_ethernet);
DECLARE_UNIT(openconfig_if_aggregate);
DECLARE_UNIT(openconfig_if_aggregate_aug);
DECLARE_UNIT(lyn_openconfig_if_ethernet_aug);
DECLARE_UNIT(openconfig_if_ip);
DECLARE_UNIT(openconfig_vlan);
DECLARE_UNIT(openconfig_spanning_tree);
DECLARE_UNIT(lyn_openconfig_spanning_tree_aug);
DECLARE_UNIT(openconfig_lldp);
DECLARE_UNIT(lyn_openconfig_lldp_aug);
DECLARE_UNIT(lyn_igmp_mld_snooping);
DECLARE_UNIT(openconfig_network_instance);
DECLARE_UNIT(lyn_openconfig_network_instance_aug);
DECLARE_UNIT(lyn_openconfig_iproute);
DECLARE_UNIT(openconfig_acl);
DECLARE_UNIT(lyn_openconfig_acl_aug);
DECLARE_UNIT(lyn_openconfig_dhcp_server);
DECLARE_UNIT(lyn_openconfig_jumbo);
DECLARE_UNIT(lyn_openconfig_ping);
DECLARE_UNIT(lyn_openconfig_traceroute);
DECLARE_UNIT(lyn_openconfig_system_aug);
DECLARE_UNIT(lyn_openconfig_aaa_aug);
DECLARE_UNIT(openconfig_aaa);
DECLARE_UNIT(openconfig_system);
DECLARE_UNIT(lyn_openconfig_if_poe_aug);
DECLARE_UNIT(lyn_openconfig_protectedport);
DECLARE_UNIT(lyn_openconfig_stormcontrol);
DECLARE_UNIT(lyn_openconfig_if_trust_dscp_aug);
DECLARE_UNIT(lyn_openconfig_platform_aug);
DECLARE_UNIT(openconfig_platform);
DECLARE_UNIT(lyn_openconfig_stack);
DECLARE_UNIT(lyn_openconfig_flash);
DECLARE_UNIT(lyn_openconfig_supportsave);
DECLARE_UNIT(openconfig_relay_agent);
DECLARE_UNIT(lyn_openconfig_forwarding_profile);

namespace bundle {

namespace {

// clang-format off
constexpr UnitRow kUnits[] = {
    // module, revision, only on platforms with forwarding profiles, text of a failure
    UNIT(openconfig_system, "openconfig-system", "2018-11-21"),
    PENDING("lyn-collectd", "2021-12-09"),
    UNIT(openconfig_aaa, "openconfig-aaa", "2018-11-21"),
    UNIT(lyn_openconfig_aaa_aug, "lyn-openconfig-aaa-aug", "2019-09-04"),
    UNIT(openconfig_interfaces, "openconfig-interfaces", "2018-11-21"),
    UNIT(openconfig_if_ethernet, "openconfig-if-ethernet", "2023-09-25"),
    UNIT(lyn_openconfig_if_ethernet_aug, "lyn-openconfig-if-ethernet-aug", "2019-11-12", false, FailureText::plainAsError),
    UNIT(openconfig_if_aggregate, "openconfig-if-aggregate", "2018-11-21"),
    UNIT(openconfig_if_ip, "openconfig-if-ip", "2018-11-21"),
    UNIT(openconfig_spanning_tree, "openconfig-spanning-tree", "2018-11-21"),
    UNIT(openconfig_vlan, "openconfig-vlan", "2018-11-21"),
    UNIT(openconfig_lldp, "openconfig-lldp", "2018-11-21"),
    UNIT(lyn_openconfig_lldp_aug, "lyn-openconfig-lldp-aug", "2021-12-20"),
    UNIT(lyn_openconfig_if_poe_aug, "lyn-openconfig-if-poe-aug", "2020-01-04"),
    UNIT(openconfig_network_instance, "openconfig-network-instance", "2018-11-21"),
    UNIT(openconfig_acl, "openconfig-acl", "2018-11-21"),
    PENDING("openconfig-probes", "2018-11-21"),
    UNIT(lyn_openconfig_protectedport, "lyn-openconfig-protectedport", "2020-11-26"),
    UNIT(openconfig_relay_agent, "openconfig-relay-agent", "2018-11-21"),
    PENDING("lyn-openconfig-vlan-aug", "2021-11-15"),
    UNIT(lyn_openconfig_jumbo, "lyn-openconfig-jumbo", "2021-11-05"),
    PENDING("lyn-flexauth-dev", "2021-12-07"),
    UNIT(lyn_openconfig_platform_aug, "lyn-openconfig-platform-aug", "2021-11-04"),
    UNIT(lyn_openconfig_dhcp_server, "lyn-openconfig-dhcp-server", "2021-09-16"),
    PENDING("lyn-openconfig-dhcp-client", "2021-11-22"),
    PENDING("lyn-openconfig-dhcpv6-client", "2021-11-22"),
    UNIT(openconfig_if_aggregate_aug, "openconfig-if-aggregate-aug", "2021-11-24"),
    PENDING("lyn-openconfig-if-dai-aug", "2021-12-27"),
    PENDING("lyn-openconfig-if-dhcp-snoop-aug", "2021-12-27"),
    UNIT(openconfig_platform, "openconfig-platform", "2018-11-21"),
    UNIT(lyn_openconfig_stack, "lyn-openconfig-stack", "2021-11-04"),
    UNIT(lyn_openconfig_stormcontrol, "lyn-openconfig-stormcontrol", "2021-10-28"),
    UNIT(lyn_igmp_mld_snooping, "lyn-igmp-mld-snooping", "2021-12-10", false, FailureText::named, "igmp_mld_snooping"),
    PENDING("lyn-openconfig-if-ndi-aug", "2021-12-27"),
    PENDING("lyn-openconfig-if-source-guard-aug", "2021-12-27"),
    UNIT(lyn_openconfig_flash, "lyn-openconfig-flash", "2022-01-08"),
    PENDING("lyn-openconfig-snmp-server", "2022-01-10"),
    UNIT(lyn_openconfig_acl_aug, "lyn-openconfig-acl-aug", "2022-01-19"),
    UNIT(lyn_openconfig_spanning_tree_aug, "lyn-openconfig-spanning-tree-aug", "2018-11-21"),
    PENDING("lyn-openconfig-cli-template", "2022-02-01"),
    PENDING("lyn-openconfig-actions", "2022-02-04"),
    UNIT(lyn_openconfig_if_trust_dscp_aug, "lyn-openconfig-if-trust-dscp-aug", "2022-03-10"),
    UNIT(lyn_openconfig_supportsave, "lyn-openconfig-supportsave", "2022-02-22"),
    UNIT(lyn_openconfig_system_aug, "lyn-openconfig-system-aug", "2022-03-23", false, FailureText::named, "default-gateway"),
    PENDING("lyn-openconfig-archive", "2022-03-12", false, FailureText::named, "lyn_archive"),
    UNIT(lyn_openconfig_ping, "lyn-openconfig-ping", "2022-07-05", false, FailureText::named, "lyn_ping"),
    UNIT(lyn_openconfig_traceroute, "lyn-openconfig-traceroute", "2022-07-05", false, FailureText::named, "lyn_traceroute"),
    UNIT(lyn_openconfig_iproute, "lyn-openconfig-iproute", "2022-07-05", false, FailureText::named, "lyn_iproute"),
    PENDING("lyn-openconfig-management_config", "2022-09-09", false, FailureText::named, "lyn_management_config"),
    UNIT(lyn_openconfig_network_instance_aug, "lyn-openconfig-network-instance-aug", "2022-08-23"),
    PENDING("lyn-openconfig-vlan-webauth-aug", nullptr, false, FailureText::named, "lyn_openconfig_webauth"),
    PENDING("lyn-openconfig-vxlan", "2022-10-19"),
    UNIT(lyn_openconfig_forwarding_profile, "lyn-openconfig-forwarding-profile", "2022-11-30", true),
    PENDING("lyn-openconfig-ippm", nullptr),
    PENDING("lyn-openconfig-watcher", nullptr),
};
// clang-format on

constexpr const char *kInit2Order[] = {
    "openconfig-system",
    "lyn-collectd",
    "openconfig-aaa",
    "lyn-openconfig-aaa-aug",
    "openconfig-if-ethernet",
    "openconfig-interfaces",
    "openconfig-if-aggregate",
    "openconfig-if-ip",
    "openconfig-spanning-tree",
    "openconfig-vlan",
    "openconfig-lldp",
    "lyn-openconfig-lldp-aug",
    "lyn-openconfig-if-poe-aug",
    "openconfig-acl",
    "openconfig-network-instance",
    "openconfig-probes",
    "lyn-openconfig-protectedport",
    "lyn-openconfig-jumbo",
    "lyn-openconfig-vlan-aug",
    "lyn-openconfig-if-dai-aug",
    "lyn-openconfig-if-dhcp-snoop-aug",
    "openconfig-relay-agent",
    "lyn-openconfig-platform-aug",
    "lyn-openconfig-dhcp-server",
    "lyn-openconfig-dhcp-client",
    "lyn-openconfig-dhcpv6-client",
    "openconfig-platform",
    "openconfig-if-aggregate-aug",
    "lyn-openconfig-stack",
    "lyn-openconfig-stormcontrol",
    "lyn-igmp-mld-snooping",
    "lyn-openconfig-if-ndi-aug",
    "lyn-openconfig-if-source-guard-aug",
    "lyn-flexauth-dev",
    "lyn-openconfig-flash",
    "lyn-openconfig-snmp-server",
    "lyn-openconfig-acl-aug",
    "lyn-openconfig-spanning-tree-aug",
    "lyn-openconfig-cli-template",
    "lyn-openconfig-actions",
    "lyn-openconfig-if-trust-dscp-aug",
    "lyn-openconfig-supportsave",
    "lyn-openconfig-system-aug",
    "lyn-openconfig-archive",
    "lyn-openconfig-ping",
    "lyn-openconfig-traceroute",
    "lyn-openconfig-iproute",
    "lyn-openconfig-management_config",
    "lyn-openconfig-network-instance-aug",
    "lyn-openconfig-vlan-webauth-aug",
    "lyn-openconfig-vxlan",
};

constexpr const char *kCleanupOrder[] = {
    "openconfig-system",
    "lyn-collectd",
    "openconfig-aaa",
    "lyn-openconfig-aaa-aug",
    "openconfig-if-ethernet",
    "openconfig-interfaces",
    "openconfig-if-aggregate",
    "openconfig-if-ip",
    "openconfig-spanning-tree",
    "openconfig-vlan",
    "openconfig-lldp",
    "lyn-openconfig-lldp-aug",
    "openconfig-network-instance",
    "openconfig-acl",
    "lyn-openconfig-if-poe-aug",
    "openconfig-probes",
    "lyn-openconfig-platform-aug",
    "openconfig-relay-agent",
    "lyn-openconfig-vlan-aug",
    "lyn-openconfig-jumbo",
    "lyn-openconfig-dhcp-server",
    "lyn-openconfig-dhcp-client",
    "lyn-openconfig-dhcpv6-client",
    "openconfig-if-aggregate-aug",
    "lyn-openconfig-if-dhcp-snoop-aug",
    "lyn-openconfig-if-dai-aug",
    "openconfig-platform",
    "lyn-openconfig-stormcontrol",
    "lyn-openconfig-protectedport",
    "lyn-igmp-mld-snooping",
    "lyn-openconfig-if-ndi-aug",
    "lyn-openconfig-if-source-guard-aug",
    "lyn-openconfig-stack",
    "lyn-openconfig-flash",
    "lyn-flexauth-dev",
    "lyn-openconfig-snmp-server",
    "lyn-openconfig-acl-aug",
    "lyn-openconfig-spanning-tree-aug",
    "lyn-openconfig-cli-template",
    "lyn-openconfig-actions",
    "lyn-openconfig-if-trust-dscp-aug",
    "lyn-openconfig-supportsave",
    "lyn-openconfig-system-aug",
    "lyn-openconfig-archive",
    "lyn-openconfig-ping",
    "lyn-openconfig-traceroute",
    "lyn-openconfig-iproute",
    "lyn-openconfig-management_config",
    "lyn-openconfig-network-instance-aug",
    "lyn-openconfig-vlan-webauth-aug",
    "lyn-openconfig-vxlan",
    "lyn-openconfig-forwarding-profile",
    "lyn-openconfig-ippm",
    "lyn-openconfig-watcher",
};

} // namespace

std::span<const UnitRow> loadTable()
{
    return kUnits;
}

std::span<const char *const> init2Order()
{
    return kInit2Order;
}

std::span<const char *const> cleanupOrder()
{
    return kCleanupOrder;
}

const UnitRow *findUnit(const char *module)
{
    for (const UnitRow &row : kUnits)
        if (xml_strcmp(row.module, module) == 0)
            return &row;
    return nullptr;
}

bool hasForwardingProfiles()
{
    const int type = get_platform_type();
    return type == 4 || type == 5;
}

} // namespace bundle
