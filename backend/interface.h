// Ethernet and lag interfaces: settings, state and counters of one interface.
#pragma once

#include "backend/proto/interface.pb-c.h"

#ifdef __cplusplus
extern "C" {
#endif

// Clears a request, and the buffer that its caller keeps for the reply. The reply belongs to answers: the
// request goes out without it.
void ui_init_interface_config(InterfaceConfigParam *record, CommonResp *response);

// Sends the record, which names the interface; `operation` is 2 to set and 5 to get. A get returns name,
// ifindex, description, enabled, oper_state and counters. Null on a delivery failure; freed with
// interface_config_param__free_unpacked or interface_ethernet_config_param__free_unpacked.
InterfaceConfigParam *ui_fe_interface_config_msg(InterfaceConfigParam *record, int32_t operation);

// Clears a request for the link settings of a port, links it to the settings that its caller keeps, and
// clears the buffer for the reply.
void ui_init_interface_ethernet_config(InterfaceEthernetConfigParam *record, EthernetSettings *settings,
                                       CommonResp *response);

// Sends the record, which names the port; `operation` is 2 to set and 5 to get. speed_op 2 sets speed, duplex
// and clock together, 3 gives them back to the port; a get returns them and what the link has settled on.
// Null on a delivery failure; freed with interface_ethernet_config_param__free_unpacked.
InterfaceEthernetConfigParam *ui_fe_interface_ethernet_config_msg(InterfaceEthernetConfigParam *record,
                                                                  int32_t operation);

#ifdef __cplusplus
}
#endif
