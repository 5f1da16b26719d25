#include "backend/stack.h"

#include "backend/call.h"

using backend::ask;

void ui_stack_global_config_init(Stack__GlobalConfig *request, Stack__GlobalSettings *settings)
{
    stack__global_config__init(request);
    stack__global_settings__init(request->settings = settings);
}

void ui_stack_unit_config_init(Stack__UnitConfig *request, Stack__UnitSettings *settings)
{
    stack__unit_config__init(request);
    stack__unit_settings__init(request->settings = settings);
}

void ui_stack_global_config_stack_enable_set(Stack__GlobalConfig *request, int32_t oper, int32_t value)
{
    Stack__GlobalSettings &settings = *request->settings;
    settings.stack_enable_op = oper;
    settings.has_stack_enable = 1;
    settings.stack_enable = value;
}

void ui_stack_global_config_mac_addr_set(Stack__GlobalConfig *request, int32_t oper, const uint8_t *mac)
{
    Stack__GlobalSettings &settings = *request->settings;
    settings.mac_addr_op = oper;
    settings.has_mac_addr = 1;
    settings.mac_addr = {STACK_MAC_SIZE, const_cast<uint8_t *>(mac)};
}

void ui_stack_global_config_suggest_id_set(Stack__GlobalConfig *request, int32_t oper, int32_t value)
{
    Stack__GlobalSettings &settings = *request->settings;
    settings.suggest_id_op = oper;
    settings.has_suggest_id = 1;
    settings.suggest_id = value;
}

void ui_stack_global_config_ztp_enable_set(Stack__GlobalConfig *request, int32_t oper, int32_t value)
{
    Stack__GlobalSettings &settings = *request->settings;
    settings.ztp_enable_op = oper;
    settings.has_ztp_enable = 1;
    settings.ztp_enable = value;
}

void ui_stack_global_config_ztp_force_set(Stack__GlobalConfig *request, int32_t oper, int32_t value)
{
    Stack__GlobalSettings &settings = *request->settings;
    settings.ztp_force_op = oper;
    settings.has_ztp_force = 1;
    settings.ztp_force = value;
}

void ui_stack_global_config_marlo_rear_module_stack_40G_set(Stack__GlobalConfig *request, int32_t oper)
{
    request->settings->rear_module_stack_40g_op = oper;
}

void ui_stack_global_config_marlo_rear_module_uplink_100G_set(Stack__GlobalConfig *request, int32_t oper)
{
    request->settings->rear_module_uplink_100g_op = oper;
}

void ui_stack_global_config_marlo_rear_module_uplink_40G_set(Stack__GlobalConfig *request, int32_t oper)
{
    request->settings->rear_module_uplink_40g_op = oper;
}

void ui_stack_unit_priority_set(Stack__UnitConfig *request, int32_t oper, int32_t unit, uint32_t value)
{
    Stack__UnitSettings &settings = *request->settings;
    settings.unit = unit;
    settings.priority_op = oper;
    settings.has_priority = 1;
    settings.priority = value;
}

void ui_stack_unit_stack_name_set(Stack__UnitConfig *request, int32_t oper, int32_t unit, const char *name)
{
    Stack__UnitSettings &settings = *request->settings;
    settings.unit = unit;
    settings.stack_name_op = oper;
    settings.stack_name = const_cast<char *>(name);
}

Stack__GlobalConfig *ui_fe_stack_glb_config_cmd(Stack__GlobalConfig *request, int32_t oper)
{
    return ask<Stack__GlobalConfig>({"ui_fe_stack_glb_config_cmd", oper}, *request,
                                    stack__global_config__descriptor);
}

Stack__GlobalConfig *ui_fe_stack_unit_config_cmd(Stack__UnitConfig *request, int32_t oper)
{
    return ask<Stack__GlobalConfig>({"ui_fe_stack_unit_config_cmd", oper}, *request,
                                    stack__global_config__descriptor);
}

void ui_stack_show_cmd_init(Stack__ShowCmd *request)
{
    stack__show_cmd__init(request);
}

void ui_stack_show_stack_set(Stack__ShowCmd *request, int32_t what)
{
    request->show_stack = what;
}

Stack__ShowCmd *ui_fe_stack_show_cmd(Stack__ShowCmd *request, int32_t, int32_t)
{
    return ask<Stack__ShowCmd>("ui_fe_stack_show_cmd", *request, stack__show_cmd__descriptor);
}

int ui_stack_fe_get_all_apply(int32_t what, Stack__GetAllReq *request, Stack__GetAllResp **answer)
{
    *answer = request == nullptr ? nullptr
                                 : ask<Stack__GetAllResp>({"ui_stack_fe_get_all_apply", what}, *request,
                                                          stack__get_all_resp__descriptor);
    return *answer == nullptr ? 1 : 0;
}

void stack_fe_handle_get_all_response(Stack__GetAllResp *answer)
{
    stack__get_all_resp__free_unpacked(answer, nullptr);
}
