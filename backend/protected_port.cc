#include "backend/protected_port.h"

#include "backend/call.h"

void pport_config_req_init(PportConfig *request)
{
    pport_config__init(request);
}

int protected_port_config_apply(PportConfig *request, CommonResp **answer, int32_t)
{
    return backend::apply("protected_port_config_apply", request, common_resp__descriptor, answer);
}

void pport_config_resp_free_unpacked(CommonResp *answer)
{
    common_resp__free_unpacked(answer, nullptr);
}
