// The stack of switches: global settings, settings and state of its units.
#pragma once

#include "backend/stack.h"
#include "frame/unit.h"

#include <cstddef>
#include <cstdint>

// Room for the text of a refusal.
#define STACK_ERROR_SIZE 512

extern "C" {

// Which characters a unit's name may have: a flag each, rebuilt with every name.
extern std::uint8_t allow_char_in_name[256];
// The last name sent.
extern char unit_name[64];
// The last MAC address read.
extern std::uint8_t mac_addr_stacking[STACK_MAC_SIZE];

// Walks the edited leaves of the global settings, puts those that really change into the request and counts
// them in *op_count. `mode` is 0 in validate, 1 in apply, 3 in rollback; the rear module's request goes out
// by itself in mode 1. 0, or the status of the first leaf that is refused, with its text in the
// `error_buf_size` bytes of error_buf.
Status stack_edit_validate_config_editop(tk::Request *msg, int mode, tk::Value *newval, tk::Value *curval,
                                         Stack__GlobalConfig *request, char *error_buf,
                                         std::size_t error_buf_size, int *op_count);

// The same for the leaves that a unit's settings have after the edit; error_buf has STACK_ERROR_SIZE bytes. A
// unit that is not in the stack is told at the end of the walk.
Status stack_edit_validate_config_1_editop(int unit_id, tk::Request *msg, tk::Value *newval,
                                           tk::Value *curval, Stack__UnitConfig *request, char *error_buf,
                                           int *op_count);

// Sends the use of the rear module: 1 stack 40G, 2 uplink 100G, 3 uplink 40G; nothing for any other value. A
// `delete` removes it. 0, or kFailed with a text in error_buf.
Status stack_rear_module_set(tk::EditOp editop, int value, char *error_buf, std::size_t error_buf_size);

// Writes a MAC address as "aabb.ccdd.eeff" into text_out, which has room for 15 characters; at most six bytes
// are read. A length of 0 with `present` set is logged and gives an empty text.
void stack_yang_build_mac_string(const std::uint8_t *bytes, int present, std::size_t length, char *text_out);

// Global settings: sent as one request in `apply`, and the other way round in `rollback`. Refused with a text
// and the status of the leaf; kInternal with the switch's words.
Status u_lyn_oc_stack_config_edit(EDIT_ARGS);
// A unit's settings, in `apply`.
Status u_lyn_oc_stack_config_1_edit(EDIT_ARGS, const char *unitId);
// Refuses `delete` in `commit` with kNotSupported.
Status u_lyn_oc_stack_stack_edit(EDIT_ARGS);

// The global settings that the switch reports. kNoInstance for a get-next and without a good answer.
Status u_lyn_oc_stack_state_get(tk::GetBlock *get2cb);
// The units that are there, one a call.
Status u_lyn_oc_stack_stack_unit_1_get(tk::GetBlock *get2cb, frame::OwnKey<std::uint32_t> unitId);
// What one unit reports.
Status u_lyn_oc_stack_state_1_get(tk::GetBlock *get2cb, const char *unitId);

// Nothing of these is the switch's.
Status u_lyn_oc_stack_stack_units_edit(EDIT_ARGS);
Status u_lyn_oc_stack_stack_unit_edit(EDIT_ARGS, const char *unitId);
Status u_lyn_oc_stack_trunks_edit(EDIT_ARGS, const char *unitId);
Status u_lyn_oc_stack_stack_ports_edit(EDIT_ARGS, const char *unitId);
Status u_lyn_oc_stack_unit_modules_edit(EDIT_ARGS, const char *unitId);
Status u_lyn_oc_stack_unit_module_edit(EDIT_ARGS, const char *unitId, std::uint32_t moduleId);
Status u_lyn_oc_stack_config_2_edit(EDIT_ARGS, const char *unitId, std::uint32_t moduleId);
Status u_lyn_oc_stack_stack_units_1_get(tk::GetBlock *get2cb);
Status u_lyn_oc_stack_trunks_1_get(tk::GetBlock *get2cb, const char *unitId);
Status u_lyn_oc_stack_stack_ports_1_get(tk::GetBlock *get2cb, const char *unitId);
Status u_lyn_oc_stack_ports_get(tk::GetBlock *get2cb, const char *unitId);
Status u_lyn_oc_stack_port_1_get(tk::GetBlock *get2cb, const char *unitId,
                                 frame::OwnKey<const char *> portId);

} // extern "C"
