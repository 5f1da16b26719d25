#include "backend/interface.h"

#include "backend/call.h"

void ui_init_interface_config(InterfaceConfigParam *record, CommonResp *response)
{
    interface_config_param__init(record);
    if (response != nullptr)
        common_resp__init(response);
}

InterfaceConfigParam *ui_fe_interface_config_msg(InterfaceConfigParam *record, int32_t operation)
{
    return backend::ask<InterfaceConfigParam>({"ui_fe_interface_config_msg", operation}, *record,
                                              interface_config_param__descriptor);
}
