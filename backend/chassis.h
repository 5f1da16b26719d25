// Chassis of the stack's units: what they report, their warning temperature, and how the switch starts.
//
// A request and its answer are the same record; the reply that an init function also takes is room of the
// caller's, which only an answer fills. Every send waits, and returns null on a delivery failure.
#pragma once

#include "backend/proto/chassis.pb-c.h"

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define CHASSIS_READ 5
#define CHASSIS_QUERY_FANS 19
#define CHASSIS_QUERY_POWER_SUPPLIES 20
#define CHASSIS_QUERY_TEMPERATURES 22
#define CHASSIS_QUERY_MODEL 23
#define CHASSIS_MOST_UNITS 16 // the highest index of a repeated field

// Clears a query. The caller fills chassis_op, CHASSIS_READ, and chassis_query.
void ui_init_platform_restconf_chassis_config(Chassis__RestconfChassisConfig *message, CommonResp *reply);

// Sends a query. Freed with chassis__restconf_chassis_config__free_unpacked.
Chassis__RestconfChassisConfig *ui_fe_send_restconf_chassis_config(Chassis__RestconfChassisConfig *message);

// Sends the warning temperature of a unit, in degrees Celsius; `flag` is 2. The caller has cleared the record
// with chassis__thermal_info__init and filled unit, thermal_op (2) and level. Freed with
// chassis__thermal_info__free_unpacked.
Chassis__ThermalInfo *ui_fe_chassis_info(Chassis__ThermalInfo *message, int32_t flag);

#define BOOT_SOURCE_PRIMARY 4
#define BOOT_SOURCE_SECONDARY 5

// Clears a choice of the partition to start from. The caller fills boot_source.
void ui_init_platform_boot_config(Chassis__Bootconfig *message, CommonResp *reply);

// Sends it; `opcode` is 17. Freed with chassis__bootconfig__free_unpacked.
Chassis__Bootconfig *ui_fe_platform_boot_config(Chassis__Bootconfig *message, int32_t opcode);

// Clears a request to restart. The caller fills reload_op, which is 1.
void ui_fe_reload_cmd_init(Chassis__ReloadCmd *message, CommonResp *reply);

// Sends it; the numbers are 10 and 1. In the answer reload_accepted tells whether the switch restarts;
// reply_buf says why not. Freed with ui_fe_reload_cmd_deinit.
Chassis__ReloadCmd *ui_fe_reload_cmd_msg(Chassis__ReloadCmd *message, int32_t opcode, int32_t flag);

// Frees an answer; null is allowed.
void ui_fe_reload_cmd_deinit(Chassis__ReloadCmd *answer);

#ifdef __cplusplus
}
#endif
