// The stack of switches: its settings, those of its units, and what the units report.
//
// Requests live on the caller's stack, together with the settings that they are built around; texts and bytes
// are borrowed until the request was sent. A setter's `oper` is STACK_SET or STACK_REMOVE. Every send waits,
// and yields null on a delivery failure.
#pragma once

#include "backend/proto/stack.pb-c.h"

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define STACK_SET 1
#define STACK_REMOVE 3
#define STACK_MAC_SIZE 6
#define STACK_GLOBAL_CONFIGURE 3 // what global_config_op holds

// Clears a request and its settings.
void ui_stack_global_config_init(Stack__GlobalConfig *request, Stack__GlobalSettings *settings);
void ui_stack_unit_config_init(Stack__UnitConfig *request, Stack__UnitSettings *settings);

// One global setting each.
void ui_stack_global_config_stack_enable_set(Stack__GlobalConfig *request, int32_t oper, int32_t value);
void ui_stack_global_config_mac_addr_set(Stack__GlobalConfig *request, int32_t oper, const uint8_t *mac);
void ui_stack_global_config_suggest_id_set(Stack__GlobalConfig *request, int32_t oper, int32_t value);
void ui_stack_global_config_ztp_enable_set(Stack__GlobalConfig *request, int32_t oper, int32_t value);
void ui_stack_global_config_ztp_force_set(Stack__GlobalConfig *request, int32_t oper, int32_t value);
void ui_stack_global_config_marlo_rear_module_stack_40G_set(Stack__GlobalConfig *request, int32_t oper);
void ui_stack_global_config_marlo_rear_module_uplink_100G_set(Stack__GlobalConfig *request, int32_t oper);
void ui_stack_global_config_marlo_rear_module_uplink_40G_set(Stack__GlobalConfig *request, int32_t oper);

// One setting of a unit each.
void ui_stack_unit_priority_set(Stack__UnitConfig *request, int32_t oper, int32_t unit, uint32_t value);
void ui_stack_unit_stack_name_set(Stack__UnitConfig *request, int32_t oper, int32_t unit, const char *name);

// Send a request; `oper` is 1, or 3 where a rear module's setting is removed. The answer has a reply and is
// freed with stack__global_config__free_unpacked, that of a unit's settings too.
Stack__GlobalConfig *ui_fe_stack_glb_config_cmd(Stack__GlobalConfig *request, int32_t oper);
Stack__GlobalConfig *ui_fe_stack_unit_config_cmd(Stack__UnitConfig *request, int32_t oper);

#define STACK_SHOW_STACK 10
#define STACK_SHOW_UNITS 21 // what show_op holds

// Clears a query for the units and makes it one for the stack. The caller fills show_op.
void ui_stack_show_cmd_init(Stack__ShowCmd *request);
void ui_stack_show_stack_set(Stack__ShowCmd *request, int32_t what);

// Sends it, with the same two numbers again. The answer has an entry for each slot; a slot without a unit has
// the stack_id 0. Freed with stack__show_cmd__free_unpacked.
Stack__ShowCmd *ui_fe_stack_show_cmd(Stack__ShowCmd *request, int32_t what, int32_t show_op);

// Asks for the global settings; `what` is 3, get_all_op is 1. 0: delivered, with an answer; non-zero: a
// delivery failure, and *answer is null. Freed with stack_fe_handle_get_all_response.
int ui_stack_fe_get_all_apply(int32_t what, Stack__GetAllReq *request, Stack__GetAllResp **answer);
void stack_fe_handle_get_all_response(Stack__GetAllResp *answer);

#ifdef __cplusplus
}
#endif
