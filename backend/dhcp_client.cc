#include "backend/dhcp_client.h"

#include "backend/call.h"

using backend::ask;

DhclientResponse *ui_fe_dhclientv4_set_intf_no_enable(const char *interface_text, std::int32_t no_enable)
{
    DhclientSetIntfNoEnableRequest request = DHCLIENT_SET_INTF_NO_ENABLE_REQUEST__INIT;
    request.interface = const_cast<char *>(interface_text);
    request.no_enable = no_enable;
    return ask<DhclientResponse>("ui_fe_dhclientv4_set_intf_no_enable", request,
                                 dhclient_response__descriptor);
}

void ui_fe_dhclientv4_response_free(DhclientResponse *answer)
{
    dhclient_response__free_unpacked(answer, nullptr);
}

void ui_dhclient_port_id_init(DhclientPortId *record, CommonResp *response)
{
    dhclient_port_id__init(record);
    if (response != nullptr)
        common_resp__init(response);
}

DhclientPortId *ui_fe_dhclientv4_send_be_request(DhclientPortId *record, std::int32_t operation)
{
    return ask<DhclientPortId>({"ui_fe_dhclientv4_send_be_request", operation}, *record,
                               dhclient_port_id__descriptor);
}
