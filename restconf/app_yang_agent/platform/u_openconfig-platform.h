// The chassis: what the units of the stack measure and report, and the temperature at which one warns.
//
// The name of a component is not looked at: each shows the whole chassis, a value for each unit.
#pragma once

#include "frame/call.h"

extern "C" {

// Sends the warning temperature of a unit to the switch in `apply`; other leaves are not the switch's.
// kInternal with a text for a unit or a temperature out of range, or a temperature without a unit.
Status u_openconfig_platform_components_component_config_edit(EDIT_ARGS, const char *name);
// Does nothing.
Status u_openconfig_platform_components_component_power_supply_config_edit(EDIT_ARGS, const char *name);

// What the units report. kNoInstance for a get-next, kInternal without a good answer of the switch.
Status u_openconfig_platform_components_component_state_get(tk::GetBlock *get2cb, const char *name);
Status u_openconfig_platform_components_component_state_temperature_get(tk::GetBlock *get2cb,
                                                                        const char *name);
Status u_openconfig_platform_components_component_power_supply_state_get(tk::GetBlock *get2cb,
                                                                         const char *name);
Status u_openconfig_platform_components_component_fan_state_get(tk::GetBlock *get2cb, const char *name);

// Stubs.
Status u_openconfig_platform_components_edit(EDIT_ARGS);
Status u_openconfig_platform_components_component_edit(EDIT_ARGS, const char *name);
Status u_openconfig_platform_components_component_power_supply_edit(EDIT_ARGS, const char *name);
Status u_openconfig_platform_components_component_fan_edit(EDIT_ARGS, const char *name);
Status u_openconfig_platform_components_component_fan_config_edit(EDIT_ARGS, const char *name);

// Texts of the chassis's numbers, also for other programs.
extern const char chassis_pwrsupply_status[5][20];
extern const char chassis_fan_speed[6][15];
// Null for a number that has none.
const char *get_pwrsupply_status_string(int index);
const char *get_fan_speed_string(int index);

} // extern "C"
