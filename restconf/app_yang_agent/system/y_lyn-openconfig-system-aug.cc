#include "system/u_lyn-openconfig-system-aug.h"

#include "frame/unit.h"

namespace {

// clang-format off
constexpr frame::Row kRows[] = {
    EDIT("/oc-sys:system/oc-sys:config/lyn-openconfig-system-aug:default_gateway",
         u_lyn_openconfig_system_aug_system_config_default_gateway_edit),
    EDIT("/oc-sys:system/oc-sys:config/lyn-openconfig-system-aug:default_gateway/lyn-openconfig-system-aug:address",
         u_lyn_openconfig_system_aug_system_config_default_gateway_address_edit),
    EDIT("/oc-sys:system/oc-sys:config/lyn-openconfig-system-aug:default_gateway/lyn-openconfig-system-aug:address/lyn-openconfig-system-aug:config",
         u_lyn_openconfig_system_aug_system_config_default_gateway_address_config_edit),
    GET("/oc-sys:system/oc-sys:config/lyn-openconfig-system-aug:default_gateway/lyn-openconfig-system-aug:address/lyn-openconfig-system-aug:state",
        u_lyn_openconfig_system_aug_system_config_default_gateway_address_state_get),
    EDIT("/oc-sys:system/oc-sys:config/lyn-openconfig-system-aug:ipv4",
         u_lyn_openconfig_system_aug_system_config_ipv4_edit),
    EDIT("/oc-sys:system/oc-sys:config/lyn-openconfig-system-aug:ipv4/lyn-openconfig-system-aug:address",
         u_lyn_openconfig_system_aug_system_config_ipv4_address_edit),
    EDIT("/oc-sys:system/oc-sys:config/lyn-openconfig-system-aug:ipv4/lyn-openconfig-system-aug:address/lyn-openconfig-system-aug:config",
         u_lyn_openconfig_system_aug_system_config_ipv4_address_config_edit),
    GET("/oc-sys:system/oc-sys:config/lyn-openconfig-system-aug:ipv4/lyn-openconfig-system-aug:address/lyn-openconfig-system-aug:state",
        u_lyn_openconfig_system_aug_system_config_ipv4_address_state_get),
    EDIT("/oc-sys:system/oc-sys:config/lyn-openconfig-system-aug:ipv6",
         u_lyn_openconfig_system_aug_system_config_ipv6_edit),
    EDIT("/oc-sys:system/oc-sys:config/lyn-openconfig-system-aug:ipv6/lyn-openconfig-system-aug:address",
         u_lyn_openconfig_system_aug_system_config_ipv6_address_edit),
    EDIT("/oc-sys:system/oc-sys:config/lyn-openconfig-system-aug:ipv6/lyn-openconfig-system-aug:address/lyn-openconfig-system-aug:config",
         u_lyn_openconfig_system_aug_system_config_ipv6_address_config_edit),
    GET("/oc-sys:system/oc-sys:config/lyn-openconfig-system-aug:ipv6/lyn-openconfig-system-aug:address/lyn-openconfig-system-aug:state",
        u_lyn_openconfig_system_aug_system_config_ipv6_address_state_get),
};
// clang-format on

} // namespace

DEFINE_UNIT(lyn_openconfig_system_aug, "lyn-openconfig-system-aug", "2022-03-23", kRows);
