#include "backend/ip_route.h"

#include "backend/call.h"

int ui_get_ip_route(IpRouteGetReq *request, IpRouteGetResp **answer, int32_t flag)
{
    *answer =
        backend::ask<IpRouteGetResp>({"ui_get_ip_route", flag}, *request, ip_route_get_resp__descriptor);
    return *answer == nullptr ? 1 : 0;
}
