// The routing daemon's table of IPv4 routes.
#pragma once

#include "backend/proto/common.pb-c.h"
#include "backend/proto/ip_route.pb-c.h"

#ifdef __cplusplus
extern "C" {
#endif

#define IP_ROUTE_REQUEST_KIND 8
#define IP_ROUTE_MORE 4 // of an answer's `more`: another page follows

// Asks for one page of the table: the first one (first_page 1), or the one behind next_address and
// next_prefix_length. `flag` is 1. 0: there is an answer, which may be a refusal; else *answer is null. Freed
// with ip_route_get_resp__free_unpacked.
int ui_get_ip_route(IpRouteGetReq *request, IpRouteGetResp **answer, int32_t flag);

#ifdef __cplusplus
}
#endif
