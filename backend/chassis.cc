#include "backend/chassis.h"

#include "backend/call.h"

using backend::ask;

void ui_init_platform_restconf_chassis_config(Chassis__RestconfChassisConfig *message, CommonResp *reply)
{
    chassis__restconf_chassis_config__init(message);
    common_resp__init(reply);
}

Chassis__RestconfChassisConfig *ui_fe_send_restconf_chassis_config(Chassis__RestconfChassisConfig *message)
{
    return ask<Chassis__RestconfChassisConfig>("ui_fe_send_restconf_chassis_config", *message,
                                               chassis__restconf_chassis_config__descriptor);
}

Chassis__ThermalInfo *ui_fe_chassis_info(Chassis__ThermalInfo *message, int32_t flag)
{
    return ask<Chassis__ThermalInfo>({"ui_fe_chassis_info", flag}, *message,
                                     chassis__thermal_info__descriptor);
}

void ui_init_platform_boot_config(Chassis__Bootconfig *message, CommonResp *reply)
{
    chassis__bootconfig__init(message);
    common_resp__init(reply);
}

Chassis__Bootconfig *ui_fe_platform_boot_config(Chassis__Bootconfig *message, int32_t opcode)
{
    return ask<Chassis__Bootconfig>({"ui_fe_platform_boot_config", opcode}, *message,
                                    chassis__bootconfig__descriptor);
}

void ui_fe_reload_cmd_init(Chassis__ReloadCmd *message, CommonResp *reply)
{
    chassis__reload_cmd__init(message);
    common_resp__init(reply);
}

Chassis__ReloadCmd *ui_fe_reload_cmd_msg(Chassis__ReloadCmd *message, int32_t opcode, int32_t)
{
    return ask<Chassis__ReloadCmd>({"ui_fe_reload_cmd_msg", opcode}, *message,
                                   chassis__reload_cmd__descriptor);
}

void ui_fe_reload_cmd_deinit(Chassis__ReloadCmd *answer)
{
    chassis__reload_cmd__free_unpacked(answer, nullptr);
}
