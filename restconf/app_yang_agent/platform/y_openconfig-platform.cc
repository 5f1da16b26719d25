#include "platform/u_openconfig-platform.h"

#include "frame/unit.h"

#define COMPONENT "/oc-platform:components/oc-platform:component"

namespace {

constexpr frame::Row kRows[] = {
    EDIT("/oc-platform:components", u_openconfig_platform_components_edit),
    EDIT(COMPONENT, u_openconfig_platform_components_component_edit),
    EDIT(COMPONENT "/oc-platform:config", u_openconfig_platform_components_component_config_edit),
    GET(COMPONENT "/oc-platform:state", u_openconfig_platform_components_component_state_get),
    GET(COMPONENT "/oc-platform:state/oc-platform:temperature",
        u_openconfig_platform_components_component_state_temperature_get),
    EDIT(COMPONENT "/oc-platform:power-supply", u_openconfig_platform_components_component_power_supply_edit),
    EDIT(COMPONENT "/oc-platform:power-supply/oc-platform:config",
         u_openconfig_platform_components_component_power_supply_config_edit),
    GET(COMPONENT "/oc-platform:power-supply/oc-platform:state",
        u_openconfig_platform_components_component_power_supply_state_get),
    EDIT(COMPONENT "/oc-platform:fan", u_openconfig_platform_components_component_fan_edit),
    EDIT(COMPONENT "/oc-platform:fan/oc-platform:config",
         u_openconfig_platform_components_component_fan_config_edit),
    GET(COMPONENT "/oc-platform:fan/oc-platform:state",
        u_openconfig_platform_components_component_fan_state_get),
};

} // namespace

DEFINE_UNIT(openconfig_platform, "openconfig-platform", "2018-11-21", kRows, "components");
