// Power over Ethernet of one port. Power is in milliwatts.
#pragma once

#include "backend/proto/common.pb-c.h"
#include "backend/proto/poe.pb-c.h"

#ifdef __cplusplus
extern "C" {
#endif

// Clears a record and the five areas of the caller that it is built in; all of them live until it was sent.
// The caller puts the port's name into record->port.
void ui_poe_config_init(PoeConfig *record, PoeOper *oper, PoeIlpConfig *ilp_config,
                        PoePortConfig *port_config, PoeSelection *selection, CommonResp *response);

// What the record is for: 1 a set, 3 a delete.
void ui_fe_poe_set_oper_type(PoeConfig *record, int32_t oper_type);

// Inline power of the port. A class, limit or priority of 0 says nothing about it.
void ui_fe_poe_set_ilp_config(PoeConfig *record, int32_t power_class, int32_t power_limit, int32_t priority,
                              int32_t flag);

// Whether the port gives power. The first two numbers are 0.
void ui_fe_poe_config_set_port_config_type(PoeConfig *record, int32_t first, int32_t second, int32_t enabled);

// Selects what a read returns: 0, 0, 12, 0 for the state of the port.
void ui_fe_poe_config_set_port_config_by_ifindex(PoeConfig *record, int32_t first, int32_t second,
                                                 int32_t selector, int32_t fourth);

// Sends the record; only what was set since ui_poe_config_init goes out. Opcodes: 2 the port's state alone, 1
// or 2 an edit, 3 remove or disable, 5 read. The answer to a read has class, priority and port_info. Null on
// a delivery failure; freed with ui_fe_poe_config_post_oper or poe_info__free_unpacked.
PoeInfo *ui_fe_poe_config_cmd_send(PoeConfig *record, int32_t opcode);

// Frees an answer; null is allowed.
void ui_fe_poe_config_post_oper(PoeInfo *answer);

#ifdef __cplusplus
}
#endif
