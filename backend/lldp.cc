#include "backend/lldp.h"

#include "backend/call.h"

using backend::ask;

void ui_lldp_global_config_init(LldpGlobalConfig *record, CommonResp *response)
{
    lldp_global_config__init(record);
    common_resp__init(response);
}

void ui_lldp_interface_config_init(Lldpcfg__LldpInterfaceConfig *record, CommonResp *response)
{
    lldpcfg__lldp_interface_config__init(record);
    common_resp__init(response);
}

void lldp_fe_conf_med_init(Lldpcfg__LldpMed *record, CommonResp *response)
{
    lldpcfg__lldp_med__init(record);
    common_resp__init(response);
}

LldpGlobalConfig *ui_fe_lldp_config_apply(LldpGlobalConfig *record, int32_t flag)
{
    return ask<LldpGlobalConfig>({"ui_fe_lldp_config_apply", flag}, *record, lldp_global_config__descriptor);
}

Lldpcfg__LldpMed *ui_lldp_fe_med_config_apply(Lldpcfg__LldpMed *record, int32_t flag)
{
    return ask<Lldpcfg__LldpMed>({"ui_lldp_fe_med_config_apply", flag}, *record,
                                 lldpcfg__lldp_med__descriptor);
}

Lldpcfg__LldpInterfaceConfig *ui_lldp_fe_int_config_apply(Lldpcfg__LldpInterfaceConfig *record)
{
    return ask<Lldpcfg__LldpInterfaceConfig>("ui_lldp_fe_int_config_apply", *record,
                                             lldpcfg__lldp_interface_config__descriptor);
}
