#include "backend/ip_interface.h"

#include "backend/call.h"

int ui_set_intf_config(Ip__Interface__Config *request, CommonResp **answer)
{
    return backend::apply("ui_set_intf_config", request, common_resp__descriptor, answer);
}

int ui_ip_interface_config(Ip__Interface__Config *request, CommonResp **answer)
{
    return backend::applyAndRead("ui_ip_interface_config", request, answer);
}

int ui_ipv6_interface_config(Ipv6__Interface__Config *request, CommonResp **answer)
{
    return backend::applyAndRead("ui_ipv6_interface_config", request, answer);
}
