#include "backend/poe.h"

#include "backend/call.h"

void ui_poe_config_init(PoeConfig *record, PoeOper *oper, PoeIlpConfig *ilp_config,
                        PoePortConfig *port_config, PoeSelection *selection, CommonResp *response)
{
    poe_config__init(record);
    poe_oper__init(record->oper = oper);
    poe_ilp_config__init(record->ilp_config = ilp_config);
    poe_port_config__init(record->port_config = port_config);
    poe_selection__init(record->selection = selection);
    common_resp__init(response);
}

void ui_fe_poe_set_oper_type(PoeConfig *record, int32_t oper_type)
{
    record->oper->has_oper_type = 1;
    record->oper->oper_type = oper_type;
}

void ui_fe_poe_set_ilp_config(PoeConfig *record, int32_t power_class, int32_t power_limit, int32_t priority,
                              int32_t flag)
{
    PoeIlpConfig &ilp = *record->ilp_config;
    ilp.has_power_class = ilp.has_power_limit = ilp.has_priority = 1;
    ilp.power_class = power_class;
    ilp.power_limit = power_limit;
    ilp.priority = priority;
    ilp.flag = flag;
}

void ui_fe_poe_config_set_port_config_type(PoeConfig *record, int32_t first, int32_t second, int32_t enabled)
{
    record->port_config->first = first;
    record->port_config->second = second;
    record->port_config->has_enabled = 1;
    record->port_config->enabled = enabled;
}

void ui_fe_poe_config_set_port_config_by_ifindex(PoeConfig *record, int32_t first, int32_t second,
                                                 int32_t selector, int32_t fourth)
{
    record->selection->first = first;
    record->selection->second = second;
    record->selection->has_selector = 1;
    record->selection->selector = selector;
    record->selection->fourth = fourth;
}

PoeInfo *ui_fe_poe_config_cmd_send(PoeConfig *record, int32_t opcode)
{
    PoeConfig sent = *record;
    if (sent.oper != nullptr && sent.oper->has_oper_type == 0)
        sent.oper = nullptr;
    if (sent.ilp_config != nullptr && sent.ilp_config->has_priority == 0)
        sent.ilp_config = nullptr;
    if (sent.port_config != nullptr && sent.port_config->has_enabled == 0)
        sent.port_config = nullptr;
    if (sent.selection != nullptr && sent.selection->has_selector == 0)
        sent.selection = nullptr;
    return backend::ask<PoeInfo>({"ui_fe_poe_config_cmd_send", opcode}, sent, poe_info__descriptor);
}

void ui_fe_poe_config_post_oper(PoeInfo *answer)
{
    poe_info__free_unpacked(answer, nullptr);
}
