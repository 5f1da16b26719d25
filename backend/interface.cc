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

void ui_init_interface_ethernet_config(InterfaceEthernetConfigParam *record, EthernetSettings *settings,
                                       CommonResp *response)
{
    interface_ethernet_config_param__init(record);
    ethernet_settings__init(record->settings = settings);
    if (response != nullptr)
        common_resp__init(response);
}

InterfaceEthernetConfigParam *ui_fe_interface_ethernet_config_msg(InterfaceEthernetConfigParam *record,
                                                                  int32_t operation)
{
    return backend::ask<InterfaceEthernetConfigParam>({"ui_fe_interface_ethernet_config_msg", operation},
                                                      *record, interface_ethernet_config_param__descriptor);
}
