#include "backend/dns.h"

#include "backend/call.h"

int ui_resolve_dns(DnsResolveReq *request, DnsResolveResp **answer)
{
    const int result = backend::apply("ui_resolve_dns", request, dns_resolve_resp__descriptor, answer);
    if (result != 0 || answer == nullptr)
        return result;
    const CommonResp *reply = (*answer)->reply;
    return reply == nullptr ? 0 : reply->ui_err;
}
