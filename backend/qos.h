// Quality of service: jumbo frames of the device, DSCP trust of a port.
#pragma once

#include "backend/proto/qos.pb-c.h"

#ifdef __cplusplus
extern "C" {
#endif

// Jumbo frames of the whole device. opcode 1 sets them to `value` (0 off), 10 reads (value 0). The answer has
// the state in jumbo_enabled; null on a delivery failure. Freed with ui_fe_qos_jumbo_post_op.
QosJumboAnswer *ui_fe_qos_jumbo(int32_t opcode, int32_t value);

// Frees an answer of ui_fe_qos_jumbo; null is allowed.
void ui_fe_qos_jumbo_post_op(QosJumboAnswer *answer);

// The trust mode of one port: request->opcode 1 enables request->qos_mode, 3 disables, 5 reads. `operation`
// is 2. The caller sets request->port to a record of its own. The answer has the mode in qos_mode; null on
// a delivery failure. Freed with ui_fe_qos_port_post_op.
QosPortAnswer *ui_fe_qos_port_oper(QosPortRequest *request, int32_t operation);

// Frees an answer of ui_fe_qos_port_oper; null is allowed.
void ui_fe_qos_port_post_op(QosPortAnswer *answer);

#ifdef __cplusplus
}
#endif
