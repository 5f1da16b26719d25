#include "backend/lag.h"

#include "backend/call.h"

namespace {

char *orAbsent(char *text)
{
    return text != nullptr && *text != '\0' ? text : nullptr;
}

} // namespace

void ui_lag_config_req_init(LagConfigReq *request)
{
    lag_config_req__init(request);
}

int ui_lag_config_apply(LagConfigReq *request, CommonResp **answer)
{
    LagConfigReq sent = *request;
    sent.name = orAbsent(sent.name);
    sent.new_name = orAbsent(sent.new_name);
    return backend::apply("ui_lag_config_apply", &sent, common_resp__descriptor, answer);
}

void ui_lag_config_resp_free_unpacked(CommonResp *answer)
{
    common_resp__free_unpacked(answer, nullptr);
}
