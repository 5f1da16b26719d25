#include "backend/qos.h"

#include "backend/call.h"

using backend::ask;

QosJumboAnswer *ui_fe_qos_jumbo(int32_t opcode, int32_t value)
{
    QosJumboRequest request = QOS_JUMBO_REQUEST__INIT;
    request.opcode = opcode;
    request.value = value;
    return ask<QosJumboAnswer>("ui_fe_qos_jumbo", request, qos_jumbo_answer__descriptor);
}

void ui_fe_qos_jumbo_post_op(QosJumboAnswer *answer)
{
    qos_jumbo_answer__free_unpacked(answer, nullptr);
}

QosPortAnswer *ui_fe_qos_port_oper(QosPortRequest *request, int32_t operation)
{
    return ask<QosPortAnswer>({"ui_fe_qos_port_oper", operation}, *request, qos_port_answer__descriptor);
}

void ui_fe_qos_port_post_op(QosPortAnswer *answer)
{
    qos_port_answer__free_unpacked(answer, nullptr);
}
