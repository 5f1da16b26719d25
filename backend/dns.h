// The resolver of the switch.
#pragma once

#include "backend/proto/common.pb-c.h"
#include "backend/proto/dns.pb-c.h"

#ifdef __cplusplus
extern "C" {
#endif

// Looks up the address of a name. 0: the answer has it, in dns_ipv4 or, for dns_afi 2, the 16 bytes of
// dns_ipv6. Otherwise the answer's reply says why not; it is null when nobody answered in time. Freed with
// dns_resolve_resp__free_unpacked.
int ui_resolve_dns(DnsResolveReq *request, DnsResolveResp **answer);

#ifdef __cplusplus
}
#endif
